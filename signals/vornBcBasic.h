/// @file
/// Wire structures of basic board control.
#ifndef VORN_BC_BASIC_H
#define VORN_BC_BASIC_H

#include "scalarTypes.h"
#include "vornBcEth.h"
#include "vornConstFhFaultIds.h"
#include "vornConstHwu.h"
#include "vornNodeCommon.h"

#include <stddef.h>

// Generic signals and rejects

/// A signal that carries nothing beyond the common header.
struct GenericMsgS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
};

static_assert(sizeof(GenericMsgS) == 12, "wire layout");
static_assert(offsetof(GenericMsgS, sigNo) == 0, "wire layout");
static_assert(offsetof(GenericMsgS, addressInfo) == 4, "wire layout");

/// Why something was rejected.
struct VornConstRejectCauseS
{
    U16 errorCode;            ///< reason of the reject
    U16 padding0;             ///< carried like any other field
    U8 errorDescription[110]; ///< zero-terminated text
    U16 padding1;             ///< carried like any other field
};

static_assert(sizeof(VornConstRejectCauseS) == 116, "wire layout");
static_assert(offsetof(VornConstRejectCauseS, errorCode) == 0, "wire layout");
static_assert(offsetof(VornConstRejectCauseS, padding0) == 2, "wire layout");
static_assert(offsetof(VornConstRejectCauseS, errorDescription) == 4, "wire layout");
static_assert(offsetof(VornConstRejectCauseS, padding1) == 114, "wire layout");

/// Reject: a request was refused.
struct GenericRejMsgS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    VornConstRejectCauseS cause;            ///< why
};

static_assert(sizeof(GenericRejMsgS) == 128, "wire layout");
static_assert(offsetof(GenericRejMsgS, sigNo) == 0, "wire layout");
static_assert(offsetof(GenericRejMsgS, addressInfo) == 4, "wire layout");
static_assert(offsetof(GenericRejMsgS, cause) == 12, "wire layout");

// Connection establishment

/// Connection establishment request.
struct VornBcConnEstablishReqS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    U16 protocolRev;                        ///< protocol revision that the sender speaks
    // Two bytes of alignment follow; no rendering carries them.
};

static_assert(sizeof(VornBcConnEstablishReqS) == 16, "wire layout");
static_assert(offsetof(VornBcConnEstablishReqS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcConnEstablishReqS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcConnEstablishReqS, protocolRev) == 12, "wire layout");

/// Connection establishment reject.
struct VornBcConnEstablishRejS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    U16 supportedProtocolRev;               ///< protocol revision that the board supports
    U16 padding0;                           ///< carried like any other field
    VornConstRejectCauseS rejectCause;      ///< why
};

static_assert(sizeof(VornBcConnEstablishRejS) == 132, "wire layout");
static_assert(offsetof(VornBcConnEstablishRejS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcConnEstablishRejS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcConnEstablishRejS, supportedProtocolRev) == 12, "wire layout");
static_assert(offsetof(VornBcConnEstablishRejS, padding0) == 14, "wire layout");
static_assert(offsetof(VornBcConnEstablishRejS, rejectCause) == 16, "wire layout");

// Capabilities

/// Which member of a capability's union is meant: 1 loading, 3 none, 4 Ethernet termination, 5 Ethernet
/// hardware interface, 6 climate control.
typedef S16 VornBcCapabilityUnionChoiceE;

/// Capability: loading.
struct VornBcLoadingSupportS
{
    VornConstHwuGeneralE loadable;         ///< carried as a number
    VornConstHwuGeneralE flash;            ///< carried as a number
    VornConstHwuGeneralE fileSystemAccess; ///< carried as a number
    U16 padding0;                          ///< carried like any other field
    S32 blockSize;                         ///< carried as a number
};

static_assert(sizeof(VornBcLoadingSupportS) == 12, "wire layout");
static_assert(offsetof(VornBcLoadingSupportS, loadable) == 0, "wire layout");
static_assert(offsetof(VornBcLoadingSupportS, flash) == 2, "wire layout");
static_assert(offsetof(VornBcLoadingSupportS, fileSystemAccess) == 4, "wire layout");
static_assert(offsetof(VornBcLoadingSupportS, padding0) == 6, "wire layout");
static_assert(offsetof(VornBcLoadingSupportS, blockSize) == 8, "wire layout");

/// One hot-spot temperature sensor.
struct VornBcHotspotParamListS
{
    S16 setPoint;     ///< set point
    S16 coolingGain;  ///< cooling gain
    U16 timeConstant; ///< time constant
    U16 padding0;     ///< carried like any other field
};

