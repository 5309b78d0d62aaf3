// What the library itself makes of a rendering.
#ifndef BCI_TOOL_LIBRARY_H
#define BCI_TOOL_LIBRARY_H

#include "record.h"

#include <optional>
#include <string>
#include <vector>

namespace bci::tool
{

// A field that the library reads otherwise than a strict reading.
struct Difference
{
    std::string field;
    std::optional<std::string> stored; // its value, in quotes; null if the field keeps its old one
};

struct Verdict
{
    bool result = false;          // of the library's entry point
    unsigned int length = 0;      // that it reports, in bytes
    std::vector<std::string> log; // lines that it sent to the system log
    std::vector<Difference> differences;
};

// Lets the library read a rendering, on its own and with a zero behind it, and compares what it finds with a
// record's fields. The first word of a binary rendering is turned to this host's order before.
Verdict askLibrary(const Rendering& rendering, const Record& record);

// A value that does not come back from a form.
struct Loss
{
    Form form;
    std::string field;
    std::string value;
    std::string back; // what comes back instead, or why nothing does
};

// Writes a record with the library in every form, and lets it read each back.
std::vector<Loss> roundTrip(const Signal& signal, const Record& record);

} // namespace bci::tool

#endif
