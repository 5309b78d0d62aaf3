// Linked with the static library: the registry is there before the static objects of a program, in whatever
// order they were linked.

#include "bciMessage.h"

namespace
{

BciMessageBase* noMessage(SIGSELECT)
{
    return nullptr;
}

const bool registered = BciMessageBase::registerBciMsgClass(1, &noMessage);

} // namespace

int main()
{
    return registered && BciMessageBase::isMsgClassRegistered(1) ? 0 : 1;
}
