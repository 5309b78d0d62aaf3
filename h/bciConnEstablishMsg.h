/// @file
/// The messages that establish the connection to a board.
#ifndef BCI_CONN_ESTABLISH_MSG_H
#define BCI_CONN_ESTABLISH_MSG_H

#include "bciApi.h"
#include "bciMessage.h"
#include "vornBcBasic.h"

/// Connection establishment request: names the protocol revision that the sender speaks.
class BCI_API BciConnEstReq : public BciMessageBase
{
public:
    /// Leaves the wire structure as the storage held it; the signal number is not stored either.
    /// @param sigNo  the signal number
    explicit BciConnEstReq(SIGSELECT sigNo);
    ~BciConnEstReq() override;

    /// @param sigNo  the signal number
    /// @return a new message, which the caller deletes; null if it could not be allocated
    static BciMessageBase* instantiateBciMsg(SIGSELECT sigNo);

    SIGSELECT getSigNo() const override;
    VornNodeCommonAddressInfoS getAddressInfo() const override;
    /// @return 16, the size of the wire structure; the binary form itself takes 14 bytes
    unsigned int getMaxBinaryBufferSize() override;
    /// @return 41
    unsigned int getMaxTextBufferSize() override;

    bool serializeBciMsgToText(commonStream::ostream_text& stream) const override;
    bool serializeBciMsgToBinary(commonStream::ostream_binary& stream) const override;
    bool serializeBciMsgToXml(commonStream::ostream_text& stream) const override;
    bool deserializeBciMsgFromText(commonStream::istream_text& stream) override;
    bool deserializeBciMsgFromBinary(commonStream::istream_binary& stream) override;
    bool deserializeBciMsgFromXml(commonStream::istream_text& stream) override;

    VornBcConnEstablishReqS m_connEstReq; ///< the wire structure
};

/// Connection establishment reject: names the revision that the board supports, and the cause.
class BCI_API BciConnEstRej : public BciMessageBase
{
public:
    /// Leaves the wire structure as the storage held it; the signal number is not stored either.
    /// @param sigNo  the signal number
    explicit BciConnEstRej(SIGSELECT sigNo);
    ~BciConnEstRej() override;

    /// @param sigNo  the signal number
    /// @return a new message, which the caller deletes; null if it could not be allocated
    static BciMessageBase* instantiateBciMsg(SIGSELECT sigNo);

    SIGSELECT getSigNo() const override;
    VornNodeCommonAddressInfoS getAddressInfo() const override;
    /// @return 132, the size of the wire structure and of the binary form
    unsigned int getMaxBinaryBufferSize() override;
    /// @return 505
    unsigned int getMaxTextBufferSize() override;

    bool serializeBciMsgToText(commonStream::ostream_text& stream) const override;
    bool serializeBciMsgToBinary(commonStream::ostream_binary& stream) const override;
    bool serializeBciMsgToXml(commonStream::ostream_text& stream) const override;
    bool deserializeBciMsgFromText(commonStream::istream_text& stream) override;
    bool deserializeBciMsgFromBinary(commonStream::istream_binary& stream) override;
    bool deserializeBciMsgFromXml(commonStream::istream_text& stream) override;

    VornBcConnEstablishRejS m_ConnEstRej; ///< the wire structure
};

#endif
