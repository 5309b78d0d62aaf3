#include "bciMmiMsg.h"

#include "messageOperations.h"
#include "shapes.h"

using bci::codec::Field;
using bci::codec::Fields;

namespace
{

constexpr Field kSelectMmiReqRows[] = {
    BCI_HEADER(VornBcSelectMmiReqS, 96),
    BCI_FIELD(VornBcSelectMmiReqS, mmiState, "mmiState", 117),
};
static_assert(maxTextSize(kSelectMmiReqRows) == 35 + 11);
static_assert(binarySize(kSelectMmiReqRows) == sizeof(VornBcSelectMmiReqS));

} // namespace

constexpr Fields bci::kSelectMmiReq = {"bciMmiMsg", kSelectMmiReqRows};

const bci::codec::Shape bci::kSelectMmiReqShape = {"BciSelectMmiReq",
                                                   "VornBcSelectMmiReqS",
                                                   sizeof(VornBcSelectMmiReqS),
                                                   {kSelectMmiReqRows},
                                                   bci::kSelectMmiReq.source};

BCI_DEFINE_CONSTRUCTOR(BciSelectMmiReq, m_selectMmiReq)
BCI_DEFINE_MESSAGE(BciSelectMmiReq, m_selectMmiReq)
BCI_DEFINE_CODECS(BciSelectMmiReq, m_selectMmiReq, kSelectMmiReq)

unsigned int BciSelectMmiReq::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + 11;
}
