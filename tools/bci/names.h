// Names of fields and signals, as users give them and as output shows them.
#ifndef BCI_TOOL_NAMES_H
#define BCI_TOOL_NAMES_H

#include "catalogue.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace bci::tool
{

// The name of a field, which no other field of its message has: that of its XML element. An element of a list
// whose name has no index in XML receives one in brackets, like "loadable[1]".
std::string fieldName(const codec::Field& field, const codec::Subscripts* subscripts);

// Whether a field's name has an index in brackets.
bool hasBrackets(const codec::Field& field, const codec::Subscripts* subscripts);

// The signal of a number, faster than findSignal(); null if there is none.
const Signal* signalOfNumber(SIGSELECT number);

// The signals that a user means by a number (decimal or 0x...), a name or a class; the case of letters does not
// matter, nor does a missing "BCI_" or "Bci" at the beginning or "Msg" at the end of a class. Empty if there are
// none.
std::vector<const Signal*> findSignals(std::string_view numberNameOrClass);

// The names that look most like one, the nearest first; empty if none is near.
std::vector<std::string> nearest(std::string_view name, std::span<const std::string> names);

// "; did you mean 'one' or 'two'?" for these, or "".
std::string didYouMean(std::string_view name, std::span<const std::string> names);

} // namespace bci::tool

#endif
