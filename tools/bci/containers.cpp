#include "containers.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <limits>
#include <utility>
#include <vector>

namespace bci::tool
{

namespace
{

constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kSpaces = " \t\n\v\f\r";

unsigned char byteAt(std::string_view bytes, std::size_t position)
{
    return static_cast<unsigned char>(bytes[position]);
}

// What stands before the first of these characters; that is taken off the text.
std::string_view takeUntil(std::string_view& text, std::string_view characters)
{
    const std::string_view piece = text.substr(0, text.find_first_of(characters));
    text.remove_prefix(piece.size());
    return piece;
}

// Returns how many there were.
std::size_t skip(std::string_view& text, std::string_view characters)
{
    const std::size_t count = std::min(text.find_first_not_of(characters), text.size());
    text.remove_prefix(count);
    return count;
}

std::string_view withoutTrailing(std::string_view text, std::string_view characters)
{
    return text.substr(0, text.find_last_not_of(characters) + 1);
}

// The value of a digit, or one that no digit has.
unsigned int digitValue(char digit)
{
    const char lower = static_cast<char>(digit | 0x20);
    return digit >= '0' && digit <= '9'   ? static_cast<unsigned int>(digit - '0')
           : lower >= 'a' && lower <= 'f' ? static_cast<unsigned int>(lower - 'a') + 10
                                          : 16;
}

// Appends the bytes of pairs of digits with nothing between. Returns false where there are no such pairs.
bool appendHex(std::string& bytes, std::string_view digits)
{
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
    {
        const unsigned int high = digitValue(digits[i]);
        const unsigned int low = digitValue(digits[i + 1]);
        if (high > 15 || low > 15)
        {
            return false;
        }
        bytes.push_back(static_cast<char>(high << 4 | low));
    }
    return digits.size() % 2 == 0;
}

} // namespace

std::optional<std::string> decodeHex(std::string_view digits)
{
    digits = withoutTrailing(digits, kSpaces);
    skip(digits, kSpaces);
    if (digits.starts_with("0x") || digits.starts_with("0X"))
    {
        digits.remove_prefix(2);
    }
    std::string bytes;
    bytes.reserve(digits.size() / 2);
    while (!digits.empty())
    {
        if (!appendHex(bytes, takeUntil(digits, kSpaces)))
        {
            return std::nullopt;
        }
        skip(digits, kSpaces);
    }
    return bytes.empty() ? std::nullopt : std::optional(std::move(bytes));
}

std::string encodeHex(std::string_view bytes)
{
    constexpr const char* kDigits = "0123456789abcdef";
    std::string digits;
    digits.reserve(2 * bytes.size());
    for (std::size_t i = 0; i != bytes.size(); ++i)
    {
        digits.push_back(kDigits[byteAt(bytes, i) >> 4]);
        digits.push_back(kDigits[byteAt(bytes, i) & 15]);
    }
    return digits;
}

std::optional<std::string> decodeBase64(std::string_view digits)
{
    digits = withoutTrailing(digits, kSpaces);
    skip(digits, kSpaces);
    std::string bytes;
    bytes.reserve(digits.size() / 4 * 3);
    std::uint32_t bits = 0;
    std::size_t count = 0;
    std::size_t padding = 0;
    bool isStandard = false;
    bool isUrl = false;
    for (const char digit : digits)
    {
        if (digit == '\n' || digit == '\r')
        {
            continue;
        }
        if (digit == '=')
        {
            ++padding;
            continue;
        }
        isStandard = isStandard || digit == '+' || digit == '/';
        isUrl = isUrl || digit == '-' || digit == '_';
        const int value = digit >= 'A' && digit <= 'Z'   ? digit - 'A'
                          : digit >= 'a' && digit <= 'z' ? digit - 'a' + 26
                          : digit >= '0' && digit <= '9' ? digit - '0' + 52
                          : digit == '+' || digit == '-' ? 62
                          : digit == '/' || digit == '_' ? 63
                                                         : -1;
        if (value < 0 || padding != 0)
        {
            return std::nullopt;
        }
        bits = bits << 6 | static_cast<std::uint32_t>(value);
        ++count;
        // The first digit of four completes no byte, each other one does.
        if (count % 4 != 1)
        {
            bytes.push_back(static_cast<char>(bits >> (3 - (count - 1) % 4) * 2));
        }
    }
    // Of the last digit, as many bits are left over as it takes to fill up; they hold nothing.
    const std::size_t missing = (4 - count % 4) % 4;
    const bool isWhole = missing == 0 || (missing != 3 && (bits & ((1U << 2 * missing) - 1)) == 0);
    if (bytes.empty() || !isWhole || (padding != 0 && padding != missing) || (isStandard && isUrl))
    {
        return std::nullopt;
    }
    return bytes;
}

namespace
{

// The layouts of dumps.
enum class Layout
{
    colon,     // xxd: "00000000: 3233 3433  2343", groups of any size
    canonical, // hexdump -C: "00000000  32 33 34 33  |2343|"
    units, // od, hexdump: "0000000 32 33 34 33" or "0000000 3332 3334", words of the host that is little-endian
    bare   // od -A n: " 32 33 34 33"
};

struct DumpFormat
{
    Layout layout;
    std::size_t unit;      // bytes in a group, if they are all of one size
    std::size_t separator; // blanks before a group, if they are always as many
};

struct DumpLine
{
    bool isStar = false;
    std::string_view offset; // digits, none in the layout that has none
    std::string bytes;
};

bool isHex(std::string_view digits)
{
    return std::all_of(digits.begin(), digits.end(), [](char digit) { return digitValue(digit) < 16; });
}

// Whether what stands behind the groups is what xxd writes there: as many characters as there are bytes. Those at
// either end may be blanks, and be gone.
bool isPlainText(std::string_view tail, std::string_view bytes)
{
    skip(tail, kBlanks);
    const auto blanks = static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), ' '));
    // Half as many, since bytes may have been edited and the text not. Binary digits (xxd -b) come to a quarter.
    return tail.empty() || (tail.size() <= bytes.size() && 2 * tail.size() >= bytes.size() - blanks);
}

