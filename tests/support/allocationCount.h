// Counts what is taken from the heap: the test program defines malloc and its relatives itself, or, under the
// address sanitizer, is told by it.
#ifndef TESTS_ALLOCATION_COUNT_H
#define TESTS_ALLOCATION_COUNT_H

// Allocations of the program so far, through whichever function.
unsigned long allocationCount();

// While it lives, nothing is counted.
class Uncounted
{
public:
    Uncounted();
    ~Uncounted();
    Uncounted(const Uncounted&) = delete;
    Uncounted& operator=(const Uncounted&) = delete;
};

#endif
