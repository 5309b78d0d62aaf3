// The library takes nothing from the heap but message objects, the blocks of two classes and the nodes of its
// registry, whatever it is given.

#include "bciLoadLmcMsg.h"
#include "bciMessage.h"
#include "bciMsgRegistration.h"
#include "contents.h"
#include "heap.h"
#include "logLines.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <ostream>
#include <string>
#include <vector>

namespace
{

struct Form
{
    const char* name;
    bool (BciMessageBase::*write)(char*, unsigned int&) const;
    bool (BciMessageBase::*read)(char*, unsigned int&);
};

void PrintTo(const Form& form, std::ostream* out)
{
    *out << form.name;
}

constexpr Form kForms[] = {
    {"Text", &BciMessageBase::serializeToText, &BciMessageBase::deserializeFromText},
    {"Binary", &BciMessageBase::serializeToBinary, &BciMessageBase::deserializeFromBinary},
    {"Xml", &BciMessageBase::serializeToXml, &BciMessageBase::deserializeFromXml},
};

constexpr unsigned int kAmple = 32768;

// A message and its rendering in one form.
class Subject
{
public:
    Subject(const Content& content, const Form& form) : m_form(form)
    {
        BciMsgRegistry::registerSupportedMsgClasses();
        std::string text = content.text;
        auto length = static_cast<unsigned int>(text.size() + 1);
        BciMessageBase* created = nullptr;
        EXPECT_TRUE(BciMessageBase::instantiateBciMsgFromText(text.data(), length, created));
        m_message.reset(created);
        m_rendering = write(kAmple);
        EXPECT_LT(m_rendering.size(), kAmple);
        EXPECT_NE(m_rendering, "");
    }

    BciMessageBase& message()
    {
        return *m_message;
    }

    const std::string& rendering() const
    {
        return m_rendering;
    }

    // All places in the rendering, or some 200 of them.
    std::vector<unsigned int> places() const
    {
        std::vector<unsigned int> result;
        for (std::size_t place = 0; place < m_rendering.size(); place += 1 + m_rendering.size() / 200)
        {
            result.push_back(static_cast<unsigned int>(place));
        }
        return result;
    }

    std::string write(unsigned int size)
    {
        std::vector<char> buffer(size);
        unsigned int length = size;
        EXPECT_EQ(allocationsIn([&] { (m_message.get()->*m_form.write)(buffer.data(), length); }), 0)
            << size << " bytes";
        return {buffer.data(), length};
    }

    // All forms, into the same buffer and back from it.
    void writeThroughStreams()
    {
        static char buffer[kAmple];
        commonStream::ostream_text text;
        text.attachBuffer(buffer, sizeof buffer);
        m_message->serializeBciMsgToText(text);
        text.reset();
        m_message->serializeBciMsgToXml(text);
        commonStream::istream_text textIn;
        textIn.attachBuffer(buffer, sizeof buffer);
        m_message->deserializeBciMsgFromXml(textIn);
        m_message->deserializeBciMsgFromText(textIn);
        commonStream::ostream_binary binary;
        binary.attachBuffer(buffer, sizeof buffer);
        m_message->serializeBciMsgToBinary(binary);
        commonStream::istream_binary binaryIn;
        binaryIn.attachBuffer(buffer, binary.length());
        m_message->deserializeBciMsgFromBinary(binaryIn);
    }

    // Behind the data there is a zero.
    void read(std::string data)
    {
        auto length = static_cast<unsigned int>(data.size());
        EXPECT_EQ(allocationsIn([&] { (m_message.get()->*m_form.read)(data.data(), length); }), 0)
            << testing::PrintToString(data);
    }

private:
    Form m_form;
    std::unique_ptr<BciMessageBase> m_message;
    std::string m_rendering;
};

class Allocation : public testing::TestWithParam<Form>
{
protected:
    template <typename Operation>
    static void forEachClass(Operation operation)
    {
        for (const Content& content : kContents)
        {
            SCOPED_TRACE(content.className);
            Subject subject(content, GetParam());
            operation(subject);
        }
    }

