#include "bciUtcTimeMsg.h"

#include "messageOperations.h"
#include "shapes.h"

using bci::codec::Field;
using bci::codec::Fields;

namespace
{

constexpr Field kSetUtcTimeReqRows[] = {
    BCI_HEADER(VornBcSetUtcTimeReqS, 96),
    BCI_FIELD(VornBcSetUtcTimeReqS, dateTime, "dateTime", 117),
};
static_assert(maxTextSize(kSetUtcTimeReqRows) == 35 + 11);
static_assert(binarySize(kSetUtcTimeReqRows) == sizeof(VornBcSetUtcTimeReqS));

} // namespace

constexpr Fields bci::kSetUtcTimeReq = {"bciUtcTimeMsg", kSetUtcTimeReqRows};

const bci::codec::Shape bci::kSetUtcTimeReqShape = {"BciSetUtcTimeReq",
                                                    "VornBcSetUtcTimeReqS",
                                                    sizeof(VornBcSetUtcTimeReqS),
                                                    {kSetUtcTimeReqRows},
                                                    bci::kSetUtcTimeReq.source};

BCI_DEFINE_CONSTRUCTOR(BciSetUtcTimeReq, m_setUtcTimeReq)
BCI_DEFINE_MESSAGE(BciSetUtcTimeReq, m_setUtcTimeReq)
BCI_DEFINE_CODECS(BciSetUtcTimeReq, m_setUtcTimeReq, kSetUtcTimeReq)

unsigned int BciSetUtcTimeReq::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + 11;
}
