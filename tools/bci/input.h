// What an input is: which form it has, hex or raw, and which byte order its first word has.
#ifndef BCI_TOOL_INPUT_H
#define BCI_TOOL_INPUT_H

#include "catalogue.h"

#include <bit>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace bci::tool
{

enum class Form
{
    text,
    binary,
    xml
};

// "text", "binary" or "XML".
const char* formName(Form form);

// One rendering of one signal.
struct Rendering
{
    std::string bytes;
    bool fromHex = false; // they were given as hex digits
    Form form = Form::binary;
    std::endian firstWord = std::endian::big; // byte order of the first word, if binary
    const Signal* signal = nullptr;
};

// What is wrong with an input. The text starts with the place and the field: ":1:16: mainState: ..." in
// text and XML, ": offset 12: mainState: ..." in binary and in anything that came as hex.
struct Damage : std::runtime_error
{
    Damage(const Rendering& rendering, std::size_t position, const std::string& field, const std::string& what);
};

// A file that cannot be read, or an output that cannot be written.
struct Trouble : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// What the user knows an input by: its name, or "<stdin>" for "-".
std::string displayName(const std::string& fileName);

// On one line and without control characters.
std::string escaped(std::string_view text);

// A piece of input for a message: in quotes, cut if it is long, on one line and without control characters.
std::string quote(std::string_view piece);

// Reads a whole file, "-" for standard input, up to one byte more than any signal takes. Throws Trouble.
std::string readFile(const std::string& name);

// Tells what an input is by looking at it. Throws Damage if it is no rendering of a known signal.
Rendering recognise(std::string input);

} // namespace bci::tool

#endif
