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

std::string hexNumber(SIGSELECT number)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%lX", static_cast<unsigned long>(number));
    return text;
}

} // namespace

std::string listing(const Rendering& rendering, const Record& record)
{
    const Signal& signal = *rendering.signal;
    std::string text = "signal    " + std::to_string(signal.number) + " (" + hexNumber(signal.number) + "), " +
                       signal.name + "\n" + "class     " + signal.shape->className + "\n" + "form      " +
                       (rendering.fromHex ? "hex of " : "") + formName(rendering.form);
    if (rendering.form == Form::binary)
    {
        text += rendering.firstWord == std::endian::big ? ", first word big-endian" : ", first word little-endian";
    }
    text += "\n\n";
    std::size_t tagWidth = 0;
    for (const FieldValue& value : record.fields)
    {
        tagWidth = std::max(tagWidth, value.name.size());
    }
    text += columns("position", "field", "type", "value", tagWidth);
    for (const FieldValue& value : record.fields)
    {
        text += columns(std::to_string(value.position), value.name, value.raw ? "U8[]" : typeName(value.kind),
                        value.raw ? hexDigits(value.value) : escaped(value.value), tagWidth);
    }
    return text;
}

std::string render(const Record& record, const Signal& signal, Form form, std::endian firstWord)
{
    BciMessageBase* created = nullptr;
    if (!BciMessageBase::instantiateBciMsg(signal.number, created))
    {
        throw Trouble(std::string("cannot create a ") + signal.shape->className);
    }
    const std::unique_ptr<BciMessageBase> message(created);
    message->setMsg(record.structure.data());

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

std::string toHex(std::string_view bytes)
{
    constexpr std::size_t kBytesPerLine = 16;
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i)
    {
        text += hexDigits(bytes.substr(i, 1));
        text += (i + 1) % kBytesPerLine == 0 || i + 1 == bytes.size() ? '\n' : ' ';
    }
    return text;
}

} // namespace bci::tool
