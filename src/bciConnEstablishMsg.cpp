#include "bciConnEstablishMsg.h"

#include "messageOperations.h"
#include "shapes.h"

using bci::codec::Field;
using bci::codec::Fields;

namespace
{

constexpr Field kConnEstReqRows[] = {
    BCI_HEADER(VornBcConnEstablishReqS, 96),
    BCI_FIELD(VornBcConnEstablishReqS, protocolRev, "protocolRev", 117),
};
static_assert(maxTextSize(kConnEstReqRows) == 35 + 6);
// getMaxBinaryBufferSize() counts the alignment bytes too, which the form does not carry.
static_assert(binarySize(kConnEstReqRows) == 14);

constexpr Field kConnEstRejRows[] = {
    BCI_HEADER(VornBcConnEstablishRejS, 245),
    BCI_FIELD(VornBcConnEstablishRejS, supportedProtocolRev, "supportedProtocolRev", 266),
    BCI_FIELD(VornBcConnEstablishRejS, padding0, "padding0", 273),
    BCI_FIELD(VornBcConnEstablishRejS, rejectCause.errorCode, "errorCode", 280),
    BCI_FIELD(VornBcConnEstablishRejS, rejectCause.padding0, "rejectCausePadding0", 287),
    BCI_FIELD(VornBcConnEstablishRejS, rejectCause.errorDescription, "errorDescription", 294),
    BCI_FIELD(VornBcConnEstablishRejS, rejectCause.padding1, "rejectCausePadding1", 301),
};
static_assert(maxTextSize(kConnEstRejRows) == 35 + 470);
static_assert(binarySize(kConnEstRejRows) == sizeof(VornBcConnEstablishRejS));

} // namespace

constexpr Fields bci::kConnEstReq = {"bciConnEstablishMsg", kConnEstReqRows};

const bci::codec::Shape bci::kConnEstReqShape = {"BciConnEstReq",
                                                 "VornBcConnEstablishReqS",
                                                 sizeof(VornBcConnEstablishReqS),
                                                 {kConnEstReqRows},
                                                 bci::kConnEstReq.source};

BCI_DEFINE_CONSTRUCTOR(BciConnEstReq, m_connEstReq)
BCI_DEFINE_MESSAGE(BciConnEstReq, m_connEstReq)
BCI_DEFINE_CODECS(BciConnEstReq, m_connEstReq, kConnEstReq)

unsigned int BciConnEstReq::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + 6;
}

constexpr Fields bci::kConnEstRej = {"bciConnEstablishMsg", kConnEstRejRows};

const bci::codec::Shape bci::kConnEstRejShape = {"BciConnEstRej",
                                                 "VornBcConnEstablishRejS",
                                                 sizeof(VornBcConnEstablishRejS),
                                                 {kConnEstRejRows},
                                                 bci::kConnEstRej.source};

BCI_DEFINE_CONSTRUCTOR(BciConnEstRej, m_ConnEstRej)
BCI_DEFINE_MESSAGE(BciConnEstRej, m_ConnEstRej)
BCI_DEFINE_CODECS(BciConnEstRej, m_ConnEstRej, kConnEstRej)

unsigned int BciConnEstRej::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + 470;
}
