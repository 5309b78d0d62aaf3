// The registration of all signals: which number makes a message of which class. The classes are told apart by
// their factories, the sizes they state, what they write for fields that are zero, and what they log for an
// element that is missing.

#include "bciAuditMsg.h"
#include "bciCapabilityMsg.h"
#include "bciCommonMsg.h"
#include "bciConnEstablishMsg.h"
#include "bciFaultMsg.h"
#include "bciHwMsg.h"
#include "bciLoadLmcInitMsg.h"
#include "bciLoadLmcMsg.h"
#include "bciMaintStateMsg.h"
#include "bciMmiMsg.h"
#include "bciMsgRegistration.h"
#include "bciRestartBoardMsg.h"
#include "bciTempMeasMsg.h"
#include "bciUtcTimeMsg.h"
#include "bciVisualIndicationMsg.h"
#include "logCapture.h"
#include "messageKit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <utility>

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

using Registry = std::map<SIGSELECT, BciMsgFactory>;

struct MessageClass
{
    BciMsgFactory factory;
    std::size_t structure; // its size, which is what setMsg() copies
    unsigned int maxText;
    unsigned int maxBinary;   // with fields that are zero
    std::size_t binary;       // bytes of the binary form of these
    const char* text;         // the text form of these, behind the header
    std::size_t readFromText; // characters of it that are read where a zero follows
    const char* noClientRef;  // where the element is missing: what is logged between "[src/" and " %s not found"
};

const MessageClass kClasses[] = {
    {&BciAuditCfm::instantiateBciMsg, 16, 42, 16, 14, "0:", 2, "bciAuditMsg:105] tag tag"},
    // An empty list has one delimiter more, which is left unread.
    {&BciCapabilityCfmMsg::instantiateBciMsg, 192, 332, 16, 16, "0:0::", 4, "bciCapabilityMsg:865] tag"},
    {&BciConnEstRej::instantiateBciMsg, 132, 505, 132, 132, "0:0:0:0::0:", 11, "bciConnEstablishMsg:252] tag"},
    {&BciConnEstReq::instantiateBciMsg, 16, 41, 16, 14, "0:", 2, "bciConnEstablishMsg:103] tag"},
    // A fault without additional data has one delimiter more, which ends reading.
    {&BciFaultCeaseIndication::instantiateBciMsg, 28, 77, 28, 26, "0:0::0:", 4, "bciFaultMsg:522] tag"},
    {&BciFaultIndication::instantiateBciMsg, 144, 644, 144, 142, "0:0::0:0:0::0:", 11, "bciFaultMsg:251] tag"},
    {&BciGenericMsg::instantiateBciMsg, 12, 35, 12, 12, "", 0, "bciCommonMsg:106] tag"},
    {&BciGenericRejMsg::instantiateBciMsg, 128, 493, 128, 128, "0:0::0:", 7, "bciCommonMsg:236] tag"},
    {&BciGetHwPidCfmMsg::instantiateBciMsg, 92, 339, 92, 90, ":0:0::0:0::0:0::0:0::", 21, "bciHwMsg:275] tag"},
    {&BciGetVisualIndicationCfm::instantiateBciMsg, 20, 59, 20, 20, "0:0:0:0:", 8,
     "bciVisualIndicationMsg:230] tag"},
    {&BciHwLogGetCfmMsg::instantiateBciMsg, 440, 1742, 440, 440, "0::", 3, "bciHwMsg:878] tag"},
    {&BciHwLogGetReqMsg::instantiateBciMsg, 16, 46, 16, 16, "0:", 2, "bciHwMsg:459] tag"},
    // Behind the last delimiter one character more is read.
    {&BciHwLogSetReqMsg::instantiateBciMsg, 460, 1815, 460, 460, ":0:0:0:", 8, "bciHwMsg:674] tag"},
    {&BciLoadLmcAck::instantiateBciMsg, 16, 41, 16, 14, "0:", 2, "bciLoadLmcMsg:232] tag"},
    {&BciLoadLmcData::instantiateBciMsg, 4120, 1000, 23, 20, "0:0:0::", 7, "bciLoadLmcMsg:588] tag"},
    {&BciLoadLmcEndCfm::instantiateBciMsg, 16, 41, 16, 14, "0:", 2, "bciLoadLmcMsg:335] tag"},
    {&BciLoadLmcInitCfm::instantiateBciMsg, 16, 41, 16, 14, "0:", 2, "bciLoadLmcInitMsg:211] tag"},
    {&BciLoadLmcInitReq::instantiateBciMsg, 48, 215, 48, 48, ":", 1, "bciLoadLmcInitMsg:108] tag"},
    {&BciLoadLmcReq::instantiateBciMsg, 248, 979, 248, 248, "::", 2, "bciLoadLmcMsg:122] tag"},
    {&BciMaintStateInd::instantiateBciMsg, 16, 46, 16, 16, "0:", 2, "bciMaintStateMsg:206] tag"},
    {&BciRestartBoardFwdMsg::instantiateBciMsg, 152, 587, 152, 150, ":", 1, "bciRestartBoardMsg:122] tag"},
    {&BciSelectLmcReq::instantiateBciMsg, 48, 215, 48, 48, ":", 1, "bciLoadLmcMsg:446] tag"},
    {&BciSelectMmiReq::instantiateBciMsg, 16, 46, 16, 16, "0:", 2, "bciMmiMsg:103] tag"},
    {&BciSetMaintStateReq::instantiateBciMsg, 16, 46, 16, 16, "0:", 2, "bciMaintStateMsg:103] tag"},
    {&BciSetUtcTimeReq::instantiateBciMsg, 16, 46, 16, 16, "0:", 2, "bciUtcTimeMsg:103] tag"},
    {&BciSetVisualIndicationReq::instantiateBciMsg, 16, 41, 16, 14, "0:", 2, "bciVisualIndicationMsg:103] tag"},
    {&BciTempMeasStartReq::instantiateBciMsg, 16, 39, 16, 13, "0:", 2, "bciTempMeasMsg:103] tag"},
};

