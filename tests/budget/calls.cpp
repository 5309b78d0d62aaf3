// Calls every message's six entry points, each once to warm up and once to be counted by callgrind, which dumps
// "CLASS encode|decode FORM" after each. It is a test, not a benchmark: its figures have to be the same
// everywhere.
//
// How many instructions the C library takes over a block of memory depends on where in its page the block is. So
// every block that a call works on is at the start of a page, and the stack at one place of it.

#include "bciMessage.h"
#include "bciMsgRegistration.h"
#include "contents.h"

#include <alloca.h>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <valgrind/callgrind.h>

// Keeps the log's costs out of the count.
extern "C" void syslog(int /*priority*/, const char* /*format*/, ...) {}

namespace
{

constexpr std::size_t kPage = 4096;

[[noreturn]] void giveUp(const std::string& what)
{
    std::fprintf(stderr, "%s\n", what.c_str());
    std::exit(1);
}

} // namespace

void* operator new(std::size_t size)
{
    void* const block = std::aligned_alloc(kPage, (size + kPage) / kPage * kPage);
    return block != nullptr ? block : throw std::bad_alloc();
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept
{
    std::free(block);
}

namespace
{

struct Form
{
    const char* name;
    bool (BciMessageBase::*write)(char*, unsigned int&) const;
    bool (BciMessageBase::*read)(char*, unsigned int&);
    bool readTellsLength;
};

constexpr Form kForms[] = {
    {"binary", &BciMessageBase::serializeToBinary, &BciMessageBase::deserializeFromBinary, true},
    {"text", &BciMessageBase::serializeToText, &BciMessageBase::deserializeFromText, true},
    {"xml", &BciMessageBase::serializeToXml, &BciMessageBase::deserializeFromXml, false},
};

// A call gets the buffer's size, and is to come out with `length` at least: one of the readers takes the character
// behind the text too.
template <typename Call>
void count(const std::string& name, unsigned int size, unsigned int length, bool result, Call call)
{
    unsigned int warmUp = size;
    call(warmUp);
    unsigned int counted = size;
    CALLGRIND_ZERO_STATS;
    const bool outcome = call(counted);
    CALLGRIND_DUMP_STATS_AT(name.c_str());
    if (outcome != result || counted < length)
    {
        giveUp(name + ": result " + std::to_string(outcome) + ", length " + std::to_string(counted));
    }
}

void countMessage(const Content& content)
{
    auto size = static_cast<unsigned int>(std::strlen(content.text) + 1);
    const auto text = std::make_unique<char[]>(size);
    std::memcpy(text.get(), content.text, size);
    BciMessageBase* created = nullptr;
    const bool isMade = BciMessageBase::instantiateBciMsgFromText(text.get(), size, created);
    const std::unique_ptr<BciMessageBase> message(created);
    if (!isMade || size < std::strlen(content.text))
    {
        giveUp(std::string(content.className) + ": not made of its text");
    }
    for (const Form& form : kForms)
    {
        constexpr unsigned int kAmple = 32768;
        const auto ample = std::make_unique<char[]>(kAmple);
        unsigned int length = kAmple;
        (created->*form.write)(ample.get(), length);

        // With room for the zero that ends XML.
        const auto buffer = std::make_unique<char[]>(length + 1);
        count(std::string(content.className) + " encode " + form.name, length + 1, length, true,
              [&](unsigned int& inOut) { return (created->*form.write)(buffer.get(), inOut); });
        // Its last element is closed by another name, so it is not found.
        const bool isRead = form.readTellsLength || content.className != std::string("BciLoadLmcAck");
        count(std::string(content.className) + " decode " + form.name, length + 1,
              form.readTellsLength ? length : 0, isRead,
              [&](unsigned int& inOut) { return (created->*form.read)(buffer.get(), inOut); });
    }
}

[[gnu::noinline]] void countAll()
{
    for (const Content& content : kContents)
    {
        countMessage(content);
    }
}

} // namespace

int main()
{
    BciMsgRegistry::registerSupportedMsgClasses();
    const char here = 0;
    auto* const filling = static_cast<volatile char*>(alloca(reinterpret_cast<std::uintptr_t>(&here) % kPage + 1));
    *filling = here;
    countAll();
}
