#include "output.h"

#include "bciMessage.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string_view>

namespace bci::tool
{

namespace
{

// One line of columns; the last is not padded.
std::string columns(std::string_view position, std::string_view tag, std::string_view type, std::string_view value,
                    std::size_t tagWidth)
{
    const auto padded = [](std::string_view text, std::size_t width)
    { return std::string(text) + std::string(width - std::min(width, text.size()) + 2, ' '); };
    return padded(position, 8) + padded(tag, tagWidth) + padded(type, 4) + std::string(value) + "\n";
}

std::string hexNumber(SIGSELECT number)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%lX", static_cast<unsigned long>(number));
    return text;
}

std::string shownForm(const Item& item)
{
    const Rendering& rendering = item.rendering;
    if (!item.hasForm)
    {
        return "unknown";
    }
    std::string text = item.carrier == Carrier::hex      ? "hex of "
                       : item.carrier == Carrier::base64 ? "base64 of "
                       : item.carrier == Carrier::row    ? "NDJSON of "
                       : item.carrier == Carrier::packet ? "packet of "
                                                         : "";
    text += formName(rendering.form);
    if (rendering.form == Form::binary)
    {
        text += rendering.firstWord == std::endian::big ? ", first word big-endian" : ", first word little-endian";
    }
    return text;
}

std::string shownValue(const FieldValue& value)
{
    return value.isLost ? "?" : value.raw ? hexDigits(value.value) : escaped(value.value);
}

std::string csvText(std::string_view text)
{
    if (text.find_first_of(",\"\r\n") == std::string_view::npos)
    {
        return std::string(text);
    }
    std::string quoted = "\"";
    for (const char ch : text)
    {
        quoted += ch == '"' ? "\"\"" : std::string(1, ch);
    }
    return quoted + "\"";
}

struct Label
{
    std::size_t begin; // byte in the row
    std::string text;
};

// Labels under the bytes of a row, in as many lines as they need.
std::string labelLines(const std::vector<Label>& labels, std::size_t indent)
{
    std::vector<std::string> lines;
    for (const Label& label : labels)
    {
        const std::size_t column = indent + 3 * label.begin;
        auto line = std::find_if(lines.begin(), lines.end(),
                                 [column](const std::string& one) { return one.size() < column; });
        if (line == lines.end())
        {
            line = lines.insert(lines.end(), std::string());
        }
        line->resize(column, ' ');
        *line += "^" + label.text;
    }
    std::string text;
    for (const std::string& line : lines)
    {
        text += line + "\n";
    }
    return text;
}

} // namespace

std::string listing(const Item& item, const Record& record)
{
    std::string text;
    if (item.rendering.signal != nullptr)
    {
        const Signal& signal = *item.rendering.signal;
        text = "signal    " + std::to_string(signal.number) + " (" + hexNumber(signal.number) + "), " +
               signal.name + "\n" + "class     " + signal.shape->className + "\n";
    }
    else
    {
        text = "signal    unknown\n";
    }
    text += "form      " + shownForm(item) + "\n";
    if (!item.time.empty())
    {
        text += "time      " + escaped(item.time) + "\n";
    }
    if (!item.direction.empty())
    {
        text += "direction " + escaped(item.direction) + "\n";
    }
    if (!record.fields.empty())
    {
        std::size_t tagWidth = 0;
        for (const FieldValue& value : record.fields)
        {
            tagWidth = std::max(tagWidth, value.name.size());
        }
        text += "\n" + columns("position", "field", "type", "value", tagWidth);
        for (const FieldValue& value : record.fields)
        {
            text += columns(value.isLost ? "" : std::to_string(value.position), value.name, typeName(value),
                            shownValue(value), tagWidth);
        }
    }
    if (!record.rest(item).empty())
    {
        text += "\nrest      " + hexDigits(record.rest(item)) + "\n";
    }
    return text;
}

std::string annotation(const Item& item, const Record& record)
{
    constexpr std::size_t kBytesPerRow = 16;
    constexpr std::size_t kIndent = 10;
    const std::string_view bytes = item.rendering.bytes;
    std::string text = item.rendering.signal != nullptr
                           ? std::string(item.rendering.signal->name) + ", " + shownForm(item) + "\n"
                           : "unknown, " + shownForm(item) + "\n";
    for (std::size_t row = 0; row < bytes.size(); row += kBytesPerRow)
    {
        const std::string_view rowBytes = bytes.substr(row, kBytesPerRow);
        char offset[24];
        std::snprintf(offset, sizeof offset, "%08lx", static_cast<unsigned long>(row));
        text += offset;
        text += "  ";
        for (std::size_t i = 0; i < rowBytes.size(); ++i)
        {
            text += hexDigits(rowBytes.substr(i, 1)) + (i + 1 == rowBytes.size() ? "\n" : " ");
        }
        std::vector<Label> labels;
        const auto add = [&](std::size_t position, const std::string& name)
        {
            if (position >= row && position < row + rowBytes.size())
            {
                labels.push_back({position - row, name});
            }
        };
        for (const FieldValue& value : record.fields)
        {
            if (!value.isLost)
            {
                add(value.position, value.name);
            }
        }
        for (const Finding& finding : record.findings)
        {
            add(finding.position, "[" + std::string(info(finding.code).name) + "]");
        }
        std::stable_sort(labels.begin(), labels.end(),
                         [](const Label& one, const Label& two) { return one.begin < two.begin; });
        text += labelLines(labels, kIndent);
    }
    return text;
}

