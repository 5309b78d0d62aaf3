// The inner loops of the engine, which go straight through the streams' buffers. Each runs over rows of either
// kind.
#ifndef BCI_CODEC_LOOPS_H
#define BCI_CODEC_LOOPS_H

#include "byteOrder.h"
#include "cursor.h"
#include "decimal.h"
#include "elementText.h"
#include "rows.h"
#include "unaligned.h"

#include <cstddef>
#include <cstring>

namespace bci::codec
{

inline constexpr char kDelimiter = ':';

template <typename T>
Number split(T number)
{
    const auto bits = static_cast<U32>(number);
    const bool negative = number < 0;
    return {negative ? 0 - bits : bits, negative};
}

// The number in a structure's field.
template <typename F>
Number load(const F& field, const char* structure)
{
    const char* const from = structure + field.offset;
    switch (field.kind)
    {
    case Kind::u8:
        return {peek<U8>(from), false};
    case Kind::u16:
        return {peek<U16>(from), false};
    case Kind::s16:
        return split(peek<S16>(from));
    case Kind::s32:
        return split(peek<S32>(from));
    default:
        return {peek<U32>(from), false};
    }
}

// Stores as many bits of a number as a structure's field has.
template <typename F>
void store(const F& field, char* structure, U32 number)
{
    char* const to = structure + field.offset;
    switch (field.size)
    {
    case 1:
        return poke(to, static_cast<U8>(number));
    case 2:
        return poke(to, static_cast<U16>(number));
    default:
        return poke(to, number);
    }
}

inline U32 bitsOf(Number number)
{
    return number.negative ? 0 - number.magnitude : number.magnitude;
}

inline unsigned int textLength(const char* text, unsigned int size)
{
    return static_cast<unsigned int>(strnlen(text, size));
}

// The value of a field as characters.
class Value
{
public:
    template <typename F>
    Value(const F& field, const char* structure)
    {
        if (field.kind == Kind::text)
        {
            m_text = structure + field.offset;
            m_size = textLength(m_text, field.size);
        }
        else
        {
            m_number = load(field, structure);
            m_size = countDigits(m_number.magnitude) + (m_number.negative ? 1 : 0);
        }
    }

    unsigned int size() const
    {
        return m_size;
    }

