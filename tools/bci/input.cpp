#include "input.h"

#include "codec/tagLookup.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

namespace bci::tool
{

namespace
{

constexpr const char* kDigits = "0123456789";
constexpr const char* kSpaces = " \t\n\v\f\r";

// Where the digits at the start of an input end.
std::size_t afterDigits(std::string_view bytes)
{
    return std::min(bytes.find_first_not_of(kDigits), bytes.size());
}

// The bytes that pairs of hex digits stand for, white space between pairs allowed.
std::optional<std::string> decodeHex(std::string_view input)
{
    std::string bytes;
    for (std::size_t at = input.find_first_not_of(kSpaces); at != std::string_view::npos;
         at = input.find_first_not_of(kSpaces, at + 2))
    {
        unsigned char byte = 0;
        const std::string_view pair = input.substr(at, 2);
        const auto [stop, error] = std::from_chars(pair.data(), pair.data() + pair.size(), byte, 16);
        if (error != std::errc{} || stop != pair.data() + 2)
        {
            return std::nullopt;
        }
        bytes.push_back(static_cast<char>(byte));
    }
    return bytes;
}

U32 bigEndianWord(std::string_view bytes)
{
    U32 word = 0;
    for (const char byte : bytes.substr(0, 4))
    {
        word = word << 8 | static_cast<unsigned char>(byte);
    }
    return word;
}

U32 turnedRound(U32 word)
{
    return word << 24 | (word & 0xFF00) << 8 | (word >> 8 & 0xFF00) | word >> 24;
}

// The signal of a decimal number. `position` is where the number stands in the rendering.
const Signal* signalOf(std::string_view number, const Rendering& rendering, std::size_t position)
{
    SIGSELECT value = 0;
    const char* const end = number.data() + number.size();
    const auto [stop, error] = std::from_chars(number.data(), end, value);
    const Signal* const signal = stop == end && error == std::errc{} ? findSignal(value) : nullptr;
    if (signal == nullptr)
    {
        throw Damage(rendering, position, "sigNo", "no signal has the number '" + std::string(number) + "'");
    }
    return signal;
}

// The first word is a known number; none is one in both orders.
bool isBinary(Rendering& rendering)
{
    if (rendering.bytes.size() < sizeof(SIGSELECT))
    {
        return false;
    }
    const U32 word = bigEndianWord(rendering.bytes);
    rendering.form = Form::binary;
    rendering.firstWord = std::endian::big;
    rendering.signal = findSignal(word);
    if (rendering.signal == nullptr)
    {
        rendering.firstWord = std::endian::little;
        rendering.signal = findSignal(turnedRound(word));
    }
    return rendering.signal != nullptr;
}

// Digits and a ':' are text, whatever follows.
bool isText(Rendering& rendering)
{
    const std::string_view bytes = rendering.bytes;
    const std::size_t digits = afterDigits(bytes);
    if (digits == 0 || digits == bytes.size() || bytes[digits] != ':')
    {
        return false;
    }
    rendering.form = Form::text;
    rendering.signal = signalOf(bytes.substr(0, digits), rendering, 0);
    return true;
}

// A tag at the start is XML, whatever follows.
bool isXml(Rendering& rendering)
{
    const char* const document = rendering.bytes.c_str();
    const std::size_t first = std::strspn(document, kSpaces);
    if (document[first] != '<')
    {
        return false;
    }
    rendering.form = Form::xml;
    codec::TagContent content;
    if (codec::findTag(document, "sigNo", content) == nullptr)
    {
        throw Damage(rendering, first, "sigNo", "no such element");
    }
    rendering.signal =
        signalOf({content.begin, content.size()}, rendering, static_cast<std::size_t>(content.begin - document));
    return true;
}

bool isAnyForm(Rendering& rendering)
{
    return isBinary(rendering) || isText(rendering) || isXml(rendering);
}

// Line and column, both from 1, the column in bytes.
std::string lineAndColumn(std::string_view bytes, std::size_t position)
{
    const std::string_view before = bytes.substr(0, position);
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    const std::size_t column = before.size() - (before.rfind('\n') + 1) + 1;
    return ":" + std::to_string(line) + ":" + std::to_string(column);
}

std::string place(const Rendering& rendering, std::size_t position)
{
    return rendering.fromHex || rendering.form == Form::binary ? ": offset " + std::to_string(position)
                                                               : lineAndColumn(rendering.bytes, position);
}

} // namespace

const char* formName(Form form)
{
    constexpr std::array kNames = {"text", "binary", "XML"};
    return kNames.at(static_cast<std::size_t>(form));
}

Damage::Damage(const Rendering& rendering, std::size_t position, const std::string& field, const std::string& what)
    : std::runtime_error(place(rendering, position) + ": " + field + ": " + what)
{
}

std::string readFile(const std::string& name)
{
    const auto close = [](std::FILE* file) { std::fclose(file); };
    std::unique_ptr<std::FILE, decltype(close)> opened;
    std::FILE* file = stdin;
    if (name != "-")
    {
        opened.reset(std::fopen(name.c_str(), "rb"));
        file = opened.get();
    }
    std::string content;
    std::array<char, 65536> chunk;
    for (std::size_t count = 1; file != nullptr && count != 0;)
    {
        count = std::fread(chunk.data(), 1, chunk.size(), file);
        content.append(chunk.data(), count);
    }
    if (file == nullptr || std::ferror(file) != 0)
    {
        throw Trouble(name + ": " + std::strerror(errno));
    }
    return content;
}

Rendering recognise(std::string input)
{
    Rendering rendering;
    rendering.bytes = std::move(input);
    if (rendering.bytes.empty())
    {
        throw Damage(rendering, 0, "sigNo", "the input is empty");
    }
    if (isAnyForm(rendering))
    {
        return rendering;
    }
    if (const auto decoded = decodeHex(rendering.bytes))
    {
        Rendering hex;
        hex.bytes = *decoded;
        hex.fromHex = true;
        if (isAnyForm(hex))
        {
            return hex;
        }
    }
    if (const std::size_t digits = afterDigits(rendering.bytes); digits != 0)
    {
        rendering.form = Form::text;
        throw Damage(rendering, digits, "sigNo", "no ':' behind the number, and no hex of a known signal either");
    }
    rendering.form = Form::binary;
    throw Damage(rendering, 0, "sigNo", "neither text, XML or hex, nor binary of a known signal");
}

} // namespace bci::tool
