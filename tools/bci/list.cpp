#include "catalogue.h"
#include "verbs.h"

#include <cstdio>

void bci::tool::list()
{
    for (const Signal& signal : signals())
    {
        const auto number = static_cast<unsigned long>(signal.number);
        std::printf("%lu  0x%lX  %-25s  %s\n", number, number, signal.shape->className, signal.name);
    }
}
