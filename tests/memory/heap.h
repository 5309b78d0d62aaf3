// The heap under observation: the test program defines malloc and its relatives itself or, under the address
// sanitizer, is told by it. Of what happens at the same time in several threads it knows nothing.
#ifndef TESTS_HEAP_H
#define TESTS_HEAP_H

// Blocks asked for so far, through whichever function, and those that are held now.
unsigned long blocksAskedFor();
unsigned long blocksHeld();

// The allocation of this number from now on finds no memory, 1 being the next, and those behind it find some
// again; 0 takes that back. Not under the address sanitizer.
void failAllocation(unsigned long number);

template <typename Operation>
unsigned long allocationsIn(Operation operation)
{
    const unsigned long before = blocksAskedFor();
    operation();
    return blocksAskedFor() - before;
}

#endif
