#include "tables.h"

namespace bci
{

namespace
{

// In the order of the numbers.
constexpr const codec::Fields* kTables[] = {
    &kAuditCfm,
    &kConnEstRej,
    &kConnEstReq,
    &kGeneric,
    &kGenericRej,
    &kGetHwPidCfm,
    &kGetVisualIndicationCfm,
    &kHwLogGetCfm,
    &kHwLogGetReq,
    &kHwLogSetReq,
    &kLoadLmcAck,
    &kLoadLmcEndCfm,
    &kLoadLmcInitCfm,
    &kLoadLmcInitReq,
    &kLoadLmcReq,
    &kMaintStateInd,
    &kRestartBoardFwd,
    &kSelectLmcReq,
    &kSelectMmiReq,
    &kSetMaintStateReq,
    &kSetUtcTimeReq,
    &kSetVisualIndicationReq,
    &kTempMeasStartReq,
};

const codec::Fields& fieldsOf(Table table)
{
    return *kTables[static_cast<unsigned int>(table)];
}

} // namespace

bool writeText(const void* structure, commonStream::ostream_text& stream, Table table)
{
    return codec::writeText(fieldsOf(table), structure, stream);
}

bool writeBinary(const void* structure, commonStream::ostream_binary& stream, Table table)
{
    return codec::writeBinary(fieldsOf(table), structure, stream);
}

bool writeXml(const void* structure, commonStream::ostream_text& stream, Table table)
{
    return codec::writeXml(fieldsOf(table), structure, stream);
}

bool readText(void* structure, commonStream::istream_text& stream, Table table)
{
    return codec::readText(fieldsOf(table), structure, stream);
}

bool readBinary(void* structure, commonStream::istream_binary& stream, Table table)
{
    return codec::readBinary(fieldsOf(table), structure, stream);
}

bool readXml(void* structure, commonStream::istream_text& stream, Table table)
{
    return codec::readXml(fieldsOf(table), structure, stream);
}

} // namespace bci