static_assert(sizeof(VornBcHotspotParamListS) == 8, "wire layout");
static_assert(offsetof(VornBcHotspotParamListS, setPoint) == 0, "wire layout");
static_assert(offsetof(VornBcHotspotParamListS, coolingGain) == 2, "wire layout");
static_assert(offsetof(VornBcHotspotParamListS, timeConstant) == 4, "wire layout");
static_assert(offsetof(VornBcHotspotParamListS, padding0) == 6, "wire layout");

/// Capability: climate control.
struct VornBcClimateControlSupportS
{
    U16 numOfHotspotTempSensors;                  ///< valid entries of `hotspotParamList`, at most 10
    U16 padding0;                                 ///< carried like any other field
    VornBcHotspotParamListS hotspotParamList[10]; ///< the sensors
};

static_assert(sizeof(VornBcClimateControlSupportS) == 84, "wire layout");
static_assert(offsetof(VornBcClimateControlSupportS, numOfHotspotTempSensors) == 0, "wire layout");
static_assert(offsetof(VornBcClimateControlSupportS, padding0) == 2, "wire layout");
static_assert(offsetof(VornBcClimateControlSupportS, hotspotParamList) == 4, "wire layout");

/// The content of a capability; `boardCapabilityIdentity` selects the member.
union VornBcCapabilityUnionU
{
    VornBcLoadingSupportS boardLoading;        ///< identity 1
    VornBcEthTermSupportS boardEthTerm;        ///< identity 4
    VornBcEthHwIfSupportS boardEthHwIf;        ///< identity 5
    VornBcClimateControlSupportS boardClimate; ///< identity 6
};

static_assert(sizeof(VornBcCapabilityUnionU) == 84, "wire layout");

/// One capability of a board.
struct VornBcBoardCapabilityS
{
    VornBcCapabilityUnionChoiceE boardCapabilityIdentity; ///< selects the member of `capability`
    U16 boardCapabilityLength;                            ///< carried as it stands, neither computed nor checked
    VornBcCapabilityUnionU capability;                    ///< the content
};

static_assert(sizeof(VornBcBoardCapabilityS) == 88, "wire layout");
static_assert(offsetof(VornBcBoardCapabilityS, boardCapabilityIdentity) == 0, "wire layout");
static_assert(offsetof(VornBcBoardCapabilityS, boardCapabilityLength) == 2, "wire layout");
static_assert(offsetof(VornBcBoardCapabilityS, capability) == 4, "wire layout");

/// Capability confirm. Declared with one capability; the message has room for two (192 bytes).
struct VornBcGetCapabilitiesCfmS
{
    SIGSELECT sigNo;                             ///< signal number
    VornNodeCommonAddressInfoS addressInfo;      ///< references of the exchange
    U16 numberOfBoardCapabilities;               ///< valid entries of `boardCapabilities`, at most 2
    U16 padding0;                                ///< carried like any other field
    VornBcBoardCapabilityS boardCapabilities[1]; ///< the capabilities, 88 bytes each
};

static_assert(sizeof(VornBcGetCapabilitiesCfmS) == 104, "wire layout");
static_assert(offsetof(VornBcGetCapabilitiesCfmS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcGetCapabilitiesCfmS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcGetCapabilitiesCfmS, numberOfBoardCapabilities) == 12, "wire layout");
static_assert(offsetof(VornBcGetCapabilitiesCfmS, padding0) == 14, "wire layout");
static_assert(offsetof(VornBcGetCapabilitiesCfmS, boardCapabilities) == 16, "wire layout");

// Faults

/// Fault indication.
struct VornBcFaultIndS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    VornConstFhFaultIdsT faultId;           ///< identity of the fault
    U16 padding0;                           ///< carried like any other field
    U8 faultDescription[110];               ///< zero-terminated text
    U16 padding1;                           ///< carried like any other field
    U16 additionalDataLength;               ///< valid words of `additionalData`, at most 4
    U16 padding2;                           ///< carried like any other field
    U16 additionalData[4];                  ///< words of the fault
    U16 faultCase;                          ///< case of the fault
    // Two bytes of alignment follow; no rendering carries them.
};

