// Captures what the library writes to the system log: the test program defines syslog itself.
#ifndef TESTS_LOG_CAPTURE_H
#define TESTS_LOG_CAPTURE_H

#include <ostream>
#include <string>
#include <vector>

// One line of the system log. The arguments are those of the format, each as it prints.
struct LogLine
{
    int priority;
    std::string format;
    std::vector<std::string> arguments;

    bool operator==(const LogLine&) const = default;
};

std::ostream& operator<<(std::ostream& out, const LogLine& line);

using Log = std::vector<LogLine>;

// Returns the lines since the last call and forgets them. A test that leaves lines behind fails.
Log takeLog();

#endif
