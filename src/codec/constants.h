// Rows as constants: the loops of the engine, unrolled for one table.
#ifndef BCI_CODEC_CONSTANTS_H
#define BCI_CODEC_CONSTANTS_H

#include "loops.h"

#include <array>
#include <bit>
#include <cstdint>

namespace bci::codec
{

// A table as a type. In its place as the first argument of the engine's functions, it gives the functions below.
template <const Fields& table>
struct Constant
{
};

// Characters that are known but for the digits of up to two indexes, copied and compared by words.
template <std::size_t size>
struct Pattern
{
    std::array<char, size> text = {};
    // Places of the digits.
    std::size_t first = size;
    std::size_t second = size;
};

// What stands in front of a field's value, or behind it.
template <typename F, bool opening>
struct ConstantText
{
    static constexpr bool kBare = F::oddity == Oddity::bareOpening;
    static constexpr std::string_view kFront = opening ? kBare ? "<" : "\t<" : "\n\t</";
    static constexpr std::string_view kName = opening ? F::tag : closingTag(F::row);
    static constexpr std::string_view kBack = opening ? kBare ? ">\n\t   " : ">\n\t  " : ">\n";
    static constexpr bool kTwofold = kName.ends_with("__");
    static constexpr bool kOnefold = !kTwofold && kName.ends_with("_");
    static constexpr std::size_t kPlainSize = kFront.size() + kName.size() + kBack.size();
};

// The two variants of it: with the indexes that the name takes, or none.
template <typename F, bool opening, bool indexed>
consteval auto makePattern()
{
    using Text = ConstantText<F, opening>;
    constexpr bool kTwofold = indexed && Text::kTwofold;
    constexpr bool kOnefold = indexed && Text::kOnefold;
    Pattern<Text::kPlainSize + (kTwofold ? 2 : 0) + (kOnefold ? 1 : 0)> pattern;
    std::size_t at = 0;
    const auto put = [&](std::string_view text)
    {
        for (const char ch : text)
        {
            pattern.text[at++] = ch;
        }
    };
    put(Text::kFront);
    put(Text::kName);
    if (kTwofold)
    {
        pattern.first = at - 1;
        pattern.second = at + 1;
        --at;
        put("0_0");
    }
    if (kOnefold)
    {
        pattern.first = at;
        put("0");
    }
    put(Text::kBack);
    return pattern;
}

template <typename F, bool opening, bool indexed>
class TextBlock
{
public:
    static constexpr std::size_t kSize = makePattern<F, opening, indexed>().text.size();

    static char* put(char* to, const Subscripts& subscripts)
    {
        forEachWord([&]<std::size_t at>(std::integral_constant<std::size_t, at>)
                    { poke(to + at, word<at>(subscripts)); });
        return to + kSize;
    }

    static bool stands(const char* at, const Subscripts& subscripts)
    {
        std::uint64_t difference = 0;
        forEachWord([&]<std::size_t offset>(std::integral_constant<std::size_t, offset>)
                    { difference |= peek<std::uint64_t>(at + offset) ^ word<offset>(subscripts); });
        return difference == 0;
    }

    // The hash of the name in an opening text.
    static U32 hash(const Subscripts& subscripts)
    {
        static_assert(opening);
        constexpr std::size_t kEnd = kSize - ConstantText<F, opening>::kBack.size();
        constexpr std::size_t kNameSize = kEnd - kNamePlace;
        std::uint64_t last;
        if constexpr (kEnd >= kWord)
        {
            last = littleEndian(word<kEnd - kWord>(subscripts));
        }
        else
        {
            last = littleEndian(word<0>(subscripts)) << (8 * (kWord - kEnd));
        }
        if constexpr (kNameSize < kWord)
        {
            last >>= 8 * (kWord - kNameSize);
        }
        return nameHash(kNameSize, kPattern.text[kNamePlace], last);
    }

