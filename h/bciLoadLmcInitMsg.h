/// @file
/// The messages that initialise the loading of a load module.
#ifndef BCI_LOAD_LMC_INIT_MSG_H
#define BCI_LOAD_LMC_INIT_MSG_H

#include "bciApi.h"
#include "bciMessage.h"
#include "vornBcBasic.h"

/// Load module initialisation request.
class BCI_API BciLoadLmcInitReq : public BciMessageBase
{
public:
    /// Leaves the wire structure as the storage held it; the signal number is not stored either.
    /// @param sigNo  the signal number
    explicit BciLoadLmcInitReq(SIGSELECT sigNo);
    ~BciLoadLmcInitReq() override;

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

    VornBcLoadLmcInitReqS m_loadLmcInitReq; ///< the wire structure
};

/// Load module initialisation confirm.
class BCI_API BciLoadLmcInitCfm : public BciMessageBase
{
public:
    /// Leaves the wire structure as the storage held it; the signal number is not stored either.
    /// @param sigNo  the signal number
    explicit BciLoadLmcInitCfm(SIGSELECT sigNo);
    ~BciLoadLmcInitCfm() override;

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

    VornBcLoadLmcInitCfmS m_loadLmcInitCfm; ///< the wire structure
};

#endif
