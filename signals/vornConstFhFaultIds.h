/// @file
/// Constants of fault handling.
#ifndef VORN_CONST_FH_FAULT_IDS_H
#define VORN_CONST_FH_FAULT_IDS_H

#include "scalarTypes.h"

/// The identity of a fault. Any 16-bit value is carried.
typedef U16 VornConstFhFaultIdsT;

#endif
