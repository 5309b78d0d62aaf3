// Codecs as one would write them by hand for one message and one form.

#include "optimum.h"
#include "peers.h"

namespace bench
{

namespace
{

using namespace optimum;

// Characters that a row's value takes at most.
template <typename Row>
constexpr std::size_t longestValue()
{
    if constexpr (Row::kIsText)
    {
        return sizeof(typename Row::Value);
    }
    else
    {
        return kLongestNumber<typename Row::Value>;
    }
}

template <typename Row>
constexpr std::size_t kLongestText = longestValue<Row>() + 1;
template <typename Row>
constexpr std::size_t kLongestXml = longestValue<Row>() + kOpening<Row>.size + kClosing<Row>.size;

template <typename Value>
BENCH_INLINE char* putValue(char* to, const Value& value)
{
    if constexpr (std::is_array_v<Value>)
    {
        return putText(to, value);
    }
    else
    {
        return putNumber(to, value);
    }
}

// Writes straight into the buffer where a run of rows fits at its longest, or else a row; and where that is not
// known beforehand, by way of a buffer of its own.
class Writer
{
public:
    Writer(char* begin, char* end) : m_next(begin), m_end(end) {}

    char* next() const
    {
        return m_next;
    }

protected:
    BENCH_INLINE bool hasRoom(std::size_t size) const
    {
        return static_cast<std::size_t>(m_end - m_next) >= size;
    }

    template <std::size_t longest, typename Put>
    BENCH_INLINE bool write(Put put)
    {
        if (hasRoom(longest))
        {
            m_next = put(m_next);
            return true;
        }
        char value[longest];
        const auto size = static_cast<std::size_t>(put(value) - value);
        if (!hasRoom(size))
        {
            return false;
        }
        std::memcpy(m_next, value, size);
        m_next += size;
        return true;
    }

    char* m_next;
    char* m_end;
};

class TextWriter : public Writer, public Nesting<TextWriter>
{
public:
    using Writer::Writer;

    template <typename... Rows>
    BENCH_INLINE bool operator()(const Rows&... rows)
    {
        if (hasRoom((kLongestText<Rows> + ...)))
        {
            ((m_next = put(m_next, rows)), ...);
            return true;
        }
        return (write<kLongestText<Rows>>([&](char* to) { return put(to, rows); }) && ...);
    }

private:
    template <typename Row>
    BENCH_INLINE static char* put(char* to, const Row& row)
    {
        to = putValue(to, row.member);
        *to = ':';
        return to + 1;
    }
};

class XmlWriter : public Writer, public Nesting<XmlWriter>
{
public:
    using Writer::Writer;

    template <typename... Rows>
    BENCH_INLINE bool operator()(const Rows&... rows)
    {
        if (hasRoom((kLongestXml<Rows> + ...)))
        {
            ((m_next = put(m_next, rows)), ...);
            return true;
        }
        return (write<kLongestXml<Rows>>([&](char* to) { return put(to, rows); }) && ...);
    }

private:
    template <typename Row>
    BENCH_INLINE char* put(char* to, const Row& row) const
    {
        to = putLiteral<kOpening<Row>>(to, m_indexes);
        to = putValue(to, row.member);
        return putLiteral<kClosing<Row>>(to, m_indexes);
    }
};

// Bytes that the binary form takes without what a capability confirm's list adds.
template <typename Wire>
constexpr unsigned int kBinarySize = 0;
template <>
constexpr unsigned int kBinarySize<VornBcAuditCfmS> = 14;
template <>
constexpr unsigned int kBinarySize<GenericMsgS> = 12;
template <>
constexpr unsigned int kBinarySize<GenericRejMsgS> = 128;
template <>
constexpr unsigned int kBinarySize<VornBcGetHwPidCfmS> = 90;
template <>
constexpr unsigned int kBinarySize<CapabilityCfm> = 16;

class BinaryWriter
{
public:
    explicit BinaryWriter(char* begin) : m_next(begin) {}

    template <typename... Rows>
    BENCH_INLINE bool operator()(const Rows&... rows)
    {
        (put(rows), ...);
        return true;
    }

    template <unsigned int depth, typename Element, std::size_t N>
    BENCH_INLINE bool list(unsigned int count, Element (&elements)[N])
    {
        unsigned int index;
        return visitElements(count, elements, index, *this);
    }