// Likewise for od ("  >text<") and hexdump ("  |text|"). Bytes that only fill up the last word have no character.
bool isQuotedText(std::string_view tail, std::size_t bytes, std::size_t unit, std::string_view quotes)
{
    skip(tail, kBlanks);
    const std::size_t least = bytes - unit + 1 + quotes.size();
    return tail.empty() || (tail.size() >= least && tail.size() <= bytes + quotes.size() &&
                            tail.front() == quotes.front() && tail.back() == quotes.back());
}

// Takes the groups of digits at the beginning of a line, each with the blanks before it. What ends them is the
// first thing that looks otherwise.
bool takeGroups(std::string_view& text, const DumpFormat& format, std::string& bytes)
{
    while (!text.empty())
    {
        std::string_view rest = text;
        const std::size_t blanks = skip(rest, kBlanks);
        const std::string_view group = takeUntil(rest, kBlanks);
        const bool isMiddle = format.layout == Layout::canonical && blanks == 2;
        if ((blanks != format.separator && !isMiddle) || group.empty())
        {
            break;
        }
        const std::size_t before = bytes.size();
        if (!isHex(group) || (format.unit != 0 && group.size() != 2 * format.unit) || !appendHex(bytes, group))
        {
            bytes.resize(before);
            // Groups of xxd have single blanks, so this is none of the text behind them.
            return format.layout != Layout::colon;
        }
        if (format.layout == Layout::units)
        {
            std::reverse(bytes.begin() + static_cast<std::ptrdiff_t>(before), bytes.end());
        }
        text = rest;
    }
    return true;
}