const struct Signal
{
    SIGSELECT number;
    SIGSELECT name;
    BciMsgFactory factory;
} kSignals[] = {
    {0x1658000, BCI_CONN_EST_REQ, &BciConnEstReq::instantiateBciMsg},
    {0x1658001, BCI_CONN_EST_CFM, &BciGenericMsg::instantiateBciMsg},
    {0x1658002, BCI_CONN_EST_REJ, &BciConnEstRej::instantiateBciMsg},
    {0x1658003, BCI_RESTART_BOARD_FWD, &BciRestartBoardFwdMsg::instantiateBciMsg},
    {0x1658004, BCI_SET_VISUAL_INDICATION_REQ, &BciSetVisualIndicationReq::instantiateBciMsg},
    {0x1658005, BCI_SET_VISUAL_INDICATION_CFM, &BciGenericMsg::instantiateBciMsg},
    {0x1658006, BCI_SET_VISUAL_INDICATION_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {0x1658007, BCI_GET_CAPABILITIES_REQ, &BciGenericMsg::instantiateBciMsg},
    {0x1658008, BCI_GET_CAPABILITIES_CFM, &BciCapabilityCfmMsg::instantiateBciMsg},
    {0x1658009, BCI_GET_CAPABILITIES_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {0x165800A, BCI_BASIC_0A_REQ, &BciGenericMsg::instantiateBciMsg},
    {0x165800B, BCI_BASIC_0B_CFM, &BciGenericMsg::instantiateBciMsg},
    {0x165800C, BCI_BASIC_0C_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {0x165800D, BCI_FAULT_IND, &BciFaultIndication::instantiateBciMsg},
    {0x165800E, BCI_FAULT_CEASE_IND, &BciFaultCeaseIndication::instantiateBciMsg},
    {0x165800F, BCI_GET_VISUAL_INDICATION_REQ, &BciGenericMsg::instantiateBciMsg},
    {0x1658010, BCI_GET_VISUAL_INDICATION_CFM, &BciGetVisualIndicationCfm::instantiateBciMsg},
    {0x1658011, BCI_GET_VISUAL_INDICATION_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {0x1658012, BCI_SELECT_MMI_REQ, &BciSelectMmiReq::instantiateBciMsg},
    {0x1658013, BCI_SELECT_MMI_CFM, &BciGenericMsg::instantiateBciMsg},
    {0x1658014, BCI_SELECT_MMI_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {0x1658015, BCI_BASIC_15_REQ, &BciGenericMsg::instantiateBciMsg},
    {0x1658016, BCI_BASIC_16_CFM, &BciGenericMsg::instantiateBciMsg},
    {0x1658017, BCI_BASIC_17_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {0x1658018, BCI_MAINT_STATE_IND, &BciMaintStateInd::instantiateBciMsg},
    {0x1658019, BCI_SET_MAINT_STATE_REQ, &BciSetMaintStateReq::instantiateBciMsg},
    {0x165801A, BCI_SET_MAINT_STATE_CFM, &BciGenericMsg::instantiateBciMsg},
    {0x165801B, BCI_SET_MAINT_STATE_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {0x1658200, BCI_GET_HW_PID_REQ, &BciGenericMsg::instantiateBciMsg},
    {0x1658201, BCI_GET_HW_PID_CFM, &BciGetHwPidCfmMsg::instantiateBciMsg},
    {0x1658202, BCI_GET_HW_PID_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {0x1658400, BCI_AUDIT_REQ, &BciGenericMsg::instantiateBciMsg},
    {0x1658401, BCI_AUDIT_CFM, &BciAuditCfm::instantiateBciMsg},
    {0x1658402, BCI_AUDIT_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {0x1658403, BCI_STATE_03_REQ, &BciGenericMsg::instantiateBciMsg},
    {0x1658404, BCI_STATE_04_CFM, &BciGenericMsg::instantiateBciMsg},
    {0x1658405, BCI_STATE_05_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {0x1658406, BCI_STATE_06_REQ, &BciGenericMsg::instantiateBciMsg},
    {0x1658407, BCI_STATE_07_CFM, &BciGenericMsg::instantiateBciMsg},
    {0x1658408, BCI_STATE_08_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {0x1658800, BCI_LOAD_LMC_REQ, &BciLoadLmcReq::instantiateBciMsg},
    {0x1658801, BCI_LOAD_LMC_CFM, &BciGenericMsg::instantiateBciMsg},
    {0x1658802, BCI_LOAD_LMC_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {0x1658803, BCI_LOAD_LMC_INIT_REQ, &BciLoadLmcInitReq::instantiateBciMsg},
    {0x1658804, BCI_LOAD_LMC_INIT_CFM, &BciLoadLmcInitCfm::instantiateBciMsg},
    {0x1658805, BCI_LOAD_LMC_INIT_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {0x1658806, BCI_LOAD_LMC_DATA, &BciLoadLmcData::instantiateBciMsg},
    {0x1658807, BCI_LOAD_LMC_ACK, &BciLoadLmcAck::instantiateBciMsg},
    {0x1658808, BCI_LOAD_LMC_END_REQ, &BciGenericMsg::instantiateBciMsg},
    {0x1658809, BCI_LOAD_LMC_END_CFM, &BciLoadLmcEndCfm::instantiateBciMsg},
    {0x165880A, BCI_LOAD_LMC_END_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {0x165880B, BCI_SELECT_LMC_REQ, &BciSelectLmcReq::instantiateBciMsg},
    {0x165880C, BCI_SELECT_LMC_CFM, &BciGenericMsg::instantiateBciMsg},
    {0x165880D, BCI_SELECT_LMC_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {0x1659100, BCI_TEMP_MEAS_START_REQ, &BciTempMeasStartReq::instantiateBciMsg},
    {0x1659101, BCI_TEMP_MEAS_START_CFM, &BciGenericMsg::instantiateBciMsg},
    {0x1659102, BCI_TEMP_MEAS_START_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {0x165920A, BCI_HW_LOG_SET_REQ, &BciHwLogSetReqMsg::instantiateBciMsg},
    {0x165920B, BCI_HW_LOG_SET_CFM, &BciGenericMsg::instantiateBciMsg},
    {0x165920C, BCI_HW_LOG_SET_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {0x165920D, BCI_HW_LOG_GET_REQ, &BciHwLogGetReqMsg::instantiateBciMsg},
    {0x165920E, BCI_HW_LOG_GET_CFM, &BciHwLogGetCfmMsg::instantiateBciMsg},
    {0x165920F, BCI_HW_LOG_GET_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {0x1659500, BCI_SET_UTC_TIME_REQ, &BciSetUtcTimeReq::instantiateBciMsg},
    {0x1659501, BCI_SET_UTC_TIME_CFM, &BciGenericMsg::instantiateBciMsg},
    {0x1659502, BCI_SET_UTC_TIME_REJ, &BciGenericMsg::instantiateBciMsg},
};

// The neighbours of all blocks of numbers, and some far away.
const SIGSELECT kOtherNumbers[] = {0,         1,         0x1657FFF, 0x165801C, 0x16581FF,  0x1658203,
                                   0x16583FF, 0x1658409, 0x16587FF, 0x165880E, 0x16590FF,  0x1659103,
                                   0x1659209, 0x1659210, 0x16594FF, 0x1659503, 0x84650100, 4294967295U};

const Registry kRegisteredByLoading = BciMessageBase::s_bciRegistrationMap;

BciMessageBase* noMessage(SIGSELECT)
{
    return nullptr;
}

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

    // Takes a message from one of the factory entry points; null if the result is false.
    static std::unique_ptr<BciMessageBase> decode(bool (*entryPoint)(char*, unsigned int&, BciMessageBase*&),
                                                  std::string data, unsigned int& length)
    {
        BciMessageBase* message = nullptr;
        length = static_cast<unsigned int>(data.size());
        const bool result = entryPoint(data.data(), length, message);
        std::unique_ptr<BciMessageBase> owned(message);
        return result ? std::move(owned) : nullptr;
    }

    static void expectMessage(const Signal& signal, const BciMessageBase* message)
    {
        ASSERT_NE(message, nullptr);
        EXPECT_EQ(message->getSigNo(), signal.number);
        EXPECT_EQ(message->getAddressInfo().clientRef, 1);
        EXPECT_EQ(message->getAddressInfo().serverRef, -2);
    }

private:
    Registry m_saved;
};

const MessageClass& classOf(const Signal& signal)
{
    return *std::find_if(std::begin(kClasses), std::end(kClasses),
                         [&](const MessageClass& each) { return each.factory == signal.factory; });
}

std::string zeroText(const Signal& signal)
{
    return std::to_string(signal.number) + ":1:-2:" + classOf(signal).text;
}

std::string zeroBinary(const Signal& signal)
{
    return firstWord(signal.number) + bytes({0, 0, 0, 1, 0xFF, 0xFF, 0xFF, 0xFE}) +
           zeros(classOf(signal).binary - 12);
}

TEST_F(Registration, IsLeftToTheUser)
{
    unsigned int length = 0;
    for (const Signal& signal : kSignals)
    {
        SCOPED_TRACE(signal.number);
        EXPECT_EQ(kRegisteredByLoading.count(signal.number), 0U);
        EXPECT_FALSE(BciMessageBase::isMsgClassRegistered(signal.number));
        EXPECT_EQ(decode(BciMessageBase::instantiateBciMsgFromText, zeroText(signal), length), nullptr);
        EXPECT_EQ(decode(BciMessageBase::instantiateBciMsgFromBinary, zeroBinary(signal), length), nullptr);
        EXPECT_EQ(decode(BciMessageBase::instantiateBciMsgFromXml, element("sigNo", std::to_string(signal.number)),
                         length),
                  nullptr);
        const LogLine notFound{6, "[src/bciMessage:83] cannot find sigNo %u", {std::to_string(signal.number)}};
        EXPECT_EQ(takeLog(), (Log{notFound, notFound, notFound}));
    }
}

TEST_F(Registration, BindsEveryNumberToItsClassAndNoOther)
{
    Registry expected;
    for (const Signal& signal : kSignals)
    {
        EXPECT_EQ(signal.number, signal.name);
        expected.insert({signal.number, signal.factory});
    }
    BciMsgRegistry::registerSupportedMsgClasses();
    EXPECT_EQ(takeLog(), Log{});
    EXPECT_EQ(BciMessageBase::s_bciRegistrationMap, expected);
    EXPECT_EQ(BciMessageBase::s_bciRegistrationMap.size(), 66U);
    for (const SIGSELECT number : kOtherNumbers)
    {
        EXPECT_FALSE(BciMessageBase::isMsgClassRegistered(number)) << number;
    }
}

TEST_F(Registration, TwentySevenClassesServeTheNumbers)
{
    BciMsgRegistry::registerSupportedMsgClasses();
    std::map<BciMsgFactory, int> numbers;
    for (const auto& [number, factory] : BciMessageBase::s_bciRegistrationMap)
    {
        ++numbers[factory];
    }
    EXPECT_EQ(numbers.size(), 27U);
    EXPECT_EQ(numbers[&BciGenericMsg::instantiateBciMsg], 23);
    EXPECT_EQ(numbers[&BciGenericRejMsg::instantiateBciMsg], 18);
}

TEST_F(Registration, EveryNumberMakesAMessageOfItsClass)
{
    BciMsgRegistry::registerSupportedMsgClasses();
    for (const Signal& signal : kSignals)
    {
        SCOPED_TRACE(signal.number);
        const MessageClass& expected = classOf(signal);
        BciMessageBase* message = nullptr;
        ASSERT_TRUE(BciMessageBase::isMsgClassRegistered(signal.number));
        ASSERT_TRUE(BciMessageBase::instantiateBciMsg(signal.number, message));
        const std::unique_ptr<BciMessageBase> owned(message);

        // A structure that ends where its allocation ends.
        const std::unique_ptr<char[]> structure(new char[expected.structure]);
        for (const char filler : {'\x5A', '\0'})
        {
            std::memset(structure.get(), filler, expected.structure);
            message->setMsg(structure.get());
            EXPECT_EQ(structureOf(*message, expected.structure), std::string(expected.structure, filler));
        }
        const GenericMsgS header{signal.number, {1, -2}};
        std::memcpy(structure.get(), &header, sizeof header);
        message->setMsg(structure.get());

        expectMessage(signal, message);
        EXPECT_EQ(message->getMaxTextBufferSize(), expected.maxText);
        EXPECT_EQ(message->getMaxBinaryBufferSize(), expected.maxBinary);
        EXPECT_EQ(writeText(*message), (Written{true, zeroText(signal), 0}));
        EXPECT_EQ(writeBinary(*message), (Written{true, zeroBinary(signal), 0}));
    }
}

TEST_F(Registration, EveryNumberIsDecodedFromItsThreeForms)
{
    BciMsgRegistry::registerSupportedMsgClasses();
    for (const Signal& signal : kSignals)
    {
        SCOPED_TRACE(signal.number);
        const MessageClass& expected = classOf(signal);
        unsigned int length = 0;
        const auto fromText = decode(BciMessageBase::instantiateBciMsgFromText, zeroText(signal) + '\0', length);
        expectMessage(signal, fromText.get());
        EXPECT_EQ(length, std::strlen("23429120:1:-2:") + expected.readFromText);
        const auto fromBinary = decode(BciMessageBase::instantiateBciMsgFromBinary, zeroBinary(signal), length);
        expectMessage(signal, fromBinary.get());
        EXPECT_EQ(length, expected.binary);
        ASSERT_NE(fromBinary, nullptr);
        // One class closes its last element by another name than it opens it with.
        const std::string xml = writeXml(*fromBinary).bytes + "</lmSeqNr>";
        const auto fromXml = decode(BciMessageBase::instantiateBciMsgFromXml, xml, length);
        expectMessage(signal, fromXml.get());
        EXPECT_EQ(length, 0U);

        const std::string noClientRef = element("sigNo", std::to_string(signal.number));
        EXPECT_EQ(decode(BciMessageBase::instantiateBciMsgFromXml, noClientRef, length), nullptr);
        EXPECT_EQ(takeLog(),
                  (Log{{6, "[src/" + std::string(expected.noClientRef) + " %s not found", {"clientRef"}}}));
    }
}

TEST_F(Registration, ChangesNothingWhenRepeated)
{
    BciMsgRegistry::registerSupportedMsgClasses();
    const Registry once = BciMessageBase::s_bciRegistrationMap;
    BciMsgRegistry::registerSupportedMsgClasses();
    EXPECT_EQ(BciMessageBase::s_bciRegistrationMap, once);
    EXPECT_EQ(takeLog(), Log{});
}

TEST_F(Registration, LeavesTheUsersFactoriesInForce)
{
    BciMessageBase::registerBciMsgClass(1, &noMessage);
    for (const Signal& signal : kSignals)
    {
        BciMessageBase::registerBciMsgClass(signal.number, &noMessage);
    }
    const Registry before = BciMessageBase::s_bciRegistrationMap;
    BciMsgRegistry::registerSupportedMsgClasses();
    EXPECT_EQ(BciMessageBase::s_bciRegistrationMap, before);
    EXPECT_EQ(before.size(), 67U);

    BciMessageBase::s_bciRegistrationMap = {{BCI_AUDIT_CFM, &noMessage}};
    BciMsgRegistry::registerSupportedMsgClasses();
    EXPECT_EQ(BciMessageBase::s_bciRegistrationMap.size(), 66U);
    EXPECT_EQ(BciMessageBase::s_bciRegistrationMap.at(BCI_AUDIT_CFM), &noMessage) << "the first factory wins";
    EXPECT_EQ(BciMessageBase::s_bciRegistrationMap.at(BCI_AUDIT_REJ), &BciGenericRejMsg::instantiateBciMsg);
}

TEST_F(Registration, LogsAMessageThatCouldNotBeAllocated)
{
    BciMsgRegistry::registerSupportedMsgClasses();
    for (const Signal& signal : kSignals)
    {
        SCOPED_TRACE(signal.number);
        std::string text = zeroText(signal);
        auto length = static_cast<unsigned int>(text.size());
        BciAuditCfm other(BCI_AUDIT_CFM);
        BciMessageBase* message = &other;
        memoryIsShort = true;
        EXPECT_FALSE(BciMessageBase::instantiateBciMsg(signal.number, message));
        EXPECT_EQ(message, nullptr);
        message = &other;
        EXPECT_FALSE(BciMessageBase::instantiateBciMsgFromText(text.data(), length, message));
        memoryIsShort = false;
        EXPECT_EQ(message, nullptr);
        EXPECT_EQ(length, text.size());
        const LogLine isNull{6, "[src/bciMessage:98] msgPtr is null", {}};
        EXPECT_EQ(takeLog(), (Log{isNull, isNull}));
    }
}

} // namespace