    // Zeros up to the size of the union.
    BENCH_INLINE bool choice(S16 identity, const VornBcCapabilityUnionU& content)
    {
        char* const end = m_next + sizeof content;
        const bool result = visitContent(identity, content, *this);
        std::memset(m_next, 0, static_cast<std::size_t>(end - m_next));
        m_next = end;
        return result;
    }

private:
    template <typename Row>
    BENCH_INLINE void put(const Row& row)
    {
        using Value = typename Row::Value;
        if constexpr (Row::kIsText)
        {
            std::memcpy(m_next, row.member, sizeof(Value));
        }
        else
        {
            constexpr bool kHostOrder = Row::kName.size == 5 && std::string_view(Row::kName.text) == "sigNo";
            const Value value = kHostOrder ? row.member : bigEndian(row.member);
            std::memcpy(m_next, &value, sizeof value);
        }
        m_next += sizeof(Value);
    }

    char* m_next;
};

class BinaryReader
{
public:
    explicit BinaryReader(const char* begin) : m_next(begin) {}

    template <typename... Rows>
    BENCH_INLINE bool operator()(const Rows&... rows)
    {
        (get(rows), ...);
        return true;
    }

    template <unsigned int depth, typename Element, std::size_t N>
    BENCH_INLINE bool list(unsigned int count, Element (&elements)[N])
    {
        unsigned int index;
        return visitElements(depth == 0 ? count : static_cast<unsigned int>(N), elements, index, *this);
    }

    // The members lie in the union as in the form.
    BENCH_INLINE bool choice(S16 identity, VornBcCapabilityUnionU& content)
    {
        const char* const begin = m_next;
        const bool result = visitContent(identity, content, *this);
        const auto read = static_cast<std::size_t>(m_next - begin);
        std::memset(reinterpret_cast<char*>(&content) + read, 0, sizeof content - read);
        m_next = begin + sizeof content;
        return result;
    }

    const char* next() const
    {
        return m_next;
    }

private:
    template <typename Row>
    BENCH_INLINE void get(const Row& row)
    {
        using Value = typename Row::Value;
        if constexpr (Row::kIsText)
        {
            std::memcpy(row.member, m_next, sizeof(Value));
        }
        else
        {
            constexpr bool kHostOrder = Row::kName.size == 5 && std::string_view(Row::kName.text) == "sigNo";
            Value value;
            std::memcpy(&value, m_next, sizeof value);
            row.member = kHostOrder ? value : bigEndian(value);
        }
        m_next += sizeof(Value);
    }

    const char* m_next;
};

class TextReader : public Nesting<TextReader>
{
public:
    TextReader(const char* begin, const char* end) : m_next(begin), m_end(end) {}

    template <typename... Rows>
    BENCH_INLINE bool operator()(const Rows&... rows)
    {
        return (get(rows.member) && ...);
    }

private:
    template <typename Value>
    BENCH_INLINE bool get(Value& value)
    {
        const char* next;
        if constexpr (std::is_array_v<Value>)
        {
            next = getText(m_next, m_end, ':', value);
        }
        else
        {
            next = getNumber(m_next, m_end, value);
        }
        if (next == nullptr || *next != ':')
        {
            return false;
        }
        m_next = next + 1;
        return true;
    }

    const char* m_next;
    const char* m_end;
};

class XmlReader : public Nesting<XmlReader>
{
public:
    XmlReader(const char* begin, const char* end) : m_next(begin), m_end(end) {}

    template <typename... Rows>
    BENCH_INLINE bool operator()(const Rows&... rows)
    {
        return (get(rows) && ...);
    }

private:
    template <typename Row>
    BENCH_INLINE bool get(const Row& row)
    {
        if constexpr (Row::kOddity == Oddity::notReadFromXml)
        {
            return true;
        }
        else
        {
            const char* next = getLiteral<kOpening<Row>>(m_next, m_end, m_indexes);
            if (next == nullptr)
            {
                return false;
            }
            if constexpr (Row::kIsText)
            {
                next = getText(next, m_end, '\n', row.member);
            }
            else
            {
                next = getNumber(next, m_end, row.member);
            }
            if (next == nullptr)
            {
                return false;
            }
            m_next = getLiteral<kClosing<Row>>(next, m_end, m_indexes);
            return m_next != nullptr;
        }
    }

