/// @file
/// Wire structures of board state handling.
#ifndef VORN_BC_STATE_HANDLING_H
#define VORN_BC_STATE_HANDLING_H

#include "scalarTypes.h"
#include "vornNodeCommon.h"

#include <stddef.h>

/// A board's main state. The values belong to the state-handling model; any 16-bit value is carried.
typedef S16 VornBcStateHandlingMainStatesE;

/// Audit confirm: what a board answers to an audit.
struct VornBcAuditCfmS
{
    SIGSELECT sigNo;                          ///< signal number
    VornNodeCommonAddressInfoS addressInfo;   ///< references of the exchange
    VornBcStateHandlingMainStatesE mainState; ///< the board's main state
    // Two bytes of alignment follow; no rendering carries them.
};

static_assert(sizeof(VornBcAuditCfmS) == 16, "wire layout");
static_assert(offsetof(VornBcAuditCfmS, sigNo) == 0, "wire layout");
static_assert(offsetof(VornBcAuditCfmS, addressInfo) == 4, "wire layout");
static_assert(offsetof(VornBcAuditCfmS, mainState) == 12, "wire layout");

#endif
