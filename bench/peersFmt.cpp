// Text and XML with {fmt}: one checked format string for fields that stand next to each other.

#include "peers.h"

#include <fmt/format.h>

namespace bench
{

namespace
{

// A format string, put together when this is compiled.
struct Format
{
    char text[1600] = {};
    std::size_t size = 0;

    constexpr operator fmt::string_view() const
    {
        return {text, size};
    }

    consteval void append(std::string_view piece)
    {
        std::copy(piece.begin(), piece.end(), text + size);
        size += piece.size();
    }

    // Indexes are the first two arguments.
    consteval void append(const Name& name)
    {
        for (std::size_t i = 0; i < name.size; ++i)
        {
            const bool first = i != 0 && i == name.first;
            const bool second = i != 0 && i == name.second;
            append(first ? "{0}" : second ? "{1}" : std::string_view(name.text + i, 1));
        }
    }

    consteval void appendArgument(std::size_t index)
    {
        append("{");
        if (index >= 10)
        {
            append({"0123456789" + index / 10, 1});
        }
        append({"0123456789" + index % 10, 1});
        append("}");
    }
};

template <typename... Rows>
consteval Format textFormat()
{
    Format format;
    ((static_cast<void>(sizeof(Rows)), format.append("{}:")), ...);
    return format;
}

template <typename... Rows>
constexpr bool kIndexed = ((Rows::kName.first != 0) || ...);

template <typename Row>
consteval void appendElement(Format& format, bool indexed, std::size_t argument)
{
    const bool bare = Row::kOddity == Oddity::bareOpening;
    format.append(bare ? "<" : "\t<");
    format.append(Row::kName);
    format.append(bare ? ">\n\t   " : ">\n\t  ");
    if (indexed)
    {
        format.appendArgument(argument + 2);
    }
    else
    {
        format.append("{}");
    }
    format.append("\n\t</");
    format.append(Row::kName);
    format.append(">\n");
}

template <typename... Rows>
consteval Format xmlFormat()
{
    Format format;
    std::size_t argument = 0;
    (appendElement<Rows>(format, kIndexed<Rows...>, argument++), ...);
    return format;
}

template <typename... Rows>
constexpr Format kTextFormat = textFormat<Rows...>();
template <typename... Rows>
constexpr Format kXmlFormat = xmlFormat<Rows...>();

template <typename Number>
const Number& argument(const Number& number)
{
    return number;
}

template <std::size_t N>
std::string_view argument(const U8 (&text)[N])
{
    return textOf(text);
}

class WriterBase
{
public:
    WriterBase(char* begin, char* end) : m_next(begin), m_end(end) {}

    const char* next() const
    {
        return m_next;
    }

protected:
    template <typename... Arguments>
    bool print(fmt::format_string<Arguments...> format, Arguments&&... arguments)
    {
        const auto left = static_cast<std::size_t>(m_end - m_next);
        const auto result = fmt::format_to_n(m_next, left, format, std::forward<Arguments>(arguments)...);
        m_next = result.out;
        return result.size <= left;
    }

private:
    char* m_next;
    char* m_end;
};

class TextWriter : public WriterBase, public Nesting<TextWriter>
{
public:
    using WriterBase::WriterBase;

    template <typename... Rows>
    BENCH_INLINE bool operator()(const Rows&... rows)
    {
        return print(kTextFormat<Rows...>, argument(rows.member)...);
    }
};

class XmlWriter : public WriterBase, public Nesting<XmlWriter>
{
public:
    using WriterBase::WriterBase;

    template <typename... Rows>
    BENCH_INLINE bool operator()(const Rows&... rows)
    {
        if constexpr (kIndexed<Rows...>)
        {
            return print(kXmlFormat<Rows...>, m_indexes[0], m_indexes[1], argument(rows.member)...);
        }
        else
        {
            return print(kXmlFormat<Rows...>, argument(rows.member)...);
        }
    }
};

template <typename Writer, typename Wire>
[[gnu::noinline]] unsigned int encode(const Wire& wire, char* buffer, unsigned int size)
{
    Writer writer(buffer, buffer + size);
    return visit(wire, writer) ? static_cast<unsigned int>(writer.next() - buffer) : 0;
}

} // namespace

void registerFmt()
{
    forEachSubject(
        []<typename S>(const S& subject)
        {
            registerSameEncode(subject, Form::text, "fmt", &encode<TextWriter, typename S::Wire>, false);
            registerSameEncode(subject, Form::xml, "fmt", &encode<XmlWriter, typename S::Wire>, false);
        });
}

} // namespace bench