    // Of the name.
    static constexpr std::size_t kNamePlace = ConstantText<F, opening>::kFront.size();

private:
    static std::uint64_t littleEndian(std::uint64_t word)
    {
        return std::endian::native == std::endian::big ? __builtin_bswap64(word) : word;
    }

    static constexpr auto kPattern = makePattern<F, opening, indexed>();
    static constexpr std::size_t kWord = sizeof(std::uint64_t);
    static_assert(kSize >= kWord);

    // Calls a function with the places of words that cover it; the last two may overlap.
    template <typename Function>
    BCI_INLINE static void forEachWord(Function function)
    {
        [&]<std::size_t... index>(std::index_sequence<index...>) __attribute__((always_inline))
        {
            (function(std::integral_constant<std::size_t, index * kWord>()), ...);
        }
        (std::make_index_sequence<kSize / kWord>());
        if constexpr (kSize % kWord != 0)
        {
            function(std::integral_constant<std::size_t, kSize - kWord>());
        }
    }

    // The word from a place on, with the digits in it.
    template <std::size_t at>
    static std::uint64_t word(const Subscripts& subscripts)
    {
        constexpr std::uint64_t kPlain = plainWord(at);
        constexpr std::uint64_t kFirst = unit(at, kPattern.first);
        constexpr std::uint64_t kSecond = unit(at, kPattern.second);
        return kPlain + kFirst * subscripts.first + kSecond * subscripts.second;
    }

    static constexpr std::uint64_t plainWord(std::size_t at)
    {
        std::array<char, kWord> bytes = {};
        for (std::size_t i = 0; i < kWord; ++i)
        {
            bytes[i] = kPattern.text[at + i];
        }
        return std::bit_cast<std::uint64_t>(bytes);
    }

    // What a digit counts in the word, 0 if its place is not in it.
    static constexpr std::uint64_t unit(std::size_t at, std::size_t place)
    {
        std::array<char, kWord> bytes = {};
        if (place >= at && place < at + kWord)
        {
            bytes[place - at] = 1;
        }
        return std::bit_cast<std::uint64_t>(bytes);
    }
};

template <typename F, bool indexed>
struct ConstantElementText
{
    Subscripts subscripts;

    static constexpr std::size_t size()
    {
        return TextBlock<F, true, indexed>::kSize + TextBlock<F, false, indexed>::kSize;
    }

    BCI_INLINE char* putOpening(char* to) const
    {
        return TextBlock<F, true, indexed>::put(to, subscripts);
    }

