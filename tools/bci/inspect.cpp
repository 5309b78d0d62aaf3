#include "inspect.h"

#include "codec/tagLookup.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <limits>
#include <map>
#include <string_view>
#include <utility>

namespace bci::tool
{

namespace
{

using codec::Field;
using codec::Kind;
using codec::Subscripts;

struct Range
{
    std::int64_t least;
    std::int64_t greatest;
};

template <typename T>
constexpr Range rangeOf()
{
    return {std::numeric_limits<T>::min(), std::numeric_limits<T>::max()};
}

Range range(Kind kind)
{
    switch (kind)
    {
    case Kind::u8:
        return rangeOf<U8>();
    case Kind::u16:
        return rangeOf<U16>();
    case Kind::s16:
        return rangeOf<S16>();
    case Kind::u32:
        return rangeOf<U32>();
    case Kind::s32:
        return rangeOf<S32>();
    case Kind::text:
        break;
    }
    return {0, 0};
}

// Reads a rendering into the structure as walk() asks for one field after another.
class Reader : public codec::Visitor
{
public:
    explicit Reader(const Rendering& rendering) : m_rendering(rendering)
    {
        m_record.structure.resize(rendering.signal->shape->structureSize);
    }

    void read()
    {
        walk(*m_rendering.signal->shape, m_record.structure.data(), *this);
        if (m_rendering.form != Form::xml)
        {
            expectEnd();
        }
    }

    // What has been read, which is not all if reading threw.
    Record& record()
    {
        return m_record;
    }

    void field(const Field& field, char* base, const Subscripts* subscripts) override
    {
        begin(codec::ElementName(field.tag, subscripts).text());
        if (m_rendering.form == Form::binary)
        {
            takeBytes(field, base, next(field.size));
        }
        else if (m_rendering.form == Form::text)
        {
            takeCharacters(field, base, toDelimiter());
        }
        else
        {
            takeCharacters(field, base, elementContent(field));
        }
        m_places[&field] = {m_name, m_valueAt};
    }

    void entry(const Field& entry, char* base, const Subscripts& subscripts) override
    {
        if (m_rendering.form != Form::binary)
        {
            field(entry, base, &subscripts);
            return;
        }
        // The array has been read as a whole.
        begin(codec::ElementName(entry.tag, &subscripts).text());
        const std::string_view rest(base + entry.offset, entry.size);
        const std::size_t length = rest.find('\0');
        m_valueAt = m_position - entry.size;
        if (length == std::string_view::npos)
        {
            damage("no zero byte ends this entry");
        }
        add(Kind::text, rest.substr(0, length));
    }

    void block(const Field& block, char* base) override
    {
        begin(block.tag);
        std::string_view bytes;
        switch (m_rendering.form)
        {
        case Form::binary:
            bytes = next(block.size);
            break;
        case Form::text:
            bytes = next(block.size);
            if (m_rendering.bytes.substr(m_position, 1) != ":")
            {
                m_valueAt = m_position;
                damage("no ':' behind the " + std::to_string(block.size) + " bytes of the block");
            }
            ++m_position;
            break;
        case Form::xml:
            bytes = elementContent(block);
            if (bytes.size() != block.size)
            {
                damage(std::to_string(bytes.size()) + " bytes, where " + std::to_string(block.size) +
                       " are announced");
            }
            break;
        }
        std::copy(bytes.begin(), bytes.end(), base + block.offset);
        m_record.fields.push_back({m_name, Kind::text, true, m_valueAt, std::string(bytes)});
    }

    void beginList(const codec::List& list, std::int64_t count, char* /*base*/) override
    {
        expectAtMost(*list.count, count, list.bound);
        // The writers put it, the readers do not want it; here either will do.
        if (m_rendering.form == Form::text && list.delimiterWhenEmpty && count == 0 &&
            m_rendering.bytes.substr(m_position, 1) == ":")
        {
            ++m_position;
        }
    }

    void endList(const codec::List& list, std::int64_t count, char* /*base*/) override
    {
        if (m_rendering.form == Form::binary && list.wholeInBinary)
        {
            skip((list.bound - static_cast<std::size_t>(count)) * list.stride);
        }
    }

    void beginChoice(const codec::Choice& choice, const codec::Case* chosen, char* base) override
    {
        if (chosen == nullptr)
        {
            std::string known;
            for (const codec::Case& one : choice.cases)
            {
                known += (known.empty() ? "" : ", ") + std::to_string(one.value);
            }
            returnTo(*choice.selector);
            damage(std::to_string(codec::loadNumber(*choice.selector, base)) + " is none of " + known);
        }
        m_choiceEnd = m_position + choice.size;
    }

