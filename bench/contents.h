// What the benchmarks work on: one fixed content for each message class, and some that grow.
#ifndef BENCH_CONTENTS_H
#define BENCH_CONTENTS_H

#include "bciMessage.h"
#include "vornBcBasic.h"
#include "vornBcStateHandling.h"

#include <memory>
#include <span>

namespace bench
{

// The capability confirm with all that its message has room for.
struct CapabilityCfm
{
    SIGSELECT sigNo;
    VornNodeCommonAddressInfoS addressInfo;
    U16 numberOfBoardCapabilities;
    U16 padding0;
    VornBcBoardCapabilityS boardCapabilities[2];
};
static_assert(sizeof(CapabilityCfm) == 192);
static_assert(offsetof(CapabilityCfm, boardCapabilities) ==
              offsetof(VornBcGetCapabilitiesCfmS, boardCapabilities));

// Likewise the load-module data.
struct LoadLmcData
{
    SIGSELECT sigNo;
    VornNodeCommonAddressInfoS addressInfo;
    U16 lmSeqNr;
    U16 padding0;
    U32 lmBlockSize;
    U8 lmBlock[4100];
};
static_assert(sizeof(LoadLmcData) == 4120);
static_assert(offsetof(LoadLmcData, lmBlock) == offsetof(VornBcLoadLmcDataS, lmBlock));

// All of them expect a structure that is zero.
void fill(GenericMsgS& message);
void fill(GenericRejMsgS& message);
void fill(VornBcConnEstablishReqS& message);
void fill(VornBcConnEstablishRejS& message);
void fill(CapabilityCfm& message); // loading, and Ethernet with two hosts
void fill(VornBcFaultIndS& message);
void fill(VornBcFaultceaseIndS& message);
void fill(VornBcGetHwPidCfmS& message);
void fill(VornBcHwLogGetReqS& message);
void fill(VornBcHwLogSetReqS& message); // with eight entries
void fill(VornBcHwLogGetCfmS& message);
void fill(VornBcLoadLmcInitReqS& message);
void fill(VornBcLoadLmcInitCfmS& message);
void fill(VornBcSelectLmcReqS& message);
void fill(VornBcLoadLmcReqS& message);
void fill(VornBcLoadLmcAckS& message);
void fill(VornBcLoadLmcEndCfmS& message);
void fill(LoadLmcData& message); // with 1024 bytes
void fill(VornBcSetMaintStateReqS& message);
void fill(VornBcMaintStateIndS& message);
void fill(VornBcSelectMmiReqS& message);
void fill(VornBcTempMeasStartReqS& message);
void fill(VornBcSetUtcTimeReqS& message);
void fill(VornBcSetVisualIndicationReqS& message);
void fill(VornBcGetVisualIndicationCfmS& message);
void fill(VornBcRestartBoardFwdS& message);
void fill(VornBcAuditCfmS& message);

// An Ethernet interface with so many links, at most 10, and a climate control with so many sensors.
void fillInterfaceAndClimate(CapabilityCfm& message, unsigned int entries);
// Entries, at most 424, that share the log evenly.
void fillLog(VornBcHwLogSetReqS& message, unsigned int entries);
// Bytes, at most 4100, that every form carries: neither zeros nor what ends a text or an element's content.
void fillBlock(LoadLmcData& message, unsigned int size);

// A message that holds a wire structure.
template <typename Message, typename Wire>
std::unique_ptr<BciMessageBase> messageOf(const Wire& wire)
{
    std::unique_ptr<BciMessageBase> message(Message::instantiateBciMsg(wire.sigNo));
    message->setMsg(reinterpret_cast<const char*>(&wire));
    return message;
}

// A message class with its content, and an empty one to read into. The capability confirm is there twice:
// with its ordinary content, and full.
struct Content
{
    const char* name;
    std::unique_ptr<BciMessageBase> (*filled)();
    std::unique_ptr<BciMessageBase> (*empty)();
};

inline constexpr const char* kFullCapability = "BciCapabilityCfmMsg-full";

std::span<const Content> contents();

} // namespace bench

#endif