    BCI_INLINE char* putClosing(char* to) const
    {
        return TextBlock<F, false, indexed>::put(to, subscripts);
    }
};

// Indexes of one digit.
struct Digits
{
    Subscripts subscripts;
};

template <const Fields& table, std::size_t index>
ConstantElementText<ConstantField<table, index>, false>
elementText(ConstantField<table, index> /*field*/, std::nullptr_t /*digits*/, unsigned int /*element*/)
{
    return {};
}

template <const Fields& table, std::size_t index>
ConstantElementText<ConstantField<table, index>, true> elementText(ConstantField<table, index> /*field*/,
                                                                   const Digits* digits, unsigned int element)
{
    return {{digits->subscripts.first, digits->subscripts.second + element}};
}

inline bool haveOneDigit(const Subscripts& subscripts, unsigned int count)
{
    return subscripts.first < 10 && subscripts.second < 10 && subscripts.second + count <= 10;
}

template <const Fields& table>
BCI_INLINE void writeText(Constant<table> /*rows*/, const void* structure, TextWriter& out, unsigned int count = 1)
{
    putText(ConstantRows<table>(count), static_cast<const char*>(structure), out,
            []<typename F>(F /*field*/, const char* element, unsigned int /*index*/,
                           commonStream::ostream_text& stream) { writeTextExactly(F::row, element, stream); });
}

template <const Fields& table>
BCI_INLINE void readText(Constant<table> /*rows*/, void* structure, TextReader& in, unsigned int count = 1)
{
    getText(ConstantRows<table>(count), static_cast<char*>(structure), in,
            []<typename F>(F /*field*/, char* element, commonStream::istream_text& stream)
            { readTextExactly(F::row, element, stream); });
}

template <const Fields& table>
BCI_INLINE void writeBinary(Constant<table> /*rows*/, const void* structure, BinaryWriter& out,
                            unsigned int count = 1)
{
    if (!putBinary(ConstantRows<table>(count), static_cast<const char*>(structure), out)) [[unlikely]]
    {
        out.through([&](commonStream::ostream_binary& stream)
                    { writeBinaryExactly(table, structure, stream, count); });
    }
}

template <const Fields& table>
BCI_INLINE void readBinary(Constant<table> /*rows*/, void* structure, BinaryReader& in, unsigned int count = 1)
{
    if (!getBinary(ConstantRows<table>(count), static_cast<char*>(structure), in)) [[unlikely]]
    {
        in.through([&](commonStream::istream_binary& stream)
                   { readBinaryExactly(table, structure, stream, count); });
    }
}

template <const Fields& table>
BCI_INLINE void writeXml(Constant<table> /*rows*/, const void* structure, TextWriter& out)
{
    putXml(ConstantRows<table>(1), static_cast<const char*>(structure), out, nullptr,
           []<typename F>(F /*field*/, const char* element, unsigned int index, commonStream::ostream_text& stream)
           { writeXmlExactly(F::row, element, stream, nullptr, index); });
}

// Indexes of more than one digit do not occur in ordinary messages.
template <const Fields& table>
BCI_INLINE void writeXml(Constant<table> /*rows*/, const void* structure, TextWriter& out,
                         const Subscripts* subscripts, unsigned int count = 1)
{
    if (!haveOneDigit(*subscripts, count)) [[unlikely]]
    {
        out.through(
            [&](commonStream::ostream_text& stream)
            {
                TextWriter other(stream);
                writeXml(table, structure, other, subscripts, count);
            });
        return;
    }
    const Digits digits = {*subscripts};
    putXml(ConstantRows<table>(count), static_cast<const char*>(structure), out, &digits,
           [subscripts]<typename F>(F /*field*/, const char* element, unsigned int index,
                                    commonStream::ostream_text& stream)
           { writeXmlExactly(F::row, element, stream, subscripts, index); });
}

// Reads the rest of an element, behind its opening tag, as the writers write it: a number has at most nine digits.
// Returns the place behind it; null, with nothing read, for any other.
template <typename F, bool indexed>
BCI_INLINE const char* getRest(const char* from, const char* end, char* structure, const Subscripts& subscripts)
{
    // The reader looks for a closing tag of the same name, whatever the writers do.
    if (F::oddity == Oddity::foreignClosing)
    {
        return nullptr;
    }
    using Closing = TextBlock<F, false, indexed>;
    constexpr auto kClosing = static_cast<std::ptrdiff_t>(Closing::kSize);
    if (F::kind == Kind::text)
    {
        const auto* const found =
            static_cast<const char*>(std::memchr(from, '<', static_cast<std::size_t>(end - from)));
        if (found == nullptr || found - from < 2)
        {
            return nullptr;
        }
        const char* const behind = found - 2;
        if (end - behind < kClosing || !Closing::stands(behind, subscripts))
        {
            return nullptr;
        }
        copyContent({from, behind}, structure + F::offset, F::size);
        return behind + kClosing;
    }
    constexpr bool kSigned = F::kind == Kind::s16 || F::kind == Kind::s32;
    const bool negative = kSigned && *from == '-'; // the zero that ends the document is behind it at the latest
    if (negative) [[unlikely]]
    {
        ++from;
    }
    U32 magnitude;
    const char* const behind = getDigits(from, magnitude);
    if (static_cast<std::size_t>(behind - from - 1) >= 9 || end - behind < kClosing ||
        !Closing::stands(behind, subscripts))
    {
        return nullptr;
    }
    store(F(), structure, bitsOf({magnitude, negative}));
    return behind + kClosing;
}

// Whether an element's opening tag stands somewhere.
template <typename F, bool indexed>
BCI_INLINE bool opensAt(const char* from, const char* end, const Subscripts& subscripts)
{
    using Opening = TextBlock<F, true, indexed>;
    return end - from >= static_cast<std::ptrdiff_t>(Opening::kSize) && Opening::stands(from, subscripts);
}

// Reads the first element of a name in a document of another order. False, with nothing read, for any that is not
// as the writers write it.
template <typename F, bool indexed>
BCI_INLINE bool takeFirst(char* structure, Elements& elements, const Subscripts& subscripts)
{
    using Opening = TextBlock<F, true, indexed>;
    const char* const name = elements.first(Opening::hash(subscripts));
    if (name == nullptr || name - elements.document() < static_cast<std::ptrdiff_t>(Opening::kNamePlace))
    {
        return false;
    }
    const char* const from = name - Opening::kNamePlace;
    return opensAt<F, indexed>(from, elements.end(), subscripts) &&
           getRest<F, indexed>(from + Opening::kSize, elements.end(), structure, subscripts) != nullptr;
}

// Reads an element that begins here. Returns the place behind it; null, with nothing read, for any that is not as
// the writers write it.
template <typename F, bool indexed>
BCI_INLINE const char* takeNext(const char* next, const char* end, char* structure, const Subscripts& subscripts)
{
    if (!opensAt<F, indexed>(next, end, subscripts)) [[unlikely]]
    {
        return nullptr;
    }
    return getRest<F, indexed>(next + TextBlock<F, true, indexed>::kSize, end, structure, subscripts);
}

// Reads an element that is not the next one, or not as the writers write it.
template <const Fields& table, typename F, bool indexed>
[[gnu::noinline]] bool readElsewhere(char* structure, Elements& elements, const Subscripts& subscripts)
{
    return (!opensAt<F, indexed>(elements.next(), elements.end(), subscripts) &&
            takeFirst<F, indexed>(structure, elements, subscripts)) ||
           readXml(table, F::row, structure, elements, indexed ? &subscripts : nullptr);
}

template <const Fields& table, bool indexed>
bool readXmlRows(char* structure, Elements& elements, const Subscripts& subscripts)
{
    const char* const end = elements.end();
    const char* next = elements.next();
    return [&]<std::size_t... index>(std::index_sequence<index...>) __attribute__((always_inline))
    {
        return ([&]<typename F>(F /*field*/) __attribute__((always_inline)) {
            if (F::oddity == Oddity::notReadFromXml)
            {
                return true;
            }
            const char* const behind = takeNext<F, indexed>(next, end, structure, subscripts);
            if (behind == nullptr) [[unlikely]]
            {
                const bool found = readElsewhere<table, F, indexed>(structure, elements, subscripts);
                next = elements.next();
                return found;
            }
            elements.passTo(behind);
            next = behind;
            return true;
        }(ConstantField<table, index>()) &&
                ...);
    }
    (std::make_index_sequence<table.rows.size()>());
}

template <const Fields& table>
bool readXml(Constant<table> /*rows*/, void* structure, Elements& elements)
{
    return readXmlRows<table, false>(static_cast<char*>(structure), elements, {});
}

template <const Fields& table>
bool readXml(Constant<table> /*rows*/, void* structure, Elements& elements, const Subscripts* subscripts,
             unsigned int count = 1)
{
    if (!haveOneDigit(*subscripts, count))
    {
        return readXml(table, structure, elements, subscripts, count);
    }
    Subscripts ofElement = *subscripts;
    char* to = static_cast<char*>(structure);
    for (unsigned int i = 0; i < count; ++i)
    {
        if (!readXmlRows<table, true>(to, elements, ofElement))
        {
            return false;
        }
        to += table.binarySize;
        ++ofElement.second;
    }
    return true;
}

} // namespace bci::codec

#endif