std::optional<DumpLine> parseDumpLine(std::string_view text, const DumpFormat& format)
{
    DumpLine line;
    if (text == "*")
    {
        line.isStar = true;
        return line;
    }
    std::string_view rest = text;
    if (format.layout != Layout::bare)
    {
        line.offset = takeUntil(rest, format.layout == Layout::colon ? ":" : kBlanks);
        if (line.offset.size() < 6 || !isHex(line.offset))
        {
            return std::nullopt;
        }
        if (format.layout == Layout::colon)
        {
            if (rest.empty())
            {
                return std::nullopt;
            }
            rest.remove_prefix(1);
        }
        else if (withoutTrailing(rest, kBlanks).empty())
        {
            return line; // the end
        }
    }
    if (!takeGroups(rest, format, line.bytes) || line.bytes.empty())
    {
        return std::nullopt;
    }
    const std::string_view tail = withoutTrailing(rest, kBlanks);
    const bool isRight =
        format.layout == Layout::colon
            ? isPlainText(tail, line.bytes)
            : isQuotedText(tail, line.bytes.size(), format.unit, format.layout == Layout::canonical ? "||" : "><");
    return isRight ? std::optional(std::move(line)) : std::nullopt;
}

// What the first line of a dump, or as much of it as is given, says about the others.
std::optional<DumpFormat> dumpFormat(std::string_view first, bool isCut)
{
    constexpr std::array<std::size_t, 4> kUnits = {1, 2, 4, 8};
    std::string_view rest = first;
    const std::size_t zeros = skip(rest, "0");
    const bool isColon = zeros >= 6 && rest.starts_with(':');
    rest.remove_prefix(isColon ? 1 : 0);
    const std::string_view groups = rest;
    const std::size_t separator = skip(rest, kBlanks);
    const std::string_view group = takeUntil(rest, kBlanks);

    DumpFormat format = {Layout::colon, 0, 1};
    if (!isColon)
    {
        if (zeros == 7 && group.empty())
        {
            return DumpFormat{Layout::units, 1, 1}; // of an empty input, od prints the offset alone
        }
        format.unit = group.size() / 2;
        if (zeros == 0 || (zeros == 8 && separator == 2))
        {
            format.layout = zeros == 0 ? Layout::bare : Layout::canonical;
        }
        else if ((zeros == 6 || zeros == 7) && separator != 0)
        {
            format.layout = Layout::units;
            format.separator = separator == 4 && format.unit == 2 ? 4 : 1; // hexdump -x has four
        }
        else
        {
            return std::nullopt;
        }
        if (std::find(kUnits.begin(), kUnits.end(), format.unit) == kUnits.end() ||
            (format.layout != Layout::units && format.unit != 1))
        {
            return std::nullopt;
        }
    }
    if (!isCut)
    {
        const std::optional<DumpLine> line = parseDumpLine(first, format);
        return line && !line->isStar ? std::optional(format) : std::nullopt;
    }
    // One group tells enough; a single large one may be cut in the middle of a pair.
    std::string_view one = groups.substr(0, separator + (format.unit == 0 ? group.size() / 2 * 2 : group.size()));
    std::string bytes;
    return takeGroups(one, format, bytes) && !bytes.empty() ? std::optional(format) : std::nullopt;
}

std::string_view withoutReturn(std::string_view line)
{
    return line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
}

// Reads a dump line by line. How much of a line counts is known for sure when the next offset has been read: a
// word at the end may be filled up, and a "*" repeats.
class DumpStream : public ByteStream
{
public:
    DumpStream(ByteStream& dump, std::string inputName)
        : m_name(std::move(inputName)), m_window(dump, 2 * kLongestLine)
    {
    }

    std::size_t read(char* to, std::size_t most) override
    {
        while (m_delivered == m_end && most != 0)
        {
            if (!m_trouble.empty())
            {
                throw Trouble(m_trouble);
            }
            if (!advance())
            {
                return 0;
            }
        }
        const auto length = static_cast<std::size_t>(std::min<std::uint64_t>(most, m_end - m_delivered));
        for (std::size_t i = 0; i != length; ++i)
        {
            to[i] = m_bytes[static_cast<std::size_t>((m_delivered + i) % m_bytes.size())];
        }
        m_delivered += length;
        return length;
    }

private:
    static constexpr std::size_t kLongestLine = std::size_t{1} << 16; // xxd -c 256 writes some 900 bytes
    static constexpr std::uint64_t kMostRepeated = 1U << 24;          // a few bytes could stand for exabytes

