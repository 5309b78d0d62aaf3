// Any bytes read as the text form of a message of any class, which holds something already.

#include "messages.h"

void bci::fuzz::run(Input input, Trace& trace)
{
    deserialize(input, Form::text, trace);
}
