// Inputs as streams of bytes, whatever they are packed in.
#ifndef BCI_TOOL_BYTES_H
#define BCI_TOOL_BYTES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bci::tool
{

class ByteStream
{
public:
    ByteStream() = default;
    ByteStream(const ByteStream&) = delete;
    ByteStream& operator=(const ByteStream&) = delete;
    virtual ~ByteStream() = default;

    // Reads at most so many bytes, and at least one unless the input is at its end. Returns how many. May return
    // fewer than there will be: what a pipe has now. Throws Trouble.
    virtual std::size_t read(char* to, std::size_t most) = 0;
};

// Bytes in memory.
class MemoryStream : public ByteStream
{
public:
    explicit MemoryStream(std::string_view bytes) : m_bytes(bytes) {}

    std::size_t read(char* to, std::size_t most) override
    {
        const std::size_t count = std::min(most, m_bytes.size());
        std::copy_n(m_bytes.data(), count, to);
        m_bytes.remove_prefix(count);
        return count;
    }

private:
    std::string_view m_bytes;
};

// Opens a file, "-" for standard input. Compressed input (gzip, zlib, zstd, also several members one after
// another, zeros behind the last) is unpacked, in constant memory; where it is cut or damaged, reading throws
// Trouble once all that came out before has been read. Throws Trouble.
std::unique_ptr<ByteStream> openInput(const std::string& fileName);

// Opens a file that is not compressed, from an offset in bytes on. Throws Trouble, also where there is no way to
// get there.
std::unique_ptr<ByteStream> openFileAt(const std::string& fileName, std::uint64_t offset);

// A sliding piece of a stream. The end is where ahead(1) is empty: trouble that reading runs into is thrown by the
// ahead() that follows when everything before it has been consumed.
class Window
{
public:
    explicit Window(ByteStream& stream, std::size_t capacity = std::size_t{1} << 22);

    // What lies ahead: at least `least` bytes (which must not exceed half the capacity) unless the input ends
    // before. Waits for no more than these. Throws Trouble.
    std::string_view ahead(std::size_t least);

    // Whether nothing follows what ahead() returned last. That shows when ahead() cannot return as much as it
    // was asked for, not earlier.
    bool isLast() const;

    // Bytes that ahead() can return without reading.
    std::size_t buffered() const
    {
        return m_end - m_begin;
    }

    // Passes over bytes that ahead() has shown. What it returned becomes invalid with the next ahead().
    void consume(std::size_t count);

    // Bytes consumed so far.
    std::uint64_t offset() const;

private:
    ByteStream& m_stream;
    std::vector<char> m_buffer;
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
    std::uint64_t m_offset = 0;
    bool m_isLast = false;
    std::exception_ptr m_trouble;
};

// What a window has ahead, for those who need a stream. Reading it consumes the window.
class WindowStream : public ByteStream
{
public:
    explicit WindowStream(Window& window);
    std::size_t read(char* to, std::size_t most) override;

private:
    Window& m_window;
};

} // namespace bci::tool

#endif
