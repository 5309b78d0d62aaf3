/// @file
/// The messages of a board's hardware identity and hardware log.
#ifndef BCI_HW_MSG_H
#define BCI_HW_MSG_H

#include "bciApi.h"
#include "bciMessage.h"
#include "vornBcBasic.h"

/// Hardware identity confirm: a board's product identity.
///
/// Text and binary are read into a cleared structure. `serialNumber` is not read from XML.
class BCI_API BciGetHwPidCfmMsg : public BciMessageBase
{
public:
    /// Leaves the wire structure as the storage held it; the signal number is not stored either.
    /// @param sigNo  the signal number
    explicit BciGetHwPidCfmMsg(SIGSELECT sigNo);
    ~BciGetHwPidCfmMsg() override;

    /// @param sigNo  the signal number
    /// @return a new message, which the caller deletes; null if it could not be allocated
    static BciMessageBase* instantiateBciMsg(SIGSELECT sigNo);

    SIGSELECT getSigNo() const override;
    VornNodeCommonAddressInfoS getAddressInfo() const override;
    /// @return 92, the size of the wire structure; the binary form itself takes 90 bytes
    unsigned int getMaxBinaryBufferSize() override;
    /// @return 339
    unsigned int getMaxTextBufferSize() override;

    bool serializeBciMsgToText(commonStream::ostream_text& stream) const override;
    bool serializeBciMsgToBinary(commonStream::ostream_binary& stream) const override;
    bool serializeBciMsgToXml(commonStream::ostream_text& stream) const override;
    bool deserializeBciMsgFromText(commonStream::istream_text& stream) override;
    bool deserializeBciMsgFromBinary(commonStream::istream_binary& stream) override;
    bool deserializeBciMsgFromXml(commonStream::istream_text& stream) override;

    VornBcGetHwPidCfmS m_getHwPidCfm; ///< the wire structure
};

/// Request for the hardware log.
class BCI_API BciHwLogGetReqMsg : public BciMessageBase
{
public:
    /// Leaves the wire structure as the storage held it; the signal number is not stored either.
    /// @param sigNo  the signal number
    explicit BciHwLogGetReqMsg(SIGSELECT sigNo);
    ~BciHwLogGetReqMsg() override;

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

    VornBcHwLogGetReqS m_hwLogGetReq; ///< the wire structure
};

/// Request to store entries in the hardware log.
///
/// Reading text succeeds only if at least one character follows the last delimiter. XML with more than
/// eleven entries is not read back, because the reader looks for other names than the writer gives.
class BCI_API BciHwLogSetReqMsg : public BciMessageBase
{
public:
    /// Leaves the wire structure as the storage held it; the signal number is not stored either.
    /// @param sigNo  the signal number
    explicit BciHwLogSetReqMsg(SIGSELECT sigNo);
    ~BciHwLogSetReqMsg() override;

    /// @param sigNo  the signal number
    /// @return a new message, which the caller deletes; null if it could not be allocated
    static BciMessageBase* instantiateBciMsg(SIGSELECT sigNo);

    SIGSELECT getSigNo() const override;
    VornNodeCommonAddressInfoS getAddressInfo() const override;
    /// @return 460, the size of the wire structure and of the binary form
    unsigned int getMaxBinaryBufferSize() override;
    /// @return 1815
    unsigned int getMaxTextBufferSize() override;

    bool serializeBciMsgToText(commonStream::ostream_text& stream) const override;
    bool serializeBciMsgToBinary(commonStream::ostream_binary& stream) const override;
    bool serializeBciMsgToXml(commonStream::ostream_text& stream) const override;
    bool deserializeBciMsgFromText(commonStream::istream_text& stream) override;
    bool deserializeBciMsgFromBinary(commonStream::istream_binary& stream) override;
    bool deserializeBciMsgFromXml(commonStream::istream_text& stream) override;

    VornBcHwLogSetReqS m_hwLogSetReq; ///< the wire structure
};

/// Hardware log confirm: at most one entry.
///
/// A length of 2 or more is rejected by every operation but the binary writer.
class BCI_API BciHwLogGetCfmMsg : public BciMessageBase
{
public:
    /// Leaves the wire structure as the storage held it; the signal number is not stored either.
    /// @param sigNo  the signal number
    explicit BciHwLogGetCfmMsg(SIGSELECT sigNo);
    ~BciHwLogGetCfmMsg() override;

    /// @param sigNo  the signal number
    /// @return a new message, which the caller deletes; null if it could not be allocated
    static BciMessageBase* instantiateBciMsg(SIGSELECT sigNo);

    SIGSELECT getSigNo() const override;
    VornNodeCommonAddressInfoS getAddressInfo() const override;
    /// @return 440, the size of the wire structure and of the binary form
    unsigned int getMaxBinaryBufferSize() override;
    /// @return 1742
    unsigned int getMaxTextBufferSize() override;

    bool serializeBciMsgToText(commonStream::ostream_text& stream) const override;
    bool serializeBciMsgToBinary(commonStream::ostream_binary& stream) const override;
    bool serializeBciMsgToXml(commonStream::ostream_text& stream) const override;
    bool deserializeBciMsgFromText(commonStream::istream_text& stream) override;
    bool deserializeBciMsgFromBinary(commonStream::istream_binary& stream) override;
    bool deserializeBciMsgFromXml(commonStream::istream_text& stream) override;

    VornBcHwLogGetCfmS m_hwLogGetCfm; ///< the wire structure
};

#endif
