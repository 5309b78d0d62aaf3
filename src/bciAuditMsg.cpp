#include "bciAuditMsg.h"

#include "messageOperations.h"
#include "shapes.h"

using bci::codec::Field;
using bci::codec::Fields;
using bci::codec::Oddity;

namespace
{

constexpr Field kAuditCfmRows[] = {
    BCI_FIELD(VornBcAuditCfmS, sigNo, "sigNo", 98),
    // The log line of this element alone says "tag tag".
    BCI_FIELD(VornBcAuditCfmS, addressInfo.clientRef, "clientRef", 105, Oddity::doubledWord),
    BCI_FIELD(VornBcAuditCfmS, addressInfo.serverRef, "serverRef", 112),
    BCI_FIELD(VornBcAuditCfmS, mainState, "mainState", 119),
};
static_assert(maxTextSize(kAuditCfmRows) == 35 + 7);
// getMaxBinaryBufferSize() counts the alignment bytes too, which the form does not carry.
static_assert(binarySize(kAuditCfmRows) == 14);

} // namespace

constexpr Fields bci::kAuditCfm = {"bciAuditMsg", kAuditCfmRows};

const bci::codec::Shape bci::kAuditCfmShape = {
    "BciAuditCfm", "VornBcAuditCfmS", sizeof(VornBcAuditCfmS), {kAuditCfmRows}, bci::kAuditCfm.source};

BCI_DEFINE_CONSTRUCTOR(BciAuditCfm, m_auditCfm)
BCI_DEFINE_MESSAGE(BciAuditCfm, m_auditCfm)
BCI_DEFINE_CODECS(BciAuditCfm, m_auditCfm, kAuditCfm)

unsigned int BciAuditCfm::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + 7;
}