static_assert(sizeof(VornBcFaultIndS) == 144, "wire layout");
static_assert(offsetof(VornBcFaultIndS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcFaultIndS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcFaultIndS, faultId) == 12, "wire layout");
static_assert(offsetof(VornBcFaultIndS, padding0) == 14, "wire layout");
static_assert(offsetof(VornBcFaultIndS, faultDescription) == 16, "wire layout");
static_assert(offsetof(VornBcFaultIndS, padding1) == 126, "wire layout");
static_assert(offsetof(VornBcFaultIndS, additionalDataLength) == 128, "wire layout");
static_assert(offsetof(VornBcFaultIndS, padding2) == 130, "wire layout");
static_assert(offsetof(VornBcFaultIndS, additionalData) == 132, "wire layout");
static_assert(offsetof(VornBcFaultIndS, faultCase) == 140, "wire layout");

/// Fault cease indication.
struct VornBcFaultceaseIndS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    VornConstFhFaultIdsT faultId;           ///< identity of the fault
    U16 additionalDataLength;               ///< valid words of `additionalData`, at most 4
    U16 additionalData[4];                  ///< words of the fault
    U16 faultCase;                          ///< case of the fault
    // Two bytes of alignment follow; no rendering carries them.
};

static_assert(sizeof(VornBcFaultceaseIndS) == 28, "wire layout");
static_assert(offsetof(VornBcFaultceaseIndS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcFaultceaseIndS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcFaultceaseIndS, faultId) == 12, "wire layout");
static_assert(offsetof(VornBcFaultceaseIndS, additionalDataLength) == 14, "wire layout");
static_assert(offsetof(VornBcFaultceaseIndS, additionalData) == 16, "wire layout");
static_assert(offsetof(VornBcFaultceaseIndS, faultCase) == 24, "wire layout");

// Hardware identity and hardware log

/// Hardware identity confirm. The texts are zero-terminated.
struct VornBcGetHwPidCfmS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    U8 productionDate[9];                   ///< date of production
    U8 padding0;                            ///< carried like any other field
    U16 padding1;                           ///< carried like any other field
    U8 productName[13];                     ///< name of the product
    U8 padding2;                            ///< carried like any other field
    U16 padding3;                           ///< carried like any other field
    U8 productNumber[25];                   ///< number of the product
    U8 padding4;                            ///< carried like any other field
    U16 padding5;                           ///< carried like any other field
    U8 productRevision[5];                  ///< revision of the product
    U8 padding6;                            ///< carried like any other field
    U16 padding7;                           ///< carried like any other field
    U8 serialNumber[14];                    ///< serial number
    // Two bytes of alignment follow; no rendering carries them.
};

static_assert(sizeof(VornBcGetHwPidCfmS) == 92, "wire layout");
static_assert(offsetof(VornBcGetHwPidCfmS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcGetHwPidCfmS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcGetHwPidCfmS, productionDate) == 12, "wire layout");
static_assert(offsetof(VornBcGetHwPidCfmS, padding0) == 21, "wire layout");
static_assert(offsetof(VornBcGetHwPidCfmS, padding1) == 22, "wire layout");
static_assert(offsetof(VornBcGetHwPidCfmS, productName) == 24, "wire layout");
static_assert(offsetof(VornBcGetHwPidCfmS, padding2) == 37, "wire layout");
static_assert(offsetof(VornBcGetHwPidCfmS, padding3) == 38, "wire layout");
static_assert(offsetof(VornBcGetHwPidCfmS, productNumber) == 40, "wire layout");
static_assert(offsetof(VornBcGetHwPidCfmS, padding4) == 65, "wire layout");
static_assert(offsetof(VornBcGetHwPidCfmS, padding5) == 66, "wire layout");
static_assert(offsetof(VornBcGetHwPidCfmS, productRevision) == 68, "wire layout");
static_assert(offsetof(VornBcGetHwPidCfmS, padding6) == 73, "wire layout");
static_assert(offsetof(VornBcGetHwPidCfmS, padding7) == 74, "wire layout");
static_assert(offsetof(VornBcGetHwPidCfmS, serialNumber) == 76, "wire layout");

/// Request for the hardware log.
struct VornBcHwLogGetReqS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    U32 logId;                              ///< which log
};

static_assert(sizeof(VornBcHwLogGetReqS) == 16, "wire layout");
static_assert(offsetof(VornBcHwLogGetReqS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcHwLogGetReqS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcHwLogGetReqS, logId) == 12, "wire layout");

/// Request to store hardware log entries.
struct VornBcHwLogSetReqS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    U8 dateTime[14];                        ///< zero-terminated text
    U16 padding0;                           ///< carried like any other field
    U32 logId;                              ///< which log
    U32 length;                             ///< number of entries in `hwLogData`
    U8 hwLogData[424];                      ///< zero-terminated entries, one directly behind another
};

