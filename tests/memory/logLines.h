// The system log in memory that is there from the start: nothing is taken from the heap for it.
#ifndef TESTS_LOG_LINES_H
#define TESTS_LOG_LINES_H

// Lines since the last call.
unsigned int takeLogLines();

// The last one of them.
const char* lastLogLine();

#endif
