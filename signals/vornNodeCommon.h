/// @file
/// Wire structures that all areas of the node share.
#ifndef VORN_NODE_COMMON_H
#define VORN_NODE_COMMON_H

#include "scalarTypes.h"

#include <stddef.h>

/// References of an exchange; together with the signal number in front of it, the 12-byte header of
/// every signal.
struct VornNodeCommonAddressInfoS
{
    S32 clientRef; ///< chosen by the client side of the exchange
    S32 serverRef; ///< chosen by the server side of the exchange
};

static_assert(sizeof(VornNodeCommonAddressInfoS) == 8, "wire layout");
static_assert(offsetof(VornNodeCommonAddressInfoS, clientRef) == 0, "wire layout");
static_assert(offsetof(VornNodeCommonAddressInfoS, serverRef) == 4, "wire layout");

#endif
