#include "input.h"

#include "codec/tagLookup.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

namespace bci::tool
{

namespace
{

// Bytes. The longest rendering of any signal has a few thousand, as hex three times as many.
constexpr std::size_t kLongestInput = 1 << 20;

constexpr const char* kDigits = "0123456789";
constexpr const char* kSpaces = " \t\n\v\f\r";

// Where the digits at the start of an input end.
std::size_t afterDigits(std::string_view bytes)
{
    return std::min(bytes.find_first_not_of(kDigits), bytes.size());
}

struct Hex
{
    std::string bytes;
    std::size_t end; // where the pairs of hex digits end in the input
};

// The bytes that the pairs of hex digits at the start of an input stand for, white space between the
// pairs allowed.
Hex decodeHex(std::string_view input)
{
    Hex hex = {{}, std::min(input.find_first_not_of(kSpaces), input.size())};
    while (hex.end != input.size())
    {
        unsigned char byte = 0;
        const std::string_view pair = input.substr(hex.end, 2);
        const auto [stop, error] = std::from_chars(pair.data(), pair.data() + pair.size(), byte, 16);
        if (error != std::errc{} || stop != pair.data() + 2)
        {
            break;
        }
        hex.bytes.push_back(static_cast<char>(byte));
        hex.end = std::min(input.find_first_not_of(kSpaces, hex.end + 2), input.size());
    }
    return hex;
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

// The signal of a decimal number. `position` is where the number stands in the rendering.
const Signal* signalOf(std::string_view number, const Rendering& rendering, std::size_t position)
{
    SIGSELECT value = 0;
    const char* const end = number.data() + number.size();
    const auto [stop, error] = std::from_chars(number.data(), end, value);
    const Signal* const signal = stop == end && error == std::errc{} ? findSignal(value) : nullptr;
    if (signal == nullptr)
    {
        throw Damage(rendering, position, "sigNo", "no signal has the number " + quote(number));
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

// How many bytes the character at the start of a text has in UTF-8; 0 if it is none, a control character or
// a backslash, which shows these.
std::size_t printableLength(std::string_view text)
{
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    if (byte(0) < 0x80)
    {
        return byte(0) >= ' ' && byte(0) != 0x7F && byte(0) != '\\' ? 1 : 0;
    }
    const std::size_t length = byte(0) >= 0xF0 ? 4 : byte(0) >= 0xE0 ? 3 : 2;
    // Neither overlong, nor a surrogate, nor beyond the last character, nor a control character.
    if (byte(0) < 0xC2 || byte(0) > 0xF4 || text.size() < length || (byte(0) == 0xC2 && byte(1) < 0xA0) ||
        (byte(0) == 0xE0 && byte(1) < 0xA0) || (byte(0) == 0xED && byte(1) >= 0xA0) ||
        (byte(0) == 0xF0 && byte(1) < 0x90) || (byte(0) == 0xF4 && byte(1) >= 0x90))
    {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i)
    {
        if ((byte(i) & 0xC0) != 0x80)
        {
            return 0;
        }
    }
    return length;
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

std::string displayName(const std::string& fileName)
{
    return fileName == "-" ? "<stdin>" : escaped(fileName);
}

std::string escaped(std::string_view text)
{
    std::string result;
    while (!text.empty())
    {
        const std::size_t length = printableLength(text);
        if (length != 0)
        {
            result += text.substr(0, length);
        }
        else if (text.front() == '\\')
        {
            result += "\\\\";
        }
        else
        {
            std::array<char, 8> code;
            std::snprintf(code.data(), code.size(), "\\x%02X", unsigned{static_cast<unsigned char>(text.front())});
            result += code.data();
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return result;
}

std::string quote(std::string_view piece)
{
    constexpr std::size_t kLongest = 40;
    std::size_t cut = std::min(piece.size(), kLongest);
    while (cut != 0 && cut != piece.size() && (static_cast<unsigned char>(piece[cut]) & 0xC0) == 0x80)
    {
        --cut; // not within a character
    }
    return "'" + escaped(piece.substr(0, cut)) + (piece.size() > cut ? "'..." : "'");
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
    std::string content(kLongestInput + 1, '\0');
    if (file != nullptr)
    {
        content.resize(std::fread(content.data(), 1, content.size(), file));
    }
    if (file == nullptr || std::ferror(file) != 0)
    {
        throw Trouble(displayName(name) + ": " + std::strerror(errno));
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
    if (rendering.bytes.size() > kLongestInput)
    {
        throw Damage(rendering, kLongestInput, "sigNo", "the input goes on, beyond what any signal takes");
    }
    Rendering hex;
    const Hex decoded = decodeHex(rendering.bytes);
    hex.bytes = decoded.bytes;
    hex.fromHex = true;
    if (isBinary(hex) || (decoded.end == rendering.bytes.size() && isAnyForm(hex)))
    {
        if (decoded.end != rendering.bytes.size())
        {
            rendering.form = Form::text; // to tell the place by line and column
            throw Damage(rendering, decoded.end, "sigNo",
                         "this is hex, but here is no pair of hex digits: " +
                             quote(std::string_view(rendering.bytes).substr(decoded.end, 2)));
        }
        return hex;
    }
    if (isAnyForm(rendering))
    {
        return rendering;
    }
    if (const std::size_t digits = afterDigits(rendering.bytes); digits != 0)
    {
        rendering.form = Form::text;
        throw Damage(rendering, digits, "sigNo", "no ':' behind the number, and no hex of a known signal either");
    }
    throw Damage(rendering, 0, "sigNo", "neither text, XML or hex, nor binary of a known signal");
}

} // namespace bci::tool
