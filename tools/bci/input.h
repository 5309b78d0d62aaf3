// Renderings, and how pieces of an input are named and shown.
#ifndef BCI_TOOL_INPUT_H
#define BCI_TOOL_INPUT_H

#include "catalogue.h"

#include <bit>
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
    std::string_view bytes;
    Form form = Form::binary;
    std::endian firstWord = std::endian::big; // byte order of the first word, if binary
    const Signal* signal = nullptr;           // null if it is not known
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

} // namespace bci::tool

#endif
