// Numbers at any address.
#ifndef BCI_CODEC_UNALIGNED_H
#define BCI_CODEC_UNALIGNED_H

#include <cstring>

namespace bci::codec
{

template <typename T>
T peek(const char* from)
{
    T number;
    std::memcpy(&number, from, sizeof number);
    return number;
}

template <typename T>
void poke(char* to, T number)
{
    std::memcpy(to, &number, sizeof number);
}

} // namespace bci::codec

#endif
