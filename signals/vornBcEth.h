/// @file
/// Wire structures of a board's Ethernet capabilities.
#ifndef VORN_BC_ETH_H
#define VORN_BC_ETH_H

#include "scalarTypes.h"

#include <stddef.h>

/// The role of an Ethernet termination. Any 16-bit value is carried.
typedef S16 VornBcEthTermRoleE;

/// One host of an Ethernet termination.
struct VornBcEthTermHostParamsS
{
    U16 snid;                    ///< carried as a number
    VornBcEthTermRoleE termRole; ///< role of the termination
};

static_assert(sizeof(VornBcEthTermHostParamsS) == 4, "wire layout");
static_assert(offsetof(VornBcEthTermHostParamsS, snid) == 0, "wire layout");
static_assert(offsetof(VornBcEthTermHostParamsS, termRole) == 2, "wire layout");

/// Capability: Ethernet termination.
struct VornBcEthTermSupportS
{
    U16 numOfEthTermHosts;                        ///< valid entries of `ethTermHostParam`, at most 4
    U16 padding0;                                 ///< carried like any other field
    VornBcEthTermHostParamsS ethTermHostParam[4]; ///< the hosts
};

static_assert(sizeof(VornBcEthTermSupportS) == 20, "wire layout");
static_assert(offsetof(VornBcEthTermSupportS, numOfEthTermHosts) == 0, "wire layout");
static_assert(offsetof(VornBcEthTermSupportS, padding0) == 2, "wire layout");
static_assert(offsetof(VornBcEthTermSupportS, ethTermHostParam) == 4, "wire layout");

/// One link of an Ethernet hardware interface.
struct VornBcEthLinkParamS
{
    U32 portNr;   ///< port number
    U16 snid;     ///< carried as a number
    U8 bandWidth; ///< carried as a number
    U8 direction; ///< carried as a number
};

static_assert(sizeof(VornBcEthLinkParamS) == 8, "wire layout");
static_assert(offsetof(VornBcEthLinkParamS, portNr) == 0, "wire layout");
static_assert(offsetof(VornBcEthLinkParamS, snid) == 4, "wire layout");
static_assert(offsetof(VornBcEthLinkParamS, bandWidth) == 6, "wire layout");
static_assert(offsetof(VornBcEthLinkParamS, direction) == 7, "wire layout");

/// Capability: Ethernet hardware interface.
struct VornBcEthHwIfSupportS
{
    U16 localSwitchPortNr;                ///< port of the local switch
    U16 numOfEthLinks;                    ///< valid entries of `ethLinkParam`, at most 10
    VornBcEthLinkParamS ethLinkParam[10]; ///< the links
};

static_assert(sizeof(VornBcEthHwIfSupportS) == 84, "wire layout");
static_assert(offsetof(VornBcEthHwIfSupportS, localSwitchPortNr) == 0, "wire layout");
static_assert(offsetof(VornBcEthHwIfSupportS, numOfEthLinks) == 2, "wire layout");
static_assert(offsetof(VornBcEthHwIfSupportS, ethLinkParam) == 4, "wire layout");

#endif
