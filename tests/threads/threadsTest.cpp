// Once everything is registered, many threads write and read at the same time: each has messages and buffers of
// its own, the registry is everybody's. The thread sanitizer looks at it in the preset tsan; without it, the
// results show that no thread gets into another's way.

#include "bciMessage.h"
#include "bciMsgRegistration.h"
#include "contents.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace
{

// No lock and nothing atomic: they would order the threads, and hide what they are not to do.
thread_local std::string* logged = nullptr;

void capture(const char* format, va_list& arguments)
{
    char line[8192];
    std::vsnprintf(line, sizeof line, format, arguments);
    if (logged != nullptr)
    {
        *logged += line;
        *logged += '\n';
    }
}

struct Form
{
    bool (BciMessageBase::*write)(char*, unsigned int&) const;
    bool (BciMessageBase::*read)(char*, unsigned int&);
    bool (*instantiate)(char*, unsigned int&, BciMessageBase*&);
};

constexpr Form kForms[] = {
    {&BciMessageBase::serializeToText, &BciMessageBase::deserializeFromText,
     &BciMessageBase::instantiateBciMsgFromText},
    {&BciMessageBase::serializeToBinary, &BciMessageBase::deserializeFromBinary,
     &BciMessageBase::instantiateBciMsgFromBinary},
    {&BciMessageBase::serializeToXml, &BciMessageBase::deserializeFromXml,
     &BciMessageBase::instantiateBciMsgFromXml},
};

// A new message that holds nothing but zeros, where reading leaves what was there.
std::unique_ptr<BciMessageBase> emptyMessage(SIGSELECT sigNo)
{
    BciMessageBase* message = nullptr;
    BciMessageBase::instantiateBciMsg(sigNo, message);
    const std::vector<char> zeros(8192); // more than any has
    message->setMsg(zeros.data());
    return std::unique_ptr<BciMessageBase>(message);
}

// One message through all that the library offers; everything that there is to see goes into `seen`.
void useMessage(const Content& content, std::string& seen)
{
    std::string text = content.text;
    auto length = static_cast<unsigned int>(text.size() + 1);
    const auto sigNo = static_cast<SIGSELECT>(std::stoul(text));
    const std::unique_ptr<BciMessageBase> message = emptyMessage(sigNo);
    message->deserializeFromText(text.data(), length);
    for (const Form& form : kForms)
    {
        std::vector<char> buffer(20000);
        length = 20000;
        const bool written = (message.get()->*form.write)(buffer.data(), length);
        seen.append(buffer.data(), length).append(written ? "+" : "-");
        BciMessageBase* another = nullptr;
        const bool read = form.instantiate(buffer.data(), length, another);
        seen += std::to_string(length) + (read ? "+" : "-");
        delete another;

        std::vector<char> small(41); // too small for all but a few, and a zero behind it
        length = 40;
        const bool cut = (message.get()->*form.write)(small.data(), length);
        seen.append(small.data(), length).append(cut ? "+" : "-");
        const std::unique_ptr<BciMessageBase> target = emptyMessage(sigNo);
        const bool reread = (target.get()->*form.read)(small.data(), length);
        seen += std::to_string(length) + (reread ? "+" : "-");
        length = 20000;
        (target.get()->*form.write)(buffer.data(), length);
        seen.append(buffer.data(), length);
    }
    char document[] = "<a>1</a><b>2</b>";
    char value[8] = "";
    int offset = 0;
    seen += getTagContents(document, "b", value, sizeof value, offset) ? value : "-";
    std::string name = "snid__";
    insertArraySubscripts(name, 1, 0, "1", "3");
    seen += name;
    seen += BciMessageBase::isMsgClassRegistered(message->getSigNo()) ? "+" : "-";
    BciMessageBase* unknown = nullptr;
    seen += BciMessageBase::instantiateBciMsg(1, unknown) ? "+" : "-";
}

// Every message, some rounds of it, beginning with another one in each thread.
std::vector<std::string> useMessages(std::size_t first)
{
    constexpr std::size_t kCount = std::size(kContents);
    constexpr int kRounds = 25;
    std::vector<std::string> seen(kCount);
    for (std::size_t i = 0; i < kRounds * kCount; ++i)
    {
        const std::size_t place = (first + i) % kCount;
        std::string& all = seen[place];
        logged = &all;
        useMessage(kContents[place], all);
    }
    logged = nullptr;
    return seen;
}

TEST(Threads, WriteAndReadAtTheSameTimeAsOneAlone)
{
    BciMsgRegistry::registerSupportedMsgClasses();
    const std::vector<std::string> alone = useMessages(0);
    for (const std::string& seen : alone)
    {
        EXPECT_NE(seen.find("cannot find sigNo 1"), std::string::npos);
    }

    constexpr std::size_t kThreads = 16;
    std::vector<std::vector<std::string>> seen(kThreads);
    std::atomic<bool> begin = false;
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < kThreads; ++i)
    {
        threads.emplace_back(
            [&, i]
            {
                while (!begin)
                {
                    std::this_thread::yield();
                }
                seen[i] = useMessages(i);
            });
    }
    begin = true;
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    for (const std::vector<std::string>& one : seen)
    {
        EXPECT_EQ(one, alone);
    }
}

} // namespace

extern "C" void syslog(int /*priority*/, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    capture(format, arguments);
    va_end(arguments);
}

// What syslog becomes in a build with _FORTIFY_SOURCE.
extern "C" void __syslog_chk(int /*priority*/, int, const char* format, ...) // NOLINT: the C library's name
{
    va_list arguments;
    va_start(arguments, format);
    capture(format, arguments);
    va_end(arguments);
}
