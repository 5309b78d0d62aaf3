// Stands in for the type header of a kernel.
#ifndef TESTS_KERNEL_TYPES_H
#define TESTS_KERNEL_TYPES_H

#define TESTS_KERNEL_TYPES

typedef unsigned char U8;
typedef unsigned short U16;
typedef signed short S16;
typedef __UINT32_TYPE__ U32;
typedef __INT32_TYPE__ S32;
typedef U32 SIGSELECT;

#endif
