/// @file
/// The message that forwards the restart of a board.
#ifndef BCI_RESTART_BOARD_MSG_H
#define BCI_RESTART_BOARD_MSG_H

#include "bciApi.h"
#include "bciMessage.h"
#include "vornBcBasic.h"

/// Forwarded restart of a board, with a text that says why.
class BCI_API BciRestartBoardFwdMsg : public BciMessageBase
{
public:
    /// Leaves the wire structure as the storage held it; the signal number is not stored either.
    /// @param sigNo  the signal number
    explicit BciRestartBoardFwdMsg(SIGSELECT sigNo);
    ~BciRestartBoardFwdMsg() override;

    /// @param sigNo  the signal number
    /// @return a new message, which the caller deletes; null if it could not be allocated
    static BciMessageBase* instantiateBciMsg(SIGSELECT sigNo);

    SIGSELECT getSigNo() const override;
    VornNodeCommonAddressInfoS getAddressInfo() const override;
    /// @return 152, the size of the wire structure; the binary form itself takes 150 bytes
    unsigned int getMaxBinaryBufferSize() override;
    /// @return 587
    unsigned int getMaxTextBufferSize() override;

    bool serializeBciMsgToText(commonStream::ostream_text& stream) const override;
    bool serializeBciMsgToBinary(commonStream::ostream_binary& stream) const override;
    bool serializeBciMsgToXml(commonStream::ostream_text& stream) const override;
    bool deserializeBciMsgFromText(commonStream::istream_text& stream) override;
    bool deserializeBciMsgFromBinary(commonStream::istream_binary& stream) override;
    bool deserializeBciMsgFromXml(commonStream::istream_text& stream) override;

    VornBcRestartBoardFwdS m_bciRestartBoardFwdMsg; ///< the wire structure
};

#endif
