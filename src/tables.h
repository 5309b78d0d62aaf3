// The messages that are a table of rows and nothing more, by number. Their operations hand over the number of
// their table: on the target its address would cost each of them ten instructions more.
#ifndef BCI_TABLES_H
#define BCI_TABLES_H

#include "codec/codec.h"

#pragma GCC visibility push(hidden)
namespace bci
{

enum class Table : U8
{
    auditCfm,
    connEstRej,
    connEstReq,
    generic,
    genericRej,
    getHwPidCfm,
    getVisualIndicationCfm,
    hwLogGetReq,
    loadLmcAck,
    loadLmcEndCfm,
    loadLmcInitCfm,
    loadLmcInitReq,
    loadLmcReq,
    maintStateInd,
    restartBoardFwd,
    selectLmcReq,
    selectMmiReq,
    setMaintStateReq,
    setUtcTimeReq,
    setVisualIndicationReq,
    tempMeasStartReq
};

// Each is defined beside its message's rows.
extern const codec::Fields kAuditCfm;
extern const codec::Fields kConnEstRej;
extern const codec::Fields kConnEstReq;
extern const codec::Fields kGeneric;
extern const codec::Fields kGenericRej;
extern const codec::Fields kGetHwPidCfm;
extern const codec::Fields kGetVisualIndicationCfm;
extern const codec::Fields kHwLogGetReq;
extern const codec::Fields kLoadLmcAck;
extern const codec::Fields kLoadLmcEndCfm;
extern const codec::Fields kLoadLmcInitCfm;
extern const codec::Fields kLoadLmcInitReq;
extern const codec::Fields kLoadLmcReq;
extern const codec::Fields kMaintStateInd;
extern const codec::Fields kRestartBoardFwd;
extern const codec::Fields kSelectLmcReq;
extern const codec::Fields kSelectMmiReq;
extern const codec::Fields kSetMaintStateReq;
extern const codec::Fields kSetUtcTimeReq;
extern const codec::Fields kSetVisualIndicationReq;
extern const codec::Fields kTempMeasStartReq;

// The engine's functions of these names, on a whole table.
bool writeText(Table table, const void* structure, commonStream::ostream_text& stream);
bool writeBinary(Table table, const void* structure, commonStream::ostream_binary& stream);
bool writeXml(Table table, const void* structure, commonStream::ostream_text& stream);
bool readText(Table table, void* structure, commonStream::istream_text& stream);
bool readBinary(Table table, void* structure, commonStream::istream_binary& stream);
bool readXml(Table table, void* structure, commonStream::istream_text& stream);

} // namespace bci
#pragma GCC visibility pop

#endif