    const char* m_next;
    const char* m_end;
};

template <typename Wire>
unsigned int binarySize(const Wire& wire)
{
    if constexpr (std::same_as<Wire, CapabilityCfm>)
    {
        return kBinarySize<Wire> + wire.numberOfBoardCapabilities * unsigned{sizeof wire.boardCapabilities[0]};
    }
    else
    {
        return kBinarySize<Wire>;
    }
}

unsigned int clearRest(char* buffer, const char* end, unsigned int size)
{
    const auto length = static_cast<unsigned int>(end - buffer);
    std::memset(buffer + length, 0, size - length);
    return length;
}

template <typename CharacterWriter, typename Wire>
[[gnu::noinline]] unsigned int encode(const Wire& wire, char* buffer, unsigned int size)
{
    CharacterWriter writer(buffer, buffer + size);
    return visit(wire, writer) ? clearRest(buffer, writer.next(), size) : 0;
}

template <typename Wire>
[[gnu::noinline]] unsigned int encodeBinary(const Wire& wire, char* buffer, unsigned int size)
{
    const unsigned int needed = binarySize(wire);
    if (size < needed)
    {
        return 0;
    }
    BinaryWriter writer(buffer);
    return visit(wire, writer) ? clearRest(buffer, buffer + needed, size) : 0;
}

// Where the library reads text and binary into a cleared structure.
template <typename Wire>
constexpr bool kClearsFirst = std::same_as<Wire, CapabilityCfm> || std::same_as<Wire, VornBcGetHwPidCfmS>;

template <typename Wire>
BENCH_INLINE void clearFirst(Wire& wire)
{
    if constexpr (kClearsFirst<Wire>)
    {
        std::memset(&wire, 0, hidden(sizeof wire));
    }
}

template <typename Wire>
[[gnu::noinline]] bool decodeText(const char* data, unsigned int size, Wire& wire)
{
    clearFirst(wire);
    TextReader reader(data, data + size);
    return visit(wire, reader);
}

template <typename Wire>
[[gnu::noinline]] bool decodeXml(const char* data, unsigned int size, Wire& wire)
{
    XmlReader reader(data, data + size);
    return visit(wire, reader);
}

template <typename Wire>
[[gnu::noinline]] bool decodeBinary(const char* data, unsigned int size, Wire& wire)
{
    if (size < kBinarySize<Wire>)
    {
        return false;
    }
    if constexpr (std::same_as<Wire, CapabilityCfm>)
    {
        // The count is the word in front of the padding.
        U16 count;
        std::memcpy(&count, data + kBinarySize<Wire> - 4, sizeof count);
        if (size < kBinarySize<Wire> + bigEndian(count) * sizeof wire.boardCapabilities[0])
        {
            return false;
        }
    }
    BinaryReader reader(data);
    if (!visit(wire, reader))
    {
        return false;
    }
    if constexpr (kClearsFirst<Wire>)
    {
        // The structure is laid out as the form, so this is what was not read.
        const auto read = static_cast<std::size_t>(reader.next() - data);
        std::memset(reinterpret_cast<char*>(&wire) + read, 0, sizeof wire - read);
    }
    return true;
}

} // namespace

void registerOptimum()
{
    forEachSubject(
        []<typename S>(const S& subject)
        {
            using Wire = typename S::Wire;
            registerSameEncode(subject, Form::text, "optimum", &encode<TextWriter, Wire>);
            registerSameEncode(subject, Form::binary, "optimum", &encodeBinary<Wire>);
            registerSameEncode(subject, Form::xml, "optimum", &encode<XmlWriter, Wire>);
            registerSameDecode(subject, Form::text, "optimum", &decodeText<Wire>);
            registerSameDecode(subject, Form::binary, "optimum", &decodeBinary<Wire>);
            registerSameDecode(subject, Form::xml, "optimum", &decodeXml<Wire>);
            expectShortDataRefused(subject, Form::text, "optimum", &decodeText<Wire>);
            expectShortDataRefused(subject, Form::binary, "optimum", &decodeBinary<Wire>);
            expectShortDataRefused(subject, Form::xml, "optimum", &decodeXml<Wire>);
        });
}

} // namespace bench
