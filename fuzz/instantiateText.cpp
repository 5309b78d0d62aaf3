// A message made of any bytes that may be its text form.

#include "messages.h"

void bci::fuzz::run(Input input, Trace& trace)
{
    instantiate(input, Form::text, trace);
}
