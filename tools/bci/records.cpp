#include "records.h"

#include <algorithm>

namespace bci::tool
{

namespace
{

U32 bigEndianWord(std::string_view bytes)
{
    U32 word = 0;
    for (const char byte : bytes.substr(0, sizeof word))
    {
        word = word << 8 | static_cast<unsigned char>(byte);
    }
    return word;
}

// The place of a byte's digits among those of hex or base64.
std::size_t digitOf(const Item& item, std::size_t position)
{
    std::size_t wanted = item.carrier == Carrier::hex ? 2 * position : position * 4 / 3;
    if (item.carrier == Carrier::hex && (item.digits.starts_with("0x") || item.digits.starts_with("0X")))
    {
        wanted += 2;
    }
    std::size_t at = 0;
    for (; at < item.digits.size(); ++at)
    {
        const char ch = item.digits[at];
        if (ch != ' ' && ch != '\t' && ch != '\n' && ch != '\r' && wanted-- == 0)
        {
            break;
        }
    }
    return at;
}

} // namespace

bool recognise(std::string_view bytes, Rendering& rendering)
{
    rendering.bytes = bytes;
    if (bytes.size() >= sizeof(SIGSELECT))
    {
        const U32 word = bigEndianWord(bytes);
        rendering.form = Form::binary;
        rendering.firstWord = std::endian::big;
        rendering.signal = signalOfNumber(word);
        if (rendering.signal == nullptr)
        {
            rendering.firstWord = std::endian::little;
            rendering.signal = signalOfNumber(turnedRound(word));
        }
        if (rendering.signal != nullptr)
        {
            return true;
        }
    }
    rendering.firstWord = std::endian::big;
    const std::size_t digits = std::min(bytes.find_first_not_of("0123456789"), bytes.size());
    if (digits != 0 && digits < bytes.size() && bytes[digits] == ':')
    {
        rendering.form = Form::text;
        rendering.signal = textSignal(bytes);
        return true;
    }
    const std::size_t first = bytes.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos || bytes[first] != '<')
    {
        return false;
    }
    rendering.form = Form::xml;
    rendering.signal = nullptr;
    constexpr std::string_view kOpening = "<sigNo>";
    if (const std::size_t tag = bytes.find(kOpening); tag != std::string_view::npos)
    {
        const std::string_view behind = bytes.substr(tag + kOpening.size());
        std::string number(
            behind.substr(std::min(behind.find_first_not_of(" \t\r\n"), behind.size())).substr(0, 11));
        number.resize(std::min(number.find_first_not_of("0123456789"), number.size()));
        rendering.signal = textSignal(number + ":");
    }
    return true;
}

LineColumn lineAndColumn(const Item& item, std::size_t position)
{
    if (item.line == 0)
    {
        return {0, 0};
    }
    std::string_view before = item.rendering.bytes.substr(0, position);
    if (item.carrier == Carrier::row)
    {
        before = {};
    }
    else if (item.carrier != Carrier::plain)
    {
        before = item.digits.substr(0, digitOf(item, item.skipped + position));
    }
    const std::size_t newLine = before.rfind('\n');
    if (newLine == std::string_view::npos)
    {
        return {item.line, item.column + before.size()};
    }
    return {item.line + static_cast<std::uint64_t>(std::count(before.begin(), before.end(), '\n')),
            before.size() - newLine};
}

std::string placeOf(const Item& item, std::size_t position)
{
    std::string place(item.input);
    if (item.line != 0)
    {
        const LineColumn at = lineAndColumn(item, position);
        return place + ":" + std::to_string(at.line) + ":" + std::to_string(at.column);
    }
    if (item.carrier == Carrier::packet)
    {
        return place + ": packet " + std::to_string(item.packet) + ", offset " +
               std::to_string(item.skipped + position);
    }
    return place + ": offset " + std::to_string(item.offset + position);
}

} // namespace bci::tool
