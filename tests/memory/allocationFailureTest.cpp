// Each allocation of the library finds no memory once: what an operation then says, leaves behind and gives back.

#include "bciAuditMsg.h"
#include "bciCapabilityMsg.h"
#include "bciLoadLmcMsg.h"
#include "bciMessage.h"
#include "bciMsgRegistration.h"
#include "contents.h"
#include "heap.h"
#include "logLines.h"

#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <new>
#include <ostream>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace
{

// Lets an allocation find no memory while it lives.
class Shortage
{
public:
    explicit Shortage(unsigned long number)
    {
        failAllocation(number);
    }

    ~Shortage()
    {
        failAllocation(0);
    }

    Shortage(const Shortage&) = delete;
    Shortage& operator=(const Shortage&) = delete;
};

// Those of a class's factory.
unsigned long allocationsOf(std::string_view className)
{
    return className == "BciCapabilityCfmMsg" || className == "BciLoadLmcData" ? 2 : 1;
}

struct Form
{
    const char* name;
    bool (BciMessageBase::*write)(char*, unsigned int&) const;
    bool (*instantiate)(char*, unsigned int&, BciMessageBase*&);
};

void PrintTo(const Form& form, std::ostream* out)
{
    *out << form.name;
}

constexpr Form kForms[] = {
    {"Text", &BciMessageBase::serializeToText, &BciMessageBase::instantiateBciMsgFromText},
    {"Binary", &BciMessageBase::serializeToBinary, &BciMessageBase::instantiateBciMsgFromBinary},
    {"Xml", &BciMessageBase::serializeToXml, &BciMessageBase::instantiateBciMsgFromXml},
};

// A rendering of a content, with zeros behind it.
std::vector<char> render(const Content& content, const Form& form)
{
    std::string text = content.text;
    auto length = static_cast<unsigned int>(text.size() + 1);
    BciMessageBase* message = nullptr;
    EXPECT_TRUE(BciMessageBase::instantiateBciMsgFromText(text.data(), length, message));
    const std::unique_ptr<BciMessageBase> owned(message);
    std::vector<char> rendering(20000);
    length = static_cast<unsigned int>(rendering.size());
    EXPECT_TRUE((message->*form.write)(rendering.data(), length));
    return rendering;
}

class OutOfMemory : public testing::TestWithParam<Form>
{
protected:
    OutOfMemory()
    {
        BciMsgRegistry::registerSupportedMsgClasses();
        takeLogLines();
    }
};

TEST_P(OutOfMemory, MakesNoMessageFromARendering)
{
    for (const Content& content : kContents)
    {
        std::vector<char> rendering = render(content, GetParam());
        takeLogLines();
        for (unsigned long number = 1; number <= allocationsOf(content.className); ++number)
        {
            SCOPED_TRACE(std::string(content.className) + ", allocation " + std::to_string(number));
            BciMessageBase* message = nullptr;
            unsigned int length = 20000;
            const unsigned long held = blocksHeld();
            bool result = true;
            {
                const Shortage shortage(number);
                result = GetParam().instantiate(rendering.data(), length, message);
            }
            EXPECT_EQ(blocksHeld(), held);
            EXPECT_FALSE(result);
            EXPECT_EQ(message, nullptr);
            EXPECT_EQ(length, 20000U);
            EXPECT_EQ(takeLogLines(), 1U);
            EXPECT_STREQ(lastLogLine(), "[src/bciMessage:98] msgPtr is null");
        }
    }
}

TEST_P(OutOfMemory, IsForgottenWhenThereIsMemoryAgain)
{
    for (const Content& content : kContents)
    {
        SCOPED_TRACE(content.className);
        std::vector<char> rendering = render(content, GetParam());
        BciMessageBase* message = nullptr;
        unsigned int length = 20000;
        {
            const Shortage shortage(1);
            EXPECT_FALSE(GetParam().instantiate(rendering.data(), length, message));
        }
        takeLogLines();
        const unsigned long held = blocksHeld();
        GetParam().instantiate(rendering.data(), length, message);
        ASSERT_NE(message, nullptr);
        EXPECT_EQ(blocksHeld(), held + allocationsOf(content.className));
        delete message;
        EXPECT_EQ(blocksHeld(), held);
        takeLogLines();
    }
}

INSTANTIATE_TEST_SUITE_P(, OutOfMemory, testing::ValuesIn(kForms),
                         [](const auto& form) { return form.param.name; });

class Registry : public testing::Test
{
protected:
    Registry()
    {
        BciMessageBase::s_bciRegistrationMap.clear();
    }

    ~Registry() override
    {
        BciMessageBase::s_bciRegistrationMap.clear();
    }
};

TEST_F(Registry, MakesNoMessageWithoutMemoryForIt)
{
    BciMsgRegistry::registerSupportedMsgClasses();
    EXPECT_EQ(BciMessageBase::s_bciRegistrationMap.size(), 66U);
    for (const auto& [sigNo, factory] : BciMessageBase::s_bciRegistrationMap)
    {
        unsigned long allocations = 0;
        BciMessageBase* message = nullptr;
        for (bool made = false; !made;)
        {
            ++allocations;
            ASSERT_LE(allocations, 3U);
            const unsigned long held = blocksHeld();
            {
                const Shortage shortage(allocations);
                made = BciMessageBase::instantiateBciMsg(sigNo, message);
            }
            if (!made)
            {
                EXPECT_EQ(blocksHeld(), held);
                EXPECT_EQ(message, nullptr);
                EXPECT_EQ(takeLogLines(), 1U);
                EXPECT_STREQ(lastLogLine(), "[src/bciMessage:98] msgPtr is null");
            }
        }
        EXPECT_EQ(takeLogLines(), 0U);
        const bool onHeap = sigNo == BCI_GET_CAPABILITIES_CFM || sigNo == BCI_LOAD_LMC_DATA;
        EXPECT_EQ(allocations, onHeap ? 3U : 2U) << sigNo;
        delete message;
    }
}

// The factories take it back.
TEST(OwnMessage, HasNoStructureWithoutMemoryForIt)
{
    const unsigned long held = blocksHeld();
    {
        const Shortage shortage(1);
        const BciCapabilityCfmMsg capabilities(BCI_GET_CAPABILITIES_CFM);
        EXPECT_EQ(capabilities.getMsg(), nullptr);
    }
    {
        const Shortage shortage(1);
        const BciLoadLmcData data(BCI_LOAD_LMC_DATA);
        EXPECT_EQ(data.getMsg(), nullptr);
    }
    EXPECT_EQ(blocksHeld(), held);
}

BciMessageBase* noMessage(SIGSELECT /*sigNo*/)
{
    return nullptr;
}

TEST_F(Registry, TakesOneNodeForEachNumber)
{
    EXPECT_EQ(allocationsIn([] { BciMessageBase::registerBciMsgClass(1, &noMessage); }), 1U);
    EXPECT_EQ(allocationsIn([] { BciMessageBase::registerBciMsgClass(1, &noMessage); }), 0U);
    EXPECT_EQ(allocationsIn([] { BciMsgRegistry::registerSupportedMsgClasses(); }), 66U);
    EXPECT_EQ(allocationsIn([] { BciMsgRegistry::registerSupportedMsgClasses(); }), 0U);
}

// The library carries no unwind tables on the target, so there the exception ends the program. On ARM it has none
// either, but the operator is not in the exception's way: it jumps to the global one.
#ifdef __powerpc__

TEST(OwnMessage, EndsTheProgramWithoutMemoryForIt)
{
    EXPECT_EXIT(
        {
            failAllocation(1);
            try
            {
                delete new BciAuditCfm(BCI_AUDIT_CFM);
            }
            catch (const std::bad_alloc&)
            {
                _exit(0);
            }
        },
        testing::KilledBySignal(SIGABRT), "");
}

#else

TEST(OwnMessage, LetsTheExceptionOutWithoutMemoryForIt)
{
    const unsigned long held = blocksHeld();
    const auto makeOne = [] { delete new BciAuditCfm(BCI_AUDIT_CFM); };
    {
        const Shortage shortage(1);
        EXPECT_THROW(makeOne(), std::bad_alloc);
    }
    EXPECT_EQ(blocksHeld(), held);
}

#endif

// Nothing can be said of it in a result that is always true. Without unwind tables the exception ends the program;
// with them it leaves the library.
#if defined(__powerpc__) || defined(__arm__)

TEST(ArraySubscripts, EndTheProgramWithoutMemoryForTheName)
{
    EXPECT_EXIT(
        {
            std::string name = "abcdefghijk__";
            failAllocation(1);
            insertArraySubscripts(name, 1, 0, "12", "34");
        },
        testing::KilledBySignal(SIGABRT), "");
}

TEST_F(Registry, EndsTheProgramWithoutMemoryForANode)
{
    EXPECT_EXIT(
        {
            failAllocation(1);
            BciMessageBase::registerBciMsgClass(1, &noMessage);
        },
        testing::KilledBySignal(SIGABRT), "");
}

#else

// The name keeps what was inserted before.
TEST(ArraySubscripts, LetTheExceptionOutWithoutMemoryForTheName)
{
    const unsigned long held = blocksHeld();
    {
        std::string name = "abcdefghijk__"; // with one subscript it still fits into what a string holds by itself
        {
            const Shortage shortage(1);
            EXPECT_THROW(insertArraySubscripts(name, 1, 0, "12", "34"), std::bad_alloc);
        }
        EXPECT_EQ(name, "abcdefghijk_12_");
        name = "abcdefghijklm__";
        {
            const Shortage shortage(1);
            EXPECT_THROW(insertArraySubscripts(name, 1, 0, "12", "34"), std::bad_alloc);
        }
        EXPECT_EQ(name, "abcdefghijklm__");
    }
    EXPECT_EQ(blocksHeld(), held);
}

TEST_F(Registry, LetsTheExceptionOutWithoutMemoryForANode)
{
    const unsigned long held = blocksHeld();
    const auto registerOne = [] { BciMessageBase::registerBciMsgClass(1, &noMessage); };
    {
        const Shortage shortage(1);
        EXPECT_THROW(registerOne(), std::bad_alloc);
    }
    EXPECT_EQ(blocksHeld(), held);
    EXPECT_FALSE(BciMessageBase::isMsgClassRegistered(1));
    registerOne();
    EXPECT_TRUE(BciMessageBase::isMsgClassRegistered(1));
}

TEST_F(Registry, KeepsWhatItHasWhereMemoryEndsOnTheWay)
{
    for (unsigned long number = 1; number <= 66; ++number)
    {
        BciMessageBase::s_bciRegistrationMap.clear();
        {
            const Shortage shortage(number);
            EXPECT_THROW(BciMsgRegistry::registerSupportedMsgClasses(), std::bad_alloc);
        }
        EXPECT_EQ(BciMessageBase::s_bciRegistrationMap.size(), number - 1);
        BciMsgRegistry::registerSupportedMsgClasses();
        EXPECT_EQ(BciMessageBase::s_bciRegistrationMap.size(), 66U);
    }
}

#endif

} // namespace
