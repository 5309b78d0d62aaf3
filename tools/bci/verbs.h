// The verbs of the command, one source file each. They write to standard output and throw Damage or
// Trouble.
#ifndef BCI_TOOL_VERBS_H
#define BCI_TOOL_VERBS_H

#include <bit>
#include <string>

namespace bci::tool
{

enum class Target
{
    text,
    binary,
    xml,
    hex
};

// Shows the fields of a rendering.
void decode(const std::string& fileName);

// Turns a rendering into another form; `firstWord` is the byte order of binary and hex output.
void convert(const std::string& fileName, Target target, std::endian firstWord);

// Lists the signals of the interface.
void list();

} // namespace bci::tool

#endif
