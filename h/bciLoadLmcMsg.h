/// @file
/// The messages that load a load module and select it.
#ifndef BCI_LOAD_LMC_MSG_H
#define BCI_LOAD_LMC_MSG_H

#include "bciApi.h"
#include "bciMessage.h"
#include "vornBcBasic.h"

/// Load request: a load module and a search path.
class BCI_API BciLoadLmcReq : public BciMessageBase
{
public:
    /// Leaves the wire structure as the storage held it; the signal number is not stored either.
    /// @param sigNo  the signal number
    explicit BciLoadLmcReq(SIGSELECT sigNo);
    ~BciLoadLmcReq() override;

    /// @param sigNo  the signal number
    /// @return a new message, which the caller deletes; null if it could not be allocated
    static BciMessageBase* instantiateBciMsg(SIGSELECT sigNo);

    SIGSELECT getSigNo() const override;
    VornNodeCommonAddressInfoS getAddressInfo() const override;
    /// @return 248, the size of the wire structure and of the binary form
    unsigned int getMaxBinaryBufferSize() override;
    /// @return 979
    unsigned int getMaxTextBufferSize() override;

    bool serializeBciMsgToText(commonStream::ostream_text& stream) const override;
    bool serializeBciMsgToBinary(commonStream::ostream_binary& stream) const override;
    bool serializeBciMsgToXml(commonStream::ostream_text& stream) const override;
    bool deserializeBciMsgFromText(commonStream::istream_text& stream) override;
    bool deserializeBciMsgFromBinary(commonStream::istream_binary& stream) override;
    bool deserializeBciMsgFromXml(commonStream::istream_text& stream) override;

    VornBcLoadLmcReqS m_loadLmcReq; ///< the wire structure
};

/// Acknowledgement of a data block.
///
/// The XML writer closes the element `lmSeqNr` by the name of another, so that the reader, which wants its
/// own, does not find it.
class BCI_API BciLoadLmcAck : public BciMessageBase
{
public:
    /// Leaves the wire structure as the storage held it; the signal number is not stored either.
    /// @param sigNo  the signal number
    explicit BciLoadLmcAck(SIGSELECT sigNo);
    ~BciLoadLmcAck() override;

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

    VornBcLoadLmcAckS m_loadLmcAck; ///< the wire structure
};

/// End of load confirm.
class BCI_API BciLoadLmcEndCfm : public BciMessageBase
{
public:
    /// Leaves the wire structure as the storage held it; the signal number is not stored either.
    /// @param sigNo  the signal number
    explicit BciLoadLmcEndCfm(SIGSELECT sigNo);
    ~BciLoadLmcEndCfm() override;

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

    VornBcLoadLmcEndCfmS m_loadLmcEndCfm; ///< the wire structure
};

/// Load module selection request.
class BCI_API BciSelectLmcReq : public BciMessageBase
{
public:
    /// Leaves the wire structure as the storage held it; the signal number is not stored either.
    /// @param sigNo  the signal number
    explicit BciSelectLmcReq(SIGSELECT sigNo);
    ~BciSelectLmcReq() override;

    /// @param sigNo  the signal number
    /// @return a new message, which the caller deletes; null if it could not be allocated
    static BciMessageBase* instantiateBciMsg(SIGSELECT sigNo);

    SIGSELECT getSigNo() const override;
    VornNodeCommonAddressInfoS getAddressInfo() const override;
    /// @return 48, the size of the wire structure and of the binary form
    unsigned int getMaxBinaryBufferSize() override;
    /// @return 215
    unsigned int getMaxTextBufferSize() override;

    bool serializeBciMsgToText(commonStream::ostream_text& stream) const override;
    bool serializeBciMsgToBinary(commonStream::ostream_binary& stream) const override;
    bool serializeBciMsgToXml(commonStream::ostream_text& stream) const override;
    bool deserializeBciMsgFromText(commonStream::istream_text& stream) override;
    bool deserializeBciMsgFromBinary(commonStream::istream_binary& stream) override;
    bool deserializeBciMsgFromXml(commonStream::istream_text& stream) override;

    VornBcSelectLmcReqS m_selectLmcReq; ///< the wire structure
};

/// One block of load-module data, of at most 4100 bytes; every operation rejects a larger one.
///
/// In text and XML the block goes out as it is, zero bytes and ':' included: reading text stops at the
/// first ':', and XML ends at the first zero byte.
class BCI_API BciLoadLmcData : public BciMessageBase
{
public:
    /// Allocates the wire structure, 4120 bytes, and leaves it as the allocation held it; the signal number
    /// is not stored either. If there is no memory getMsg() is null, and the object good for nothing but
    /// being destroyed; instantiateBciMsg() never hands out such an object.
    /// @param sigNo  the signal number
    explicit BciLoadLmcData(SIGSELECT sigNo);
    /// Frees the wire structure.
    ~BciLoadLmcData() override;

    /// @param sigNo  the signal number
    /// @return a new message, which the caller deletes; null if it could not be allocated
    static BciMessageBase* instantiateBciMsg(SIGSELECT sigNo);

    SIGSELECT getSigNo() const override;
    VornNodeCommonAddressInfoS getAddressInfo() const override;
    /// @return `lmBlockSize` + 23, by what the message holds; the binary form itself takes `lmBlockSize` + 20
    /// bytes
    unsigned int getMaxBinaryBufferSize() override;
    /// @return 1000, which a block of some hundred bytes exceeds
    unsigned int getMaxTextBufferSize() override;

    bool serializeBciMsgToText(commonStream::ostream_text& stream) const override;
    bool serializeBciMsgToBinary(commonStream::ostream_binary& stream) const override;
    bool serializeBciMsgToXml(commonStream::ostream_text& stream) const override;
    bool deserializeBciMsgFromText(commonStream::istream_text& stream) override;
    bool deserializeBciMsgFromBinary(commonStream::istream_binary& stream) override;
    bool deserializeBciMsgFromXml(commonStream::istream_text& stream) override;

    VornBcLoadLmcDataS* m_loadLmcData; ///< the wire structure, owned by the message
};

#endif
