#include "message.h"

const char MessageBase::DELIM;

MessageBase::MessageBase(char* /*msg*/, unsigned short /*size*/, unsigned long /*sigNo*/) {}

MessageBase::~MessageBase() = default;

// Inlined, these would be in every class after all.

[[gnu::noinline]] void* MessageBase::operator new(std::size_t size)
{
    return ::operator new(size);
}

[[gnu::noinline]] void* MessageBase::operator new(std::size_t size, const std::nothrow_t& noThrow) noexcept
{
    return ::operator new(size, noThrow);
}

[[gnu::noinline]] void MessageBase::operator delete(void* memory) noexcept
{
    ::operator delete(memory);
}
