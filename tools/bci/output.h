// How records and findings are shown.
#ifndef BCI_TOOL_OUTPUT_H
#define BCI_TOOL_OUTPUT_H

#include "record.h"

#include <bit>
#include <string>
#include <string_view>

namespace bci::tool
{

// A readable listing of one record.
std::string listing(const Item& item, const Record& record);

// Its bytes in hex with the names of the fields under them.
std::string annotation(const Item& item, const Record& record);

// A line of comma-separated values for each field, and one for what could not be read.
std::string csvHeader();
std::string csv(const Item& item, const Record& record);

// "mainState: expected a decimal number, found 'x' [not-a-number]"
std::string message(const Finding& finding);

// Renders a record's wire structure with the library. Throws Trouble if the library refuses.
std::string render(const std::vector<char>& structure, const Signal& signal, Form form, std::endian firstWord);

// Two digits a byte, nothing between.
std::string hexDigits(std::string_view bytes);

} // namespace bci::tool

#endif
