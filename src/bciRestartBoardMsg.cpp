#include "bciRestartBoardMsg.h"

#include "messageOperations.h"
#include "shapes.h"

using bci::codec::Field;
using bci::codec::Fields;

namespace
{

constexpr Field kRestartBoardFwdRows[] = {
    BCI_HEADER(VornBcRestartBoardFwdS, 115),
    BCI_FIELD(VornBcRestartBoardFwdS, traceInformation, "traceInformation", 136),
};
static_assert(maxTextSize(kRestartBoardFwdRows) == 35 + 552);
// getMaxBinaryBufferSize() counts the alignment bytes too, which the form does not carry.
static_assert(binarySize(kRestartBoardFwdRows) == 150);

} // namespace

constexpr Fields bci::kRestartBoardFwd = {"bciRestartBoardMsg", kRestartBoardFwdRows};

const bci::codec::Shape bci::kRestartBoardFwdShape = {"BciRestartBoardFwdMsg",
                                                      "VornBcRestartBoardFwdS",
                                                      sizeof(VornBcRestartBoardFwdS),
                                                      {kRestartBoardFwdRows},
                                                      bci::kRestartBoardFwd.source};

BCI_DEFINE_CONSTRUCTOR(BciRestartBoardFwdMsg, m_bciRestartBoardFwdMsg)
BCI_DEFINE_MESSAGE(BciRestartBoardFwdMsg, m_bciRestartBoardFwdMsg)
BCI_DEFINE_CODECS(BciRestartBoardFwdMsg, m_bciRestartBoardFwdMsg, kRestartBoardFwd)

unsigned int BciRestartBoardFwdMsg::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + 552;
}
