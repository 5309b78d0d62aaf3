/// @file
/// The message of a board's audit.
#ifndef BCI_AUDIT_MSG_H
#define BCI_AUDIT_MSG_H

#include "bciApi.h"
#include "bciMessage.h"
#include "vornBcStateHandling.h"

/// Audit confirm: a board reports its main state.
class BCI_API BciAuditCfm : public BciMessageBase
{
public:
    /// Leaves the wire structure as the storage held it; the signal number is not stored either.
    /// @param sigNo  the signal number
    explicit BciAuditCfm(SIGSELECT sigNo);
    ~BciAuditCfm() override;

    /// @param sigNo  the signal number
    /// @return a new message, which the caller deletes; null if it could not be allocated
    static BciMessageBase* instantiateBciMsg(SIGSELECT sigNo);

    SIGSELECT getSigNo() const override;
    VornNodeCommonAddressInfoS getAddressInfo() const override;
    /// @return 16, the size of the wire structure; the binary form itself takes 14 bytes
    unsigned int getMaxBinaryBufferSize() override;
    /// @return 42
    unsigned int getMaxTextBufferSize() override;

    bool serializeBciMsgToText(commonStream::ostream_text& stream) const override;
    bool serializeBciMsgToBinary(commonStream::ostream_binary& stream) const override;
    bool serializeBciMsgToXml(commonStream::ostream_text& stream) const override;
    bool deserializeBciMsgFromText(commonStream::istream_text& stream) override;
    bool deserializeBciMsgFromBinary(commonStream::istream_binary& stream) override;
    bool deserializeBciMsgFromXml(commonStream::istream_text& stream) override;

    VornBcAuditCfmS m_auditCfm; ///< the wire structure
};

#endif