static_assert(sizeof(VornBcHwLogSetReqS) == 460, "wire layout");
static_assert(offsetof(VornBcHwLogSetReqS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcHwLogSetReqS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcHwLogSetReqS, dateTime) == 12, "wire layout");
static_assert(offsetof(VornBcHwLogSetReqS, padding0) == 26, "wire layout");
static_assert(offsetof(VornBcHwLogSetReqS, logId) == 28, "wire layout");
static_assert(offsetof(VornBcHwLogSetReqS, length) == 32, "wire layout");
static_assert(offsetof(VornBcHwLogSetReqS, hwLogData) == 36, "wire layout");

/// Hardware log confirm.
struct VornBcHwLogGetCfmS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    U32 length;                             ///< number of entries, 0 or 1
    U8 hwLogData[424];                      ///< one zero-terminated entry
};

static_assert(sizeof(VornBcHwLogGetCfmS) == 440, "wire layout");
static_assert(offsetof(VornBcHwLogGetCfmS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcHwLogGetCfmS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcHwLogGetCfmS, length) == 12, "wire layout");
static_assert(offsetof(VornBcHwLogGetCfmS, hwLogData) == 16, "wire layout");

// Load modules

/// Load module initialisation request.
struct VornBcLoadLmcInitReqS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    U8 loadModule[36];                      ///< zero-terminated name of the load module
};

static_assert(sizeof(VornBcLoadLmcInitReqS) == 48, "wire layout");
static_assert(offsetof(VornBcLoadLmcInitReqS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcLoadLmcInitReqS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcLoadLmcInitReqS, loadModule) == 12, "wire layout");

/// Load module initialisation confirm.
struct VornBcLoadLmcInitCfmS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    U16 loadInitResult;                     ///< result code
    // Two bytes of alignment follow; no rendering carries them.
};

static_assert(sizeof(VornBcLoadLmcInitCfmS) == 16, "wire layout");
static_assert(offsetof(VornBcLoadLmcInitCfmS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcLoadLmcInitCfmS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcLoadLmcInitCfmS, loadInitResult) == 12, "wire layout");

/// Load module selection request.
struct VornBcSelectLmcReqS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    U8 loadModule[36];                      ///< zero-terminated name of the load module
};

static_assert(sizeof(VornBcSelectLmcReqS) == 48, "wire layout");
static_assert(offsetof(VornBcSelectLmcReqS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcSelectLmcReqS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcSelectLmcReqS, loadModule) == 12, "wire layout");

/// Load request.
struct VornBcLoadLmcReqS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    U8 loadModule[36];                      ///< zero-terminated name of the load module
    U8 searchPath[200];                     ///< zero-terminated path
};

static_assert(sizeof(VornBcLoadLmcReqS) == 248, "wire layout");
static_assert(offsetof(VornBcLoadLmcReqS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcLoadLmcReqS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcLoadLmcReqS, loadModule) == 12, "wire layout");
static_assert(offsetof(VornBcLoadLmcReqS, searchPath) == 48, "wire layout");

/// Acknowledgement of a data block.
struct VornBcLoadLmcAckS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    U16 lmSeqNr;                            ///< sequence number of the block
    // Two bytes of alignment follow; no rendering carries them.
};

static_assert(sizeof(VornBcLoadLmcAckS) == 16, "wire layout");
static_assert(offsetof(VornBcLoadLmcAckS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcLoadLmcAckS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcLoadLmcAckS, lmSeqNr) == 12, "wire layout");

/// End of load confirm.
struct VornBcLoadLmcEndCfmS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    U16 loadResult;                         ///< result code
    // Two bytes of alignment follow; no rendering carries them.
};

static_assert(sizeof(VornBcLoadLmcEndCfmS) == 16, "wire layout");
static_assert(offsetof(VornBcLoadLmcEndCfmS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcLoadLmcEndCfmS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcLoadLmcEndCfmS, loadResult) == 12, "wire layout");

/// One block of load-module data. Declared with one byte of it; the message has room for 4100.
struct VornBcLoadLmcDataS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    U16 lmSeqNr;                            ///< sequence number of the block
    U16 padding0;                           ///< carried like any other field
    U32 lmBlockSize;                        ///< bytes in `lmBlock`, at most 4100
    U8 lmBlock[1];                          ///< the bytes
    // The block goes on from here, over the three bytes of alignment too.
};

static_assert(sizeof(VornBcLoadLmcDataS) == 24, "wire layout");
static_assert(offsetof(VornBcLoadLmcDataS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcLoadLmcDataS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcLoadLmcDataS, lmSeqNr) == 12, "wire layout");
static_assert(offsetof(VornBcLoadLmcDataS, padding0) == 14, "wire layout");
static_assert(offsetof(VornBcLoadLmcDataS, lmBlockSize) == 16, "wire layout");
static_assert(offsetof(VornBcLoadLmcDataS, lmBlock) == 20, "wire layout");

