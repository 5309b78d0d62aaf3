#include "dissector.h"

#include "dissector.lua.h"
#include "finding.h"
#include "layout.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <stdexcept>
#include <string_view>

namespace bci::tool
{

namespace
{

using codec::Kind;

// What the fields of one name hold, elements of lists without their indexes.
struct Filter
{
    bool isText = false;
    bool isBlock = false;
    bool isSigned = false;
    bool isUnsigned = false;
    unsigned int size = 0; // of the largest number, in bytes
};

using Filters = std::map<std::string, Filter>; // by name

const char* luaType(Kind kind)
{
    switch (kind)
    {
    case Kind::u8:
        return "u8";
    case Kind::u16:
        return "u16";
    case Kind::s16:
        return "s16";
    case Kind::u32:
        return "u32";
    case Kind::s32:
        return "s32";
    case Kind::text:
        break;
    }
    return "text";
}

void addFilter(Filters& filters, const codec::Field& field, bool isBlock)
{
    std::string name = field.tag;
    name.erase(name.find_last_not_of('_') + 1);
    Filter& filter = filters[name];
    if (field.kind == Kind::text)
    {
        (isBlock ? filter.isBlock : filter.isText) = true;
        return;
    }
    const bool isSigned = field.kind == Kind::s16 || field.kind == Kind::s32;
    (isSigned ? filter.isSigned : filter.isUnsigned) = true;
    filter.size = std::max<unsigned int>(filter.size, field.size);
}

// A name has one filter for each type.
std::string filterTable(const Filters& filters)
{
    std::string text;
    for (const auto& [name, filter] : filters)
    {
        const auto add = [&text, &name = name](std::string_view suffix, std::string_view type)
        { text += fmt::format("        {}{} = \"{}\",\n", name, suffix, type); };
        const bool isNumber = filter.isSigned || filter.isUnsigned;
        if ((filter.isSigned && filter.isUnsigned) || (filter.isBlock && (isNumber || filter.isText)))
        {
            throw std::logic_error("no filters for all fields " + name);
        }
        if (isNumber)
        {
            add("", fmt::format("{}int{}", filter.isSigned ? "" : "u", 8 * filter.size));
        }
        if (filter.isText)
        {
            add(isNumber ? "_text" : "", "string");
        }
        if (filter.isBlock)
        {
            add("", "bytes");
        }
    }
    return text;
}

std::string quoted(std::string_view text)
{
    return fmt::format("\"{}\"", text); // names and titles have nothing to escape
}

std::string table(const std::vector<Piece>& pieces, const std::string& indent, Filters& filters);

std::string table(const Piece& piece, const std::string& indent, Filters& filters)
{
    const std::string inner = indent + "    ";
    std::string text;
    switch (piece.kind)
    {
    case Piece::Kind::field:
        addFilter(filters, *piece.field, false);
        text = fmt::format(R"(part = "field", tag = "{}", type = "{}", size = {})", piece.field->tag,
                           luaType(piece.field->kind), piece.field->size);
        if (piece.field->oddity == codec::Oddity::foreignClosing)
        {
            text += ", closing = " + quoted(codec::closingTag(*piece.field));
        }
        return text + (piece.field->oddity == codec::Oddity::bareOpening ? ", bareOpening = true" : "");
    case Piece::Kind::list:
        return fmt::format(
            R"(part = "list", count = "{}", bound = {}, stride = {}, whole = {}, delimiterWhenEmpty = {}, )"
            "content = {{\n{}{}}}",
            piece.counter->tag, piece.bound, piece.stride, piece.isWhole, piece.endsEmptyText,
            table(piece.content, inner, filters), indent);
    case Piece::Kind::choice:
        for (const Alternative& one : piece.alternatives)
        {
            text += fmt::format("{}{{value = {}, member = \"{}\", content = {{{}", inner, one.value, one.member,
                                one.content.empty() ? "" : "\n");
            text += table(one.content, inner + "    ", filters);
            text += (one.content.empty() ? "" : inner) + "}},\n";
        }
        return fmt::format("part = \"choice\", selector = \"{}\", size = {}, cases = {{\n{}{}}}",
                           piece.counter->tag, piece.size, text, indent);
    case Piece::Kind::entries:
        addFilter(filters, *piece.field, false);
        return fmt::format(R"(part = "entries", tag = "{}", count = "{}", size = {})", piece.field->tag,
                           piece.counter->tag, piece.size);
    case Piece::Kind::block:
        addFilter(filters, *piece.field, true);
        return fmt::format(R"(part = "block", tag = "{}", length = "{}", bound = {})", piece.field->tag,
                           piece.counter->tag, piece.bound);
    case Piece::Kind::limit:
        break;
    }
    return fmt::format(R"(part = "limit", tag = "{}", bound = {})", piece.field->tag, piece.bound);
}

std::string table(const std::vector<Piece>& pieces, const std::string& indent, Filters& filters)
{
    std::string text;
    for (const Piece& piece : pieces)
    {
        text += indent + "{" + table(piece, indent, filters) + "},\n";
    }
    return text;
}

// A confirm or reject answers the request before it, by number.
std::string signalTable()
{
    std::map<SIGSELECT, const Signal*> byNumber;
    for (const Signal& signal : signals())
    {
        byNumber.emplace(signal.number, &signal);
    }
    std::string text;
    SIGSELECT request = 0;
    for (const auto& [number, signal] : byNumber)
    {
        const std::string_view name = signal->name;
        const bool isAnswer = name.ends_with("_CFM") || name.ends_with("_REJ");
        request = isAnswer ? request : name.ends_with("_REQ") ? number : 0;
        text += fmt::format("        [{}] = {{name = \"{}\", class = \"{}\"{}}},\n", number, name,
                            signal->shape->className,
                            isAnswer && request != 0 ? fmt::format(", answers = {}", request) : "");
    }
    return text;
}

} // namespace

std::string dissector()
{
    std::map<std::string, const codec::Shape*> shapes;
    for (const Signal& signal : signals())
    {
        shapes.emplace(signal.shape->className, signal.shape);
    }
    Filters filters;
    std::string classes;
    for (const auto& [name, shape] : shapes)
    {
        classes += fmt::format("        {} = {{\n{}        }},\n", name,
                               table(layoutOf(*shape).pieces, "            ", filters));
    }
    std::string text = "-- The board control interface for Wireshark: packets of link type USER0 (147), as \"bci "
                       "convert --to pcap\" writes\n"
                       "-- them. Written by \"bci gen wireshark\".\n"
                       "\n"
                       "local schema = {\n";
    const std::span<const codec::Field> header = signals().front().shape->content.rows;
    text += fmt::format("    number = \"{}\",\n    references = {{\"{}\", \"{}\"}},\n", header[0].tag,
                        header[1].tag, header[2].tag);
    text += "    signals = {\n" + signalTable() + "    },\n    codes = {\n";
    for (const CodeInfo& one : codes())
    {
        text += fmt::format("        [\"{}\"] = {{severity = \"{}\", title = \"{}\"}},\n", one.name,
                            one.severity == Severity::damage ? "damage" : "note", one.title);
    }
    text += "    },\n    filters = {\n";
    text += filterTable(filters);
    return text + "    },\n    classes = {\n" + classes + "    }\n}\n\n" + kDissectorLua;
}

} // namespace bci::tool
