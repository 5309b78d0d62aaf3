#include "bciMaintStateMsg.h"

#include "messageOperations.h"
#include "shapes.h"

using bci::codec::Field;
using bci::codec::Fields;

namespace
{

constexpr Field kSetMaintStateReqRows[] = {
    BCI_HEADER(VornBcSetMaintStateReqS, 96),
    BCI_FIELD(VornBcSetMaintStateReqS, maintState, "maintState", 117),
};
static_assert(maxTextSize(kSetMaintStateReqRows) == 35 + 11);
static_assert(binarySize(kSetMaintStateReqRows) == sizeof(VornBcSetMaintStateReqS));

constexpr Field kMaintStateIndRows[] = {
    BCI_HEADER(VornBcMaintStateIndS, 199),
    BCI_FIELD(VornBcMaintStateIndS, maintState, "maintState", 220),
};
static_assert(maxTextSize(kMaintStateIndRows) == 35 + 11);
static_assert(binarySize(kMaintStateIndRows) == sizeof(VornBcMaintStateIndS));

} // namespace

constexpr Fields bci::kSetMaintStateReq = {"bciMaintStateMsg", kSetMaintStateReqRows};

const bci::codec::Shape bci::kSetMaintStateReqShape = {"BciSetMaintStateReq",
                                                       "VornBcSetMaintStateReqS",
                                                       sizeof(VornBcSetMaintStateReqS),
                                                       {kSetMaintStateReqRows},
                                                       bci::kSetMaintStateReq.source};

BCI_DEFINE_CONSTRUCTOR(BciSetMaintStateReq, m_setMaintStateReq)
BCI_DEFINE_MESSAGE(BciSetMaintStateReq, m_setMaintStateReq)
BCI_DEFINE_CODECS(BciSetMaintStateReq, m_setMaintStateReq, kSetMaintStateReq)

unsigned int BciSetMaintStateReq::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + 11;
}

constexpr Fields bci::kMaintStateInd = {"bciMaintStateMsg", kMaintStateIndRows};

const bci::codec::Shape bci::kMaintStateIndShape = {"BciMaintStateInd",
                                                    "VornBcMaintStateIndS",
                                                    sizeof(VornBcMaintStateIndS),
                                                    {kMaintStateIndRows},
                                                    bci::kMaintStateInd.source};

// Alone of all messages, this one stores its number.
BciMaintStateInd::BciMaintStateInd(SIGSELECT sigNo)
    : BciMessageBase(reinterpret_cast<char*>(&m_maintStateInd), sizeof m_maintStateInd, sigNo)
{
    m_maintStateInd.sigNo = sigNo;
    BCI_WRITES_THROUGH_STREAM;
}

BCI_DEFINE_MESSAGE(BciMaintStateInd, m_maintStateInd)
BCI_DEFINE_CODECS(BciMaintStateInd, m_maintStateInd, kMaintStateInd)

unsigned int BciMaintStateInd::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + 11;
}
