// All signals with their names and shapes, for tools and tests. Not part of the shared library.
#ifndef BCI_CATALOGUE_H
#define BCI_CATALOGUE_H

#include "scalarTypes.h"
#include "shapes.h"

#include <span>

namespace bci
{

struct Signal
{
    SIGSELECT number;
    const char* name; // of the constant in bciMsgRegistration.h
    const codec::Shape* shape;
};

// A signal number as it looks in the other byte order.
constexpr SIGSELECT turnedRound(SIGSELECT number)
{
    return number << 24 | (number & 0xFF00) << 8 | (number >> 8 & 0xFF00) | number >> 24;
}

// Every signal of the interface, in the order of registration.
std::span<const Signal> signals();

// The signal of a number, or null.
const Signal* findSignal(SIGSELECT number);

} // namespace bci

#endif