    // Returns the place behind it.
    char* put(char* to) const
    {
        if (m_text != nullptr)
        {
            std::memcpy(to, m_text, m_size);
            return to + m_size;
        }
        if (m_number.negative)
        {
            *to = '-';
            return putDigits(to + 1, m_number.magnitude, m_size - 1);
        }
        return putDigits(to, m_number.magnitude, m_size);
    }

private:
    const char* m_text = nullptr;
    Number m_number = {};
    unsigned int m_size;
};

// Digits that numbers of a kind are read with here, and the greatest magnitude.
constexpr unsigned int mostDigits(Kind kind)
{
    return kind == Kind::u8 ? 3 : kind == Kind::u16 || kind == Kind::s16 ? 5 : 9;
}

constexpr U32 greatest(Kind kind)
{
    return kind == Kind::u8 ? 0xFF : kind == Kind::u16 ? 0xFFFF : kind == Kind::s16 ? 0x7FFF : 999999999;
}

// Reads digits and their delimiter: no zeros in front, and somewhere before `end` a character that is no digit.
// Returns the place behind the delimiter; null for anything else.
template <typename F>
BCI_INLINE const char* getOrdinaryDigits(const F& field, const char* from, const char* end, U32& number)
{
    if (!isDigit(*from) || (*from == '0' && from[1] != kDelimiter))
    {
        return nullptr;
    }
    number = digitOf(*from);
    const unsigned int most = mostDigits(field.kind);
    unsigned int i = 1;
    if (kForSpeed && most > 8 && from[1] != kDelimiter && end - from > 8 && getEightDigits(from, number))
    {
        i = 8;
    }
    for (; i < most; ++i)
    {
        const char ch = from[i];
        if (ch == kDelimiter)
        {
            return from + i + 1;
        }
        if (!isDigit(ch))
        {
            return nullptr;
        }
        number = number * 10 + digitOf(ch);
    }
    return from[i] == kDelimiter && number <= greatest(field.kind) ? from + i + 1 : nullptr;
}

// Behind a '-'.
template <typename F>
[[gnu::noinline]] const char* getOrdinaryNegative(const F& field, const char* from, const char* end,
                                                  char* structure)
{
    if ((field.kind != Kind::s16 && field.kind != Kind::s32) || from == end || *from == '0')
    {
        return nullptr;
    }
    U32 magnitude;
    const char* const behind = getOrdinaryDigits(field, from, end, magnitude);
    if (behind != nullptr)
    {
        store(field, structure, 0 - magnitude);
    }
    return behind;
}

// Reads a number as the writers write it: at most nine digits, a '-' or nothing in front, and its delimiter.
// Returns the place behind the delimiter; null, with nothing read, for any other.
template <typename F>
BCI_INLINE const char* getOrdinaryNumber(const F& field, const char* from, const char* end, char* structure)
{
    if (*from == '-') [[unlikely]]
    {
        return getOrdinaryNegative(field, from + 1, end, structure);
    }
    U32 number;
    const char* const behind = getOrdinaryDigits(field, from, end, number);
    if (behind != nullptr) [[likely]]
    {
        store(field, structure, number);
    }
    return behind;
}

// Likewise a text that is ended by its delimiter, or the end of its array, within the data.
template <typename F>
const char* getOrdinaryText(const F& field, const char* from, const char* end, char* structure)
{
    const auto left = static_cast<std::size_t>(end - from);
    const std::size_t longest = field.size - 1U;
    const void* const found = std::memchr(from, kDelimiter, left < longest ? left : longest);
    if (found == nullptr && left <= longest)
    {
        return nullptr;
    }
    const std::size_t length =
        found != nullptr ? static_cast<std::size_t>(static_cast<const char*>(found) - from) : longest;
    std::memcpy(structure + field.offset, from, length);
    structure[field.offset + length] = '\0';
    return from + length + 1;
}

// Either of them.
template <typename F>
BCI_INLINE const char* getOrdinary(const F& field, const char* from, const char* end, char* structure)
{
    if (from == end)
    {
        return nullptr;
    }
    return field.kind == Kind::text ? getOrdinaryText(field, from, end, structure)
                                    : getOrdinaryNumber(field, from, end, structure);
}

// Before the digits that data ends with. At its begin, if there is no end to them: it is looked for again and
// again, which is not to cost more than reading does.
[[gnu::noinline]] inline const char* beforeLastDigits(const char* begin, const char* end)
{
    constexpr std::ptrdiff_t kMost = 64;
    const char* const nearest = end - begin > kMost ? end - kMost : begin;
    while (end != nearest && isDigit(end[-1]))
    {
        --end;
    }
    return end != nearest ? end : begin;
}

// Up to where data can be read so: to the last character that is no digit.
inline const char* lastEnd(const char* begin, const char* end)
{
    return end == begin || !isDigit(end[-1]) ? end : beforeLastDigits(begin, end);
}

// Whether there is room for a number whatever it is, and so many characters around it: its digits need not be
// counted first.
template <typename F>
bool fitsEasily(const F& field, std::size_t room, std::size_t around)
{
    return kForSpeed && field.kind != Kind::text && room >= textWidth(field.kind) + around;
}

// Writes field by field straight into the buffer, with `put`, which returns the place behind a field, or null if
// it does not fit into the room that is left. What does not fit is left to `putExactly`, which writes to the
// stream.
template <typename Rows, typename Put, typename PutExactly>
BCI_INLINE void putFields(const Rows& rows, const char* structure, TextWriter& out, Put put, PutExactly putExactly)
{
    if (!kForSpeed)
    {
        out.through(
            [&](commonStream::ostream_text& stream)
            {
                rows.forEach(structure, [&](const auto& field, const char* element, unsigned int index)
                             { putExactly(field, element, index, stream); });
            });
        return;
    }
    char* to = out.at();
    char* end = out.end();
    rows.forEach(
        structure, [&](const auto& field, const char* element, unsigned int index) __attribute__((always_inline)) {
            char* const behind = put(field, element, index, to, static_cast<std::size_t>(end - to));
            if (behind != nullptr) [[likely]]
            {
                to = behind;
                return;
            }
            out.moveTo(to);
            out.through([&](commonStream::ostream_text& stream) { putExactly(field, element, index, stream); });
            to = out.at();
            end = out.end();
        });
    out.moveTo(to);
}

template <typename Rows, typename PutExactly>
BCI_INLINE void putText(const Rows& rows, const char* structure, TextWriter& out, PutExactly putExactly)
{
    putFields(
        rows, structure, out,
        [](const auto& field, const char* element, unsigned int /*index*/, char* to, std::size_t room)
            __attribute__((always_inline))
                ->char* {
                    if (fitsEasily(field, room, 1)) [[likely]]
                    {
                        to = putNumber(to, load(field, element));
                        *to = kDelimiter;
                        return to + 1;
                    }
                    const Value value(field, element);
                    if (room <= value.size())
                    {
                        return nullptr;
                    }
                    to = value.put(to);
                    *to = kDelimiter;
                    return to + 1;
                },
        putExactly);
}

template <typename Rows, typename Indexes, typename PutExactly>
BCI_INLINE void putXml(const Rows& rows, const char* structure, TextWriter& out, Indexes subscripts,
                       PutExactly putExactly)
{
    putFields(
        rows, structure, out,
        [subscripts](const auto& field, const char* element, unsigned int index, char* to, std::size_t room)
            __attribute__((always_inline))
                ->char* {
                    const auto text = elementText(field, subscripts, index);
                    if (fitsEasily(field, room, text.size())) [[likely]]
                    {
                        return text.putClosing(putNumber(text.putOpening(to), load(field, element)));
                    }
                    const Value value(field, element);
                    if (room < text.size() + value.size())
                    {
                        return nullptr;
                    }
                    return text.putClosing(value.put(text.putOpening(to)));
                },
        putExactly);
}

// Of the numbers of the binary form the signal number, alone at position 0, keeps the host's byte order.
template <typename Rows>
bool beginsWithSigNo(const Rows& rows, bool atStart)
{
    return atStart && rows.fields().rows.front().kind == Kind::u32;
}

// Copies fields from one layout to the other: numbers turned into their byte order, texts as they are.
template <typename F>
BCI_INLINE void copyBigEndian(const F& field, char* to, const char* from)
{
    if (std::endian::native == std::endian::big || field.kind == Kind::text)
    {
        std::memcpy(to, from, field.size);
    }
    else if (field.size == sizeof(U32))
    {
        poke(to, bigEndian(peek<U32>(from)));
    }
    else if (field.size == sizeof(U16))
    {
        poke(to, bigEndian(peek<U16>(from)));
    }
    else
    {
        *to = *from;
    }
}

// Writes the binary form where there is room for all of it. Returns whether there was.
template <typename Rows>
BCI_INLINE bool putBinary(const Rows& rows, const char* structure, BinaryWriter& out)
{
    const Fields& fields = rows.fields();
    const std::size_t size = std::size_t{fields.binarySize} * rows.count();
    if (size == 0 || out.left() < size)
    {
        return size == 0;
    }
    char* to = out.at();
    if constexpr (std::endian::native == std::endian::big)
    {
        if (!fields.adjacent)
        {
            return false;
        }
        std::memcpy(to, structure + fields.rows.front().offset, size); // the structure has the form's own layout
        to += size;
    }
    else
    {
        rows.forEach(
            structure, [&to](const auto& field, const char* element, unsigned int /*index*/)
                           __attribute__((always_inline)) {
                               copyBigEndian(field, to, element + field.offset);
                               to += field.size;
                           });
        if (beginsWithSigNo(rows, out.isAtStart()))
        {
            std::memcpy(out.at(), structure + fields.rows.front().offset, sizeof(U32));
        }
    }
    out.moveTo(to);
    return true;
}

// The way back, where all of it is there.
template <typename Rows>
BCI_INLINE bool getBinary(const Rows& rows, char* structure, BinaryReader& in)
{
    const Fields& fields = rows.fields();
    const std::size_t size = std::size_t{fields.binarySize} * rows.count();
    if (size == 0 || in.left() < size)
    {
        return size == 0;
    }
    const char* from = in.at();
    if constexpr (std::endian::native == std::endian::big)
    {
        if (!fields.adjacent)
        {
            return false;
        }
        std::memcpy(structure + fields.rows.front().offset, from, size);
        from += size;
    }
    else
    {
        rows.forEach(
            structure, [&from](const auto& field, char* element, unsigned int /*index*/)
                           __attribute__((always_inline)) {
                               copyBigEndian(field, element + field.offset, from);
                               from += field.size;
                           });
        if (beginsWithSigNo(rows, in.isAtStart()))
        {
            std::memcpy(structure + fields.rows.front().offset, in.at(), sizeof(U32));
        }
    }
    in.moveTo(from);
    return true;
}

// Reads text field by field straight from the buffer, but those that are not as the writers write them, which the
// given function reads from the stream.
template <typename Rows, typename GetExactly>
BCI_INLINE void getText(const Rows& rows, char* structure, TextReader& in, GetExactly getExactly)
{
    if (!kForSpeed)
    {
        in.through(
            [&](commonStream::istream_text& stream)
            {
                rows.forEach(structure, [&](const auto& field, char* element, unsigned int /*index*/)
                             { getExactly(field, element, stream); });
            });
        return;
    }
    const char* from = in.at();
    const char* end = lastEnd(from, in.end());
    rows.forEach(
        structure, [&](const auto& field, char* element, unsigned int /*index*/) __attribute__((always_inline)) {
            const char* const behind = getOrdinary(field, from, end, element);
            if (behind != nullptr) [[likely]]
            {
                from = behind;
                return;
            }
            in.moveTo(from);
            in.through([&](commonStream::istream_text& stream) { getExactly(field, element, stream); });
            from = in.at();
            end = lastEnd(from, in.end());
        });
    in.moveTo(from);
}

} // namespace bci::codec

#endif
