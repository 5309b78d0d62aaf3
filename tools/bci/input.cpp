#include "input.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

namespace bci::tool
{

namespace
{

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

} // namespace

const char* formName(Form form)
{
    constexpr std::array kNames = {"text", "binary", "XML"};
    return kNames.at(static_cast<std::size_t>(form));
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
    std::string text = escaped(piece.substr(0, cut));
    text.insert(text.begin(), '\'');
    return text + (piece.size() > cut ? "'..." : "'");
}

} // namespace bci::tool
