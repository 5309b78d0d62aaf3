// Tables that are written or read whole, by number. Operations hand over the number of a table: on the target its
// address would cost each of them ten instructions more.
#ifndef BCI_TABLES_H
#define BCI_TABLES_H

#include "codec/codec.h"

#pragma GCC visibility push(hidden)
namespace bci
{

enum class Table : U8
{
    kAuditCfm,
    kConnEstRej,
    kConnEstReq,
    kGeneric,
    kGenericRej,
    kGetHwPidCfm,
    kGetVisualIndicationCfm,
    kHwLogGetCfm,
    kHwLogGetReq,
    kHwLogSetReq,
    kLoadLmcAck,
    kLoadLmcEndCfm,
    kLoadLmcInitCfm,
    kLoadLmcInitReq,
    kLoadLmcReq,
    kMaintStateInd,
    kRestartBoardFwd,
    kSelectLmcReq,
    kSelectMmiReq,
    kSetMaintStateReq,
    kSetUtcTimeReq,
    kSetVisualIndicationReq,
    kTempMeasStartReq
};

// Each is defined beside its message's rows.
extern const codec::Fields kAuditCfm;
extern const codec::Fields kConnEstRej;
extern const codec::Fields kConnEstReq;
extern const codec::Fields kGeneric;
extern const codec::Fields kGenericRej;
extern const codec::Fields kGetHwPidCfm;
extern const codec::Fields kGetVisualIndicationCfm;
extern const codec::Fields kHwLogGetCfm;
extern const codec::Fields kHwLogGetReq;
extern const codec::Fields kHwLogSetReq;
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
bool writeText(const void* structure, commonStream::ostream_text& stream, Table table);
bool writeBinary(const void* structure, commonStream::ostream_binary& stream, Table table);
bool writeXml(const void* structure, commonStream::ostream_text& stream, Table table);
bool readText(void* structure, commonStream::istream_text& stream, Table table);
bool readBinary(void* structure, commonStream::istream_binary& stream, Table table);
bool readXml(void* structure, commonStream::istream_text& stream, Table table);

} // namespace bci
#pragma GCC visibility pop

#endif
