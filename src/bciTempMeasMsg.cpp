#include "bciTempMeasMsg.h"

#include "messageOperations.h"
#include "shapes.h"

using bci::codec::Field;
using bci::codec::Fields;

namespace
{

constexpr Field kTempMeasStartReqRows[] = {
    BCI_HEADER(VornBcTempMeasStartReqS, 96),
    BCI_FIELD(VornBcTempMeasStartReqS, hotSpotMeasurementPeriod, "hotSpotMeasurementPeriod", 117),
};
static_assert(maxTextSize(kTempMeasStartReqRows) == 35 + 4);
// getMaxBinaryBufferSize() counts the alignment bytes too, which the form does not carry.
static_assert(binarySize(kTempMeasStartReqRows) == 13);

} // namespace

constexpr Fields bci::kTempMeasStartReq = {"bciTempMeasMsg", kTempMeasStartReqRows};

const bci::codec::Shape bci::kTempMeasStartReqShape = {"BciTempMeasStartReq",
                                                       "VornBcTempMeasStartReqS",
                                                       sizeof(VornBcTempMeasStartReqS),
                                                       {kTempMeasStartReqRows},
                                                       bci::kTempMeasStartReq.source};

BCI_DEFINE_CONSTRUCTOR(BciTempMeasStartReq, m_tempMeasStartReq)
BCI_DEFINE_MESSAGE(BciTempMeasStartReq, m_tempMeasStartReq)
BCI_DEFINE_CODECS(BciTempMeasStartReq, m_tempMeasStartReq, kTempMeasStartReq)

unsigned int BciTempMeasStartReq::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + 4;
}
