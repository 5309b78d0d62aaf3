#include "bytes.h"

#include "catalogue.h"
#include "input.h"

#if BCI_WITH_ZLIB
#include <zlib.h>
#endif
#if BCI_WITH_ZSTD
#include <zstd.h>
#endif

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <exception>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace bci::tool
{

namespace
{

constexpr std::size_t kPiece = std::size_t{1} << 16; // bytes read at once

unsigned char byteAt(std::string_view bytes, std::size_t position)
{
    return static_cast<unsigned char>(bytes[position]);
}

// A file as it is. Its beginning can be looked at.
class FileStream : public ByteStream
{
public:
    explicit FileStream(const std::string& fileName)
        : m_name(displayName(fileName)),
          m_descriptor(fileName == "-" ? STDIN_FILENO : open(fileName.c_str(), O_RDONLY | O_CLOEXEC))
    {
        if (m_descriptor < 0)
        {
            fail();
        }
    }

    ~FileStream() override
    {
        if (m_descriptor != STDIN_FILENO)
        {
            close(m_descriptor);
        }
    }

    const std::string& name() const
    {
        return m_name;
    }

    // The first bytes, fewer than asked for if there are no more. To be called before any read().
    std::string_view beginning(std::size_t count)
    {
        while (m_beginning.size() < count)
        {
            std::array<char, 4096> more;
            const std::size_t length = readMore(more.data(), more.size());
            if (length == 0)
            {
                break;
            }
            m_beginning.append(more.data(), length);
        }
        return m_beginning;
    }

    void seek(std::uint64_t offset)
    {
        if (lseek(m_descriptor, static_cast<off_t>(offset), SEEK_SET) < 0)
        {
            fail();
        }
        m_beginning.clear();
        m_passed = 0;
    }

    std::size_t read(char* to, std::size_t most) override
    {
        if (m_passed == m_beginning.size())
        {
            return readMore(to, most);
        }
        const std::size_t length = m_beginning.copy(to, most, m_passed);
        m_passed += length;
        return length;
    }

private:
    [[noreturn]] void fail() const
    {
        throw Trouble(m_name + ": " + std::strerror(errno));
    }

    // Not by way of stdio, which waits until its buffer is full.
    std::size_t readMore(char* to, std::size_t most) const
    {
        for (;;)
        {
            const ssize_t length = ::read(m_descriptor, to, most);
            if (length >= 0)
            {
                return static_cast<std::size_t>(length);
            }
            if (errno != EINTR)
            {
                fail();
            }
        }
    }

    std::string m_name;
    int m_descriptor;
    std::string m_beginning;
    std::size_t m_passed = 0; // of the beginning
};

enum class Compression
{
    none,
    gzip,
    zlib,
    zstd
};

// Waits for no more bytes than it takes to tell.
bool beginsWith(FileStream& file, std::string_view bytes)
{
    for (std::size_t i = 0; i != bytes.size(); ++i)
    {
        const std::string_view beginning = file.beginning(i + 1);
        if (beginning.size() <= i || beginning[i] != bytes[i])
        {
            return false;
        }
    }
    return true;
}

// Zstd's skippable frames have one of sixteen numbers.
bool mayBeginZstd(unsigned char byte)
{
    return byte == 0x28 || (byte & 0xF0) == 0x50;
}

bool beginsWithZstd(FileStream& file)
{
    const std::string_view first = file.beginning(1);
    return !first.empty() && mayBeginZstd(byteAt(first, 0)) &&
           beginsWith(file, byteAt(first, 0) == 0x28 ? std::string_view("\x28\xB5\x2F\xFD")
                                                     : std::string{first[0], '\x2A', '\x4D', '\x18'});
}

bool mayBeginZlib(unsigned char byte)
{
    return (byte & 0x0F) == 8 && byte >> 4 <= 7;
}

// Binary of a known signal, with its first word in either order.
bool beginsWithSignal(std::string_view bytes)
{
    if (bytes.size() < 4)
    {
        return false;
    }
    const SIGSELECT word = SIGSELECT{byteAt(bytes, 0)} << 24 | SIGSELECT{byteAt(bytes, 1)} << 16 |
                           SIGSELECT{byteAt(bytes, 2)} << 8 | SIGSELECT{byteAt(bytes, 3)};
    return findSignal(word) != nullptr || findSignal(turnedRound(word)) != nullptr;
}

#if BCI_WITH_ZLIB
// Unpacks the beginning of a zlib stream until something has come out, and returns whether it has; with a header
// that is not sure to be one, until so much has that nothing else would come this far, or all of it.
bool inflates(FileStream& file, bool isSure)
{
    constexpr uInt kMuch = 256;
    z_stream stream = {};
    if (inflateInit(&stream) != Z_OK)
    {
        throw std::bad_alloc();
    }
    std::array<Bytef, kMuch> unpacked;
    stream.next_out = unpacked.data();
    stream.avail_out = isSure ? 1 : kMuch;
    int status = Z_OK;
    std::size_t used = 0;
    while ((status == Z_OK || status == Z_BUF_ERROR) && stream.avail_out != 0 && used < kPiece)
    {
        std::string more(file.beginning(used + 1).substr(used));
        if (more.empty())
        {
            break;
        }
        used += more.size();
        stream.next_in = reinterpret_cast<Bytef*>(more.data());
        stream.avail_in = static_cast<uInt>(more.size());
        status = inflate(&stream, Z_SYNC_FLUSH);
    }
    inflateEnd(&stream);
    return status == Z_STREAM_END || stream.avail_out == 0;
}
#else
bool inflates(FileStream&, bool isSure)
{
    return isSure;
}
#endif

// Of the two bytes that a zlib stream begins with, three pairs are the usual ones, and nothing readable; others
// could be text.
bool beginsWithZlib(FileStream& file)
{
    const std::string_view first = file.beginning(1);
    if (first.empty() || !mayBeginZlib(byteAt(first, 0)))
    {
        return false;
    }
    const std::string_view header = file.beginning(2).substr(0, 2);
    const bool isSure = header == "\x78\x01" || header == "\x78\x9C" || header == "\x78\xDA";
    if (header.size() < 2 || (byteAt(header, 0) << 8 | byteAt(header, 1)) % 31 != 0)
    {
        return false;
    }
    return !beginsWithSignal(file.beginning(4)) && inflates(file, isSure);
}

Compression packingOf(FileStream& file)
{
    if (beginsWith(file, "\x1F\x8B\x08"))
    {
        return Compression::gzip;
    }
    if (beginsWithZstd(file))
    {
        return Compression::zstd;
    }
    return beginsWithZlib(file) ? Compression::zlib : Compression::none;
}

#if BCI_WITH_ZLIB || BCI_WITH_ZSTD

// The packed side of an unpacker. What is packed has members, one after another, and zeros may follow the last.
class PackedInput
{
public:
    PackedInput(std::unique_ptr<FileStream> file, bool (*mayBegin)(unsigned char))
        : m_file(std::move(file)), m_mayBegin(mayBegin), m_buffer(kPiece)
    {
    }

    std::string_view available() const
    {
        return {m_buffer.data() + m_begin, m_end - m_begin};
    }

    void consume(std::size_t count)
    {
        m_begin += count;
        m_offset += count;
    }

    // Reads more when nothing is left. Returns false at the end of the input.
    bool refill()
    {
        if (m_begin == m_end)
        {
            m_begin = 0;
            m_end = m_file->read(m_buffer.data(), m_buffer.size());
        }
        return m_begin != m_end;
    }

    // Whether another member begins here.
    bool hasMember()
    {
        bool zeros = false;
        while (refill())
        {
            if (m_buffer[m_begin] != '\0')
            {
                if (zeros || !m_mayBegin(static_cast<unsigned char>(m_buffer[m_begin])))
                {
                    throw Trouble(m_file->name() + ": something else follows the compressed data at byte " +
                                  std::to_string(m_offset));
                }
                return true;
            }
            zeros = true;
            consume(1);
        }
        return false;
    }

    std::string cut() const
    {
        return m_file->name() + ": the compressed data is cut at byte " + std::to_string(m_offset);
    }

    std::string damaged(const char* reason) const
    {
        return m_file->name() + ": the compressed data is damaged at byte " + std::to_string(m_offset) +
               (reason != nullptr ? std::string(" (") + reason + ")" : "");
    }

private:
    std::unique_ptr<FileStream> m_file;
    bool (*m_mayBegin)(unsigned char);
    std::vector<char> m_buffer;
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
    std::uint64_t m_offset = 0; // in the packed file
};

// Reads member after member. What came out before the data broke is delivered before the trouble is thrown.
class UnpackedStream : public ByteStream
{
public:
    UnpackedStream(std::unique_ptr<FileStream> file, bool (*mayBegin)(unsigned char))
        : m_input(std::move(file), mayBegin)
    {
    }

    std::size_t read(char* to, std::size_t most) override
    {
        std::size_t length = 0;
        while (length == 0 && most != 0)
        {
            if (!m_trouble.empty())
            {
                throw Trouble(m_trouble);
            }
            if (!m_inMember && !m_input.hasMember())
            {
                break;
            }
            m_inMember = true;
            const bool isStuck = m_input.available().empty();
            length = unpack(to, most);
            if (length == 0 && isStuck && m_inMember && m_trouble.empty() && !m_input.refill())
            {
                m_trouble = m_input.cut();
            }
        }
        return length;
    }

protected:
    // Unpacks what the input has available, which may be nothing, as far as there is room. Returns how much came
    // out.
    virtual std::size_t unpack(char* to, std::size_t most) = 0;

    PackedInput m_input;
    bool m_inMember = false;
    std::string m_trouble;
};

#endif

#if BCI_WITH_ZLIB
bool mayBeginGzip(unsigned char byte)
{
    return byte == 0x1F;
}

class InflatedStream : public UnpackedStream
{
public:
    InflatedStream(std::unique_ptr<FileStream> file, Compression packing)
        : UnpackedStream(std::move(file), packing == Compression::gzip ? mayBeginGzip : mayBeginZlib)
    {
        constexpr int kGzip = 16;
        if (inflateInit2(&m_stream, packing == Compression::gzip ? MAX_WBITS + kGzip : MAX_WBITS) != Z_OK)
        {
            throw std::bad_alloc();
        }
    }

    ~InflatedStream() override
    {
        inflateEnd(&m_stream);
    }

private:
    std::size_t unpack(char* to, std::size_t most) override
    {
        std::string_view packed = m_input.available();
        // zlib does not write through next_in; what it needs const for depends on how it was built.
        m_stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
        m_stream.avail_in = static_cast<uInt>(packed.size());
        m_stream.next_out = reinterpret_cast<Bytef*>(to);
        m_stream.avail_out = static_cast<uInt>(std::min(most, kPiece));
        const uInt room = m_stream.avail_out;
        const int status = inflate(&m_stream, Z_SYNC_FLUSH);
        m_input.consume(packed.size() - m_stream.avail_in);
        if (status == Z_STREAM_END)
        {
            m_inMember = false;
            inflateReset(&m_stream);
        }
        else if (status != Z_OK && status != Z_BUF_ERROR)
        {
            m_trouble = m_input.damaged(m_stream.msg);
        }
        return room - m_stream.avail_out;
    }

    z_stream m_stream = {};
};
#endif

#if BCI_WITH_ZSTD
class ZstdStream : public UnpackedStream
{
public:
    explicit ZstdStream(std::unique_ptr<FileStream> file)
        : UnpackedStream(std::move(file), mayBeginZstd), m_context(ZSTD_createDStream(), ZSTD_freeDStream)
    {
        if (m_context == nullptr)
        {
            throw std::bad_alloc();
        }
        m_wanted = ZSTD_initDStream(m_context.get());
    }

private:
    std::size_t unpack(char* to, std::size_t most) override
    {
        // A call that fails does not tell what else came out of it. So none gets more than it takes to finish one
        // block (what is wanted is the rest of that and the header, of 3 bytes, of the next), and none gets
        // anything while more may have to come out.
        constexpr std::size_t kBlockHeader = 3;
        const std::size_t wanted = m_isFull ? 0 : m_wanted > kBlockHeader ? m_wanted - kBlockHeader : m_wanted;
        const std::string_view packed = m_input.available().substr(0, wanted);
        ZSTD_inBuffer in = {packed.data(), packed.size(), 0};
        ZSTD_outBuffer out = {to, most, 0};
        const std::size_t status = ZSTD_decompressStream(m_context.get(), &out, &in);
        m_input.consume(in.pos);
        if (ZSTD_isError(status) != 0)
        {
            m_trouble = m_input.damaged(ZSTD_getErrorName(status));
            return 0;
        }
        m_inMember = status != 0;
        m_isFull = m_inMember && out.pos == out.size;
        m_wanted = m_inMember ? status : ZSTD_initDStream(m_context.get());
        return out.pos;
    }

    std::unique_ptr<ZSTD_DStream, std::size_t (*)(ZSTD_DStream*)> m_context;
    std::size_t m_wanted;  // packed bytes
    bool m_isFull = false; // there was no room for more
};
#endif

[[noreturn, maybe_unused]] void failUnreadable(const FileStream& file, const char* packing)
{
    throw Trouble(file.name() + ": compressed with " + packing + ", which this build cannot read");
}

} // namespace

std::unique_ptr<ByteStream> openInput(const std::string& fileName)
{
    auto file = std::make_unique<FileStream>(fileName);
    switch (const Compression packing = packingOf(*file))
    {
    case Compression::none:
        break;
    case Compression::gzip:
    case Compression::zlib:
#if BCI_WITH_ZLIB
        return std::make_unique<InflatedStream>(std::move(file), packing);
#else
        failUnreadable(*file, packing == Compression::gzip ? "gzip" : "zlib");
#endif
    case Compression::zstd:
#if BCI_WITH_ZSTD
        return std::make_unique<ZstdStream>(std::move(file));
#else
        failUnreadable(*file, "zstd");
#endif
    }
    return file;
}

std::unique_ptr<ByteStream> openFileAt(const std::string& fileName, std::uint64_t offset)
{
    auto file = std::make_unique<FileStream>(fileName);
    file->seek(0);
    if (packingOf(*file) != Compression::none)
    {
        throw Trouble(file->name() + ": compressed, so that no place in it can be gone to");
    }
    file->seek(offset);
    return file;
}

Window::Window(ByteStream& stream, std::size_t capacity) : m_stream(stream), m_buffer(capacity) {}

std::string_view Window::ahead(std::size_t least)
{
    if (m_begin == m_end)
    {
        if (m_trouble != nullptr)
        {
            std::rethrow_exception(m_trouble);
        }
        m_begin = m_end = 0;
    }
    least = std::min(least, m_buffer.size());
    if (m_buffer.size() - m_begin < least)
    {
        std::memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
        m_end -= m_begin;
        m_begin = 0;
    }
    while (m_end - m_begin < least && !m_isLast)
    {
        try
        {
            const std::size_t length = m_stream.read(m_buffer.data() + m_end, m_buffer.size() - m_end);
            m_end += length;
            m_isLast = length == 0;
        }
        catch (const Trouble&)
        {
            if (m_begin == m_end)
            {
                throw;
            }
            m_trouble = std::current_exception();
            m_isLast = true;
        }
    }
    return {m_buffer.data() + m_begin, m_end - m_begin};
}

bool Window::isLast() const
{
    return m_isLast;
}

void Window::consume(std::size_t count)
{
    m_begin += count;
    m_offset += count;
}

std::uint64_t Window::offset() const
{
    return m_offset;
}

WindowStream::WindowStream(Window& window) : m_window(window) {}

std::size_t WindowStream::read(char* to, std::size_t most)
{
    const std::size_t length = m_window.ahead(std::min<std::size_t>(most, 1)).copy(to, most);
    m_window.consume(length);
    return length;
}

} // namespace bci::tool
