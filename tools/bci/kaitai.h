// A description of the binary form for Kaitai Struct.
#ifndef BCI_TOOL_KAITAI_H
#define BCI_TOOL_KAITAI_H

#include <string>

namespace bci::tool
{

// A .ksy file, from which its compiler makes readers in many languages.
std::string kaitai();

} // namespace bci::tool

#endif
