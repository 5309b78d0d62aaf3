#include "bciAuditMsg.h"

#include "codec/codec.h"
#include "shapes.h"

#include <new>

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
constexpr Fields kAuditCfm = {"bciAuditMsg", kAuditCfmRows};

static_assert(maxTextSize(kAuditCfmRows) == 35 + 7);
// getMaxBinaryBufferSize() counts the alignment bytes too, which the form does not carry.
static_assert(binarySize(kAuditCfmRows) == 14);

} // namespace

const bci::codec::Shape bci::kAuditCfmShape = {"BciAuditCfm", "VornBcAuditCfmS", sizeof(VornBcAuditCfmS),
                                               kAuditCfm};

BciAuditCfm::BciAuditCfm(SIGSELECT sigNo)
    : BciMessageBase(reinterpret_cast<char*>(&m_auditCfm), sizeof m_auditCfm, sigNo)
{
}

BciAuditCfm::~BciAuditCfm() = default;

BciMessageBase* BciAuditCfm::instantiateBciMsg(SIGSELECT sigNo)
{
    return new (std::nothrow) BciAuditCfm(sigNo);
}

SIGSELECT BciAuditCfm::getSigNo() const
{
    return m_auditCfm.sigNo;
}

VornNodeCommonAddressInfoS BciAuditCfm::getAddressInfo() const
{
    return m_auditCfm.addressInfo;
}

unsigned int BciAuditCfm::getMaxBinaryBufferSize()
{
    return sizeof m_auditCfm;
}

unsigned int BciAuditCfm::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + MAX_BUFFER_LEN_FOR_SHORT + 1;
}

bool BciAuditCfm::serializeBciMsgToText(commonStream::ostream_text& stream) const
{
    return writeText(kAuditCfm, &m_auditCfm, stream);
}

bool BciAuditCfm::serializeBciMsgToBinary(commonStream::ostream_binary& stream) const
{
    return writeBinary(kAuditCfm, &m_auditCfm, stream);
}

bool BciAuditCfm::serializeBciMsgToXml(commonStream::ostream_text& stream) const
{
    return writeXml(kAuditCfm, &m_auditCfm, stream);
}

bool BciAuditCfm::deserializeBciMsgFromText(commonStream::istream_text& stream)
{
    return readText(kAuditCfm, &m_auditCfm, stream);
}

bool BciAuditCfm::deserializeBciMsgFromBinary(commonStream::istream_binary& stream)
{
    return readBinary(kAuditCfm, &m_auditCfm, stream);
}

bool BciAuditCfm::deserializeBciMsgFromXml(commonStream::istream_text& stream)
{
    return readXml(kAuditCfm, &m_auditCfm, stream);
}
