/// @file
/// Constants of hardware units.
#ifndef VORN_CONST_HWU_H
#define VORN_CONST_HWU_H

#include "scalarTypes.h"

/// A general property of a hardware unit. Any 16-bit value is carried.
typedef S16 VornConstHwuGeneralE;

#endif
