#include "input.h"
#include "inspect.h"
#include "output.h"
#include "verbs.h"

#include <iostream>

void bci::tool::convert(const std::string& fileName, Target target, std::endian firstWord)
{
    const Rendering rendering = recognise(readFile(fileName));
    const Record record = inspect(rendering);
    const Form form = target == Target::text ? Form::text : target == Target::xml ? Form::xml : Form::binary;
    const Rendering written = {render(record, *rendering.signal, form, firstWord), false, form, firstWord,
                               rendering.signal};
    if (const FieldValue* const lost = firstLost(record, written))
    {
        throw Damage(rendering, lost->position, lost->name,
                     quote(lost->value) + " does not survive in " + formName(form));
    }
    std::cout << (target == Target::hex ? toHex(written.bytes) : written.bytes);
}
