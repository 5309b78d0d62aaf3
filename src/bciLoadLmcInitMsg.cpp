#include "bciLoadLmcInitMsg.h"

#include "messageOperations.h"
#include "shapes.h"

using bci::codec::Field;
using bci::codec::Fields;

namespace
{

constexpr Field kLoadLmcInitReqRows[] = {
    BCI_HEADER(VornBcLoadLmcInitReqS, 101),
    BCI_FIELD(VornBcLoadLmcInitReqS, loadModule, "loadModule", 122),
};
static_assert(binarySize(kLoadLmcInitReqRows) == sizeof(VornBcLoadLmcInitReqS));

constexpr Field kLoadLmcInitCfmRows[] = {
    BCI_HEADER(VornBcLoadLmcInitCfmS, 204),
    BCI_FIELD(VornBcLoadLmcInitCfmS, loadInitResult, "loadInitResult", 225),
};
static_assert(maxTextSize(kLoadLmcInitCfmRows) == 35 + 6);
// getMaxBinaryBufferSize() counts the alignment bytes too, which the form does not carry.
static_assert(binarySize(kLoadLmcInitCfmRows) == 14);

} // namespace

constexpr Fields bci::kLoadLmcInitReq = {"bciLoadLmcInitMsg", kLoadLmcInitReqRows};

const bci::codec::Shape bci::kLoadLmcInitReqShape = {"BciLoadLmcInitReq",
                                                     "VornBcLoadLmcInitReqS",
                                                     sizeof(VornBcLoadLmcInitReqS),
                                                     {kLoadLmcInitReqRows},
                                                     bci::kLoadLmcInitReq.source};

BCI_DEFINE_CONSTRUCTOR(BciLoadLmcInitReq, m_loadLmcInitReq)
BCI_DEFINE_MESSAGE(BciLoadLmcInitReq, m_loadLmcInitReq)
BCI_DEFINE_CODECS(BciLoadLmcInitReq, m_loadLmcInitReq, kLoadLmcInitReq)

unsigned int BciLoadLmcInitReq::getMaxTextBufferSize()
{
    // Neither the mask nor the 180 follow from anything.
    return (BciMessageBase::getMaxTextBufferSize() & 0xFF) + 180;
}

constexpr Fields bci::kLoadLmcInitCfm = {"bciLoadLmcInitMsg", kLoadLmcInitCfmRows};

const bci::codec::Shape bci::kLoadLmcInitCfmShape = {"BciLoadLmcInitCfm",
                                                     "VornBcLoadLmcInitCfmS",
                                                     sizeof(VornBcLoadLmcInitCfmS),
                                                     {kLoadLmcInitCfmRows},
                                                     bci::kLoadLmcInitCfm.source};

BCI_DEFINE_CONSTRUCTOR(BciLoadLmcInitCfm, m_loadLmcInitCfm)
BCI_DEFINE_MESSAGE(BciLoadLmcInitCfm, m_loadLmcInitCfm)
BCI_DEFINE_CODECS(BciLoadLmcInitCfm, m_loadLmcInitCfm, kLoadLmcInitCfm)

unsigned int BciLoadLmcInitCfm::getMaxTextBufferSize()
{
    // The mask follows from nothing.
    return (BciMessageBase::getMaxTextBufferSize() & 0xFF) + 6;
}
