#include "lineFilter.h"

#include "jsonRows.h"
#include "rows.h"

#include <algorithm>
#include <charconv>
#include <exception>
#include <memory>
#include <utility>
#include <vector>

namespace bci::tool
{

namespace
{

constexpr std::size_t kLongestLine = std::size_t{1} << 24; // bytes; a longer one is not looked at

// A column of tab-separated values. Null if there are not so many.
std::optional<std::string> columnOf(std::string_view line, unsigned int column)
{
    for (; column > 1; --column)
    {
        const std::size_t tab = line.find('\t');
        if (tab == std::string_view::npos)
        {
            return std::nullopt;
        }
        line.remove_prefix(tab + 1);
    }
    line = line.substr(0, line.find('\t'));
    // What stands for characters that a value cannot have.
    std::string value;
    for (std::size_t i = 0; i < line.size(); ++i)
    {
        if (line[i] != '\\' || i + 1 == line.size())
        {
            value += line[i];
            continue;
        }
        constexpr std::string_view kEscapes = "ntrbf0";
        constexpr std::string_view kMeanings("\n\t\r\b\f\0", 6);
        const std::size_t escape = kEscapes.find(line[++i]);
        value += escape != std::string_view::npos ? kMeanings[escape] : line[i];
    }
    return value;
}

// A text member of a JSON object; of several with its name, the last one, as all readers have it. Null if there is
// none, and then what is there instead.
std::optional<std::string> memberOf(std::string_view line, const std::string& member, std::string& instead)
{
    try
    {
        JsonValue object = parseJson(line);
        const auto found = std::find_if(object.members.rbegin(), object.members.rend(),
                                        [&member](const JsonValue::Member& one) { return one.name == member; });
        if (found != object.members.rend() && found->value.type == JsonValue::Type::text)
        {
            return std::move(found->value.content);
        }
        instead = quote(line);
    }
    catch (const JsonError& error)
    {
        instead = std::string("no JSON: ") + error.what();
    }
    return std::nullopt;
}

class Filter
{
public:
    Filter(const std::string& fileName, Packing packing, const LineLayout& layout, bool hasNumbers, Output& output)
        : m_layout(layout), m_rows(output.buffer(), [] {}), m_reader(displayName(fileName), packing, m_rows)
    {
        if (!hasNumbers)
        {
            m_rows.withoutNumbers();
        }
    }

    // A line, or the beginning of one that has more bytes.
    void line(std::string_view text, std::uint64_t size, std::uint64_t offset)
    {
        ++m_number;
        if (size > text.size())
        {
            refuse(text, offset, "a line of at most " + std::to_string(kLongestLine) + " bytes",
                   std::to_string(size));
        }
        else if (m_layout.column != 0)
        {
            if (const std::optional<std::string> value = columnOf(text, m_layout.column))
            {
                read(*value, offset);
            }
            else
            {
                refuse(text, offset, "at least " + std::to_string(m_layout.column) + " columns",
                       std::to_string(1 + std::count(text.begin(), text.end(), '\t')));
            }
        }
        else if (!m_layout.member.empty())
        {
            std::string instead;
            if (const std::optional<std::string> value = memberOf(text, m_layout.member, instead))
            {
                read(*value, offset);
            }
            else
            {
                refuse(text, offset, "a JSON object with a text " + quote(m_layout.member), std::move(instead));
            }
        }
        else
        {
            read(text, offset);
        }
    }

private:
    void read(std::string_view record, std::uint64_t offset)
    {
        if (record.size() > kLongestRow)
        {
            refuse(record, offset, "a record of at most " + std::to_string(kLongestRow) + " bytes",
                   std::to_string(record.size()));
            return;
        }
        m_reader.readLine(record, offset, m_number);
    }

    void refuse(std::string_view line, std::uint64_t offset, std::string expected, std::string found)
    {
        m_reader.refuseLine(line, offset, m_number, std::move(expected), std::move(found));
    }

    const LineLayout& m_layout;
    RowWriter m_rows;
    RecordReader<RowWriter> m_reader;
    std::uint64_t m_number = 0;
};

} // namespace

std::optional<ByteRange> ByteRange::parse(std::string_view text)
{
    ByteRange range;
    const char* const end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, range.first);
    if (first.ec != std::errc{} || first.ptr == end || *first.ptr != '-')
    {
        return std::nullopt;
    }
    const auto last = std::from_chars(first.ptr + 1, end, range.last);
    if (last.ec != std::errc{} || last.ptr != end || range.last < range.first)
    {
        return std::nullopt;
    }
    return range;
}

void filterLines(const std::string& fileName, Packing packing, const LineLayout& layout,
                 const std::optional<ByteRange>& range, Output& output)
{
    const std::unique_ptr<ByteStream> input = range ? openFileAt(fileName, range->first) : openInput(fileName);
    Filter filter(fileName, packing, layout, !range, output);
    std::vector<char> chunk(std::size_t{1} << 18);
    std::string pending; // the beginning of a line, cut if it is too long
    std::uint64_t lineBegin = range ? range->first : 0;
    std::uint64_t position = lineBegin;         // behind what has been read
    bool isOthers = range && range->first != 0; // the line that a range begins in
    const auto isInRange = [&] { return !range || isOthers || lineBegin <= range->last; };
    const auto endLine = [&](std::string_view line)
    {
        constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF"; // editors put it there
        if (lineBegin == 0 && line.starts_with(kByteOrderMark))
        {
            filter.line(line.substr(kByteOrderMark.size()), position - kByteOrderMark.size(), lineBegin);
        }
        else if (!isOthers)
        {
            filter.line(line, position - lineBegin, lineBegin);
        }
        isOthers = false;
    };
    while (isInRange())
    {
        std::size_t count = 0;
        std::exception_ptr trouble;
        try
        {
            count = input->read(chunk.data(), chunk.size());
        }
        catch (const Trouble&)
        {
            trouble = std::current_exception(); // for when the line before it is told
        }
        if (count == 0)
        {
            if (position != lineBegin)
            {
                endLine(pending);
            }
            output.flush();
            if (trouble != nullptr)
            {
                std::rethrow_exception(trouble);
            }
            return;
        }
        std::string_view left(chunk.data(), count);
        while (!left.empty() && isInRange())
        {
            const std::size_t end = left.find('\n');
            std::string_view piece = left.substr(0, end);
            position += piece.size();
            left.remove_prefix(piece.size());
            if (end == std::string_view::npos || !pending.empty())
            {
                pending += piece.substr(0, kLongestLine - pending.size());
                piece = pending;
            }
            if (end == std::string_view::npos)
            {
                break;
            }
            endLine(piece.substr(0, kLongestLine));
            pending.clear();
            left.remove_prefix(1);
            lineBegin = ++position;
            output.flushIfLarge();
        }
        output.flush(); // the input may pause now
    }
}

} // namespace bci::tool