    // Returns false at the end.
    bool advance()
    {
        if (m_next)
        {
            m_start += m_end;
            m_bytes = std::move(*m_next);
            m_next.reset();
            m_isStarred = false;
            m_delivered = 0;
            m_end = m_format->unit > 1 ? 0 : m_bytes.size();
            return true;
        }
        try
        {
            std::string text;
            if (readLine(text))
            {
                takeLine(withoutReturn(text));
                return true;
            }
            if (m_isStarred && !m_isClosed)
            {
                fail("no offset tells how often '*' repeats the line before it");
            }
        }
        catch (const Trouble& trouble)
        {
            m_trouble = trouble.what();
        }
        const bool isMore = m_end < m_bytes.size() && !m_isClosed;
        m_end = isMore ? m_bytes.size() : m_end;
        return isMore || !m_trouble.empty();
    }

    bool readLine(std::string& line)
    {
        ++m_lineNumber;
        std::size_t searched = 0;
        for (;;)
        {
            const std::string_view ahead = m_window.ahead(searched + 1);
            const std::size_t end = ahead.find('\n', searched);
            if (end != std::string_view::npos)
            {
                line = ahead.substr(0, end);
                m_window.consume(end + 1);
                return true;
            }
            if (ahead.size() >= kLongestLine)
            {
                fail("this line is too long for a dump");
            }
            if (ahead.size() == searched)
            {
                line = ahead;
                m_window.consume(searched);
                m_window.ahead(1); // throws, if that is what cut the line
                return !line.empty();
            }
            searched = ahead.size();
        }
    }

    void takeLine(std::string_view text)
    {
        if (withoutTrailing(text, kBlanks).empty())
        {
            return;
        }
        if (m_isClosed)
        {
            fail("this line is behind the end of the dump");
        }
        if (!m_format)
        {
            m_format = dumpFormat(text, false);
            m_radices = m_format ? radicesOf(text) : std::vector<int>();
        }
        std::optional<DumpLine> line = m_format ? parseDumpLine(text, *m_format) : std::nullopt;
        if (!line)
        {
            fail("this is no line of a dump: " + quote(text));
        }
        if (m_format->layout == Layout::bare)
        {
            if (line->isStar)
            {
                fail("without offsets, nothing tells how often '*' repeats the line before it");
            }
            m_next = std::move(line->bytes);
        }
        else if (line->isStar)
        {
            m_isStarred = true;
        }
        else
        {
            m_end = endBy(line->offset, line->bytes.empty());
            if (m_isStarred)
            {
                countRepeated();
            }
            if (line->bytes.empty())
            {
                m_isClosed = true;
            }
            else
            {
                m_next = std::move(line->bytes);
            }
        }
    }

    // What the offsets of this dump may be, as long as those read so far do not tell.
    std::vector<int> radicesOf(std::string_view first) const
    {
        switch (m_format->layout)
        {
        case Layout::colon:
            return {16, 10};
        case Layout::units:
            if (first.find_first_not_of('0') == 6)
            {
                break;
            }
            return m_format->unit == 1 ? std::vector{8, 10} : std::vector{8, 10, 16};
        case Layout::canonical:
        case Layout::bare:
            break;
        }
        return {16};
    }

    // Where the bytes of the line before end, counted from its beginning, if this offset follows it.
    std::uint64_t endBy(std::string_view offset, bool isLast)
    {
        std::vector<int> radices;
        std::vector<std::uint64_t> ends;
        for (const int radix : m_radices)
        {
            std::uint64_t value = 0;
            const auto [stop, error] = std::from_chars(offset.data(), offset.data() + offset.size(), value, radix);
            if (error == std::errc{} && stop == offset.data() + offset.size() && value >= m_start &&
                isEnd(value - m_start, isLast))
            {
                radices.push_back(radix);
                ends.push_back(value - m_start);
            }
        }
        if (ends.empty())
        {
            fail("the offset " + quote(offset) + " does not follow from the lines before");
        }
        const bool isAmbiguous =
            std::any_of(ends.begin(), ends.end(), [&ends](auto end) { return end != ends[0]; });
        if (isAmbiguous && m_format->layout != Layout::colon)
        {
            fail("the offset " + quote(offset) +
                 " may be octal, decimal or hexadecimal, so nothing tells how often '*' repeats the line before "
                 "it");
        }
        m_radices = std::move(radices);
        return ends[0];
    }

