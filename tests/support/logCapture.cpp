#include "logCapture.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>

namespace
{

Log captured;

std::string render(const char* conversion, va_list& arguments)
{
    char number[32];
    switch (*conversion)
    {
    case 's':
        return va_arg(arguments, const char*);
    case 'd':
        std::snprintf(number, sizeof number, "%d", va_arg(arguments, int));
        return number;
    case 'u':
        std::snprintf(number, sizeof number, "%u", va_arg(arguments, unsigned int));
        return number;
    default:
        ADD_FAILURE() << "a log line with the conversion %" << *conversion;
        return {};
    }
}

void capture(int priority, const char* format, va_list& arguments)
{
    LogLine line{priority, format, {}};
    for (const char* at = format; *at != '\0'; ++at)
    {
        if (*at == '%')
        {
            line.arguments.push_back(render(++at, arguments));
        }
    }
    captured.push_back(line);
}

// Makes every test account for the whole log.
class LogIsEmptyAtTheEnd : public testing::EmptyTestEventListener
{
    void OnTestStart(const testing::TestInfo&) override
    {
        captured.clear();
    }

    void OnTestEnd(const testing::TestInfo&) override
    {
        for (const LogLine& line : takeLog())
        {
            ADD_FAILURE() << "not expected in the log: " << line;
        }
    }
};

const bool installed = []
{
    testing::UnitTest::GetInstance()->listeners().Append(new LogIsEmptyAtTheEnd);
    return true;
}();

} // namespace

extern "C" void syslog(int priority, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    capture(priority, format, arguments);
    va_end(arguments);
}

// What syslog becomes in a build with _FORTIFY_SOURCE.
extern "C" void __syslog_chk(int priority, int, const char* format, ...) // NOLINT: the C library's name
{
    va_list arguments;
    va_start(arguments, format);
    capture(priority, format, arguments);
    va_end(arguments);
}

std::ostream& operator<<(std::ostream& out, const LogLine& line)
{
    out << line.priority << " \"" << line.format << '"';
    for (const std::string& argument : line.arguments)
    {
        out << " \"" << argument << '"';
    }
    return out;
}

Log takeLog()
{
    Log lines;
    lines.swap(captured);
    return lines;
}
