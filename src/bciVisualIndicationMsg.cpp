#include "bciVisualIndicationMsg.h"

#include "messageOperations.h"
#include "shapes.h"

using bci::codec::Field;
using bci::codec::Fields;

namespace
{

constexpr Field kSetVisualIndicationReqRows[] = {
    BCI_HEADER(VornBcSetVisualIndicationReqS, 96),
    BCI_FIELD(VornBcSetVisualIndicationReqS, visualizedState, "visualizedState", 117),
};
static_assert(maxTextSize(kSetVisualIndicationReqRows) == 35 + 6);
// getMaxBinaryBufferSize() counts the alignment bytes too, which the form does not carry.
static_assert(binarySize(kSetVisualIndicationReqRows) == 14);

constexpr Field kGetVisualIndicationCfmRows[] = {
    BCI_HEADER(VornBcGetVisualIndicationCfmS, 223),
    BCI_FIELD(VornBcGetVisualIndicationCfmS, ledInfo.visualStateRedLed, "visualStateRedLed", 244),
    BCI_FIELD(VornBcGetVisualIndicationCfmS, ledInfo.visualStateGreenLed, "visualStateGreenLed", 251),
    BCI_FIELD(VornBcGetVisualIndicationCfmS, ledInfo.visualStateYellowLed, "visualStateYellowLed", 258),
    BCI_FIELD(VornBcGetVisualIndicationCfmS, ledInfo.visualStateBlueLed, "visualStateBlueLed", 265),
};
static_assert(maxTextSize(kGetVisualIndicationCfmRows) == 35 + 24);
static_assert(binarySize(kGetVisualIndicationCfmRows) == sizeof(VornBcGetVisualIndicationCfmS));

} // namespace

constexpr Fields bci::kSetVisualIndicationReq = {"bciVisualIndicationMsg", kSetVisualIndicationReqRows};

const bci::codec::Shape bci::kSetVisualIndicationReqShape = {"BciSetVisualIndicationReq",
                                                             "VornBcSetVisualIndicationReqS",
                                                             sizeof(VornBcSetVisualIndicationReqS),
                                                             {kSetVisualIndicationReqRows},
                                                             bci::kSetVisualIndicationReq.source};

BCI_DEFINE_CONSTRUCTOR(BciSetVisualIndicationReq, m_setVisualIndicationReq)
BCI_DEFINE_MESSAGE(BciSetVisualIndicationReq, m_setVisualIndicationReq)
BCI_DEFINE_CODECS(BciSetVisualIndicationReq, m_setVisualIndicationReq, kSetVisualIndicationReq)

unsigned int BciSetVisualIndicationReq::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + 6;
}

constexpr Fields bci::kGetVisualIndicationCfm = {"bciVisualIndicationMsg", kGetVisualIndicationCfmRows};

const bci::codec::Shape bci::kGetVisualIndicationCfmShape = {"BciGetVisualIndicationCfm",
                                                             "VornBcGetVisualIndicationCfmS",
                                                             sizeof(VornBcGetVisualIndicationCfmS),
                                                             {kGetVisualIndicationCfmRows},
                                                             bci::kGetVisualIndicationCfm.source};

BCI_DEFINE_CONSTRUCTOR(BciGetVisualIndicationCfm, m_getVisualIndicationCfm)
BCI_DEFINE_MESSAGE(BciGetVisualIndicationCfm, m_getVisualIndicationCfm)
BCI_DEFINE_CODECS(BciGetVisualIndicationCfm, m_getVisualIndicationCfm, kGetVisualIndicationCfm)

unsigned int BciGetVisualIndicationCfm::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + 24;
}