    void countRepeated()
    {
        const std::uint64_t repeated = m_end - m_bytes.size();
        if (repeated > kMostRepeated - m_repeated)
        {
            m_end = m_bytes.size();
            fail("'*' stands for more than 16 MiB; a dump that repeats no line (hexdump -v, od -v) is read "
                 "whatever "
                 "its length");
        }
        m_repeated += repeated;
    }

    bool isEnd(std::uint64_t end, bool isLast) const
    {
        const std::size_t size = m_bytes.size();
        if (m_isStarred)
        {
            // hexdump repeats a part of a line too, at the end.
            return size != 0 && end > size && (end % size == 0 || isLast);
        }
        const bool isFilledUp =
            isLast && end < size && size - end < m_format->unit &&
            m_bytes.find_first_not_of('\0', static_cast<std::size_t>(end)) == std::string::npos;
        return end == size || isFilledUp;
    }

    [[noreturn]] void fail(const std::string& what) const
    {
        throw Trouble(m_name + ":" + std::to_string(m_lineNumber) + ": " + what);
    }

    std::string m_name;
    Window m_window;
    std::uint64_t m_lineNumber = 0;
    std::optional<DumpFormat> m_format;
    std::vector<int> m_radices;
    std::string m_bytes;           // of the line that is being delivered
    std::uint64_t m_start = 0;     // its offset
    std::uint64_t m_delivered = 0; // of it and its repetitions
    std::uint64_t m_end = 0;       // how much of that is known to count
    std::uint64_t m_repeated = 0;  // by all "*" until now
    bool m_isStarred = false;
    bool m_isClosed = false; // by an offset that nothing stands behind
    std::optional<std::string> m_next;
    std::string m_trouble;
};

} // namespace

bool isDump(std::string_view beginning)
{
    const std::size_t end = beginning.find('\n');
    const std::string_view first = withoutReturn(beginning.substr(0, end));
    const bool isCut = end == std::string_view::npos && beginning.size() >= 256;
    const std::optional<DumpFormat> format = dumpFormat(first, isCut);
    if (!format || format->layout != Layout::bare)
    {
        return format.has_value();
    }
    // A line without offset looks like hex with a blank in front, and means the same. It takes a second line to be
    // a dump.
    if (end == std::string_view::npos)
    {
        return false;
    }
    std::string_view second = withoutReturn(beginning.substr(end + 1, beginning.find('\n', end + 1) - (end + 1)));
    std::string bytes;
    return second == "*" || (takeGroups(second, *format, bytes) && !bytes.empty());
}

std::unique_ptr<ByteStream> openDump(ByteStream& dump, const std::string& inputName)
{
    return std::make_unique<DumpStream>(dump, inputName);
}

