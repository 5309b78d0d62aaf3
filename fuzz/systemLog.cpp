// In the place of the system log: what the library logs is part of what comes out.

#include "harness.h"

#include <cstdarg>
#include <cstdio>

namespace
{

void note(int priority, const char* format, va_list& arguments)
{
    if (bci::fuzz::current == nullptr)
    {
        return;
    }
    static std::string line(1 << 20, '\0'); // a line may quote a whole document
    const int length = std::vsnprintf(line.data(), line.size(), format, arguments);
    bci::fuzz::current->add("priority", priority);
    bci::fuzz::current->add("log", std::string_view(line).substr(0, static_cast<std::size_t>(length)));
}

} // namespace

extern "C" void syslog(int priority, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    note(priority, format, arguments);
    va_end(arguments);
}

// What syslog becomes in a build with _FORTIFY_SOURCE.
extern "C" void __syslog_chk(int priority, int /*flag*/, const char* format, ...) // NOLINT: the C library's name
{
    va_list arguments;
    va_start(arguments, format);
    note(priority, format, arguments);
    va_end(arguments);
}
