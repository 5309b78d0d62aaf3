// The shapes of all messages. Each is defined beside its message's rows.
#ifndef BCI_SHAPES_H
#define BCI_SHAPES_H

#include "codec/schema.h"

namespace bci
{

extern const codec::Shape kAuditCfmShape;
extern const codec::Shape kCapabilityCfmShape;
extern const codec::Shape kConnEstRejShape;
extern const codec::Shape kConnEstReqShape;
extern const codec::Shape kFaultCeaseIndicationShape;
extern const codec::Shape kFaultIndicationShape;
extern const codec::Shape kGenericShape;
extern const codec::Shape kGenericRejShape;
extern const codec::Shape kGetHwPidCfmShape;
extern const codec::Shape kGetVisualIndicationCfmShape;
extern const codec::Shape kHwLogGetCfmShape;
extern const codec::Shape kHwLogGetReqShape;
extern const codec::Shape kHwLogSetReqShape;
extern const codec::Shape kLoadLmcAckShape;
extern const codec::Shape kLoadLmcDataShape;
extern const codec::Shape kLoadLmcEndCfmShape;
extern const codec::Shape kLoadLmcInitCfmShape;
extern const codec::Shape kLoadLmcInitReqShape;
extern const codec::Shape kLoadLmcReqShape;
extern const codec::Shape kMaintStateIndShape;
extern const codec::Shape kRestartBoardFwdShape;
extern const codec::Shape kSelectLmcReqShape;
extern const codec::Shape kSelectMmiReqShape;
extern const codec::Shape kSetMaintStateReqShape;
extern const codec::Shape kSetUtcTimeReqShape;
extern const codec::Shape kSetVisualIndicationReqShape;
extern const codec::Shape kTempMeasStartReqShape;

} // namespace bci

#endif