namespace
{

struct Instant
{
    std::int64_t seconds; // since the beginning of 1970
    std::uint32_t nanoseconds;
};

constexpr std::size_t kNanosecondDigits = 9;
constexpr std::string_view kUnknown = "-";

// Takes a number of so many digits off the text, and what has to follow it. Returns false if they are not there.
bool takeNumber(std::string_view& text, std::size_t digits, std::string_view end, int& value)
{
    const std::string_view number = text.substr(0, digits);
    if (number.size() != digits || number.find_first_not_of("0123456789") != std::string_view::npos ||
        text.substr(digits, end.size()) != end)
    {
        return false;
    }
    std::from_chars(number.data(), number.data() + number.size(), value);
    text.remove_prefix(digits + end.size());
    return true;
}

// Takes ".250" off the text, if it is there. Returns false if there is only the point, or too much.
bool takeFraction(std::string_view& text, std::uint32_t& nanoseconds)
{
    if (!text.starts_with('.'))
    {
        return true;
    }
    text.remove_prefix(1);
    const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    if (digits == 0 || digits > kNanosecondDigits)
    {
        return false;
    }
    for (std::size_t i = 0; i != kNanosecondDigits; ++i)
    {
        nanoseconds = nanoseconds * 10 + (i < digits ? static_cast<std::uint32_t>(text[i] - '0') : 0);
    }
    text.remove_prefix(digits);
    return true;
}

// Takes a zone ("Z", "+01:00" or nothing) off the text, and tells by how many seconds it is ahead.
bool takeZone(std::string_view& text, int& ahead)
{
    const char sign = text.empty() ? 'Z' : text.front();
    text.remove_prefix(text.empty() ? 0 : 1);
    if (sign == 'Z')
    {
        return true;
    }
    int hours = 0;
    int minutes = 0;
    if ((sign != '+' && sign != '-') || !takeNumber(text, 2, ":", hours) || !takeNumber(text, 2, "", minutes) ||
        hours > 23 || minutes > 59)
    {
        return false;
    }
    ahead = (hours * 60 + minutes) * (sign == '-' ? -60 : 60);
    return true;
}

// Null if the text is no time in ISO 8601.
std::optional<Instant> parseTime(std::string_view text)
{
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int ahead = 0;
    std::uint32_t nanoseconds = 0;
    if (!takeNumber(text, 4, "-", year) || !takeNumber(text, 2, "-", month) || !takeNumber(text, 2, "T", day) ||
        !takeNumber(text, 2, ":", hour) || !takeNumber(text, 2, ":", minute) || !takeNumber(text, 2, "", second) ||
        !takeFraction(text, nanoseconds) || !takeZone(text, ahead) || !text.empty())
    {
        return std::nullopt;
    }
    const std::chrono::year_month_day date(std::chrono::year(year),
                                           std::chrono::month(static_cast<unsigned int>(month)),
                                           std::chrono::day(static_cast<unsigned int>(day)));
    if (!date.ok() || hour > 23 || minute > 59 || second > 60) // 60 is a leap second
    {
        return std::nullopt;
    }
    const std::int64_t days = std::chrono::sys_days(date).time_since_epoch().count();
    return Instant{((days * 24 + hour) * 60 + minute) * 60 + second - ahead, nanoseconds};
}

std::string formatTime(std::int64_t seconds, std::uint32_t fraction, int digits)
{
    const std::chrono::sys_seconds time{std::chrono::seconds(seconds)};
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(time - day);
    std::array<char, 96> text;
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%0*luZ", static_cast<int>(date.year()),
                  static_cast<unsigned int>(date.month()), static_cast<unsigned int>(date.day()),
                  static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                  static_cast<int>(clock.seconds().count()), digits, static_cast<unsigned long>(fraction));
    return text.data();
}

struct FormWord
{
    std::string_view word;
    Form form;
};

constexpr std::array<FormWord, 3> kFormWords = {
    {{"text", Form::text}, {"binary", Form::binary}, {"xml", Form::xml}}};

std::string_view takeWord(std::string_view& line)
{
    const std::string_view word = takeUntil(line, kBlanks);
    skip(line, kBlanks);
    return word;
}

} // namespace

std::optional<TraceLine> parseTrace(std::string_view line)
{
    TraceLine result = {};
    result.time = takeWord(line);
    result.direction = takeWord(line);
    const std::string_view word = takeWord(line);
    const auto* const form = std::find_if(kFormWords.begin(), kFormWords.end(),
                                          [word](const FormWord& known) { return known.word == word; });
    if ((result.time != kUnknown && !parseTime(result.time)) || form == kFormWords.end())
    {
        return std::nullopt;
    }
    std::optional<std::string> bytes = decodeHex(line);
    if (!bytes)
    {
        return std::nullopt;
    }
    result.time = result.time == kUnknown ? std::string_view() : result.time;
    result.direction = result.direction == kUnknown ? std::string_view() : result.direction;
    result.form = form->form;
    result.bytes = std::move(*bytes);
    return result;
}

std::string formatTrace(std::string_view time, std::string_view direction, Form form, std::string_view bytes)
{
    std::string line(parseTime(time) ? time : kUnknown);
    line += ' ';
    for (const char ch : direction.empty() ? kUnknown : direction)
    {
        const auto code = static_cast<unsigned char>(ch);
        line += code <= ' ' || code == 0x7F ? '_' : ch; // a word it has to be
    }
    line += ' ';
    line += kFormWords.at(static_cast<std::size_t>(form)).word;
    line += ' ';
    return line + encodeHex(bytes);
}

