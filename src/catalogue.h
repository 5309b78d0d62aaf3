// All signals with their names and shapes, for tools and tests. Not part of the shared library.
#ifndef BCI_CATALOGUE_H
#define BCI_CATALOGUE_H

#include "codec/schema.h"
#include "scalarTypes.h"

#include <span>

namespace bci
{

// Each is defined beside its message's rows.
extern const codec::Shape kAuditCfmShape;

struct Signal
{
    SIGSELECT number;
    const char* name; // of the constant in bciMsgRegistration.h
    const codec::Shape* shape;
};

// Every signal of the interface, in the order of registration.
std::span<const Signal> signals();

// The signal of a number, or null.
const Signal* findSignal(SIGSELECT number);

} // namespace bci

#endif
