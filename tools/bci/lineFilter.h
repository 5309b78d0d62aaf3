// One row for each line, whatever the line holds.
#ifndef BCI_TOOL_LINE_FILTER_H
#define BCI_TOOL_LINE_FILTER_H

#include "commandIo.h"
#include "records.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace bci::tool
{

// The lines that begin behind the first byte and not behind the last; the first line of an input belongs to the
// range that begins at 0. So ranges that follow one another share no line and miss none.
struct ByteRange
{
    std::uint64_t first = 0;
    std::uint64_t last = 0;

    // "0-1000". Null for anything else.
    static std::optional<ByteRange> parse(std::string_view text);
};

// Where the record is in its line.
struct LineLayout
{
    unsigned int column = 0; // of a line of tab-separated values, from 1; 0 if the line is the record
    std::string member;      // of a JSON object in the line; empty if it is none
};

// Writes the rows, and flushes them whenever the input has nothing more for now. Throws Trouble.
void filterLines(const std::string& fileName, Packing packing, const LineLayout& layout,
                 const std::optional<ByteRange>& range, Output& output);

} // namespace bci::tool

#endif
