// No codec at all: the structure copied as it is.

#include "peers.h"

namespace bench
{

namespace
{

template <typename Wire>
[[gnu::noinline]] unsigned int encode(const Wire& wire, char* buffer, unsigned int size)
{
    if (size < sizeof wire)
    {
        return 0;
    }
    std::memcpy(buffer, &wire, sizeof wire);
    return sizeof wire;
}

template <typename Wire>
[[gnu::noinline]] bool decode(const char* data, unsigned int size, Wire& wire)
{
    if (size < sizeof wire)
    {
        return false;
    }
    std::memcpy(&wire, data, sizeof wire);
    return true;
}

} // namespace

void registerMemcpy()
{
    forEachSubject(
        []<typename S>(const S& subject) {
            registerOwnForm(subject, Form::binary, "memcpy", &encode<typename S::Wire>, &decode<typename S::Wire>);
        });
}

} // namespace bench
