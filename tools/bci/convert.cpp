#include "input.h"
#include "inspect.h"
#include "output.h"
#include "verbs.h"

#include <iostream>

void bci::tool::convert(const std::string& fileName, Target target, std::endian firstWord)
{
    const Rendering rendering = recognise(readFile(fileName));
    const Record record = inspect(rendering);
    const auto rendered = [&](Form form) { return render(record, *rendering.signal, form, firstWord); };
    switch (target)
    {
    case Target::text:
        std::cout << rendered(Form::text);
        break;
    case Target::binary:
        std::cout << rendered(Form::binary);
        break;
    case Target::xml:
        std::cout << rendered(Form::xml);
        break;
    case Target::hex:
        std::cout << toHex(rendered(Form::binary));
        break;
    }
}
