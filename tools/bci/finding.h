// What can be wrong with a record, by code. Codes, once published, keep their names and meanings.
#ifndef BCI_TOOL_FINDING_H
#define BCI_TOOL_FINDING_H

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace bci::tool
{

enum class Code
{
    // No record begins here.
    unknownRecord,
    unknownSignal,
    badEncoding,
    // The form is broken.
    cutShort,
    notANumber,
    outOfRange,
    tooLong,
    zeroInText,
    countAboveBound,
    unknownChoice,
    missingElement,
    unclosedElement,
    entryNotEnded,
    blockLength,
    extraInput,
    // The library and a strict reading disagree.
    libraryRefuses,
    libraryDiffers,
    // Read without loss, and not as the writers write it.
    numberLayout,
    listDelimiter,
    elementLayout,
    repeatedElement,
    unknownElement,
    unusedBytes
};

enum class Severity
{
    damage, // a value is lost, or read otherwise than it was meant
    note    // every value is there, but the library writes it otherwise or does not read all of it
};

struct CodeInfo
{
    Code code;
    const char* name; // as it is printed
    Severity severity;
    const char* title;       // a sentence without its full stop
    const char* explanation; // what it means and what the usual cause is
    const char* library;     // what the library does with it
};

// All codes, in the order of the enumeration.
std::span<const CodeInfo> codes();

const CodeInfo& info(Code code);

// The code of a name, or null.
const CodeInfo* findCode(std::string_view name);

struct Finding
{
    Code code;
    std::size_t position; // in the rendering, in bytes
    std::size_t length;   // of what is wrong, in bytes; 0 if something is missing
    std::string field;    // empty if no field is concerned
    std::string expected;
    std::string found;
    std::string library; // what the library does with it here
};

} // namespace bci::tool

#endif
