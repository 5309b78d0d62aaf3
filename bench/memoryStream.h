// Standard streams over the caller's buffer, for libraries that want streams. They are made once, and given
// another buffer for each message.
#ifndef BENCH_MEMORY_STREAM_H
#define BENCH_MEMORY_STREAM_H

#include <istream>
#include <ostream>
#include <streambuf>

namespace bench
{

class MemoryBuffer : public std::streambuf
{
public:
    void writeTo(char* buffer, unsigned int size)
    {
        setp(buffer, buffer + size);
    }

    // It is read only.
    void readFrom(const char* data, unsigned int size)
    {
        char* const begin = const_cast<char*>(data);
        setg(begin, begin, begin + size);
    }

    unsigned int written() const
    {
        return static_cast<unsigned int>(pptr() - pbase());
    }
};

class OutputStream : public std::ostream
{
public:
    OutputStream() : std::ostream(nullptr)
    {
        rdbuf(&m_buffer);
    }

    void to(char* buffer, unsigned int size)
    {
        clear();
        m_buffer.writeTo(buffer, size);
    }

    unsigned int written() const
    {
        return m_buffer.written();
    }

private:
    MemoryBuffer m_buffer;
};

class InputStream : public std::istream
{
public:
    InputStream() : std::istream(nullptr)
    {
        rdbuf(&m_buffer);
    }

    void from(const char* data, unsigned int size)
    {
        clear();
        m_buffer.readFrom(data, size);
    }

private:
    MemoryBuffer m_buffer;
};

} // namespace bench

#endif
