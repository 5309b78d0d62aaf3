/// @file
/// The messages that raise a fault and withdraw it.
#ifndef BCI_FAULT_MSG_H
#define BCI_FAULT_MSG_H

#include "bciApi.h"
#include "bciMessage.h"
#include "vornBcBasic.h"

/// Fault indication.
///
/// More than 4 words of additional data are rejected by every operation but the text writer, which writes
/// as many as the structure reaches, 6 at most. A text without additional data carries one ':' more, over
/// which the reader stumbles: `faultCase` keeps its value.
class BCI_API BciFaultIndication : public BciMessageBase
{
public:
    /// Leaves the wire structure as the storage held it; the signal number is not stored either.
    /// @param sigNo  the signal number
    explicit BciFaultIndication(SIGSELECT sigNo);
    ~BciFaultIndication() override;

    /// @param sigNo  the signal number
    /// @return a new message, which the caller deletes; null if it could not be allocated
    static BciMessageBase* instantiateBciMsg(SIGSELECT sigNo);

    SIGSELECT getSigNo() const override;
    VornNodeCommonAddressInfoS getAddressInfo() const override;
    /// @return 144, the size of the wire structure; the binary form itself takes 142 bytes
    unsigned int getMaxBinaryBufferSize() override;
    /// @return 644
    unsigned int getMaxTextBufferSize() override;

    bool serializeBciMsgToText(commonStream::ostream_text& stream) const override;
    bool serializeBciMsgToBinary(commonStream::ostream_binary& stream) const override;
    bool serializeBciMsgToXml(commonStream::ostream_text& stream) const override;
    bool deserializeBciMsgFromText(commonStream::istream_text& stream) override;
    bool deserializeBciMsgFromBinary(commonStream::istream_binary& stream) override;
    bool deserializeBciMsgFromXml(commonStream::istream_text& stream) override;

    VornBcFaultIndS m_faultIndication; ///< the wire structure
};

/// Fault cease indication.
///
/// More than 4 words of additional data are rejected by every operation. A text without additional data
/// does not read back, as with BciFaultIndication.
class BCI_API BciFaultCeaseIndication : public BciMessageBase
{
public:
    /// Leaves the wire structure as the storage held it; the signal number is not stored either.
    /// @param sigNo  the signal number
    explicit BciFaultCeaseIndication(SIGSELECT sigNo);
    ~BciFaultCeaseIndication() override;

    /// @param sigNo  the signal number
    /// @return a new message, which the caller deletes; null if it could not be allocated
    static BciMessageBase* instantiateBciMsg(SIGSELECT sigNo);

    SIGSELECT getSigNo() const override;
    VornNodeCommonAddressInfoS getAddressInfo() const override;
    /// @return 28, the size of the wire structure; the binary form itself takes 26 bytes
    unsigned int getMaxBinaryBufferSize() override;
    /// @return 77
    unsigned int getMaxTextBufferSize() override;

    bool serializeBciMsgToText(commonStream::ostream_text& stream) const override;
    bool serializeBciMsgToBinary(commonStream::ostream_binary& stream) const override;
    bool serializeBciMsgToXml(commonStream::ostream_text& stream) const override;
    bool deserializeBciMsgFromText(commonStream::istream_text& stream) override;
    bool deserializeBciMsgFromBinary(commonStream::istream_binary& stream) override;
    bool deserializeBciMsgFromXml(commonStream::istream_text& stream) override;

    VornBcFaultceaseIndS m_faultCeaseIndication; ///< the wire structure
};

#endif
