#include "catalogue.h"

#include "bciMsgRegistration.h"

namespace bci
{

namespace
{

constexpr Signal kSignals[] = {
    {BCI_CONN_EST_REQ, "BCI_CONN_EST_REQ", &kConnEstReqShape},
    {BCI_CONN_EST_CFM, "BCI_CONN_EST_CFM", &kGenericShape},
    {BCI_CONN_EST_REJ, "BCI_CONN_EST_REJ", &kConnEstRejShape},
    {BCI_RESTART_BOARD_FWD, "BCI_RESTART_BOARD_FWD", &kRestartBoardFwdShape},
    {BCI_SET_VISUAL_INDICATION_REQ, "BCI_SET_VISUAL_INDICATION_REQ", &kSetVisualIndicationReqShape},
    {BCI_SET_VISUAL_INDICATION_CFM, "BCI_SET_VISUAL_INDICATION_CFM", &kGenericShape},
    {BCI_SET_VISUAL_INDICATION_REJ, "BCI_SET_VISUAL_INDICATION_REJ", &kGenericRejShape},
    {BCI_GET_CAPABILITIES_REQ, "BCI_GET_CAPABILITIES_REQ", &kGenericShape},
    {BCI_GET_CAPABILITIES_CFM, "BCI_GET_CAPABILITIES_CFM", &kCapabilityCfmShape},
    {BCI_GET_CAPABILITIES_REJ, "BCI_GET_CAPABILITIES_REJ", &kGenericRejShape},
    {BCI_BASIC_0A_REQ, "BCI_BASIC_0A_REQ", &kGenericShape},
    {BCI_BASIC_0B_CFM, "BCI_BASIC_0B_CFM", &kGenericShape},
    {BCI_BASIC_0C_REJ, "BCI_BASIC_0C_REJ", &kGenericRejShape},
    {BCI_FAULT_IND, "BCI_FAULT_IND", &kFaultIndicationShape},
    {BCI_FAULT_CEASE_IND, "BCI_FAULT_CEASE_IND", &kFaultCeaseIndicationShape},
    {BCI_GET_VISUAL_INDICATION_REQ, "BCI_GET_VISUAL_INDICATION_REQ", &kGenericShape},
    {BCI_GET_VISUAL_INDICATION_CFM, "BCI_GET_VISUAL_INDICATION_CFM", &kGetVisualIndicationCfmShape},
    {BCI_GET_VISUAL_INDICATION_REJ, "BCI_GET_VISUAL_INDICATION_REJ", &kGenericRejShape},
    {BCI_SELECT_MMI_REQ, "BCI_SELECT_MMI_REQ", &kSelectMmiReqShape},
    {BCI_SELECT_MMI_CFM, "BCI_SELECT_MMI_CFM", &kGenericShape},
    {BCI_SELECT_MMI_REJ, "BCI_SELECT_MMI_REJ", &kGenericRejShape},
    {BCI_BASIC_15_REQ, "BCI_BASIC_15_REQ", &kGenericShape},
    {BCI_BASIC_16_CFM, "BCI_BASIC_16_CFM", &kGenericShape},
    {BCI_BASIC_17_REJ, "BCI_BASIC_17_REJ", &kGenericRejShape},
    {BCI_MAINT_STATE_IND, "BCI_MAINT_STATE_IND", &kMaintStateIndShape},
    {BCI_SET_MAINT_STATE_REQ, "BCI_SET_MAINT_STATE_REQ", &kSetMaintStateReqShape},
    {BCI_SET_MAINT_STATE_CFM, "BCI_SET_MAINT_STATE_CFM", &kGenericShape},
    {BCI_SET_MAINT_STATE_REJ, "BCI_SET_MAINT_STATE_REJ", &kGenericRejShape},
    {BCI_AUDIT_REQ, "BCI_AUDIT_REQ", &kGenericShape},
    {BCI_AUDIT_CFM, "BCI_AUDIT_CFM", &kAuditCfmShape},
    {BCI_AUDIT_REJ, "BCI_AUDIT_REJ", &kGenericRejShape},
    {BCI_STATE_03_REQ, "BCI_STATE_03_REQ", &kGenericShape},
    {BCI_STATE_04_CFM, "BCI_STATE_04_CFM", &kGenericShape},
    {BCI_STATE_05_REJ, "BCI_STATE_05_REJ", &kGenericRejShape},
    {BCI_STATE_06_REQ, "BCI_STATE_06_REQ", &kGenericShape},
    {BCI_STATE_07_CFM, "BCI_STATE_07_CFM", &kGenericShape},
    {BCI_STATE_08_REJ, "BCI_STATE_08_REJ", &kGenericRejShape},
    {BCI_TEMP_MEAS_START_REQ, "BCI_TEMP_MEAS_START_REQ", &kTempMeasStartReqShape},
    {BCI_TEMP_MEAS_START_CFM, "BCI_TEMP_MEAS_START_CFM", &kGenericShape},
    {BCI_TEMP_MEAS_START_REJ, "BCI_TEMP_MEAS_START_REJ", &kGenericRejShape},
    {BCI_LOAD_LMC_REQ, "BCI_LOAD_LMC_REQ", &kLoadLmcReqShape},
    {BCI_LOAD_LMC_CFM, "BCI_LOAD_LMC_CFM", &kGenericShape},
    {BCI_LOAD_LMC_REJ, "BCI_LOAD_LMC_REJ", &kGenericRejShape},
    {BCI_LOAD_LMC_INIT_REQ, "BCI_LOAD_LMC_INIT_REQ", &kLoadLmcInitReqShape},
    {BCI_LOAD_LMC_INIT_CFM, "BCI_LOAD_LMC_INIT_CFM", &kLoadLmcInitCfmShape},
    {BCI_LOAD_LMC_INIT_REJ, "BCI_LOAD_LMC_INIT_REJ", &kGenericRejShape},
    {BCI_LOAD_LMC_DATA, "BCI_LOAD_LMC_DATA", &kLoadLmcDataShape},
    {BCI_LOAD_LMC_ACK, "BCI_LOAD_LMC_ACK", &kLoadLmcAckShape},
    {BCI_LOAD_LMC_END_REQ, "BCI_LOAD_LMC_END_REQ", &kGenericShape},
    {BCI_LOAD_LMC_END_CFM, "BCI_LOAD_LMC_END_CFM", &kLoadLmcEndCfmShape},
    {BCI_LOAD_LMC_END_REJ, "BCI_LOAD_LMC_END_REJ", &kGenericRejShape},
    {BCI_SELECT_LMC_REQ, "BCI_SELECT_LMC_REQ", &kSelectLmcReqShape},
    {BCI_SELECT_LMC_CFM, "BCI_SELECT_LMC_CFM", &kGenericShape},
    {BCI_SELECT_LMC_REJ, "BCI_SELECT_LMC_REJ", &kGenericRejShape},
    {BCI_HW_LOG_SET_REQ, "BCI_HW_LOG_SET_REQ", &kHwLogSetReqShape},
    {BCI_HW_LOG_SET_CFM, "BCI_HW_LOG_SET_CFM", &kGenericShape},
    {BCI_HW_LOG_SET_REJ, "BCI_HW_LOG_SET_REJ", &kGenericRejShape},
    {BCI_HW_LOG_GET_REQ, "BCI_HW_LOG_GET_REQ", &kHwLogGetReqShape},
    {BCI_HW_LOG_GET_CFM, "BCI_HW_LOG_GET_CFM", &kHwLogGetCfmShape},
    {BCI_HW_LOG_GET_REJ, "BCI_HW_LOG_GET_REJ", &kGenericRejShape},
    {BCI_GET_HW_PID_REQ, "BCI_GET_HW_PID_REQ", &kGenericShape},
    {BCI_GET_HW_PID_CFM, "BCI_GET_HW_PID_CFM", &kGetHwPidCfmShape},
    {BCI_GET_HW_PID_REJ, "BCI_GET_HW_PID_REJ", &kGenericRejShape},
    {BCI_SET_UTC_TIME_REQ, "BCI_SET_UTC_TIME_REQ", &kSetUtcTimeReqShape},
    {BCI_SET_UTC_TIME_CFM, "BCI_SET_UTC_TIME_CFM", &kGenericShape},
    {BCI_SET_UTC_TIME_REJ, "BCI_SET_UTC_TIME_REJ", &kGenericShape},
};

// By this, tools tell the two byte orders of a first word apart.
constexpr bool noNumberIsOneInBothOrders()
{
    for (const Signal& one : kSignals)
    {
        for (const Signal& other : kSignals)
        {
            if (one.number == turnedRound(other.number))
            {
                return false;
            }
        }
    }
    return true;
}
static_assert(noNumberIsOneInBothOrders());

} // namespace

std::span<const Signal> signals()
{
    return kSignals;
}

const Signal* findSignal(SIGSELECT number)
{
    for (const Signal& signal : kSignals)
    {
        if (signal.number == number)
        {
            return &signal;
        }
    }
    return nullptr;
}

} // namespace bci
