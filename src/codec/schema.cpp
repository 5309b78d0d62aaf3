#include "schema.h"

#include <cstring>

namespace bci::codec
{

namespace
{

template <typename T>
std::int64_t load(const char* from)
{
    T number;
    std::memcpy(&number, from, sizeof number);
    return number;
}

template <typename T>
void store(T number, char* to)
{
    std::memcpy(to, &number, sizeof number);
}

} // namespace

std::int64_t loadNumber(const Field& field, const char* structure)
{
    const char* const from = structure + field.offset;
    switch (field.kind)
    {
    case Kind::u8:
        return load<U8>(from);
    case Kind::u16:
        return load<U16>(from);
    case Kind::s16:
        return load<S16>(from);
    case Kind::u32:
        return load<U32>(from);
    case Kind::s32:
        return load<S32>(from);
    case Kind::text:
        break;
    }
    return 0;
}

void storeNumber(const Field& field, std::int64_t number, char* structure)
{
    char* const to = structure + field.offset;
    switch (field.size)
    {
    case 1:
        return store(static_cast<U8>(number), to);
    case 2:
        return store(static_cast<U16>(number), to);
    default:
        return store(static_cast<U32>(number), to);
    }
}

} // namespace bci::codec
