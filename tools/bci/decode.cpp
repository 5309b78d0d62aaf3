#include "input.h"
#include "inspect.h"
#include "output.h"
#include "verbs.h"

#include <iostream>

void bci::tool::decode(const std::string& fileName)
{
    const Rendering rendering = recognise(readFile(fileName));
    std::cout << listing(rendering, inspect(rendering));
}
