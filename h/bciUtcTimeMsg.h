/// @file
/// The message that sets a board's time.
#ifndef BCI_UTC_TIME_MSG_H
#define BCI_UTC_TIME_MSG_H

#include "bciApi.h"
#include "bciMessage.h"
#include "vornBcBasic.h"

/// Request to set the UTC time.
class BCI_API BciSetUtcTimeReq : public BciMessageBase
{
public:
    /// Leaves the wire structure as the storage held it; the signal number is not stored either.
    /// @param sigNo  the signal number
    explicit BciSetUtcTimeReq(SIGSELECT sigNo);
    ~BciSetUtcTimeReq() override;

    /// @param sigNo  the signal number
    /// @return a new message, which the caller deletes; null if it could not be allocated
    static BciMessageBase* instantiateBciMsg(SIGSELECT sigNo);

    SIGSELECT getSigNo() const override;
    VornNodeCommonAddressInfoS getAddressInfo() const override;
    /// @return 16, the size of the wire structure and of the binary form
    unsigned int getMaxBinaryBufferSize() override;
    /// @return 46
    unsigned int getMaxTextBufferSize() override;

    bool serializeBciMsgToText(commonStream::ostream_text& stream) const override;
    bool serializeBciMsgToBinary(commonStream::ostream_binary& stream) const override;
    bool serializeBciMsgToXml(commonStream::ostream_text& stream) const override;
    bool deserializeBciMsgFromText(commonStream::istream_text& stream) override;
    bool deserializeBciMsgFromBinary(commonStream::istream_binary& stream) override;
    bool deserializeBciMsgFromXml(commonStream::istream_text& stream) override;

    VornBcSetUtcTimeReqS m_setUtcTimeReq; ///< the wire structure
};

#endif
