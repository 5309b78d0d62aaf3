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
    &kHwLogGetReq,
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

bool writeText(Table table, const void* structure, commonStream::ostream_text& stream)
{
    return codec::writeText(fieldsOf(table), structure, stream);
}

bool writeBinary(Table table, const void* structure, commonStream::ostream_binary& stream)
{
    return codec::writeBinary(fieldsOf(table), structure, stream);
}

bool writeXml(Table table, const void* structure, commonStream::ostream_text& stream)
{
    return codec::writeXml(fieldsOf(table), structure, stream);
}

bool readText(Table table, void* structure, commonStream::istream_text& stream)
{
    return codec::readText(fieldsOf(table), structure, stream);
}

bool readBinary(Table table, void* structure, commonStream::istream_binary& stream)
{
    return codec::readBinary(fieldsOf(table), structure, stream);
}

bool readXml(Table table, void* structure, commonStream::istream_text& stream)
{
    return codec::readXml(fieldsOf(table), structure, stream);
}

} // namespace bci