    void endChoice(const codec::Choice& /*choice*/, char* /*base*/) override
    {
        if (m_rendering.form == Form::binary)
        {
            skip(m_choiceEnd - m_position);
        }
    }

    void beginEntries(const codec::LogEntries& entries, std::int64_t /*count*/, char* base) override
    {
        if (m_rendering.form == Form::binary)
        {
            begin(entries.array->tag);
            const std::string_view bytes = next(entries.array->size);
            std::copy(bytes.begin(), bytes.end(), base + entries.array->offset);
        }
    }

    void endEntries(const codec::LogEntries& entries, std::int64_t count, std::int64_t written,
                    char* /*base*/) override
    {
        expectAtMost(*entries.count, count, written);
    }

    void beginBlock(const codec::Block& block, std::int64_t length, char* /*base*/) override
    {
        expectAtMost(*block.length, length, block.bound);
    }

    void limit(const codec::Limit& limit, char* base) override
    {
        expectAtMost(*limit.field, codec::loadNumber(*limit.field, base), limit.bound);
    }

private:
    [[noreturn]] void damage(const std::string& what) const
    {
        throw Damage(m_rendering, m_valueAt, m_name, what);
    }

    // The field that damage is reported for from now on, and where.
    void begin(const std::string& name)
    {
        m_name = name;
        m_valueAt = m_position;
    }

    // Damage shows in a field that has been read.
    void returnTo(const Field& field)
    {
        const Place& place = m_places[&field];
        m_name = place.name;
        m_valueAt = place.position;
    }

    void expectAtMost(const Field& field, std::int64_t actual, std::int64_t greatest)
    {
        if (actual > greatest)
        {
            returnTo(field);
            damage(std::to_string(actual) + " is more than the " + std::to_string(greatest) +
                   " that there is room for");
        }
    }

    // The bytes from here on, which are consumed.
    std::string_view next(std::size_t count)
    {
        const std::string_view rest = std::string_view(m_rendering.bytes).substr(m_position);
        if (rest.size() < count)
        {
            damage("the input ends within this field, after " + std::to_string(rest.size()) + " of " +
                   std::to_string(count) + " bytes");
        }
        m_position += count;
        return rest.substr(0, count);
    }

    // Passes over bytes that hold nothing.
    void skip(std::size_t count)
    {
        const std::size_t left = m_rendering.bytes.size() - m_position;
        if (left < count)
        {
            m_valueAt = m_rendering.bytes.size();
            damage("the input ends after " + std::to_string(left) + " of the " + std::to_string(count) +
                   " bytes that follow this field");
        }
        m_position += count;
    }

    // The characters up to the next delimiter, which are consumed with it.
    std::string_view toDelimiter()
    {
        const std::string_view rest = std::string_view(m_rendering.bytes).substr(m_position);
        const std::size_t length = rest.find(':');
        if (length == std::string_view::npos)
        {
            m_valueAt = m_rendering.bytes.size();
            damage("the input ends before the ':' behind this field");
        }
        m_position += length + 1;
        return rest.substr(0, length);
    }

    std::string_view elementContent(const Field& field)
    {
        const char* const document = m_rendering.bytes.c_str();
        // What earlier elements of a list found under the same name is theirs.
        const char*& from = m_readUpTo.try_emplace(m_name, document).first->second;
        codec::TagContent content;
        const char* end = codec::findTag(from, m_name.c_str(), content);
        if (end == nullptr && field.oddity == codec::Oddity::foreignClosing)
        {
            end = codec::findTag(from, m_name.c_str(), closingTag(field), content);
        }
        if (end == nullptr)
        {
            missingElement();
        }
        from = end;
        if (field.oddity == codec::Oddity::bareOpening && content.size() != 0 && *content.begin == ' ')
        {
            ++content.begin; // that element has one blank more before its value
        }
        m_valueAt = static_cast<std::size_t>(content.begin - document);
        return {content.begin, content.size()};
    }

    [[noreturn]] void missingElement()
    {
        const std::string_view document = m_rendering.bytes.c_str();
        const std::size_t opening = document.find(
            "<" + m_name + ">", static_cast<std::size_t>(m_readUpTo[m_name] - m_rendering.bytes.c_str()));
        if (opening != std::string_view::npos)
        {
            m_valueAt = opening;
            damage("this element is not closed");
        }
        m_valueAt = document.size();
        damage(document.size() == m_rendering.bytes.size() ? "no such element"
                                                           : "no such element before the zero byte here");
    }

    void takeBytes(const Field& field, char* base, std::string_view bytes)
    {
        if (field.kind == Kind::text)
        {
            std::copy(bytes.begin(), bytes.end(), base + field.offset);
            add(field.kind, bytes.substr(0, bytes.find('\0')));
        }
        else
        {
            takeNumber(field, base, binaryNumber(field, bytes));
        }
    }

