#include "inspect.h"

#include "codec/tagLookup.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>

namespace bci::tool
{

namespace
{

using codec::Field;
using codec::Kind;

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

class Walker
{
public:
    explicit Walker(const Rendering& rendering) : m_rendering(rendering)
    {
        m_record.structure.resize(rendering.signal->shape->structureSize);
    }

    Record walk()
    {
        for (const Field& field : m_rendering.signal->shape->fields.rows)
        {
            switch (m_rendering.form)
            {
            case Form::text:
                readText(field);
                break;
            case Form::binary:
                readBinary(field);
                break;
            case Form::xml:
                readXml(field);
                break;
            }
            m_last = &field;
        }
        if (m_rendering.form != Form::xml)
        {
            expectEnd();
        }
        return m_record;
    }

private:
    [[noreturn]] void damage(const Field& field, std::size_t position, const std::string& what) const
    {
        throw Damage(m_rendering, position, field.tag, what);
    }

    void readText(const Field& field)
    {
        const std::string_view rest = std::string_view(m_rendering.bytes).substr(m_position);
        const std::size_t length = rest.find(':');
        if (length == std::string_view::npos)
        {
            damage(field, m_rendering.bytes.size(), "the input ends before the ':' behind this field");
        }
        takeCharacters(field, m_position, rest.substr(0, length));
        m_position += length + 1;
    }

    void readBinary(const Field& field)
    {
        const std::string_view rest = std::string_view(m_rendering.bytes).substr(m_position);
        if (rest.size() < field.size)
        {
            damage(field, m_position,
                   "the input ends within this field, after " + std::to_string(rest.size()) + " of " +
                       std::to_string(field.size) + " bytes");
        }
        const std::string_view bytes = rest.substr(0, field.size);
        if (field.kind == Kind::text)
        {
            std::memcpy(m_record.structure.data() + field.offset, bytes.data(), bytes.size());
            add(field, m_position, std::string(bytes.substr(0, bytes.find('\0'))));
        }
        else
        {
            takeNumber(field, m_position, binaryNumber(field, bytes));
        }
        m_position += field.size;
    }

    void readXml(const Field& field)
    {
        codec::TagContent content;
        if (codec::findTag(m_rendering.bytes.c_str(), field.tag, content) == nullptr)
        {
            missingElement(field);
        }
        takeCharacters(field, static_cast<std::size_t>(content.begin - m_rendering.bytes.c_str()),
                       {content.begin, content.size()});
    }

    [[noreturn]] void missingElement(const Field& field) const
    {
        const std::string_view document = m_rendering.bytes.c_str();
        const std::size_t opening = document.find("<" + std::string(field.tag) + ">");
        if (opening != std::string_view::npos)
        {
            damage(field, opening, "this element is not closed");
        }
        damage(field, document.size(),
               document.size() == m_rendering.bytes.size() ? "no such element"
                                                           : "no such element before the zero byte here");
    }

    void takeCharacters(const Field& field, std::size_t position, std::string_view characters)
    {
        if (field.kind == Kind::text)
        {
            takeText(field, position, characters);
        }
        else
        {
            takeNumber(field, position, decimalNumber(field, position, characters));
        }
    }

    void takeText(const Field& field, std::size_t position, std::string_view text)
    {
        if (text.size() >= field.size)
        {
            damage(field, position + field.size - 1,
                   "more than the " + std::to_string(field.size - 1) + " characters that fit");
        }
        std::memcpy(m_record.structure.data() + field.offset, text.data(), text.size());
        add(field, position, std::string(text));
    }

    std::int64_t decimalNumber(const Field& field, std::size_t position, std::string_view characters) const
    {
        std::int64_t number = 0;
        const char* const end = characters.data() + characters.size();
        const auto [stop, error] = std::from_chars(characters.data(), end, number);
        if (error == std::errc::invalid_argument || stop != end)
        {
            const std::size_t good =
                error == std::errc::invalid_argument ? 0 : static_cast<std::size_t>(stop - characters.data());
            damage(field, position + good, "not a decimal number: " + quote(characters));
        }
        const Range fits = range(field.kind);
        if (error == std::errc::result_out_of_range || number < fits.least || number > fits.greatest)
        {
            damage(field, position,
                   quote(characters) + " is not within " + std::to_string(fits.least) + " ... " +
                       std::to_string(fits.greatest));
        }
        return number;
    }

    // Most significant byte first, but for the first word of what a little-endian host wrote.
    std::int64_t binaryNumber(const Field& field, std::string_view bytes) const
    {
        const bool reversed = m_position == 0 && m_rendering.firstWord == std::endian::little;
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

    void takeNumber(const Field& field, std::size_t position, std::int64_t number)
    {
        codec::storeNumber(field, number, m_record.structure.data());
        add(field, position, std::to_string(number));
    }

    void add(const Field& field, std::size_t position, std::string value)
    {
        m_record.fields.push_back({&field, position, std::move(value)});
    }

    // Zeros may follow, as in a buffer that is larger than its rendering, and behind text white space.
    void expectEnd() const
    {
        std::string_view padding("\0\t\n\v\f\r ", 7);
        if (m_rendering.form == Form::binary)
        {
            padding.remove_suffix(6);
        }
        const std::size_t extra = m_rendering.bytes.find_first_not_of(padding, m_position);
        if (extra != std::string::npos)
        {
            damage(*m_last, extra, "more input behind this field, the last");
        }
    }

    const Rendering& m_rendering;
    Record m_record;
    std::size_t m_position = 0;
    const Field* m_last = nullptr;
};

} // namespace

Record inspect(const Rendering& rendering)
{
    return Walker(rendering).walk();
}

const char* typeName(Kind kind)
{
    constexpr std::array kNames = {"U8", "U16", "S16", "U32", "S32", "text"};
    return kNames.at(static_cast<std::size_t>(kind));
}

} // namespace bci::tool
