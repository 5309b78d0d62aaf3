// The strict reading of one record.
//
// The codecs are lenient on purpose; this is strict about every field. What it finds wrong is told with its place,
// and reading goes on behind it as long as it is known where the next field begins. Notes tell where a record is
// read without loss though the writers write it otherwise: a record without findings is, byte for byte, what the
// library writes for its values.
#ifndef BCI_TOOL_READING_H
#define BCI_TOOL_READING_H

#include "catalogue.h"
#include "codec/elementText.h"
#include "codec/tagLookup.h"
#include "codec/walk.h"
#include "finding.h"
#include "input.h"
#include "names.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace bci::tool
{

// A field of a message, in a list with its indexes.
struct FieldPlace
{
    const codec::Field& field;
    const codec::Subscripts* subscripts;

    std::string name() const
    {
        return fieldName(field, subscripts);
    }
};

// What a reading came to. A record that is not complete broke off at `end`.
struct Reading
{
    std::size_t end = 0;                       // behind what was read
    std::size_t rest = std::string_view::npos; // where what was not read begins, if there is any
    bool isComplete = false;
    bool isDamaged = false;
    bool hasNotes = false;

    bool isClean() const
    {
        return isComplete && !isDamaged;
    }
};

struct Range
{
    std::int64_t least;
    std::int64_t greatest;
};

constexpr Range rangeOf(codec::Kind kind)
{
    constexpr auto limits = [](auto value) {
        return Range{std::numeric_limits<decltype(value)>::min(), std::numeric_limits<decltype(value)>::max()};
    };
    switch (kind)
    {
    case codec::Kind::u8:
        return limits(U8{});
    case codec::Kind::u16:
        return limits(U16{});
    case codec::Kind::s16:
        return limits(S16{});
    case codec::Kind::u32:
        return {0, 0xFFFFFFFF};
    case codec::Kind::s32:
        return {-0x80000000LL, 0x7FFFFFFF};
    case codec::Kind::text:
        break;
    }
    return {0, 0};
}

// The number at the start of a text that ends in ':', if it is that of a signal.
inline const Signal* textSignal(std::string_view text)
{
    std::uint64_t number = 0;
    std::size_t i = 0;
    for (; i < text.size() && i < 10 && codec::isDigit(text[i]); ++i)
    {
        number = number * 10 + codec::digitOf(text[i]);
    }
    if (i == 0 || i == text.size() || text[i] != ':' || number > 0xFFFFFFFF)
    {
        return nullptr;
    }
    return signalOfNumber(static_cast<SIGSELECT>(number));
}

// Reads a record into a sink, which has
//   static constexpr bool kNeedsStructure;  whether structure() is to hold all fields afterwards, zeros elsewhere
//   char* structure(std::size_t size);      room for the wire structure, in the host's layout
//   void number(const FieldPlace&, std::int64_t value, std::string_view digits, std::size_t position);
//   void text(const FieldPlace&, std::string_view characters, std::size_t position);
//   void block(const FieldPlace&, std::string_view bytes, std::size_t position);
//   void nothing(const FieldPlace&, bool raw);  a number, text or, if raw, block whose value is lost
//   void finding(Finding);
// Digits are a number's characters in the form, if they are those that the writers write; else empty.
template <Form form, typename Sink>
class Reader
{
public:
    // What a record has to end before is the end of the bytes. XML has to have a zero behind it.
    Reader(const Rendering& rendering, Sink& sink) : m_rendering(rendering), m_bytes(rendering.bytes), m_sink(sink)
    {
    }

    Reading read()
    {
        const codec::Shape& shape = *m_rendering.signal->shape;
        char* const structure = m_sink.structure(shape.structureSize);
        if constexpr (Sink::kNeedsStructure)
        {
            std::memset(structure, 0, shape.structureSize);
        }
        codec::Walker<Reader>(structure, *this, nullptr).walk(shape.content);
        if constexpr (form == Form::xml)
        {
            if (!m_isOver)
            {
                lookAtOtherElements();
            }
        }
        m_reading.end = m_position;
        m_reading.isComplete = !m_isOver;
        m_reading.rest = m_isOver ? m_position : std::string_view::npos;
        return m_reading;
    }

    bool isOver() const
    {
        return m_isOver;
    }

    void field(const codec::Field& field, char* base, const codec::Subscripts* subscripts)
    {
        const FieldPlace place = {field, subscripts};
        if constexpr (form == Form::binary)
        {
            takeBytes(place, base);
        }
        else if (field.kind == codec::Kind::text)
        {
            takeText(place, base, false);
        }
        else
        {
            takeNumber(place, base);
        }
    }

    void entry(const codec::Field& entry, char* base, const codec::Subscripts& subscripts)
    {
        const FieldPlace place = {entry, &subscripts};
        if constexpr (form != Form::binary)
        {
            takeText(place, base, true);
        }
        else
        {
            // The array has been read as a whole.
            const std::string_view rest(base + entry.offset, entry.size);
            const std::size_t position = m_position - entry.size;
            const std::size_t length = rest.find('\0');
            if (length == std::string_view::npos)
            {
                damage(Code::entryNotEnded, place, position, rest.size(), "a zero byte behind the entry", "none",
                       "takes all that is left for the entry");
                m_sink.text(place, rest, position);
                m_entriesEnd = m_position;
                return;
            }
            m_sink.text(place, rest.substr(0, length), position);
            m_entriesEnd = m_position - entry.size + length + 1;
        }
    }

    void block(const codec::Field& block, char* base)
    {
        const FieldPlace place = {block, nullptr};
        if constexpr (form == Form::xml)
        {
            m_isBlock = true;
            takeBlockElement(place, base);
            m_isBlock = false;
            return;
        }
        const std::string_view bytes = m_bytes.substr(m_position, block.size);
        if (bytes.size() < block.size)
        {
            breakOff(Code::cutShort, place, m_bytes.size(), 0, std::to_string(block.size) + " bytes",
                     "the end after " + std::to_string(bytes.size()),
                     form == Form::text ? "takes what is there" : "leaves the block as it was");
            return;
        }
        const std::size_t behind = m_position + block.size;
        if (form == Form::text && m_bytes.substr(behind, 1) != ":")
        {
            breakOff(Code::blockLength, place, behind, 1,
                     "':' behind the " + std::to_string(block.size) + " bytes of the block", foundAt(behind),
                     "takes the block up to its first ':'");
            return;
        }
        keep(base, block, bytes);
        m_sink.block(place, bytes, m_position);
        m_position = behind + (form == Form::text ? 1 : 0);
    }

    void beginList(const codec::List& list, std::int64_t count, char* /*base*/)
    {
        if (!expectAtMost(*list.count, count, list.bound, true))
        {
            return;
        }
        m_listCount = remembered(*list.count);
        if (form == Form::text && list.delimiterWhenEmpty && count == 0)
        {
            // The writers put it, and the readers do not want it.
            if (m_bytes.substr(m_position, 1) == ":")
            {
                ++m_position;
            }
            else
            {
                note(Code::listDelimiter, {*list.count, nullptr}, m_position, 0,
                     "':' in the place of the empty list", "none",
                     "reads it so; of what its own writers write, it misreads what follows");
            }
        }
    }

    void endList(const codec::List& list, std::int64_t count, char* /*base*/)
    {
        if (form == Form::binary && list.wholeInBinary)
        {
            skipUnused((list.bound - static_cast<std::size_t>(count)) * list.stride, m_listCount.place());
        }
    }

    void beginChoice(const codec::Choice& choice, const codec::Case* chosen, char* base)
    {
        if (isLost(choice.selector))
        {
            m_isOver = true; // and that has been told
            return;
        }
        if (chosen == nullptr)
        {
            std::string known;
            for (const codec::Case& one : choice.cases)
            {
                known += (known.empty() ? "one of " : ", ") + std::to_string(one.value);
            }
            const std::string found = std::to_string(codec::loadNumber(*choice.selector, base));
            const NumberPlace number = remembered(*choice.selector);
            breakOff(Code::unknownChoice, number.place(), number.position,
                     form == Form::binary ? std::size_t{choice.selector->size} : found.size(), known, found,
                     "refuses the message");
            return;
        }
        m_choice = remembered(*choice.selector);
        m_choiceEnd = m_position + choice.size;
    }

    void endChoice(const codec::Choice& /*choice*/, char* /*base*/)
    {
        if (form == Form::binary)
        {
            skipUnused(m_choiceEnd - m_position, m_choice.place());
        }
    }

    void beginEntries(const codec::LogEntries& entries, std::int64_t /*count*/, char* base)
    {
        if (isLost(entries.count))
        {
            m_isOver = true;
            return;
        }
        if constexpr (form == Form::binary)
        {
            const codec::Field& array = *entries.array;
            const std::string_view bytes = m_bytes.substr(m_position, array.size);
            if (bytes.size() < array.size)
            {
                cutShort({array, nullptr}, bytes.size(), array.size);
                return;
            }
            std::memcpy(base + array.offset, bytes.data(), bytes.size());
            m_entriesEnd = m_position;
            m_position += array.size;
        }
    }

    void endEntries(const codec::LogEntries& entries, std::int64_t count, std::int64_t written, char* /*base*/)
    {
        if (expectAtMost(*entries.count, count, written, true) && form == Form::binary)
        {
            noteUnused(m_bytes.substr(m_entriesEnd, m_position - m_entriesEnd), m_entriesEnd,
                       {*entries.array, nullptr});
        }
    }

    void beginBlock(const codec::Block& block, std::int64_t length, char* /*base*/)
    {
        expectAtMost(*block.length, length, block.bound, true);
    }

    void limit(const codec::Limit& limit, char* base)
    {
        expectAtMost(*limit.field, codec::loadNumber(*limit.field, base), limit.bound, false);
    }

private:
    void tell(Code code, const FieldPlace& place, std::size_t position, std::size_t length, std::string expected,
              std::string found, std::string library)
    {
        m_sink.finding(Finding{code, position, length, place.name(), std::move(expected), std::move(found),
                               std::move(library)});
    }

    void damage(Code code, const FieldPlace& place, std::size_t position, std::size_t length, std::string expected,
                std::string found, std::string library)
    {
        m_reading.isDamaged = true;
        tell(code, place, position, length, std::move(expected), std::move(found), std::move(library));
    }

    void note(Code code, const FieldPlace& place, std::size_t position, std::size_t length, std::string expected,
              std::string found, std::string library)
    {
        m_reading.hasNotes = true;
        tell(code, place, position, length, std::move(expected), std::move(found), std::move(library));
    }

    void breakOff(Code code, const FieldPlace& place, std::size_t position, std::size_t length,
                  std::string expected, std::string found, std::string library)
    {
        damage(code, place, position, length, std::move(expected), std::move(found), std::move(library));
        m_isOver = true;
    }

    // A field whose value is lost; what depends on it cannot be read.
    void lose(const FieldPlace& place)
    {
        m_lost.push_back(&place.field);
        m_sink.nothing(place, m_isBlock);
    }

    // Where numbers stand, for what turns out only later. The last few are enough: counts and selectors are close
    // to what depends on them, and in the same list element.
    void remember(const FieldPlace& place, std::size_t position)
    {
        m_numbers[m_nextNumber++ % m_numbers.size()] = {&place.field, place.subscripts, position};
    }

    struct NumberPlace
    {
        const codec::Field* field;
        const codec::Subscripts* subscripts;
        std::size_t position;

        FieldPlace place() const
        {
            return {*field, subscripts};
        }
    };

    NumberPlace remembered(const codec::Field& field) const
    {
        for (std::size_t i = 1; i <= std::min(m_nextNumber, m_numbers.size()); ++i)
        {
            const NumberPlace& number = m_numbers[(m_nextNumber - i) % m_numbers.size()];
            if (number.field == &field)
            {
                return number;
            }
        }
        return {&field, nullptr, m_position};
    }

    bool isLost(const codec::Field* field) const
    {
        return std::find(m_lost.begin(), m_lost.end(), field) != m_lost.end();
    }

    bool expectAtMost(const codec::Field& field, std::int64_t actual, std::int64_t greatest, bool breaks)
    {
        if (isLost(&field))
        {
            m_isOver = m_isOver || breaks; // and that has been told
            return false;
        }
        if (actual <= greatest)
        {
            return true;
        }
        const std::string found = std::to_string(actual);
        const NumberPlace number = remembered(field);
        damage(Code::countAboveBound, number.place(), number.position,
               form == Form::binary ? std::size_t{field.size} : found.size(),
               "at most " + std::to_string(greatest), found,
               breaks ? "refuses the message, or reads as many as there is room for" : "refuses the message");
        m_isOver = m_isOver || breaks;
        return false;
    }

    std::string foundAt(std::size_t position) const
    {
        return position >= m_bytes.size() ? "the end" : quote(m_bytes.substr(position, 1));
    }

    // Into the structure, if it is wanted.
    void keep(char* base, const codec::Field& field, std::string_view bytes)
    {
        if constexpr (Sink::kNeedsStructure)
        {
            std::copy_n(bytes.data(), std::min<std::size_t>(bytes.size(), field.size), base + field.offset);
        }
    }

    // ---- binary

    void cutShort(const FieldPlace& place, std::size_t left, std::size_t size)
    {
        breakOff(Code::cutShort, place, m_bytes.size(), 0, std::to_string(size) + " bytes",
                 "the end after " + std::to_string(left),
                 place.field.kind == codec::Kind::text ? "takes what is there" : "keeps the old value");
    }

    void takeBytes(const FieldPlace& place, char* base)
    {
        const codec::Field& field = place.field;
        const std::string_view bytes = m_bytes.substr(m_position, field.size);
        if (bytes.size() < field.size)
        {
            cutShort(place, bytes.size(), field.size);
            return;
        }
        const std::size_t position = m_position;
        m_position += field.size;
        if (field.kind == codec::Kind::text)
        {
            keep(base, field, bytes);
            const std::size_t length = std::min(bytes.find('\0'), bytes.size());
            m_sink.text(place, bytes.substr(0, length), position);
            noteUnused(bytes.substr(length), position + length, place);
            return;
        }
        const std::int64_t number = binaryNumber(field, bytes, position);
        codec::storeNumber(field, number, base);
        remember(place, position);
        m_sink.number(place, number, {}, position);
    }

    // Most significant byte first, but for the first word of what a little-endian host wrote.
    std::int64_t binaryNumber(const codec::Field& field, std::string_view bytes, std::size_t position) const
    {
        const bool reversed = position == 0 && m_rendering.firstWord == std::endian::little;
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < bytes.size(); ++i)
        {
            bits = bits << 8 | static_cast<unsigned char>(bytes[reversed ? bytes.size() - 1 - i : i]);
        }
        switch (field.kind)
        {
        case codec::Kind::s16:
            return static_cast<std::int16_t>(bits);
        case codec::Kind::s32:
            return static_cast<std::int32_t>(bits);
        default:
            return static_cast<std::int64_t>(bits);
        }
    }

    void skipUnused(std::size_t count, const FieldPlace& place)
    {
        const std::string_view bytes = m_bytes.substr(m_position, count);
        if (bytes.size() < count)
        {
            breakOff(Code::cutShort, place, m_bytes.size(), 0,
                     std::to_string(count) + " bytes behind what this field says",
                     "the end after " + std::to_string(bytes.size()), "keeps the old values");
            return;
        }
        noteUnused(bytes, m_position, place);
        m_position += count;
    }

    void noteUnused(std::string_view bytes, std::size_t position, const FieldPlace& place)
    {
        const std::size_t first = bytes.find_first_not_of('\0');
        if (first != std::string_view::npos)
        {
            const std::size_t last = bytes.find_last_not_of('\0');
            note(Code::unusedBytes, place, position + first, last - first + 1, "zeros where no value is",
                 quote(bytes.substr(first, last - first + 1)), "reads and writes them as they are");
        }
    }

    // ---- text and XML

    void takeNumber(const FieldPlace& place, char* base)
    {
        std::size_t begin = m_position;
        std::size_t end = 0;
        if constexpr (form == Form::xml)
        {
            if (!takeElement(place, begin, end))
            {
                return;
            }
            takeBlanksOff(place, begin, end);
        }
        const char* at = m_bytes.data() + begin;
        const char* const first = at;
        const char* const last = m_bytes.data() + (form == Form::xml ? end : m_bytes.size());
        const bool negative = at != last && *at == '-';
        at += negative ? 1 : 0;
        const char* const digits = at;
        std::uint64_t magnitude = 0;
        for (; at != last && codec::isDigit(*at); ++at)
        {
            magnitude = magnitude * 10 + codec::digitOf(*at); // of up to 18 digits
        }
        const bool isWhole = at != digits && (form == Form::xml ? at == last : at != last && *at == ':');
        const auto count = static_cast<std::size_t>(at - digits);
        const std::string_view characters(first, static_cast<std::size_t>(at - first));
        magnitude = count <= 18 ? magnitude : 0;
        const std::int64_t number =
            negative ? -static_cast<std::int64_t>(magnitude) : static_cast<std::int64_t>(magnitude);
        const Range fits = rangeOf(place.field.kind);
        if (!isWhole || count > 18 || number < fits.least || number > fits.greatest) [[unlikely]]
        {
            if (!isWhole || count <= 18 ||
                std::string_view(digits, count - 18).find_first_not_of('0') != std::string_view::npos)
            {
                loseNumber(place, begin, end, at, isWhole);
                return;
            }
        }
        std::int64_t value = number;
        std::string_view canonical = characters;
        if (*digits == '0' && (count > 1 || negative)) [[unlikely]]
        {
            canonical = {};
            std::from_chars(digits, at, value); // the magnitude above is that of the first digits only
            value = negative ? -value : value;
            if (value < fits.least || value > fits.greatest)
            {
                loseNumber(place, begin, end, at, isWhole);
                return;
            }
            note(Code::numberLayout, place, begin, characters.size(), std::to_string(value), quote(characters),
                 "reads it so, and writes it without");
        }
        codec::storeNumber(place.field, value, base);
        remember(place, begin);
        m_sink.number(place, value, canonical, begin);
        if constexpr (form == Form::text)
        {
            m_position = static_cast<std::size_t>(at - m_bytes.data()) + 1;
        }
    }

    [[gnu::cold, gnu::noinline]] void loseNumber(const FieldPlace& place, std::size_t begin, std::size_t end,
                                                 const char* stop, bool isWhole)
    {
        const auto stopAt = static_cast<std::size_t>(stop - m_bytes.data());
        if constexpr (form == Form::text)
        {
            end = begin + std::min(m_bytes.substr(begin).find_first_of(std::string_view(":\n\0", 3)),
                                   m_bytes.size() - begin);
            if (end == m_bytes.size() || m_bytes[end] != ':')
            {
                std::size_t contentEnd = end;
                while (contentEnd > begin && (m_bytes[contentEnd - 1] == '\r' || m_bytes[contentEnd - 1] == ' '))
                {
                    --contentEnd;
                }
                if (stopAt >= contentEnd)
                {
                    breakOff(Code::cutShort, place, contentEnd, 0, "':' behind the number",
                             end == m_bytes.size()  ? "the end"
                             : m_bytes[end] == '\n' ? "the end of the line"
                                                    : "a zero byte",
                             contentEnd == begin ? "keeps the old value"
                                                 : "stores 0, but a 32-bit unsigned number as it stands");
                }
                else
                {
                    breakOff(Code::notANumber, place, stopAt, 1,
                             stopAt == begin ? "a decimal number" : "another digit or ':'", foundAt(stopAt),
                             "takes any character for the delimiter, stores what number there is, or 0");
                }
                return;
            }
        }
        const std::string_view characters = m_bytes.substr(begin, end - begin);
        const Range fits = rangeOf(place.field.kind);
        if (isWhole)
        {
            damage(Code::outOfRange, place, begin, characters.size(),
                   std::to_string(fits.least) + " ... " + std::to_string(fits.greatest), quote(characters),
                   form == Form::xml ? "cuts it to the field's bits"
                                     : "stores 0, keeps the old value, or cuts it");
        }
        else
        {
            damage(Code::notANumber, place, stopAt, characters.empty() ? 0 : 1, "a decimal number",
                   quote(characters),
                   form == Form::xml ? "takes the digits in front, or stores 0"
                                     : "keeps the old value, stores 0, or takes digits that it finds");
        }
        if constexpr (form == Form::text)
        {
            m_position = end + 1;
        }
        lose(place);
    }

    void takeText(const FieldPlace& place, char* base, bool isEntry)
    {
        std::size_t begin = m_position;
        std::size_t end = 0;
        if constexpr (form == Form::xml)
        {
            if (!takeElement(place, begin, end))
            {
                if (isEntry)
                {
                    base[place.field.offset] = '\0'; // the next one's room follows from it
                }
                return;
            }
        }
        else if (!findDelimiter(place, end))
        {
            return;
        }
        const std::string_view characters = m_bytes.substr(begin, end - begin);
        const codec::Field& field = place.field;
        if (const std::size_t zero = characters.find('\0'); zero != std::string_view::npos)
        {
            damage(Code::zeroInText, place, begin + zero, 1, "characters other than the zero byte", "a zero byte",
                   form == Form::xml ? "ends the document here" : "ends the text there");
        }
        if (characters.size() >= field.size)
        {
            const std::size_t room = field.size - 1U;
            damage(Code::tooLong, place, begin + room, characters.size() - room,
                   "at most " + std::to_string(room) + " characters", std::to_string(characters.size()),
                   form == Form::xml ? "cuts it there" : "cuts it there and misreads what follows");
        }
        if (isEntry || Sink::kNeedsStructure)
        {
            const std::size_t length = std::min<std::size_t>(characters.size(), field.size - 1U);
            std::copy_n(characters.data(), length, base + field.offset);
            base[field.offset + length] = '\0';
        }
        m_sink.text(place, characters, begin);
        if constexpr (form == Form::text)
        {
            m_position = end + 1;
        }
    }

    // The delimiter of a text, which may hold ends of lines. Behind the last of them there must not be the number
    // of the next record.
    bool findDelimiter(const FieldPlace& place, std::size_t& end)
    {
        const std::string_view rest = m_bytes.substr(m_position);
        const std::size_t length = rest.find(':');
        std::size_t lineEnd = rest.substr(0, length).find('\n');
        if (length != std::string_view::npos &&
            (lineEnd == std::string_view::npos ||
             (length < place.field.size &&
              textSignal(rest.substr(rest.substr(0, length).rfind('\n') + 1)) == nullptr)))
        {
            end = m_position + length;
            return true;
        }
        if (length != std::string_view::npos && length < place.field.size)
        {
            lineEnd = rest.substr(0, length).rfind('\n');
        }
        std::size_t stop = std::min(lineEnd, rest.size());
        stop = std::min(stop, rest.find('\0'));
        while (stop != 0 && rest[stop - 1] == '\r')
        {
            --stop;
        }
        breakOff(Code::cutShort, place, m_position + stop, 0, "':' behind the text",
                 stop == rest.size()  ? "the end"
                 : rest[stop] == '\0' ? "a zero byte"
                                      : "the end of the line",
                 "takes what is there");
        return false;
    }

    // ---- XML

    // Where an element's value is. The first deviation from the writers' layout is noted; from then on every
    // element is looked up by its name, as the library does, but for the elements of lists that share a name.
    bool takeElement(const FieldPlace& place, std::size_t& begin, std::size_t& end)
    {
        if (m_isInLayout)
        {
            std::array<char, codec::kLongestElementText> opening;
            std::array<char, codec::kLongestElementText> closing;
            const codec::ElementText element(place.field, place.subscripts);
            const std::string_view open(
                opening.data(), static_cast<std::size_t>(element.putOpening(opening.data()) - opening.data()));
            const std::string_view close(
                closing.data(), static_cast<std::size_t>(element.putClosing(closing.data()) - closing.data()));
            if (m_bytes.substr(m_position).starts_with(open))
            {
                begin = m_position + open.size();
                end = m_bytes.find(close, begin);
                if (end != std::string_view::npos &&
                    m_bytes.substr(begin, end - begin).find('\0') == std::string_view::npos)
                {
                    m_position = end + close.size();
                    return true;
                }
            }
            m_layoutEnd = m_position;
            // One that is missing leaves the others in their layout.
            m_isInLayout = !lookUpElement(place, begin, end);
            return !m_isInLayout;
        }
        return lookUpElement(place, begin, end);
    }

    bool lookUpElement(const FieldPlace& place, std::size_t& begin, std::size_t& end)
    {
        const codec::ElementName name(place.field.tag, place.subscripts);
        const std::string key(name.text(), name.size());
        std::size_t& from = m_elements.readUpTo.try_emplace(key, m_layoutEnd).first->second;
        // Elements that were in their layout lie before; where names repeat, they are earlier elements'.
        const char* const document = m_bytes.data();
        codec::TagContent content;
        const char* behind = codec::findTag(document + from, key.c_str(), content);
        if (behind == nullptr && from == m_layoutEnd && !isIn(m_bytes.substr(0, m_layoutEnd), key))
        {
            behind = codec::findTag(document, key.c_str(), content);
        }
        if (behind == nullptr && place.field.oddity == codec::Oddity::foreignClosing)
        {
            behind = codec::findTag(document + from, key.c_str(), codec::closingTag(place.field), content);
        }
        if (behind == nullptr)
        {
            loseElement(place, key, from);
            return false;
        }
        noteLayout(place, m_layoutEnd, 0, m_bytes.substr(m_layoutEnd, 20));
        from = static_cast<std::size_t>(behind - document);
        if (place.field.oddity == codec::Oddity::bareOpening && content.size() != 0 && *content.begin == ' ')
        {
            ++content.begin; // that element has one blank more before its value
        }
        begin = static_cast<std::size_t>(content.begin - document);
        end = begin + content.size();
        m_position = std::max(m_position, from);
        m_elements.openings.push_back(openingBefore(begin, key));
        return true;
    }

    void noteLayout(const FieldPlace& place, std::size_t position, std::size_t length, std::string_view found)
    {
        if (!m_isLayoutNoted)
        {
            m_isLayoutNoted = true;
            note(Code::elementLayout, place, position, length, "the writers' layout and order of elements",
                 quote(found), "reads it so, and writes it in its own layout");
        }
    }

    // More blanks than the writers put around a number count for nothing.
    void takeBlanksOff(const FieldPlace& place, std::size_t& begin, std::size_t& end)
    {
        const std::string_view value = m_bytes.substr(begin, end - begin);
        const std::size_t first = value.find_first_not_of(" \t\n\v\f\r");
        if (first != std::string_view::npos)
        {
            const std::size_t behind = value.find_last_not_of(" \t\n\v\f\r") + 1;
            if (behind - first != value.size())
            {
                noteLayout(place, begin, value.size(), value);
                end = begin + behind;
                begin += first;
            }
        }
    }

    static bool isIn(std::string_view document, const std::string& name)
    {
        return document.find("<" + name + ">") != std::string_view::npos;
    }

    std::size_t openingBefore(std::size_t position, const std::string& name) const
    {
        return m_bytes.rfind("<" + name + ">", position);
    }

    void loseElement(const FieldPlace& place, const std::string& name, std::size_t from)
    {
        const std::size_t opening = m_bytes.find("<" + name + ">", from);
        const bool passedOver = place.field.oddity == codec::Oddity::notReadFromXml;
        const std::string library = passedOver
                                        ? "does not look for it"
                                        : "logs it and stops: this field and those behind keep their values";
        if (opening != std::string_view::npos)
        {
            damage(Code::unclosedElement, place, opening, name.size() + 2, "</" + name + ">", "none behind it",
                   library);
            m_elements.openings.push_back(opening);
        }
        else
        {
            damage(Code::missingElement, place, m_bytes.size(), 0, "<" + name + ">", "none", library);
        }
        lose(place);
    }

    void takeBlockElement(const FieldPlace& place, char* base)
    {
        std::size_t begin = 0;
        std::size_t end = 0;
        if (!takeElement(place, begin, end))
        {
            return;
        }
        const std::string_view bytes = m_bytes.substr(begin, end - begin);
        if (bytes.size() != place.field.size)
        {
            damage(Code::blockLength, place, begin, bytes.size(), std::to_string(place.field.size) + " bytes",
                   std::to_string(bytes.size()), "takes as many as are announced and there");
        }
        keep(base, place.field, bytes);
        m_sink.block(place, bytes, begin);
    }

    // Elements that no field has taken.
    void lookAtOtherElements()
    {
        const std::size_t behindLayout = m_isInLayout ? m_position : m_layoutEnd;
        for (std::size_t at = behindLayout; (at = m_bytes.find('<', at)) != std::string_view::npos; ++at)
        {
            const std::size_t end = m_bytes.find_first_of("<>", at + 1);
            if (end == std::string_view::npos || m_bytes[end] != '>' || m_bytes[at + 1] == '/' || end == at + 1 ||
                std::find(m_elements.openings.begin(), m_elements.openings.end(), at) != m_elements.openings.end())
            {
                continue;
            }
            const std::string name(m_bytes.substr(at + 1, end - at - 1));
            const std::string closing = "</" + name + ">";
            const std::size_t closed = m_bytes.find(closing, end);
            m_position =
                std::max(m_position, closed != std::string_view::npos ? closed + closing.size() : end + 1);
            if (m_elements.readUpTo.count(name) != 0 || isIn(m_bytes.substr(0, behindLayout), name))
            {
                m_reading.isDamaged = true;
                m_sink.finding(Finding{Code::repeatedElement, at, end + 1 - at, name, "one element of this name",
                                       "one more", "takes the first and passes this one over"});
            }
            else
            {
                m_reading.hasNotes = true;
                m_sink.finding(Finding{Code::unknownElement, at, end + 1 - at, "", "elements of this signal",
                                       quote(m_bytes.substr(at, end + 1 - at)), "passes it over"});
            }
        }
    }

    const Rendering& m_rendering;
    const std::string_view m_bytes;
    Sink& m_sink;
    Reading m_reading;
    std::size_t m_position = 0; // behind what is read
    bool m_isOver = false;
    NumberPlace m_listCount = {}; // of the list that has begun last
    NumberPlace m_choice = {};    // what has chosen
    std::size_t m_choiceEnd = 0;  // where the bytes of a choice end, in binary
    std::size_t m_entriesEnd = 0; // where the log entries read so far end, in binary
    std::array<NumberPlace, 4> m_numbers;
    std::size_t m_nextNumber = 0;
    std::vector<const codec::Field*> m_lost;
    bool m_isBlock = false;
    bool m_isInLayout = true; // in XML
    bool m_isLayoutNoted = false;
    std::size_t m_layoutEnd = 0;
    struct NoElements
    {
    };
    struct Elements
    {
        std::map<std::string, std::size_t> readUpTo; // by name
        std::vector<std::size_t> openings;           // of the elements looked up
    };
    [[no_unique_address]] std::conditional_t<form == Form::xml, Elements, NoElements> m_elements;
};

// A sink for a reading of which only the result counts.
class Trial
{
public:
    static constexpr bool kNeedsStructure = false;

    char* structure(std::size_t size)
    {
        m_structure.resize(std::max(size, m_structure.size()));
        return m_structure.data();
    }

    void number(const FieldPlace& /*place*/, std::int64_t /*value*/, std::string_view /*digits*/,
                std::size_t /*position*/)
    {
    }
    void text(const FieldPlace& /*place*/, std::string_view /*characters*/, std::size_t /*position*/) {}
    void block(const FieldPlace& /*place*/, std::string_view /*bytes*/, std::size_t /*position*/) {}
    void nothing(const FieldPlace& /*place*/, bool /*raw*/) {}
    void finding(const Finding& /*finding*/) {}

private:
    std::vector<char> m_structure;
};

template <typename Sink>
Reading read(const Rendering& rendering, Sink& sink)
{
    switch (rendering.form)
    {
    case Form::text:
        return Reader<Form::text, Sink>(rendering, sink).read();
    case Form::binary:
        return Reader<Form::binary, Sink>(rendering, sink).read();
    case Form::xml:
        break;
    }
    return Reader<Form::xml, Sink>(rendering, sink).read();
}

} // namespace bci::tool

#endif