// Maintenance state and board control

/// Request to set the maintenance state.
struct VornBcSetMaintStateReqS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    U32 maintState;                         ///< the state
};

static_assert(sizeof(VornBcSetMaintStateReqS) == 16, "wire layout");
static_assert(offsetof(VornBcSetMaintStateReqS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcSetMaintStateReqS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcSetMaintStateReqS, maintState) == 12, "wire layout");

/// Indication of the maintenance state.
struct VornBcMaintStateIndS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    U32 maintState;                         ///< the state
};

static_assert(sizeof(VornBcMaintStateIndS) == 16, "wire layout");
static_assert(offsetof(VornBcMaintStateIndS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcMaintStateIndS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcMaintStateIndS, maintState) == 12, "wire layout");

/// Request to select a man-machine-interface state.
struct VornBcSelectMmiReqS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    U32 mmiState;                           ///< the state
};

static_assert(sizeof(VornBcSelectMmiReqS) == 16, "wire layout");
static_assert(offsetof(VornBcSelectMmiReqS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcSelectMmiReqS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcSelectMmiReqS, mmiState) == 12, "wire layout");

/// Request to start hot-spot temperature measurement.
struct VornBcTempMeasStartReqS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    U8 hotSpotMeasurementPeriod;            ///< period of the measurement
    // Three bytes of alignment follow; no rendering carries them.
};

static_assert(sizeof(VornBcTempMeasStartReqS) == 16, "wire layout");
static_assert(offsetof(VornBcTempMeasStartReqS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcTempMeasStartReqS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcTempMeasStartReqS, hotSpotMeasurementPeriod) == 12, "wire layout");

/// Request to set the UTC time.
struct VornBcSetUtcTimeReqS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    U32 dateTime;                           ///< the time
};

static_assert(sizeof(VornBcSetUtcTimeReqS) == 16, "wire layout");
static_assert(offsetof(VornBcSetUtcTimeReqS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcSetUtcTimeReqS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcSetUtcTimeReqS, dateTime) == 12, "wire layout");

// Visual indication and restart

/// Request to set the visual indication.
struct VornBcSetVisualIndicationReqS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    U16 visualizedState;                    ///< the state to show
    // Two bytes of alignment follow; no rendering carries them.
};

static_assert(sizeof(VornBcSetVisualIndicationReqS) == 16, "wire layout");
static_assert(offsetof(VornBcSetVisualIndicationReqS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcSetVisualIndicationReqS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcSetVisualIndicationReqS, visualizedState) == 12, "wire layout");

/// States of a board's indicator LEDs.
struct VornBcLedInfoS
{
    U16 visualStateRedLed;    ///< red LED
    U16 visualStateGreenLed;  ///< green LED
    U16 visualStateYellowLed; ///< yellow LED
    U16 visualStateBlueLed;   ///< blue LED
};

static_assert(sizeof(VornBcLedInfoS) == 8, "wire layout");
static_assert(offsetof(VornBcLedInfoS, visualStateRedLed) == 0, "wire layout");
static_assert(offsetof(VornBcLedInfoS, visualStateGreenLed) == 2, "wire layout");
static_assert(offsetof(VornBcLedInfoS, visualStateYellowLed) == 4, "wire layout");
static_assert(offsetof(VornBcLedInfoS, visualStateBlueLed) == 6, "wire layout");

/// Confirm of the visual indication.
struct VornBcGetVisualIndicationCfmS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    VornBcLedInfoS ledInfo;                 ///< the LEDs
};

static_assert(sizeof(VornBcGetVisualIndicationCfmS) == 20, "wire layout");
static_assert(offsetof(VornBcGetVisualIndicationCfmS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcGetVisualIndicationCfmS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcGetVisualIndicationCfmS, ledInfo) == 12, "wire layout");

/// Forwarded restart of a board.
struct VornBcRestartBoardFwdS
{
    SIGSELECT sigNo;                        ///< signal number
    VornNodeCommonAddressInfoS addressInfo; ///< references of the exchange
    U8 traceInformation[138];               ///< zero-terminated text: why the board is restarted
    // Two bytes of alignment follow; no rendering carries them.
};

static_assert(sizeof(VornBcRestartBoardFwdS) == 152, "wire layout");
static_assert(offsetof(VornBcRestartBoardFwdS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcRestartBoardFwdS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcRestartBoardFwdS, traceInformation) == 12, "wire layout");

#endif
