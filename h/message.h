/// @file
/// The root of all message classes.
#ifndef BCI_MESSAGE_ROOT_H
#define BCI_MESSAGE_ROOT_H

#include "bciApi.h"
#include "scalarTypes.h"
#include "vornNodeCommon.h"

#include <cstddef>
#include <new>

/// What every message offers, whatever interface it belongs to. Abstract; holds no data.
///
/// The library is built without run-time type information: a class derived from this one is compiled with
/// `-fno-rtti` too, there is no `dynamic_cast`, and a program under the undefined-behaviour sanitizer with
/// `-fno-sanitize=vptr`.
///
/// Thread safety: a message object is used by one thread at a time.
class BCI_API MessageBase
{
public:
    /// Delimiter that follows every field of the text form.
    static const char DELIM = ':';

    /// Records none of its arguments.
    /// @param msg    the wire structure
    /// @param size   its size in bytes
    /// @param sigNo  the signal number
    MessageBase(char* msg, unsigned short size, unsigned long sigNo);
    /// Frees nothing.
    virtual ~MessageBase();

    /// @name Memory of messages
    /// It comes from the global operators of the same form and goes back there; a program's own forms are reached
    /// by a global new expression. Here, so that not every class has calls of the C++ library of its own.
    /// @{

    /// Throws where there is none; in a library without unwind tables, as on the target, that ends the program.
    static void* operator new(std::size_t size);
    /// Returns null where there is none.
    static void* operator new(std::size_t size, const std::nothrow_t& noThrow) noexcept;
    /// Any other form that the program has.
    template <typename Form>
    static void* operator new(std::size_t size, Form form)
    {
        return ::operator new(size, form);
    }
    /// Gives it back.
    static void operator delete(void* memory) noexcept;
    /// Gives it back where a constructor has thrown.
    static void operator delete(void* memory, const std::nothrow_t& /*noThrow*/) noexcept
    {
        operator delete(memory);
    }
#ifdef __cpp_aligned_new // what a class that is aligned more than others is allocated with
    static void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t& noThrow) noexcept
    {
        return ::operator new(size, alignment, noThrow);
    }
    static void operator delete(void* memory, std::align_val_t alignment) noexcept
    {
        ::operator delete(memory, alignment);
    }
    static void operator delete(void* memory, std::align_val_t alignment,
                                const std::nothrow_t& /*noThrow*/) noexcept
    {
        ::operator delete(memory, alignment);
    }
#endif
    /// @}
    MessageBase(const MessageBase&) = delete;
    MessageBase& operator=(const MessageBase&) = delete;

    /// @return the signal number that the wire structure holds
    virtual SIGSELECT getSigNo() const = 0;
    /// @return a copy of the references that the wire structure holds
    virtual VornNodeCommonAddressInfoS getAddressInfo() const = 0;
    /// @return the wire structure itself, which the message owns; valid as long as the message
    virtual char* getMsg() const = 0;
    /// Overwrites the whole wire structure. Nothing is checked.
    /// @param src  as many bytes as the wire structure has
    virtual void setMsg(const char* src) = 0;
    /// @return size in bytes of a buffer that holds the binary form
    virtual unsigned int getMaxBinaryBufferSize() = 0;
    /// @return size in characters of a buffer that is meant to hold the text form, without a terminator;
    ///         advice only, no operation compares a buffer with it
    virtual unsigned int getMaxTextBufferSize() = 0;
};

#endif
