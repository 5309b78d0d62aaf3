/// @file
/// The signal numbers of the board control interface, and their registration.
///
/// Where the interface tells a signal by its number alone, the name is made of its block, the number within it
/// and its place in an exchange (BCI_BASIC_0A_REQ).
#ifndef BCI_MSG_REGISTRATION_H
#define BCI_MSG_REGISTRATION_H

#include "bciApi.h"
#include "scalarTypes.h"

/// @name Basic board control
/// @{
constexpr SIGSELECT BCI_CONN_EST_REQ = 0x1658000;              ///< BciConnEstReq
constexpr SIGSELECT BCI_CONN_EST_CFM = 0x1658001;              ///< BciGenericMsg
constexpr SIGSELECT BCI_CONN_EST_REJ = 0x1658002;              ///< BciConnEstRej
constexpr SIGSELECT BCI_RESTART_BOARD_FWD = 0x1658003;         ///< BciRestartBoardFwdMsg
constexpr SIGSELECT BCI_SET_VISUAL_INDICATION_REQ = 0x1658004; ///< BciSetVisualIndicationReq
constexpr SIGSELECT BCI_SET_VISUAL_INDICATION_CFM = 0x1658005; ///< BciGenericMsg
constexpr SIGSELECT BCI_SET_VISUAL_INDICATION_REJ = 0x1658006; ///< BciGenericRejMsg
constexpr SIGSELECT BCI_GET_CAPABILITIES_REQ = 0x1658007;      ///< BciGenericMsg
constexpr SIGSELECT BCI_GET_CAPABILITIES_CFM = 0x1658008;      ///< BciCapabilityCfmMsg
constexpr SIGSELECT BCI_GET_CAPABILITIES_REJ = 0x1658009;      ///< BciGenericRejMsg
constexpr SIGSELECT BCI_BASIC_0A_REQ = 0x165800A;              ///< BciGenericMsg
constexpr SIGSELECT BCI_BASIC_0B_CFM = 0x165800B;              ///< BciGenericMsg
constexpr SIGSELECT BCI_BASIC_0C_REJ = 0x165800C;              ///< BciGenericRejMsg
constexpr SIGSELECT BCI_FAULT_IND = 0x165800D;                 ///< BciFaultIndication
constexpr SIGSELECT BCI_FAULT_CEASE_IND = 0x165800E;           ///< BciFaultCeaseIndication
constexpr SIGSELECT BCI_GET_VISUAL_INDICATION_REQ = 0x165800F; ///< BciGenericMsg
constexpr SIGSELECT BCI_GET_VISUAL_INDICATION_CFM = 0x1658010; ///< BciGetVisualIndicationCfm
constexpr SIGSELECT BCI_GET_VISUAL_INDICATION_REJ = 0x1658011; ///< BciGenericRejMsg
constexpr SIGSELECT BCI_SELECT_MMI_REQ = 0x1658012;            ///< BciSelectMmiReq
constexpr SIGSELECT BCI_SELECT_MMI_CFM = 0x1658013;            ///< BciGenericMsg
constexpr SIGSELECT BCI_SELECT_MMI_REJ = 0x1658014;            ///< BciGenericRejMsg
constexpr SIGSELECT BCI_BASIC_15_REQ = 0x1658015;              ///< BciGenericMsg
constexpr SIGSELECT BCI_BASIC_16_CFM = 0x1658016;              ///< BciGenericMsg
constexpr SIGSELECT BCI_BASIC_17_REJ = 0x1658017;              ///< BciGenericRejMsg
constexpr SIGSELECT BCI_MAINT_STATE_IND = 0x1658018;           ///< BciMaintStateInd
constexpr SIGSELECT BCI_SET_MAINT_STATE_REQ = 0x1658019;       ///< BciSetMaintStateReq
constexpr SIGSELECT BCI_SET_MAINT_STATE_CFM = 0x165801A;       ///< BciGenericMsg
constexpr SIGSELECT BCI_SET_MAINT_STATE_REJ = 0x165801B;       ///< BciGenericRejMsg
/// @}

/// @name Hardware identity
/// @{
constexpr SIGSELECT BCI_GET_HW_PID_REQ = 0x1658200; ///< BciGenericMsg
constexpr SIGSELECT BCI_GET_HW_PID_CFM = 0x1658201; ///< BciGetHwPidCfmMsg
constexpr SIGSELECT BCI_GET_HW_PID_REJ = 0x1658202; ///< BciGenericRejMsg
/// @}

