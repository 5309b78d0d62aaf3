#include "contents.h"

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

#include <algorithm>
#include <cstring>
#include <string_view>

namespace bench
{

namespace
{

constexpr VornNodeCommonAddressInfoS kReferences = {1, 2};
constexpr std::string_view kLoadModule = "radio_control_r7b04";

template <std::size_t N>
void setText(U8 (&to)[N], std::string_view text)
{
    std::memcpy(to, text.data(), std::min(text.size(), N - 1));
}

VornConstRejectCauseS rejectCause()
{
    VornConstRejectCauseS cause = {};
    cause.errorCode = 17;
    setText(cause.errorDescription, "The board is not in a state in which this request can be carried out");
    return cause;
}

} // namespace

void fill(GenericMsgS& message)
{
    message.sigNo = BCI_AUDIT_REQ;
    message.addressInfo = kReferences;
}

void fill(GenericRejMsgS& message)
{
    message.sigNo = BCI_SET_VISUAL_INDICATION_REJ;
    message.addressInfo = kReferences;
    message.cause = rejectCause();
}

void fill(VornBcConnEstablishReqS& message)
{
    message.sigNo = BCI_CONN_EST_REQ;
    message.addressInfo = kReferences;
    message.protocolRev = 4;
}

void fill(VornBcConnEstablishRejS& message)
{
    message.sigNo = BCI_CONN_EST_REJ;
    message.addressInfo = kReferences;
    message.supportedProtocolRev = 3;
    message.rejectCause = rejectCause();
}

void fill(CapabilityCfm& message)
{
    message.sigNo = BCI_GET_CAPABILITIES_CFM;
    message.addressInfo = kReferences;
    message.numberOfBoardCapabilities = 2;

    VornBcBoardCapabilityS& loading = message.boardCapabilities[0];
    loading.boardCapabilityIdentity = 1;
    loading.boardCapabilityLength = sizeof(VornBcLoadingSupportS);
    loading.capability.boardLoading = {
        .loadable = 1, .flash = 1, .fileSystemAccess = 0, .padding0 = 0, .blockSize = 4096};

    VornBcBoardCapabilityS& ethernet = message.boardCapabilities[1];
    ethernet.boardCapabilityIdentity = 4;
    ethernet.boardCapabilityLength = sizeof(VornBcEthTermSupportS);
    ethernet.capability.boardEthTerm.numOfEthTermHosts = 2;
    ethernet.capability.boardEthTerm.ethTermHostParam[0] = {.snid = 10, .termRole = 1};
    ethernet.capability.boardEthTerm.ethTermHostParam[1] = {.snid = 20, .termRole = 2};
}

void fillInterfaceAndClimate(CapabilityCfm& message, unsigned int entries)
{
    message.sigNo = BCI_GET_CAPABILITIES_CFM;
    message.addressInfo = kReferences;
    message.numberOfBoardCapabilities = 2;

    VornBcBoardCapabilityS& ethernet = message.boardCapabilities[0];
    ethernet.boardCapabilityIdentity = 5;
    ethernet.boardCapabilityLength = sizeof(VornBcEthHwIfSupportS);
    VornBcEthHwIfSupportS& interface = ethernet.capability.boardEthHwIf;
    interface.localSwitchPortNr = 12;
    interface.numOfEthLinks = static_cast<U16>(entries);

    VornBcBoardCapabilityS& cooling = message.boardCapabilities[1];
    cooling.boardCapabilityIdentity = 6;
    cooling.boardCapabilityLength = sizeof(VornBcClimateControlSupportS);
    VornBcClimateControlSupportS& climate = cooling.capability.boardClimate;
    climate.numOfHotspotTempSensors = static_cast<U16>(entries);

    for (unsigned int i = 0; i < entries; ++i)
    {
        interface.ethLinkParam[i].portNr = 100 + i;
        interface.ethLinkParam[i].snid = static_cast<U16>(20 + i);
        interface.ethLinkParam[i].bandWidth = 10;
        interface.ethLinkParam[i].direction = static_cast<U8>(i % 3);
        climate.hotspotParamList[i].setPoint = static_cast<S16>(65 + 5 * i);
        climate.hotspotParamList[i].coolingGain = static_cast<S16>(-12 - static_cast<int>(i));
        climate.hotspotParamList[i].timeConstant = static_cast<U16>(300 + 60 * i);
    }
}

void fill(VornBcFaultIndS& message)
{
    message.sigNo = BCI_FAULT_IND;
    message.addressInfo = kReferences;
    message.faultId = 1043;
    setText(message.faultDescription, "Temperature of the power amplifier above its limit");
    message.additionalDataLength = 3;
    message.additionalData[0] = 87;
    message.additionalData[1] = 85;
    message.additionalData[2] = 4;
    message.faultCase = 2;
}

void fill(VornBcFaultceaseIndS& message)
{
    message.sigNo = BCI_FAULT_CEASE_IND;
    message.addressInfo = kReferences;
    message.faultId = 1043;
    message.additionalDataLength = 3;
    message.additionalData[0] = 79;
    message.additionalData[1] = 85;
    message.additionalData[2] = 4;
    message.faultCase = 2;
}

void fill(VornBcGetHwPidCfmS& message)
{
    message.sigNo = BCI_GET_HW_PID_CFM;
    message.addressInfo = kReferences;
    setText(message.productionDate, "20090417");
    setText(message.productName, "RADIO UNIT 2");
    setText(message.productNumber, "ABC 118 71/2");
    setText(message.productRevision, "R2C");
    setText(message.serialNumber, "A8B0042917");
}

void fill(VornBcHwLogGetReqS& message)
{
    message.sigNo = BCI_HW_LOG_GET_REQ;
    message.addressInfo = kReferences;
    message.logId = 3;
}

void fillLog(VornBcHwLogSetReqS& message, unsigned int entries)
{
    message.sigNo = BCI_HW_LOG_SET_REQ;
    message.addressInfo = kReferences;
    setText(message.dateTime, "091104143000");
    message.logId = 3;
    message.length = entries;
    const unsigned int stride = unsigned{sizeof message.hwLogData} / entries;
    for (unsigned int i = 0; i < entries; ++i)
    {
        for (unsigned int j = 0; j + 1 < stride; ++j)
        {
            message.hwLogData[i * stride + j] = static_cast<U8>('a' + (i + j) % 26);
        }
    }
}

void fill(VornBcHwLogSetReqS& message)
{
    fillLog(message, 8);
}

void fill(VornBcHwLogGetCfmS& message)
{
    message.sigNo = BCI_HW_LOG_GET_CFM;
    message.addressInfo = kReferences;
    message.length = 1;
    setText(message.hwLogData, "2009-11-04 14.30 board restarted after loss of its clock");
}

void fill(VornBcLoadLmcInitReqS& message)
{
    message.sigNo = BCI_LOAD_LMC_INIT_REQ;
    message.addressInfo = kReferences;
    setText(message.loadModule, kLoadModule);
}

void fill(VornBcLoadLmcInitCfmS& message)
{
    message.sigNo = BCI_LOAD_LMC_INIT_CFM;
    message.addressInfo = kReferences;
    message.loadInitResult = 1;
}

void fill(VornBcSelectLmcReqS& message)
{
    message.sigNo = BCI_SELECT_LMC_REQ;
    message.addressInfo = kReferences;
    setText(message.loadModule, kLoadModule);
}

void fill(VornBcLoadLmcReqS& message)
{
    message.sigNo = BCI_LOAD_LMC_REQ;
    message.addressInfo = kReferences;
    setText(message.loadModule, kLoadModule);
    setText(message.searchPath, "/c/loadmodules/radio;/d/loadmodules/radio;/d/loadmodules/backup");
}

void fill(VornBcLoadLmcAckS& message)
{
    message.sigNo = BCI_LOAD_LMC_ACK;
    message.addressInfo = kReferences;
    message.lmSeqNr = 217;
}

void fill(VornBcLoadLmcEndCfmS& message)
{
    message.sigNo = BCI_LOAD_LMC_END_CFM;
    message.addressInfo = kReferences;
    message.loadResult = 1;
}

void fillBlock(LoadLmcData& message, unsigned int size)
{
    message.sigNo = BCI_LOAD_LMC_DATA;
    message.addressInfo = kReferences;
    message.lmSeqNr = 218;
    message.lmBlockSize = size;
    U8 byte = 1;
    for (unsigned int i = 0; i < size; ++i)
    {
        byte = static_cast<U8>(byte * 5 + 3);
        message.lmBlock[i] = byte == 0 || byte == ':' || byte == '<' ? U8{0xA5} : byte;
    }
}

void fill(LoadLmcData& message)
{
    fillBlock(message, 1024);
}

void fill(VornBcSetMaintStateReqS& message)
{
    message.sigNo = BCI_SET_MAINT_STATE_REQ;
    message.addressInfo = kReferences;
    message.maintState = 2;
}

void fill(VornBcMaintStateIndS& message)
{
    message.sigNo = BCI_MAINT_STATE_IND;
    message.addressInfo = kReferences;
    message.maintState = 2;
}

void fill(VornBcSelectMmiReqS& message)
{
    message.sigNo = BCI_SELECT_MMI_REQ;
    message.addressInfo = kReferences;
    message.mmiState = 1;
}

void fill(VornBcTempMeasStartReqS& message)
{
    message.sigNo = BCI_TEMP_MEAS_START_REQ;
    message.addressInfo = kReferences;
    message.hotSpotMeasurementPeriod = 30;
}

void fill(VornBcSetUtcTimeReqS& message)
{
    message.sigNo = BCI_SET_UTC_TIME_REQ;
    message.addressInfo = kReferences;
    message.dateTime = 1257345000;
}

void fill(VornBcSetVisualIndicationReqS& message)
{
    message.sigNo = BCI_SET_VISUAL_INDICATION_REQ;
    message.addressInfo = kReferences;
    message.visualizedState = 3;
}

void fill(VornBcGetVisualIndicationCfmS& message)
{
    message.sigNo = BCI_GET_VISUAL_INDICATION_CFM;
    message.addressInfo = kReferences;
    message.ledInfo = {
        .visualStateRedLed = 1, .visualStateGreenLed = 3, .visualStateYellowLed = 2, .visualStateBlueLed = 1};
}

void fill(VornBcRestartBoardFwdS& message)
{
    message.sigNo = BCI_RESTART_BOARD_FWD;
    message.addressInfo = kReferences;
    setText(message.traceInformation, "Restart ordered by the operator after a change of the load module");
}

void fill(VornBcAuditCfmS& message)
{
    message.sigNo = BCI_AUDIT_CFM;
    message.addressInfo = kReferences;
    message.mainState = 3;
}

namespace
{

template <typename Message, typename Wire>
std::unique_ptr<BciMessageBase> filled()
{
    Wire wire = {};
    fill(wire);
    return messageOf<Message>(wire);
}

std::unique_ptr<BciMessageBase> fullCapability()
{
    CapabilityCfm wire = {};
    fillInterfaceAndClimate(wire, 10);
    return messageOf<BciCapabilityCfmMsg>(wire);
}

template <typename Message, typename Wire>
std::unique_ptr<BciMessageBase> empty()
{
    return messageOf<Message>(Wire{});
}

template <typename Message, typename Wire>
constexpr Content content(const char* name)
{
    return {name, filled<Message, Wire>, empty<Message, Wire>};
}

constexpr Content kContents[] = {
    content<BciAuditCfm, VornBcAuditCfmS>("BciAuditCfm"),
    content<BciCapabilityCfmMsg, CapabilityCfm>("BciCapabilityCfmMsg"),
    {kFullCapability, fullCapability, empty<BciCapabilityCfmMsg, CapabilityCfm>},
    content<BciConnEstRej, VornBcConnEstablishRejS>("BciConnEstRej"),
    content<BciConnEstReq, VornBcConnEstablishReqS>("BciConnEstReq"),
    content<BciFaultCeaseIndication, VornBcFaultceaseIndS>("BciFaultCeaseIndication"),
    content<BciFaultIndication, VornBcFaultIndS>("BciFaultIndication"),
    content<BciGenericMsg, GenericMsgS>("BciGenericMsg"),
    content<BciGenericRejMsg, GenericRejMsgS>("BciGenericRejMsg"),
    content<BciGetHwPidCfmMsg, VornBcGetHwPidCfmS>("BciGetHwPidCfmMsg"),
    content<BciGetVisualIndicationCfm, VornBcGetVisualIndicationCfmS>("BciGetVisualIndicationCfm"),
    content<BciHwLogGetCfmMsg, VornBcHwLogGetCfmS>("BciHwLogGetCfmMsg"),
    content<BciHwLogGetReqMsg, VornBcHwLogGetReqS>("BciHwLogGetReqMsg"),
    content<BciHwLogSetReqMsg, VornBcHwLogSetReqS>("BciHwLogSetReqMsg"),
    content<BciLoadLmcAck, VornBcLoadLmcAckS>("BciLoadLmcAck"),
    content<BciLoadLmcData, LoadLmcData>("BciLoadLmcData"),
    content<BciLoadLmcEndCfm, VornBcLoadLmcEndCfmS>("BciLoadLmcEndCfm"),
    content<BciLoadLmcInitCfm, VornBcLoadLmcInitCfmS>("BciLoadLmcInitCfm"),
    content<BciLoadLmcInitReq, VornBcLoadLmcInitReqS>("BciLoadLmcInitReq"),
    content<BciLoadLmcReq, VornBcLoadLmcReqS>("BciLoadLmcReq"),
    content<BciMaintStateInd, VornBcMaintStateIndS>("BciMaintStateInd"),
    content<BciRestartBoardFwdMsg, VornBcRestartBoardFwdS>("BciRestartBoardFwdMsg"),
    content<BciSelectLmcReq, VornBcSelectLmcReqS>("BciSelectLmcReq"),
    content<BciSelectMmiReq, VornBcSelectMmiReqS>("BciSelectMmiReq"),
    content<BciSetMaintStateReq, VornBcSetMaintStateReqS>("BciSetMaintStateReq"),
    content<BciSetUtcTimeReq, VornBcSetUtcTimeReqS>("BciSetUtcTimeReq"),
    content<BciSetVisualIndicationReq, VornBcSetVisualIndicationReqS>("BciSetVisualIndicationReq"),
    content<BciTempMeasStartReq, VornBcTempMeasStartReqS>("BciTempMeasStartReq"),
};

} // namespace

std::span<const Content> contents()
{
    return kContents;
}

} // namespace bench
