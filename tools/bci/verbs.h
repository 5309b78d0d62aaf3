// The verbs of the command, one source file each.
#ifndef BCI_TOOL_VERBS_H
#define BCI_TOOL_VERBS_H

#include <functional>

namespace CLI
{
class App;
}

namespace bci::tool
{

// What a verb does once the command line is read. Returns the exit status.
using Run = std::function<int()>;

inline constexpr int kClean = 0;
inline constexpr int kFound = 1;   // damage, or a difference
inline constexpr int kTrouble = 2; // wrong use, a file that cannot be read, an output that cannot be written

// Each adds its verb to the command. The verbs write to standard output and throw Trouble.
Run addDecode(CLI::App& app);
Run addEncode(CLI::App& app);
Run addConvert(CLI::App& app);
Run addCheck(CLI::App& app);
Run addDescribe(CLI::App& app);
Run addList(CLI::App& app);
Run addDiff(CLI::App& app);
Run addStats(CLI::App& app);
Run addGen(CLI::App& app);

} // namespace bci::tool

#endif
