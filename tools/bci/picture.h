// A picture of a binary form.
#ifndef BCI_TOOL_PICTURE_H
#define BCI_TOOL_PICTURE_H

#include "layout.h"

#include <string>
#include <vector>

namespace bci::tool
{

// Four bytes a row, as SVG 1.1. The signals are those of the message's class.
std::string picture(const std::vector<const Signal*>& signals, const Layout& layout);

} // namespace bci::tool

#endif
