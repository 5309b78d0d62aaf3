// A dissector for Wireshark.
#ifndef BCI_TOOL_DISSECTOR_H
#define BCI_TOOL_DISSECTOR_H

#include <string>

namespace bci::tool
{

// A Lua script: all signals as a table, and dissector.lua, which reads by it.
std::string dissector();

} // namespace bci::tool

#endif
