// The registration of all signals, and what happens where there is no memory for a message.

#include "bciAuditMsg.h"
#include "bciMsgRegistration.h"
#include "logCapture.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <new>
#include <string>

namespace
{

bool memoryIsShort;

} // namespace

// The allocation of messages; what is allocated so is freed as usual.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return memoryIsShort ? nullptr : ::operator new(size);
}

namespace
{

const bool registeredByLoading = BciMessageBase::isMsgClassRegistered(BCI_AUDIT_CFM);

class Registration : public testing::Test
{
protected:
    void SetUp() override
    {
        m_saved.swap(BciMessageBase::s_bciRegistrationMap);
    }

    void TearDown() override
    {
        memoryIsShort = false;
        m_saved.swap(BciMessageBase::s_bciRegistrationMap);
    }

private:
    std::map<SIGSELECT, BciMsgFactory> m_saved;
};

BciMessageBase* noMessage(SIGSELECT)
{
    return nullptr;
}

TEST_F(Registration, IsLeftToTheUser)
{
    EXPECT_FALSE(registeredByLoading);
}

TEST_F(Registration, BindsTheAuditConfirm)
{
    BciMsgRegistry::registerSupportedMsgClasses();
    ASSERT_TRUE(BciMessageBase::isMsgClassRegistered(0x1658401));
    BciMessageBase* message = nullptr;
    ASSERT_TRUE(BciMessageBase::instantiateBciMsg(0x1658401, message));
    const std::unique_ptr<BciMessageBase> owned(message);
    EXPECT_EQ(BciMessageBase::s_bciRegistrationMap.at(0x1658401), &BciAuditCfm::instantiateBciMsg);
    EXPECT_EQ(message->getMaxBinaryBufferSize(), 16U);
}

TEST_F(Registration, ChangesNothingWhenRepeated)
{
    BciMessageBase::registerBciMsgClass(BCI_AUDIT_CFM, &noMessage);
    BciMessageBase::registerBciMsgClass(1, &noMessage);
    BciMsgRegistry::registerSupportedMsgClasses();
    const auto once = BciMessageBase::s_bciRegistrationMap;
    EXPECT_EQ(once.at(BCI_AUDIT_CFM), &noMessage) << "the first factory wins";
    BciMsgRegistry::registerSupportedMsgClasses();
    EXPECT_EQ(BciMessageBase::s_bciRegistrationMap, once);
}

TEST_F(Registration, LogsAMessageThatCouldNotBeAllocated)
{
    BciMsgRegistry::registerSupportedMsgClasses();
    std::string text = "23430145:1:2:3:";
    unsigned int length = 15;
    BciAuditCfm other(BCI_AUDIT_CFM);
    BciMessageBase* message = &other;
    memoryIsShort = true;
    EXPECT_FALSE(BciMessageBase::instantiateBciMsgFromText(text.data(), length, message));
    memoryIsShort = false;
    EXPECT_EQ(message, nullptr);
    EXPECT_EQ(length, 15U);
    EXPECT_EQ(takeLog(), (Log{{6, "[src/bciMessage:98] msgPtr is null", {}}}));
}

} // namespace