    // Every XML reader misses an element; the others do not complain of everything.
    static void expectThatSomethingWasMissed()
    {
        EXPECT_TRUE(takeLogLines() != 0 || std::string(GetParam().name) != "Xml");
    }
};

TEST_P(Allocation, NoneInWritingToBuffersOfAnySize)
{
    forEachClass(
        [](Subject& subject)
        {
            for (const unsigned int size : subject.places())
            {
                subject.write(size);
            }
        });
}

TEST_P(Allocation, NoneInWritingWhateverAStructureHolds)
{
    forEachClass(
        [](Subject& subject)
        {
            for (const char fill : {'\0', '\1', '\x5A', '\xFF'})
            {
                const std::vector<char> structure(8192, fill); // more than any has
                subject.message().setMsg(structure.data());
                subject.write(kAmple);
                subject.write(20);
            }
        });
    EXPECT_NE(takeLogLines(), 0U); // of counts that are too large
}

TEST_P(Allocation, NoneInReadingWhatWasWritten)
{
    forEachClass([](Subject& subject) { subject.read(subject.rendering()); });
    expectThatSomethingWasMissed(); // by the one class whose XML does not read back
}

TEST_P(Allocation, NoneInReadingWhatWasCut)
{
    forEachClass(
        [](Subject& subject)
        {
            for (const unsigned int size : subject.places())
            {
                subject.read(subject.rendering().substr(0, size));
            }
            expectThatSomethingWasMissed();
        });
}

TEST_P(Allocation, NoneInReadingWhatIsDamaged)
{
    forEachClass(
        [](Subject& subject)
        {
            for (const unsigned int place : subject.places())
            {
                for (const char byte : {'\0', '\1', ':', '9', '<', '\xFF'})
                {
                    std::string data = subject.rendering();
                    data[place] = byte;
                    subject.read(data);
                }
            }
            expectThatSomethingWasMissed();
        });
}

TEST_P(Allocation, NoneInWhatAStreamOfTheCallersDoes)
{
    forEachClass([](Subject& subject) { EXPECT_EQ(allocationsIn([&] { subject.writeThroughStreams(); }), 0U); });
}

INSTANTIATE_TEST_SUITE_P(, Allocation, testing::ValuesIn(kForms),
                         [](const auto& form) { return form.param.name; });

TEST(AllocationOutsideTheForms, NoneInWhatElseAMessageOffers)
{
    BciMsgRegistry::registerSupportedMsgClasses();
    for (const Content& content : kContents)
    {
        SCOPED_TRACE(content.className);
        std::string text = content.text;
        auto length = static_cast<unsigned int>(text.size() + 1);
        BciMessageBase* message = nullptr;
        ASSERT_TRUE(BciMessageBase::instantiateBciMsgFromText(text.data(), length, message));
        const std::vector<char> structure(8192);
        EXPECT_EQ(allocationsIn(
                      [&]
                      {
                          message->setMsg(structure.data());
                          EXPECT_NE(message->getMsg(), nullptr);
                          EXPECT_EQ(message->getSigNo(), 0U);
                          EXPECT_EQ(message->getAddressInfo().clientRef, 0);
                          EXPECT_NE(message->getMaxTextBufferSize(), 0U);
                          EXPECT_NE(message->getMaxBinaryBufferSize(), 0U);
                          EXPECT_EQ(message->getDelim(), ':');
                          delete message;
                      }),
                  0U);
    }
}

TEST(AllocationOutsideTheForms, NoneInAskingTheRegistry)
{
    BciMsgRegistry::registerSupportedMsgClasses();
    EXPECT_EQ(allocationsIn(
                  []
                  {
                      BciMessageBase* message = nullptr;
                      EXPECT_TRUE(BciMessageBase::isMsgClassRegistered(BCI_AUDIT_CFM));
                      EXPECT_FALSE(BciMessageBase::isMsgClassRegistered(1));
                      EXPECT_FALSE(BciMessageBase::instantiateBciMsg(1, message));
                      BciMsgRegistry::registerSupportedMsgClasses();
                  }),
              0U);
    EXPECT_EQ(takeLogLines(), 1U);
}

TEST(AllocationOutsideTheForms, NoneInLookingATagUp)
{
    EXPECT_EQ(allocationsIn(
                  []
                  {
                      char content[424];
                      int offset = 0;
                      EXPECT_TRUE(getTagContents("<a>1</a>", "a", content, offset));
                      EXPECT_FALSE(getTagContents("<a>1</a>", "b", content, sizeof content, offset));
                  }),
              0U);
}

TEST(AllocationOutsideTheForms, NoneInInsertingSubscriptsForWhichTheTextHasRoom)
{
    std::string name = "snid__";
    name.reserve(64);
    EXPECT_EQ(allocationsIn([&] { insertArraySubscripts(name, 1, 0, "1", "3"); }), 0U);
    EXPECT_EQ(name, "snid_1_3");
}

void* volatile block = nullptr;

TEST(Heap, SeesEveryKindOfAllocation)
{
    struct Kind
    {
        const char* name;
        void* (*take)();
        void (*giveBack)(void*);
    };
    static constexpr std::align_val_t kAlignment{64};
    const auto giveBackNew = [](void* taken) { ::operator delete(taken); };
    const Kind kinds[] = {
        {"malloc", [] { return std::malloc(7); }, std::free},
        {"calloc", [] { return std::calloc(7, 3); }, std::free},
        {"realloc", [] { return std::realloc(nullptr, 7); }, std::free},
        {"aligned_alloc", [] { return std::aligned_alloc(64, 64); }, std::free},
        {"posix_memalign",
         []
         {
             void* taken = nullptr;
             EXPECT_EQ(posix_memalign(&taken, 64, 7), 0);
             return taken;
         },
         std::free},
        {"strdup", [] { return static_cast<void*>(strdup("seven")); }, std::free},
        {"new", [] { return ::operator new(7); }, giveBackNew},
        {"new that does not throw", [] { return ::operator new(7, std::nothrow); }, giveBackNew},
        {"new[]", [] { return ::operator new[](7); }, [](void* taken) { ::operator delete[](taken); }},
        {"aligned new", [] { return ::operator new(7, kAlignment); },
         [](void* taken) { ::operator delete(taken, kAlignment); }},
    };
    for (const Kind& kind : kinds)
    {
        EXPECT_EQ(allocationsIn([&] { block = kind.take(); }), 1) << kind.name;
        EXPECT_EQ(allocationsIn([&] { kind.giveBack(block); }), 0) << kind.name;
    }
}

TEST(Heap, SeesThoseOfTheLibrary)
{
    // The message, and its block.
    EXPECT_EQ(allocationsIn([] { block = BciLoadLmcData::instantiateBciMsg(BCI_LOAD_LMC_DATA); }), 2);
    delete static_cast<BciMessageBase*>(static_cast<void*>(block));
}

} // namespace
