#include "bciMessage.h"
#include "bciMsgRegistration.h"
#include "input.h"
#include "layout.h"
#include "names.h"
#include "picture.h"
#include "verbs.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>

namespace bci::tool
{

namespace
{

using codec::Oddity;
using Json = nlohmann::ordered_json;
using Kind = Piece::Kind;

struct Options
{
    std::string signal;
    std::string format = "text";
    bool isPicture = false;
};

// What a message says about buffers. A size may follow the count or length that the message holds.
struct BufferSizes
{
    unsigned int text;
    unsigned int leastBinary;
    unsigned int mostBinary;
};

struct Remark
{
    std::vector<std::string> fields; // or the operation
    std::string text;
};

struct Description
{
    std::vector<const Signal*> signals;
    const codec::Shape& shape;
    Layout layout;
    BufferSizes buffers;
    std::vector<Remark> remarks;
};

std::string hex(SIGSELECT number)
{
    return fmt::format("0x{:X}", number);
}

BufferSizes askForBuffers(const Signal& signal, const Layout& layout)
{
    BciMsgRegistry::registerSupportedMsgClasses();
    BciMessageBase* created = nullptr;
    if (!BciMessageBase::instantiateBciMsg(signal.number, created) || created == nullptr)
    {
        throw Trouble("no memory for a message");
    }
    const std::unique_ptr<BciMessageBase> message(created);
    char* const structure = message->getMsg();
    std::memset(structure, 0, signal.shape->structureSize);
    const unsigned int least = message->getMaxBinaryBufferSize();
    for (const Piece& piece : layout.pieces)
    {
        if (piece.kind == Kind::list || piece.kind == Kind::block)
        {
            codec::storeNumber(*piece.counter, piece.bound, structure);
        }
    }
    return {message->getMaxTextBufferSize(), least, message->getMaxBinaryBufferSize()};
}

// The log line of a missing element; empty if there is none.
std::string logLine(const Piece& piece, const char* source)
{
    const codec::Field& field = *piece.field;
    const std::string place = fmt::format("[src/{}:{}] ", source, unsigned{field.line});
    switch (field.oddity)
    {
    case Oddity::notReadFromXml:
        return {};
    case Oddity::doubledWord:
        return place + "tag tag " + piece.element + " not found";
    case Oddity::quotesDocument:
        return place + "tag " + piece.element + " not found buf <the document>";
    case Oddity::ownLogLine:
        return place + "additional data tag not found, i <i> offset <length of the document> tag " + piece.element;
    case Oddity::none:
    case Oddity::bareOpening:
    case Oddity::foreignClosing:
        break;
    }
    return place + "tag " + piece.element + " not found";
}

bool hasElement(const Piece& piece)
{
    return piece.kind == Kind::field || piece.kind == Kind::entries || piece.kind == Kind::block;
}

// Calls a function with every piece, what lies inside it too, in wire order.
template <typename Function>
void forEach(const std::vector<Piece>& pieces, Function function)
{
    for (const Piece& piece : pieces)
    {
        function(piece);
        forEach(piece.content, function);
        for (const Alternative& alternative : piece.alternatives)
        {
            forEach(alternative.content, function);
        }
    }
}

std::string textOrder(const std::vector<Piece>& pieces)
{
    std::string text;
    for (const Piece& piece : pieces)
    {
        switch (piece.kind)
        {
        case Kind::field:
        case Kind::block:
            text += piece.name + ":";
            break;
        case Kind::entries:
            text += "{" + piece.name + ":}";
            break;
        case Kind::list:
            text += "{" + textOrder(piece.content) + "}";
            break;
        case Kind::choice:
            text += "(";
            for (const Alternative& alternative : piece.alternatives)
            {
                text += &alternative == &piece.alternatives.front() ? "" : "|";
                text += textOrder(alternative.content);
            }
            text += ")";
            break;
        case Kind::limit:
            break;
        }
    }
    return text;
}

// The lines of the byte ruler. What lies inside a list counts its offsets from its element.
std::string ruler(const std::vector<Piece>& pieces, unsigned int depth, bool isInElement)
{
    std::string text;
    const auto line = [&](const Piece& piece, const std::string& type, const std::string& what)
    {
        const std::string offset = (isInElement ? "+" : "") + std::to_string(piece.offset);
        const bool varies = piece.kind == Kind::block || (piece.kind == Kind::list && !piece.isWhole);
        const std::string size = (varies ? "0-" : "") + std::to_string(piece.size);
        text += fmt::format("  {:>6}  {:>6}  {:9}  {:{}}{}\n", offset, size, type, "", 2 * depth, what);
    };
    for (const Piece& piece : pieces)
    {
        switch (piece.kind)
        {
        case Kind::field:
            line(piece, typeName(*piece.field), piece.name);
            break;
        case Kind::list:
        {
            const char* const index = isInElement ? "j" : "i";
            line(piece, "list",
                 fmt::format("{} elements, at most {}{}; element {} begins at {}{} + {} {}", piece.counterName,
                             piece.bound, piece.isWhole ? ", always carried whole" : "", index,
                             isInElement ? "+" : "", piece.offset, piece.stride, index));
            text += ruler(piece.content, depth + 1, true);
            break;
        }
        case Kind::choice:
            line(piece, "choice", "by " + piece.counterName + ", zeros behind what is shorter");
            for (const Alternative& alternative : piece.alternatives)
            {
                text +=
                    fmt::format("  {:27}{:{}}{}: {}\n", "", "", 2 * depth, alternative.value, alternative.member);
                text += ruler(alternative.content, depth + 1, isInElement);
            }
            break;
        case Kind::entries:
            line(piece, typeName(*piece.field),
                 piece.name + ", one behind the other, as many as " + piece.counterName +
                     " says, each ends in a zero");
            break;
        case Kind::block:
            line(piece, "U8[]",
                 fmt::format("{}, {} bytes, at most {}", piece.name, piece.counterName, piece.bound));
            break;
        case Kind::limit:
            break;
        }
    }
    return text;
}

// What fields, packed entries and blocks have in common.
Json elementJson(const char* part, const Piece& piece, const std::string& type, const char* source)
{
    const bool isForeign = piece.field->oddity == Oddity::foreignClosing;
    const std::string log = logLine(piece, source);
    return {{"part", part},
            {"name", piece.name},
            {"offset", piece.offset},
            {"size", piece.size},
            {"type", type},
            {"element", piece.element},
            {"closing", isForeign ? codec::closingTag(*piece.field) : piece.element},
            {"log", log.empty() ? Json() : Json(log)}};
}

Json partsJson(const std::vector<Piece>& pieces, const char* source)
{
    Json parts = Json::array();
    for (const Piece& piece : pieces)
    {
        Json part;
        switch (piece.kind)
        {
        case Kind::field:
            part = elementJson("field", piece, typeName(*piece.field), source);
            break;
        case Kind::list:
            part = {{"part", "list"},         {"offset", piece.offset},
                    {"size", piece.size},     {"count", piece.counterName},
                    {"bound", piece.bound},   {"stride", piece.stride},
                    {"whole", piece.isWhole}, {"content", partsJson(piece.content, source)}};
            break;
        case Kind::choice:
            part = {{"part", "choice"},
                    {"offset", piece.offset},
                    {"size", piece.size},
                    {"selector", piece.counterName},
                    {"cases", Json::array()}};
            for (const Alternative& alternative : piece.alternatives)
            {
                part["cases"].push_back({{"value", alternative.value},
                                         {"member", alternative.member},
                                         {"size", alternative.size},
                                         {"content", partsJson(alternative.content, source)}});
            }
            break;
        case Kind::entries:
            part = elementJson("entries", piece, typeName(*piece.field), source);
            part["count"] = piece.counterName;
            break;
        case Kind::block:
            part = elementJson("block", piece, "U8[]", source);
            part["length"] = piece.counterName;
            part["bound"] = piece.bound;
            break;
        case Kind::limit:
            part = {{"part", "limit"}, {"name", piece.name}, {"bound", piece.bound}};
            break;
        }
        parts.push_back(std::move(part));
    }
    return parts;
}

std::string oddityText(const Piece& piece)
{
    switch (piece.field->oddity)
    {
    case Oddity::none:
        break;
    case Oddity::doubledWord:
        return R"(The log line of the missing element says "tag tag".)";
    case Oddity::quotesDocument:
        return "The log line of the missing element goes on with the whole document.";
    case Oddity::ownLogLine:
        return "The log line of the missing element has a wording of its own.";
    case Oddity::bareOpening:
        return "The XML element starts without its tab and has three blanks before its value.";
    case Oddity::foreignClosing:
        return fmt::format("The XML element is closed by </{}>, and the library does not read it back.",
                           codec::closingTag(*piece.field));
    case Oddity::notReadFromXml:
        return "The element is written to XML and not read from it.";
    }
    return {};
}

std::vector<Remark> remarksOn(const Layout& layout, const BufferSizes& buffers)
{
    std::vector<Remark> remarks;
    std::vector<std::string> withoutIndex;
    forEach(layout.pieces,
            [&](const Piece& piece)
            {
                if (hasElement(piece) && piece.field->oddity != Oddity::none)
                {
                    remarks.push_back({{piece.name}, oddityText(piece)});
                }
                if (hasElement(piece) && piece.name != piece.element)
                {
                    withoutIndex.push_back(piece.name);
                }
                if (piece.endsEmptyText)
                {
                    remarks.push_back({{piece.counterName},
                                       "Where it is 0, the text form has one ':' more in place of the list."});
                }
                if (piece.kind == Kind::entries)
                {
                    remarks.push_back(
                        {{piece.name}, "The binary form carries the whole array, text and XML one entry each."});
                }
                if (piece.kind == Kind::block)
                {
                    remarks.push_back({{piece.name}, "In text and XML the bytes stand raw, zeros and ':' too."});
                }
            });
    if (!withoutIndex.empty())
    {
        remarks.push_back({withoutIndex,
                           "Their names in XML have no index, and the library reads the first element "
                           "of a name for all."});
    }
    if (buffers.mostBinary != layout.mostBinary)
    {
        remarks.push_back({{"getMaxBinaryBufferSize"},
                           fmt::format("Says {} where the form takes at most {} bytes.", buffers.mostBinary,
                                       layout.mostBinary)});
    }
    if (buffers.text < layout.mostText)
    {
        remarks.push_back(
            {{"getMaxTextBufferSize"},
             fmt::format("Says {} where the form takes up to {} characters.", buffers.text, layout.mostText)});
    }
    return remarks;
}

std::string range(unsigned int least, unsigned int most)
{
    return least == most ? std::to_string(most) : fmt::format("{} to {}", least, most);
}

// "<tag>", or "<tag>...</other>" where an element is closed by another name.
std::string elementText(const Piece& piece)
{
    const bool isForeign = piece.field->oddity == Oddity::foreignClosing;
    return "<" + piece.element + ">" + (isForeign ? fmt::format("...</{}>", codec::closingTag(*piece.field)) : "");
}

std::string elementLines(const Description& message)
{
    std::size_t width = 0;
    forEach(message.layout.pieces, [&width](const Piece& piece)
            { width = std::max(width, hasElement(piece) ? elementText(piece).size() : 0); });
    std::string text;
    forEach(message.layout.pieces,
            [&](const Piece& piece)
            {
                if (!hasElement(piece))
                {
                    return;
                }
                const std::string log = logLine(piece, message.shape.source);
                text +=
                    fmt::format("  {:{}}  {}\n", elementText(piece), width, log.empty() ? "(not looked up)" : log);
            });
    return text;
}

std::string boundLines(const Layout& layout)
{
    std::string text;
    forEach(layout.pieces,
            [&text](const Piece& piece)
            {
                std::string values;
                for (const Alternative& alternative : piece.alternatives)
                {
                    values += (values.empty() ? "" : ", ") + std::to_string(alternative.value);
                }
                switch (piece.kind)
                {
                case Kind::field:
                    if (piece.field->kind == codec::Kind::text)
                    {
                        text += fmt::format("  {}: {} characters and a zero\n", piece.name, piece.size - 1);
                    }
                    break;
                case Kind::list:
                case Kind::block:
                    text += fmt::format("  {}: 0 to {}\n", piece.counterName, piece.bound);
                    break;
                case Kind::choice:
                    text += fmt::format("  {}: {}\n", piece.counterName, values);
                    break;
                case Kind::entries:
                    text +=
                        fmt::format("  {}: {} characters together, with a zero each\n", piece.name, piece.size);
                    break;
                case Kind::limit:
                    text += fmt::format("  {}: at most {}\n", piece.name, piece.bound);
                    break;
                }
            });
    return text;
}

std::string asText(const Description& message)
{
    std::string text =
        fmt::format("{}, structure {}\n\nSignals\n", message.shape.className, message.shape.structureName);
    for (const Signal* signal : message.signals)
    {
        text += fmt::format("  {}  {}  {}\n", signal->number, hex(signal->number), signal->name);
    }
    text += fmt::format("\nBinary form (most significant byte first; the first word as the writing host has it)\n"
                        "  {:>6}  {:>6}  {:9}  {}\n",
                        "offset", "size", "type", "field");
    text += ruler(message.layout.pieces, 0, false);
    text += "\nText form ({...} repeats, (...|...) is one of them)\n  " + textOrder(message.layout.pieces) + "\n";
    text += "\nXML elements, and the log line of each where it is missing\n" + elementLines(message);
    const std::string bounds = boundLines(message.layout);
    text += bounds.empty() ? "" : "\nBounds\n" + bounds;
    text += fmt::format("\nSizes\n"
                        "  binary form             {} bytes\n"
                        "  text form               at most {} characters\n"
                        "  structure on this host  {} bytes\n"
                        "  getMaxBinaryBufferSize  {}\n"
                        "  getMaxTextBufferSize    {}\n",
                        range(message.layout.leastBinary, message.layout.mostBinary), message.layout.mostText,
                        message.shape.structureSize,
                        range(message.buffers.leastBinary, message.buffers.mostBinary), message.buffers.text);
    text += message.remarks.empty() ? "" : "\nOddities\n";
    for (const Remark& remark : message.remarks)
    {
        text += fmt::format("  {}: {}\n", fmt::join(remark.fields, ", "), remark.text);
    }
    return text;
}

std::string asJson(const Description& message)
{
    Json signals = Json::array();
    for (const Signal* signal : message.signals)
    {
        signals.push_back(
            {{"number", std::uint32_t{signal->number}}, {"hex", hex(signal->number)}, {"name", signal->name}});
    }
    Json oddities = Json::array();
    for (const Remark& remark : message.remarks)
    {
        oddities.push_back({{"names", remark.fields}, {"text", remark.text}});
    }
    const Json json = {
        {"class", message.shape.className},
        {"signals", signals},
        {"structure", {{"name", message.shape.structureName}, {"size", message.shape.structureSize}}},
        {"content", partsJson(message.layout.pieces, message.shape.source)},
        {"textOrder", textOrder(message.layout.pieces)},
        {"sizes",
         {{"binaryLeast", message.layout.leastBinary},
          {"binaryMost", message.layout.mostBinary},
          {"textMost", message.layout.mostText},
          {"maxBinaryBufferLeast", message.buffers.leastBinary},
          {"maxBinaryBufferMost", message.buffers.mostBinary},
          {"maxTextBuffer", message.buffers.text}}},
        {"oddities", oddities}};
    return json.dump(2) + "\n";
}

// All signals of the class that a signal has.
std::vector<const Signal*> signalsOf(const std::string& name)
{
    const std::vector<const Signal*> found = findSignals(name);
    if (found.empty())
    {
        std::vector<std::string> names;
        for (const Signal& signal : signals())
        {
            names.emplace_back(signal.name);
            names.emplace_back(signal.shape->className);
        }
        throw Trouble("no signal or class " + quote(name) + didYouMean(name, names));
    }
    std::vector<const Signal*> all;
    for (const Signal& signal : signals())
    {
        if (signal.shape == found.front()->shape)
        {
            all.push_back(&signal);
        }
    }
    return all;
}

int describe(const Options& options)
{
    const std::vector<const Signal*> signals = signalsOf(options.signal);
    const codec::Shape& shape = *signals.front()->shape;
    const Layout layout = layoutOf(shape);
    std::string text;
    if (options.isPicture || options.format == "svg")
    {
        text = picture(signals, layout);
    }
    else
    {
        const BufferSizes buffers = askForBuffers(*signals.front(), layout);
        const Description message = {signals, shape, layout, buffers, remarksOn(layout, buffers)};
        text = options.format == "json" ? asJson(message) : asText(message);
    }
    std::fwrite(text.data(), 1, text.size(), stdout);
    return kClean;
}

} // namespace

Run addDescribe(CLI::App& app)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const verb = app.add_subcommand("describe", "Show what a signal consists of, byte by byte");
    verb->add_option("SIGNAL", options->signal,
                     "Number (decimal or 0x...), name or class of a signal; BCI_ and Bci may be left out")
        ->type_name("SIGNAL")
        ->required();
    CLI::Option* const format = verb->add_option("--format", options->format,
                                                 "How to show it: to read, as JSON, or as a picture of the bytes")
                                    ->capture_default_str()
                                    ->check(CLI::IsMember({"text", "json", "svg"}));
    verb->add_flag("--svg", options->isPicture, "Short for --format svg")->excludes(format);
    verb->footer("In names, i and j stand for the indexes of list elements, which count from 0.\n"
                 "\n"
                 "Exit status: 0, or 2 for trouble (wrong use, an unknown signal).\n"
                 "\n"
                 "Examples:\n"
                 "  bci describe BciAuditCfm\n"
                 "  bci describe 0x1658401 --format json\n"
                 "  bci describe GET_CAPABILITIES_CFM --svg > capabilities.svg");
    return [options] { return describe(*options); };
}

} // namespace bci::tool
