#include "bciCommonMsg.h"

#include "messageOperations.h"
#include "shapes.h"

using bci::codec::Field;
using bci::codec::Fields;

namespace
{

constexpr Field kGenericRows[] = {
    BCI_HEADER(GenericMsgS, 99),
};
static_assert(maxTextSize(kGenericRows) == 35);
static_assert(binarySize(kGenericRows) == sizeof(GenericMsgS));

constexpr Field kGenericRejRows[] = {
    BCI_HEADER(GenericRejMsgS, 229),
    BCI_FIELD(GenericRejMsgS, cause.errorCode, "errorCode", 250),
    BCI_FIELD(GenericRejMsgS, cause.padding0, "rejectCausePadding0", 257),
    BCI_FIELD(GenericRejMsgS, cause.errorDescription, "errorDescription", 264),
    BCI_FIELD(GenericRejMsgS, cause.padding1, "rejectCausePadding1", 271),
};
static_assert(maxTextSize(kGenericRejRows) == 35 + 458);
static_assert(binarySize(kGenericRejRows) == sizeof(GenericRejMsgS));

} // namespace

constexpr Fields bci::kGeneric = {"bciCommonMsg", kGenericRows};

const bci::codec::Shape bci::kGenericShape = {
    "BciGenericMsg", "GenericMsgS", sizeof(GenericMsgS), {kGenericRows}, bci::kGeneric.source};

BCI_DEFINE_CONSTRUCTOR(BciGenericMsg, m_genericMsg)
BCI_DEFINE_MESSAGE(BciGenericMsg, m_genericMsg)
BCI_DEFINE_CODECS(BciGenericMsg, m_genericMsg, kGeneric)

unsigned int BciGenericMsg::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize();
}

constexpr Fields bci::kGenericRej = {"bciCommonMsg", kGenericRejRows};

const bci::codec::Shape bci::kGenericRejShape = {
    "BciGenericRejMsg", "GenericRejMsgS", sizeof(GenericRejMsgS), {kGenericRejRows}, bci::kGenericRej.source};

BCI_DEFINE_CONSTRUCTOR(BciGenericRejMsg, m_genericRejMsg)
BCI_DEFINE_MESSAGE(BciGenericRejMsg, m_genericRejMsg)
BCI_DEFINE_CODECS(BciGenericRejMsg, m_genericRejMsg, kGenericRej)

unsigned int BciGenericRejMsg::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + 458;
}