/// @name State handling
/// @{
constexpr SIGSELECT BCI_AUDIT_REQ = 0x1658400;    ///< BciGenericMsg
constexpr SIGSELECT BCI_AUDIT_CFM = 0x1658401;    ///< BciAuditCfm
constexpr SIGSELECT BCI_AUDIT_REJ = 0x1658402;    ///< BciGenericRejMsg
constexpr SIGSELECT BCI_STATE_03_REQ = 0x1658403; ///< BciGenericMsg
constexpr SIGSELECT BCI_STATE_04_CFM = 0x1658404; ///< BciGenericMsg
constexpr SIGSELECT BCI_STATE_05_REJ = 0x1658405; ///< BciGenericRejMsg
constexpr SIGSELECT BCI_STATE_06_REQ = 0x1658406; ///< BciGenericMsg
constexpr SIGSELECT BCI_STATE_07_CFM = 0x1658407; ///< BciGenericMsg
constexpr SIGSELECT BCI_STATE_08_REJ = 0x1658408; ///< BciGenericRejMsg
/// @}

/// @name Load modules
/// @{
constexpr SIGSELECT BCI_LOAD_LMC_REQ = 0x1658800;      ///< BciLoadLmcReq
constexpr SIGSELECT BCI_LOAD_LMC_CFM = 0x1658801;      ///< BciGenericMsg
constexpr SIGSELECT BCI_LOAD_LMC_REJ = 0x1658802;      ///< BciGenericRejMsg
constexpr SIGSELECT BCI_LOAD_LMC_INIT_REQ = 0x1658803; ///< BciLoadLmcInitReq
constexpr SIGSELECT BCI_LOAD_LMC_INIT_CFM = 0x1658804; ///< BciLoadLmcInitCfm
constexpr SIGSELECT BCI_LOAD_LMC_INIT_REJ = 0x1658805; ///< BciGenericRejMsg
constexpr SIGSELECT BCI_LOAD_LMC_DATA = 0x1658806;     ///< BciLoadLmcData
constexpr SIGSELECT BCI_LOAD_LMC_ACK = 0x1658807;      ///< BciLoadLmcAck
constexpr SIGSELECT BCI_LOAD_LMC_END_REQ = 0x1658808;  ///< BciGenericMsg
constexpr SIGSELECT BCI_LOAD_LMC_END_CFM = 0x1658809;  ///< BciLoadLmcEndCfm
constexpr SIGSELECT BCI_LOAD_LMC_END_REJ = 0x165880A;  ///< BciGenericRejMsg
constexpr SIGSELECT BCI_SELECT_LMC_REQ = 0x165880B;    ///< BciSelectLmcReq
constexpr SIGSELECT BCI_SELECT_LMC_CFM = 0x165880C;    ///< BciGenericMsg
constexpr SIGSELECT BCI_SELECT_LMC_REJ = 0x165880D;    ///< BciGenericRejMsg
/// @}

/// @name Temperature measurement
/// @{
constexpr SIGSELECT BCI_TEMP_MEAS_START_REQ = 0x1659100; ///< BciTempMeasStartReq
constexpr SIGSELECT BCI_TEMP_MEAS_START_CFM = 0x1659101; ///< BciGenericMsg
constexpr SIGSELECT BCI_TEMP_MEAS_START_REJ = 0x1659102; ///< BciGenericRejMsg
/// @}

/// @name Hardware log
/// @{
constexpr SIGSELECT BCI_HW_LOG_SET_REQ = 0x165920A; ///< BciHwLogSetReqMsg
constexpr SIGSELECT BCI_HW_LOG_SET_CFM = 0x165920B; ///< BciGenericMsg
constexpr SIGSELECT BCI_HW_LOG_SET_REJ = 0x165920C; ///< BciGenericRejMsg
constexpr SIGSELECT BCI_HW_LOG_GET_REQ = 0x165920D; ///< BciHwLogGetReqMsg
constexpr SIGSELECT BCI_HW_LOG_GET_CFM = 0x165920E; ///< BciHwLogGetCfmMsg
constexpr SIGSELECT BCI_HW_LOG_GET_REJ = 0x165920F; ///< BciGenericRejMsg
/// @}

/// @name UTC time
/// @{
constexpr SIGSELECT BCI_SET_UTC_TIME_REQ = 0x1659500; ///< BciSetUtcTimeReq
constexpr SIGSELECT BCI_SET_UTC_TIME_CFM = 0x1659501; ///< BciGenericMsg
constexpr SIGSELECT BCI_SET_UTC_TIME_REJ = 0x1659502; ///< BciGenericMsg (carries no cause)
/// @}

/// Binds the signal numbers to their message classes.
class BCI_API BciMsgRegistry
{
public:
    /// Registers every signal number that the library knows. To be called once, before messages are
    /// created from buffers; the library never calls it itself. Calling it again changes nothing.
    static void registerSupportedMsgClasses();
};

#endif
