#include "bciMsgRegistration.h"

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
#include "bciRestartBoardMsg.h"
#include "bciTempMeasMsg.h"
#include "bciUtcTimeMsg.h"
#include "bciVisualIndicationMsg.h"

namespace
{

struct Registration
{
    SIGSELECT sigNo;
    BciMsgFactory factory;
};

// In the order of registration.
constexpr Registration kRegistrations[] = {
    {BCI_CONN_EST_REQ, &BciConnEstReq::instantiateBciMsg},
    {BCI_CONN_EST_CFM, &BciGenericMsg::instantiateBciMsg},
    {BCI_CONN_EST_REJ, &BciConnEstRej::instantiateBciMsg},
    {BCI_RESTART_BOARD_FWD, &BciRestartBoardFwdMsg::instantiateBciMsg},
    {BCI_SET_VISUAL_INDICATION_REQ, &BciSetVisualIndicationReq::instantiateBciMsg},
    {BCI_SET_VISUAL_INDICATION_CFM, &BciGenericMsg::instantiateBciMsg},
    {BCI_SET_VISUAL_INDICATION_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {BCI_GET_CAPABILITIES_REQ, &BciGenericMsg::instantiateBciMsg},
    {BCI_GET_CAPABILITIES_CFM, &BciCapabilityCfmMsg::instantiateBciMsg},
    {BCI_GET_CAPABILITIES_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {BCI_BASIC_0A_REQ, &BciGenericMsg::instantiateBciMsg},
    {BCI_BASIC_0B_CFM, &BciGenericMsg::instantiateBciMsg},
    {BCI_BASIC_0C_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {BCI_FAULT_IND, &BciFaultIndication::instantiateBciMsg},
    {BCI_FAULT_CEASE_IND, &BciFaultCeaseIndication::instantiateBciMsg},
    {BCI_GET_VISUAL_INDICATION_REQ, &BciGenericMsg::instantiateBciMsg},
    {BCI_GET_VISUAL_INDICATION_CFM, &BciGetVisualIndicationCfm::instantiateBciMsg},
    {BCI_GET_VISUAL_INDICATION_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {BCI_SELECT_MMI_REQ, &BciSelectMmiReq::instantiateBciMsg},
    {BCI_SELECT_MMI_CFM, &BciGenericMsg::instantiateBciMsg},
    {BCI_SELECT_MMI_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {BCI_BASIC_15_REQ, &BciGenericMsg::instantiateBciMsg},
    {BCI_BASIC_16_CFM, &BciGenericMsg::instantiateBciMsg},
    {BCI_BASIC_17_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {BCI_MAINT_STATE_IND, &BciMaintStateInd::instantiateBciMsg},
    {BCI_SET_MAINT_STATE_REQ, &BciSetMaintStateReq::instantiateBciMsg},
    {BCI_SET_MAINT_STATE_CFM, &BciGenericMsg::instantiateBciMsg},
    {BCI_SET_MAINT_STATE_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {BCI_AUDIT_REQ, &BciGenericMsg::instantiateBciMsg},
    {BCI_AUDIT_CFM, &BciAuditCfm::instantiateBciMsg},
    {BCI_AUDIT_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {BCI_STATE_03_REQ, &BciGenericMsg::instantiateBciMsg},
    {BCI_STATE_04_CFM, &BciGenericMsg::instantiateBciMsg},
    {BCI_STATE_05_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {BCI_STATE_06_REQ, &BciGenericMsg::instantiateBciMsg},
    {BCI_STATE_07_CFM, &BciGenericMsg::instantiateBciMsg},
    {BCI_STATE_08_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {BCI_TEMP_MEAS_START_REQ, &BciTempMeasStartReq::instantiateBciMsg},
    {BCI_TEMP_MEAS_START_CFM, &BciGenericMsg::instantiateBciMsg},
    {BCI_TEMP_MEAS_START_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {BCI_LOAD_LMC_REQ, &BciLoadLmcReq::instantiateBciMsg},
    {BCI_LOAD_LMC_CFM, &BciGenericMsg::instantiateBciMsg},
    {BCI_LOAD_LMC_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {BCI_LOAD_LMC_INIT_REQ, &BciLoadLmcInitReq::instantiateBciMsg},
    {BCI_LOAD_LMC_INIT_CFM, &BciLoadLmcInitCfm::instantiateBciMsg},
    {BCI_LOAD_LMC_INIT_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {BCI_LOAD_LMC_DATA, &BciLoadLmcData::instantiateBciMsg},
    {BCI_LOAD_LMC_ACK, &BciLoadLmcAck::instantiateBciMsg},
    {BCI_LOAD_LMC_END_REQ, &BciGenericMsg::instantiateBciMsg},
    {BCI_LOAD_LMC_END_CFM, &BciLoadLmcEndCfm::instantiateBciMsg},
    {BCI_LOAD_LMC_END_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {BCI_SELECT_LMC_REQ, &BciSelectLmcReq::instantiateBciMsg},
    {BCI_SELECT_LMC_CFM, &BciGenericMsg::instantiateBciMsg},
    {BCI_SELECT_LMC_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {BCI_HW_LOG_SET_REQ, &BciHwLogSetReqMsg::instantiateBciMsg},
    {BCI_HW_LOG_SET_CFM, &BciGenericMsg::instantiateBciMsg},
    {BCI_HW_LOG_SET_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {BCI_HW_LOG_GET_REQ, &BciHwLogGetReqMsg::instantiateBciMsg},
    {BCI_HW_LOG_GET_CFM, &BciHwLogGetCfmMsg::instantiateBciMsg},
    {BCI_HW_LOG_GET_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {BCI_GET_HW_PID_REQ, &BciGenericMsg::instantiateBciMsg},
    {BCI_GET_HW_PID_CFM, &BciGetHwPidCfmMsg::instantiateBciMsg},
    {BCI_GET_HW_PID_REJ, &BciGenericRejMsg::instantiateBciMsg},
    {BCI_SET_UTC_TIME_REQ, &BciSetUtcTimeReq::instantiateBciMsg},
    {BCI_SET_UTC_TIME_CFM, &BciGenericMsg::instantiateBciMsg},
    {BCI_SET_UTC_TIME_REJ, &BciGenericMsg::instantiateBciMsg},
};

} // namespace

void BciMsgRegistry::registerSupportedMsgClasses()
{
    for (const Registration& registration : kRegistrations)
    {
        BciMessageBase::registerBciMsgClass(registration.sigNo, registration.factory);
    }
}
