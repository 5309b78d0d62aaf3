#include "checkLog.h"

#include <cstdio>
#include <syslog.h>

bool bci::reject(int priority, const char* source, unsigned int line, const char* text, unsigned int first,
                 unsigned int second)
{
    char format[100];
    std::snprintf(format, sizeof format, "[src/%s:%u] %s", source, line, text);
    syslog(priority, format, first, second);
    return false;
}
