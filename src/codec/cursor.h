// The streams' buffers, for the engine to go through: as fast as raw pointers, and to be seen by nobody else.
#ifndef BCI_CODEC_CURSOR_H
#define BCI_CODEC_CURSOR_H

#include "optimize.h"
#include "stream.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <type_traits>
#include <utility>

namespace bci::codec
{

// Reads and sets what the streams keep to themselves.
struct StreamAccess
{
    using Output = commonStream::ostreambase;
    using Input = commonStream::istreambase;

    static char* buffer(const Output& stream)
    {
        return stream.m_bufferPtr;
    }

    static const char* buffer(const Input& stream)
    {
        return stream.m_bufferPtr;
    }

    static unsigned int position(const Output& stream)
    {
        return stream.m_currentWritePosition;
    }

    static unsigned int position(const Input& stream)
    {
        return stream.m_currentReadPosition;
    }

    // Where bytes can be written, or read, up to: nothing can be read from a stream that is not good.
    static unsigned int limit(const Output& stream)
    {
        return stream.m_bufferLength;
    }

    static unsigned int limit(const Input& stream)
    {
        return stream.m_statusFlags == 0 ? std::min(stream.m_length, stream.m_bufferLength) : 0;
    }

    static void moveTo(Output& stream, unsigned int position)
    {
        stream.m_currentWritePosition = position;
        stream.m_length = std::max(stream.m_length, position);
        if (position == stream.m_bufferLength)
        {
            stream.m_statusFlags |= kEof;
        }
    }

    static void moveTo(Input& stream, unsigned int position)
    {
        stream.m_currentReadPosition = position;
        if (position == stream.m_length)
        {
            stream.m_statusFlags |= kEof;
        }
    }

    // A field of text ends in a single character, its delimiter.
    static void moveTo(commonStream::istream_text& stream, unsigned int position)
    {
        moveTo(static_cast<Input&>(stream), position);
        stream.m_lastReadCount = 1;
    }

private:
    static constexpr unsigned int kEof = 1;
};

// A stream's position as a pointer. The stream is told where it has moved to at the end, and in between only
// when it is itself made use of.
template <typename Stream>
class Cursor
{
public:
    // What a function that is not for one message alone takes in its place.
    using Argument = Cursor&;

    Argument argument()
    {
        return *this;
    }

    using Pointer = decltype(StreamAccess::buffer(std::declval<Stream&>()));

    explicit Cursor(Stream& stream) : m_stream(stream)
    {
        take();
    }

    ~Cursor()
    {
        commit();
    }

    Cursor(const Cursor&) = delete;
    Cursor& operator=(const Cursor&) = delete;

    // Where the next byte is, and the end of what can be written or read.
    Pointer at() const
    {
        return m_at;
    }

    Pointer end() const
    {
        return m_end;
    }

    std::size_t left() const
    {
        return static_cast<std::size_t>(m_end - m_at);
    }

    bool isAtStart() const
    {
        return m_at == m_buffer;
    }

    void moveTo(Pointer at)
    {
        m_at = at;
    }

    // Calls a function with the stream.
    template <typename Function>
    BCI_INLINE void through(Function function)
    {
        commit();
        function(m_stream);
        take();
    }

private:
    BCI_INLINE void take()
    {
        m_buffer = StreamAccess::buffer(m_stream);
        const unsigned int position = m_buffer != nullptr ? StreamAccess::position(m_stream) : 0;
        m_begin = m_at = m_buffer + position;
        m_end = m_buffer + std::max(StreamAccess::limit(m_stream), position);
    }

    BCI_INLINE void commit()
    {
        if (m_at != m_begin)
        {
            StreamAccess::moveTo(m_stream, static_cast<unsigned int>(m_at - m_buffer));
        }
    }

    Stream& m_stream;
    Pointer m_buffer;
    Pointer m_begin;
    Pointer m_at;
    Pointer m_end;
};

// The same without a memory of its own: every question and every move is the stream's. Smaller, and not as fast.
template <typename Stream>
class DirectCursor
{
public:
    using Argument = Stream&;

    BCI_ALWAYS_INLINE Argument argument()
    {
        return m_stream;
    }

    using Pointer = decltype(StreamAccess::buffer(std::declval<Stream&>()));

    BCI_ALWAYS_INLINE explicit DirectCursor(Stream& stream) : m_stream(stream) {}

    DirectCursor(const DirectCursor&) = delete;
    DirectCursor& operator=(const DirectCursor&) = delete;

    Pointer at() const
    {
        return StreamAccess::buffer(m_stream) + StreamAccess::position(m_stream);
    }

    Pointer end() const
    {
        return at() + left();
    }

    std::size_t left() const
    {
        const unsigned int position = StreamAccess::position(m_stream);
        const unsigned int limit = StreamAccess::limit(m_stream);
        return position < limit ? limit - position : 0;
    }

    bool isAtStart() const
    {
        return StreamAccess::position(m_stream) == 0;
    }

    void moveTo(Pointer to)
    {
        if (to != at())
        {
            StreamAccess::moveTo(m_stream, static_cast<unsigned int>(to - StreamAccess::buffer(m_stream)));
        }
    }

    template <typename Function>
    BCI_ALWAYS_INLINE void through(Function function)
    {
        function(m_stream);
    }

private:
    Stream& m_stream;
};

template <typename Stream>
using CursorOver = std::conditional_t<kForSpeed, Cursor<Stream>, DirectCursor<Stream>>;

// A cursor for an argument.
template <typename Stream>
Cursor<Stream>& cursorFor(Cursor<Stream>& cursor)
{
    return cursor;
}

template <typename Stream>
BCI_ALWAYS_INLINE DirectCursor<Stream> cursorFor(Stream& stream)
{
    return DirectCursor<Stream>(stream);
}

using TextWriter = CursorOver<commonStream::ostream_text>;
using TextReader = CursorOver<commonStream::istream_text>;
using BinaryWriter = CursorOver<commonStream::ostream_binary>;
using BinaryReader = CursorOver<commonStream::istream_binary>;

// Writes bytes if all of them fit. Returns whether they did; small builds leave them to the stream, and so does
// everyone none at all, which a stream takes note of.
template <typename Writer>
bool putBytes(Writer& out, const void* bytes, std::size_t count)
{
    if (!kForSpeed || count == 0 || out.left() < count)
    {
        return false;
    }
    std::memcpy(out.at(), bytes, count);
    out.moveTo(out.at() + count);
    return true;
}

inline bool putZeros(BinaryWriter& out, std::size_t count)
{
    if (!kForSpeed || out.left() < count)
    {
        return false;
    }
    if (count != 0)
    {
        std::memset(out.at(), 0, count);
        out.moveTo(out.at() + count);
    }
    return true;
}

// Passes over bytes if all of them are there. Returns whether they were, likewise.
inline bool skip(BinaryReader& in, std::size_t count)
{
    if (!kForSpeed || in.left() < count)
    {
        return false;
    }
    in.moveTo(in.at() + count);
    return true;
}

} // namespace bci::codec

#endif
