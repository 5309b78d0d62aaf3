// How results and problems are shown.
#ifndef BCI_TOOL_OUTPUT_H
#define BCI_TOOL_OUTPUT_H

#include "input.h"
#include "inspect.h"

#include <bit>
#include <string>
#include <string_view>

namespace bci::tool
{

// A readable listing of one record.
std::string listing(const Rendering& rendering, const Record& record);

// Renders a record's wire structure with the library. Throws Trouble if the library refuses.
std::string render(const Record& record, const Signal& signal, Form form, std::endian firstWord);

// Two digits a byte, sixteen bytes a line.
std::string toHex(std::string_view bytes);

} // namespace bci::tool

#endif