std::string csvHeader()
{
    return "input,record,offset,line,form,signal,name,class,field,type,value,position,damage\n";
}

std::string csv(const Item& item, const Record& record)
{
    const Rendering& rendering = item.rendering;
    std::string head = csvText(item.input) + "," + std::to_string(item.record) + "," +
                       std::to_string(item.offset) + "," + (item.line != 0 ? std::to_string(item.line) : "") +
                       "," +
                       (!item.hasForm                  ? ""
                        : rendering.form == Form::text ? "text"
                        : rendering.form == Form::xml  ? "xml"
                                                       : "binary") +
                       ",";
    if (rendering.signal != nullptr)
    {
        head += std::to_string(rendering.signal->number) + "," + rendering.signal->name + "," +
                rendering.signal->shape->className + ",";
    }
    else
    {
        head += ",,,";
    }
    const auto damageOf = [&](const std::string& name)
    {
        const auto found = std::find_if(
            record.findings.begin(), record.findings.end(),
            [&](const Finding& one) { return one.field == name && info(one.code).severity == Severity::damage; });
        return found != record.findings.end() ? std::string(info(found->code).name) : std::string();
    };
    std::string text;
    std::vector<std::string> shown;
    for (const FieldValue& value : record.fields)
    {
        const std::string damage = damageOf(value.name);
        shown.push_back(value.name);
        text += head + csvText(value.name) + "," + typeName(value) + "," +
                (value.isLost ? "" : csvText(value.raw ? hexDigits(value.value) : escaped(value.value))) + "," +
                (value.isLost ? "" : std::to_string(value.position)) + "," + damage + "\n";
    }
    for (const Finding& finding : record.findings)
    {
        if (info(finding.code).severity == Severity::damage &&
            std::find(shown.begin(), shown.end(), finding.field) == shown.end())
        {
            text += head + csvText(finding.field) + ",," + hexDigits(record.rest(item)) + "," +
                    std::to_string(finding.position) + "," + info(finding.code).name + "\n";
        }
    }
    return text;
}

std::string message(const Finding& finding)
{
    std::string text = finding.field.empty() ? std::string() : finding.field + ": ";
    text += "expected " + finding.expected + ", found " + finding.found;
    return text + " [" + info(finding.code).name + "]";
}

std::string render(const std::vector<char>& structure, const Signal& signal, Form form, std::endian firstWord)
{
    BciMessageBase* created = nullptr;
    if (!BciMessageBase::instantiateBciMsg(signal.number, created))
    {
        throw Trouble(std::string("cannot create a ") + signal.shape->className);
    }
    const std::unique_ptr<BciMessageBase> message(created);
    message->setMsg(structure.data());

    // Room for the longest rendering of any signal, the XML of a log of 424 empty entries.
    std::string buffer(32768, '\0');
    unsigned int length = static_cast<unsigned int>(buffer.size());
    bool accepted = false;
    switch (form)
    {
    case Form::text:
        accepted = message->serializeToText(buffer.data(), length);
        break;
    case Form::binary:
        accepted = message->serializeToBinary(buffer.data(), length);
        if (firstWord != std::endian::native)
        {
            std::reverse(buffer.begin(), buffer.begin() + sizeof(SIGSELECT));
        }
        break;
    case Form::xml:
        accepted = message->serializeToXml(buffer.data(), length);
        break;
    }
    if (!accepted)
    {
        throw Trouble(std::string("the library does not write this ") + signal.shape->className);
    }
    buffer.resize(length);
    return buffer;
}

std::string hexDigits(std::string_view bytes)
{
    constexpr std::string_view kHexDigits = "0123456789abcdef";
    std::string text;
    for (const char ch : bytes)
    {
        const auto byte = static_cast<unsigned char>(ch);
        text += kHexDigits[byte >> 4];
        text += kHexDigits[byte & 0xF];
    }
    return text;
}

} // namespace bci::tool
