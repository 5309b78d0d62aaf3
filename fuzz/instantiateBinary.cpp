// A message made of any bytes that may be its binary form.

#include "messages.h"

void bci::fuzz::run(Input input, Trace& trace)
{
    instantiate(input, Form::binary, trace);
}