    void takeCharacters(const Field& field, char* base, std::string_view characters)
    {
        if (field.kind != Kind::text)
        {
            takeNumber(field, base, decimalNumber(field, characters));
            return;
        }
        if (characters.size() >= field.size)
        {
            m_valueAt += field.size - 1U;
            damage("more than the " + std::to_string(field.size - 1) + " characters that fit");
        }
        if (const std::size_t zero = characters.find('\0'); zero != std::string_view::npos)
        {
            m_valueAt += zero;
            damage("a zero byte within the text");
        }
        std::copy(characters.begin(), characters.end(), base + field.offset);
        add(field.kind, characters);
    }

    std::int64_t decimalNumber(const Field& field, std::string_view characters)
    {
        std::int64_t number = 0;
        const char* const end = characters.data() + characters.size();
        const auto [stop, error] = std::from_chars(characters.data(), end, number);
        if (error == std::errc::invalid_argument || stop != end)
        {
            m_valueAt +=
                error == std::errc::invalid_argument ? 0 : static_cast<std::size_t>(stop - characters.data());
            damage("not a decimal number: " + quote(characters));
        }
        const Range fits = range(field.kind);
        if (error == std::errc::result_out_of_range || number < fits.least || number > fits.greatest)
        {
            damage(quote(characters) + " is not within " + std::to_string(fits.least) + " ... " +
                   std::to_string(fits.greatest));
        }
        return number;
    }

    // Most significant byte first, but for the first word of what a little-endian host wrote.
    std::int64_t binaryNumber(const Field& field, std::string_view bytes) const
    {
        const bool reversed = m_valueAt == 0 && m_rendering.firstWord == std::endian::little;
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < bytes.size(); ++i)
        {
            bits = bits << 8 | static_cast<unsigned char>(bytes[reversed ? bytes.size() - 1 - i : i]);
        }
        switch (field.kind)
        {
        case Kind::s16:
            return static_cast<S16>(bits);
        case Kind::s32:
            return static_cast<S32>(bits);
        default:
            return static_cast<std::int64_t>(bits);
        }
    }

    void takeNumber(const Field& field, char* base, std::int64_t number)
    {
        codec::storeNumber(field, number, base);
        add(field.kind, std::to_string(number));
    }

    void add(Kind kind, std::string_view value)
    {
        m_record.fields.push_back({m_name, kind, false, m_valueAt, std::string(value)});
    }

    // Zeros may follow, as in a buffer that is larger than its rendering, and behind text white space.
    void expectEnd()
    {
        std::string_view padding("\0\t\n\v\f\r ", 7);
        if (m_rendering.form == Form::binary)
        {
            padding.remove_suffix(6);
        }
        const std::size_t extra = m_rendering.bytes.find_first_not_of(padding, m_position);
        if (extra != std::string::npos)
        {
            m_valueAt = extra;
            damage("more input behind this field, the last");
        }
    }

    struct Place
    {
        std::string name;
        std::size_t position = 0;
    };

    const Rendering& m_rendering;
    Record m_record;
    std::size_t m_position = 0;                    // behind what is read, in text and binary
    std::size_t m_choiceEnd = 0;                   // where the bytes of a choice end, in binary
    std::string m_name;                            // of the field that is being read
    std::size_t m_valueAt = 0;                     // where its value begins
    std::map<const Field*, Place> m_places;        // of the fields read, the last of each
    std::map<std::string, const char*> m_readUpTo; // in XML, by name
};

} // namespace

Record inspect(const Rendering& rendering)
{
    Reader reader(rendering);
    reader.read();
    return std::move(reader.record());
}

const FieldValue* firstLost(const Record& record, const Rendering& rendering)
{
    Reader reader(rendering);
    bool damaged = false;
    try
    {
        reader.read();
    }
    catch (const Damage&)
    {
        damaged = true;
    }
    const std::vector<FieldValue>& found = reader.record().fields;
    const auto [lost, other] =
        std::mismatch(record.fields.begin(), record.fields.end(), found.begin(), found.end(),
                      [](const FieldValue& one, const FieldValue& two)
                      { return one.name == two.name && one.value == two.value; });
    if (lost != record.fields.end())
    {
        return &*lost;
    }
    return damaged || other != found.end() ? &record.fields.back() : nullptr;
}

const char* typeName(Kind kind)
{
    constexpr std::array kNames = {"U8", "U16", "S16", "U32", "S32", "text"};
    return kNames.at(static_cast<std::size_t>(kind));
}

} // namespace bci::tool
