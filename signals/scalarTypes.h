/// @file
/// The scalar types of the kernel's message model, which every wire structure is made of.
///
/// A build for a board takes them from the kernel itself: define the macro `BCI_KERNEL_TYPES_HEADER`
/// to the kernel's type header, quotes or angle brackets included, and nothing is defined here.
#ifndef BCI_SCALAR_TYPES_H
#define BCI_SCALAR_TYPES_H

#if defined(BCI_KERNEL_TYPES_HEADER)

#include BCI_KERNEL_TYPES_HEADER

#else

#include <limits.h>

/// Unsigned 8-bit number.
typedef unsigned char U8;
/// Unsigned 16-bit number.
typedef unsigned short U16;
/// Signed 16-bit number; enumerated fields have this type too.
typedef short S16;

#if ULONG_MAX == 0xFFFFFFFFUL
/// Unsigned 32-bit number.
typedef unsigned long U32;
/// Signed 32-bit number.
typedef long S32;
#else
/// Unsigned 32-bit number.
typedef unsigned int U32;
/// Signed 32-bit number.
typedef int S32;
#endif

/// Signal number, the first field of every wire structure.
typedef U32 SIGSELECT;

#endif

static_assert(sizeof(U8) == 1 && sizeof(U16) == 2 && sizeof(U32) == 4, "the wire formats need these widths");
static_assert(sizeof(S16) == 2 && sizeof(S32) == 4 && sizeof(SIGSELECT) == 4,
              "the wire formats need these widths");

#endif