namespace
{

constexpr std::uint32_t kMicrosecondMagic = 0xA1B2C3D4;
constexpr std::uint32_t kNanosecondMagic = 0xA1B23C4D;

// Four bytes in big-endian order; those that are missing count as zeros.
std::uint32_t wordAt(std::string_view bytes, std::size_t position, bool isBigEndian)
{
    std::uint32_t word = 0;
    for (std::size_t i = 0; i != 4; ++i)
    {
        const std::size_t at = position + (isBigEndian ? i : 3 - i);
        word = word << 8 | (at < bytes.size() ? byteAt(bytes, at) : 0U);
    }
    return word;
}

void appendWord(std::string& bytes, std::uint32_t word)
{
    for (const int shift : {24, 16, 8, 0})
    {
        bytes.push_back(static_cast<char>(word >> shift));
    }
}

} // namespace

std::optional<PcapFormat> parsePcapHeader(std::string_view bytes)
{
    constexpr std::uint32_t kVersion = 4; // the major one, 2, is a half word of its own
    constexpr std::uint32_t kLinkTypeBits = 0x03FFFFFF;
    if (bytes.size() < kPcapFileHeader)
    {
        return std::nullopt;
    }
    for (const bool isBigEndian : {true, false})
    {
        const std::uint32_t magic = wordAt(bytes, 0, isBigEndian);
        const std::uint32_t version = wordAt(bytes, 4, isBigEndian);
        const bool isRightVersion = version == (isBigEndian ? 2U << 16 | kVersion : kVersion << 16 | 2U);
        if ((magic == kMicrosecondMagic || magic == kNanosecondMagic) && isRightVersion)
        {
            const bool isHostBigEndian = std::endian::native == std::endian::big;
            return PcapFormat{isBigEndian != isHostBigEndian, magic == kNanosecondMagic,
                              wordAt(bytes, 20, isBigEndian) & kLinkTypeBits};
        }
    }
    return std::nullopt;
}

PcapPacket parsePacketHeader(const PcapFormat& format, std::string_view bytes)
{
    const bool isBigEndian = (std::endian::native == std::endian::big) != format.reversed;
    const std::uint32_t perSecond = format.nanoseconds ? 1'000'000'000 : 1'000'000;
    const std::uint32_t fraction = wordAt(bytes, 4, isBigEndian);
    PcapPacket packet;
    // A fraction of more than a second is nobody's, yet it must not look like something else.
    packet.time = formatTime(std::int64_t{wordAt(bytes, 0, isBigEndian)} + fraction / perSecond,
                             fraction % perSecond, format.nanoseconds ? 9 : 6);
    packet.length = wordAt(bytes, 8, isBigEndian);
    packet.lengthOnTheWire = wordAt(bytes, 12, isBigEndian);
    return packet;
}

std::string pcapHeader()
{
    constexpr std::uint32_t kLongestPacket = 262144;
    std::string bytes;
    for (const std::uint32_t word : {kNanosecondMagic, std::uint32_t{2} << 16 | 4, std::uint32_t{0},
                                     std::uint32_t{0}, kLongestPacket, std::uint32_t{kPcapLinkType}})
    {
        appendWord(bytes, word);
    }
    return bytes;
}

std::string pcapPacket(std::string_view time, std::string_view bytes)
{
    Instant instant = parseTime(time).value_or(Instant{0, 0});
    if (instant.seconds < 0 || instant.seconds > std::numeric_limits<std::uint32_t>::max())
    {
        instant = {0, 0};
    }
    std::string packet;
    packet.reserve(kPcapPacketHeader + bytes.size());
    appendWord(packet, static_cast<std::uint32_t>(instant.seconds));
    appendWord(packet, instant.nanoseconds);
    appendWord(packet, static_cast<std::uint32_t>(bytes.size()));
    appendWord(packet, static_cast<std::uint32_t>(bytes.size()));
    packet += bytes;
    return packet;
}

} // namespace bci::tool
