// Log lines of what messages check.
#ifndef BCI_CHECK_LOG_H
#define BCI_CHECK_LOG_H

#pragma GCC visibility push(hidden)
namespace bci
{

// Logs "[src/<source>:<line>] <text>"; the text takes up to two numbers, as %d or %u. The format is made here, so
// that the log receives the same format and arguments as from a line of its own. Returns false, like the operation
// that has found it.
bool reject(int priority, const char* source, unsigned int line, const char* text, unsigned int first,
            unsigned int second = 0);

} // namespace bci
#pragma GCC visibility pop

#endif
