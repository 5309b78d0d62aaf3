// The text form with the standard library's conversions, number by number.

#include "peers.h"

#include <charconv>

namespace bench
{

namespace
{

constexpr char kDelimiter = ':';

class Writer : public Nesting<Writer>
{
public:
    Writer(char* begin, char* end) : m_next(begin), m_end(end) {}

    template <typename... Rows>
    BENCH_INLINE bool operator()(const Rows&... rows)
    {
        return (put(rows.member) && ...);
    }

    const char* next() const
    {
        return m_next;
    }

private:
    template <typename Number>
    bool put(Number number)
    {
        const auto [end, error] = std::to_chars(m_next, m_end, number);
        m_next = end;
        return error == std::errc() && putDelimiter();
    }

    template <std::size_t N>
    bool put(const U8 (&text)[N])
    {
        const std::string_view characters = textOf(text);
        if (characters.size() > static_cast<std::size_t>(m_end - m_next))
        {
            return false;
        }
        std::memcpy(m_next, characters.data(), characters.size());
        m_next += characters.size();
        return putDelimiter();
    }

    bool putDelimiter()
    {
        if (m_next == m_end)
        {
            return false;
        }
        *m_next++ = kDelimiter;
        return true;
    }

    char* m_next;
    char* m_end;
};

class Reader : public Nesting<Reader>
{
public:
    Reader(const char* begin, const char* end) : m_next(begin), m_end(end) {}

    template <typename... Rows>
    BENCH_INLINE bool operator()(const Rows&... rows)
    {
        return (get(rows.member) && ...);
    }

private:
    template <typename Number>
    bool get(Number& number)
    {
        const auto [end, error] = std::from_chars(m_next, m_end, number);
        m_next = end;
        return error == std::errc() && getDelimiter();
    }

    template <std::size_t N>
    bool get(U8 (&text)[N])
    {
        const std::size_t left = std::min(static_cast<std::size_t>(m_end - m_next), N);
        const void* const found = std::memchr(m_next, kDelimiter, left);
        if (found == nullptr)
        {
            return false;
        }
        const char* const end = static_cast<const char*>(found);
        setText(text, {m_next, static_cast<std::size_t>(end - m_next)});
        m_next = end;
        return getDelimiter();
    }

    bool getDelimiter()
    {
        return m_next != m_end && *m_next++ == kDelimiter;
    }

    const char* m_next;
    const char* m_end;
};

template <typename Wire>
[[gnu::noinline]] unsigned int encode(const Wire& wire, char* buffer, unsigned int size)
{
    std::memset(buffer, 0, size);
    Writer writer(buffer, buffer + size);
    return visit(wire, writer) ? static_cast<unsigned int>(writer.next() - buffer) : 0;
}

template <typename Wire>
[[gnu::noinline]] bool decode(const char* data, unsigned int size, Wire& wire)
{
    Reader reader(data, data + size);
    return visit(wire, reader);
}

} // namespace

void registerCharconv()
{
    forEachSubject(
        []<typename S>(const S& subject)
        {
            registerSameEncode(subject, Form::text, "to_chars", &encode<typename S::Wire>);
            registerSameDecode(subject, Form::text, "from_chars", &decode<typename S::Wire>);
            expectShortDataRefused(subject, Form::text, "from_chars", &decode<typename S::Wire>);
        });
}

} // namespace bench
