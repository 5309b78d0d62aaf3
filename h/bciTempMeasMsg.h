/// @file
/// The message that starts temperature measurement.
#ifndef BCI_TEMP_MEAS_MSG_H
#define BCI_TEMP_MEAS_MSG_H

#include "bciApi.h"
#include "bciMessage.h"
#include "vornBcBasic.h"

/// Request to start hot-spot temperature measurement.
class BCI_API BciTempMeasStartReq : public BciMessageBase
{
public:
    /// Leaves the wire structure as the storage held it; the signal number is not stored either.
    /// @param sigNo  the signal number
    explicit BciTempMeasStartReq(SIGSELECT sigNo);
    ~BciTempMeasStartReq() override;

    /// @param sigNo  the signal number
    /// @return a new message, which the caller deletes; null if it could not be allocated
    static BciMessageBase* instantiateBciMsg(SIGSELECT sigNo);

    SIGSELECT getSigNo() const override;
    VornNodeCommonAddressInfoS getAddressInfo() const override;
    /// @return 16, the size of the wire structure; the binary form itself takes 13 bytes
    unsigned int getMaxBinaryBufferSize() override;
    /// @return 39
    unsigned int getMaxTextBufferSize() override;

    bool serializeBciMsgToText(commonStream::ostream_text& stream) const override;
    bool serializeBciMsgToBinary(commonStream::ostream_binary& stream) const override;
    bool serializeBciMsgToXml(commonStream::ostream_text& stream) const override;
    bool deserializeBciMsgFromText(commonStream::istream_text& stream) override;
    bool deserializeBciMsgFromBinary(commonStream::istream_binary& stream) override;
    bool deserializeBciMsgFromXml(commonStream::istream_text& stream) override;

    VornBcTempMeasStartReqS m_tempMeasStartReq; ///< the wire structure
};

#endif
