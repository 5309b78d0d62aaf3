#include "rows.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace bci::tool
{

namespace
{

constexpr std::string_view kHexDigits = "0123456789abcdef";

void appendNumber(std::string& out, std::uint64_t number)
{
    std::array<char, 20> digits;
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    out.append(digits.data(), result.ptr);
}

// Characters that stand in a JSON string as they are.
constexpr auto kPlain = []
{
    std::array<bool, 256> plain = {};
    for (std::size_t i = 0x20; i < 0x7F; ++i)
    {
        plain[i] = i != '"' && i != '\\';
    }
    return plain;
}();

bool isPlain(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char ch) { return kPlain[static_cast<unsigned char>(ch)]; });
}

// How many bytes the character at the start of a text has in UTF-8; 0 if it is none.
std::size_t characterLength(std::string_view text)
{
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    if (byte(0) < 0x80)
    {
        return 1;
    }
    const std::size_t length = byte(0) >= 0xF0 ? 4 : byte(0) >= 0xE0 ? 3 : 2;
    // Neither overlong, nor a surrogate, nor beyond the last character.
    if (byte(0) < 0xC2 || byte(0) > 0xF4 || text.size() < length || (byte(0) == 0xE0 && byte(1) < 0xA0) ||
        (byte(0) == 0xED && byte(1) >= 0xA0) || (byte(0) == 0xF0 && byte(1) < 0x90) ||
        (byte(0) == 0xF4 && byte(1) >= 0x90))
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

void appendNullable(std::string& out, std::string_view text)
{
    if (text.empty())
    {
        out += "null";
    }
    else
    {
        appendAnyString(out, text);
    }
}

void appendNullable(std::string& out, std::uint64_t number)
{
    if (number == 0)
    {
        out += "null";
    }
    else
    {
        appendNumber(out, number);
    }
}

void put(Buffer& out, std::uint64_t number)
{
    char* const to = out.room(20);
    out.endAt(std::to_chars(to, to + 20, number).ptr);
}

void putNullable(Buffer& out, std::uint64_t number)
{
    if (number == 0)
    {
        out.put("null");
    }
    else
    {
        put(out, number);
    }
}

void putNullable(Buffer& out, std::string_view text)
{
    std::string shown;
    appendNullable(shown, text);
    out.put(shown);
}

void putHex(Buffer& out, std::string_view bytes)
{
    char* to = out.room(2 * bytes.size() + 2);
    *to++ = '"';
    for (const char ch : bytes)
    {
        const auto byte = static_cast<unsigned char>(ch);
        *to++ = kHexDigits[byte >> 4];
        *to++ = kHexDigits[byte & 0xF];
    }
    *to++ = '"';
    out.endAt(to);
}

void putString(Buffer& out, std::string_view text)
{
    if (isPlain(text))
    {
        char* const to = out.room(text.size() + 2);
        *to = '"';
        std::memcpy(to + 1, text.data(), text.size());
        to[text.size() + 1] = '"';
        out.endAt(to + text.size() + 2);
        return;
    }
    std::string shown;
    appendString(shown, text);
    out.put(shown);
}

} // namespace

bool isUtf8(std::string_view text)
{
    while (!text.empty())
    {
        const std::size_t length = characterLength(text);
        if (length == 0)
        {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

void appendString(std::string& out, std::string_view text)
{
    out += '"';
    if (isPlain(text))
    {
        out += text;
    }
    else
    {
        for (const char ch : text)
        {
            const auto byte = static_cast<unsigned char>(ch);
            if (ch == '"' || ch == '\\')
            {
                out += '\\';
                out += ch;
            }
            else if (byte < 0x20 || byte == 0x7F)
            {
                out += "\\u00";
                out += kHexDigits[byte >> 4];
                out += kHexDigits[byte & 0xF];
            }
            else
            {
                out += ch;
            }
        }
    }
    out += '"';
}

void appendAnyString(std::string& out, std::string_view text)
{
    if (isPlain(text) || isUtf8(text))
    {
        appendString(out, text);
        return;
    }
    std::string valid;
    while (!text.empty())
    {
        const std::size_t length = characterLength(text);
        valid += length == 0 ? std::string_view("\xEF\xBF\xBD") : text.substr(0, length);
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    appendString(out, valid);
}

void appendFinding(std::string& out, const Item& item, const Finding& finding)
{
    const LineColumn place = lineAndColumn(item, finding.position);
    out += R"({"code":")";
    out += info(finding.code).name;
    out += R"(","field":)";
    appendNullable(out, finding.field);
    out += R"(,"position":)";
    appendNumber(out, std::uint64_t{finding.position});
    out += R"(,"length":)";
    appendNumber(out, std::uint64_t{finding.length});
    out += R"(,"line":)";
    appendNullable(out, place.line);
    out += R"(,"column":)";
    appendNullable(out, place.column);
    out += R"(,"expected":)";
    appendNullable(out, finding.expected);
    out += R"(,"found":)";
    appendNullable(out, finding.found);
    out += R"(,"library":)";
    appendNullable(out, finding.library);
    out += '}';
}

RowWriter::RowWriter(Buffer& out, std::function<void()> take) : m_out(out), m_take(std::move(take)) {}

// The parts that are the same for a signal in a form.
const std::string& RowWriter::kindOf(const Item& item)
{
    const Rendering& rendering = item.rendering;
    const std::size_t form = !item.hasForm                                ? 4
                             : rendering.form == Form::text               ? 0
                             : rendering.form == Form::xml                ? 1
                             : rendering.firstWord == std::endian::little ? 2
                                                                          : 3;
    const auto signal = rendering.signal == nullptr
                            ? signals().size()
                            : static_cast<std::size_t>(rendering.signal - signals().data());
    if (m_kinds.empty())
    {
        m_kinds.resize(5 * (signals().size() + 1));
    }
    std::string& kind = m_kinds[5 * signal + form];
    if (kind.empty())
    {
        constexpr std::array kForms = {R"("text","firstWord":null)", R"("xml","firstWord":null)",
                                       R"("binary","firstWord":"little")", R"("binary","firstWord":"big")",
                                       R"(null,"firstWord":null)"};
        kind = std::string(R"("form":)") + kForms.at(form);
        if (rendering.signal == nullptr)
        {
            kind += R"(,"signal":null,"name":null,"class":null,"numbers":{)";
        }
        else
        {
            kind += R"(,"signal":)" + std::to_string(rendering.signal->number) + R"(,"name":")" +
                    rendering.signal->name + R"(","class":")" + rendering.signal->shape->className +
                    R"(","numbers":{)";
        }
    }
    return kind;
}

// Puts `,"name":`, without the comma behind a '{', and leaves room for a number.
char* RowWriter::putKey(Buffer& out, const FieldPlace& place)
{
    const codec::Subscripts subscripts =
        place.subscripts != nullptr ? *place.subscripts : codec::Subscripts{kNoSubscript, kNoSubscript};
    const auto tag = reinterpret_cast<std::uintptr_t>(place.field.tag);
    Key& key =
        m_keys[(tag ^ tag >> 10 ^ subscripts.first * std::size_t{37} ^ subscripts.second * std::size_t{149}) %
               m_keys.size()];
    if (key.tag != place.field.tag || key.subscripts.first != subscripts.first ||
        key.subscripts.second != subscripts.second)
    {
        const std::string text = ",\"" + place.name() + "\":";
        key = {place.field.tag, subscripts, text.size(), {}};
        text.copy(key.text.data(), key.text.size());
    }
    const std::size_t comma = out.back() != '{' ? 0 : 1;
    char* const to = out.room(key.text.size() + 20);
    std::memcpy(to - comma, key.text.data(), key.text.size());
    if (comma != 0)
    {
        to[-1] = '{';
    }
    return to - comma + key.size;
}

void RowWriter::cancel()
{
    if (m_texts.size() != 0)
    {
        m_out.cutTo(m_rowBegin);
        m_texts.cutTo(0);
    }
}

void RowWriter::begin(const Item& item)
{
    cancel(); // the same record may be begun once more
    m_rowBegin = m_out.size();
    m_texts.cutTo(0);
    m_texts.put('{');
    m_bytes.cutTo(0);
    m_bytes.put('{');
    m_findings.clear();
    if (m_input.empty() || m_inputOf != item.input)
    {
        m_inputOf = item.input;
        m_input = R"({"schema":1,"input":)";
        appendAnyString(m_input, item.input);
        m_input += R"(,"record":)";
    }
    m_out.put(m_input);
    if (m_recordPlaces != nullptr)
    {
        m_recordPlace = m_out.size();
    }
    else
    {
        putNullable(m_out, m_hasNumbers ? item.record : 0);
    }
    m_out.put(R"(,"offset":)");
    put(m_out, item.offset);
    m_out.put(R"(,"line":)");
    putNullable(m_out, m_hasNumbers ? item.line : 0);
    if (item.time.empty() && item.direction.empty())
    {
        m_out.put(R"(,"time":null,"direction":null,)");
    }
    else
    {
        m_out.put(R"(,"time":)");
        putNullable(m_out, item.time);
        m_out.put(R"(,"direction":)");
        putNullable(m_out, item.direction);
        m_out.put(',');
    }
    m_out.put(kindOf(item));
}

void RowWriter::number(const FieldPlace& place, std::int64_t value, std::string_view digits,
                       std::size_t /*position*/)
{
    char* to = putKey(m_out, place);
    if (!digits.empty())
    {
        for (const char digit : digits)
        {
            *to++ = digit;
        }
        m_out.endAt(to);
    }
    else
    {
        m_out.endAt(std::to_chars(to, to + 20, value).ptr);
    }
}

void RowWriter::text(const FieldPlace& place, std::string_view characters, std::size_t /*position*/)
{
    if (isPlain(characters) || isUtf8(characters))
    {
        m_texts.endAt(putKey(m_texts, place));
        putString(m_texts, characters);
    }
    else
    {
        block(place, characters, 0);
    }
}

void RowWriter::block(const FieldPlace& place, std::string_view bytes, std::size_t /*position*/)
{
    m_bytes.endAt(putKey(m_bytes, place));
    putHex(m_bytes, bytes);
}

void RowWriter::nothing(const FieldPlace& place, bool raw)
{
    Buffer& out = raw ? m_bytes : place.field.kind == codec::Kind::text ? m_texts : m_out;
    out.endAt(putKey(out, place));
    out.put("null");
}

void RowWriter::finding(Finding finding)
{
    finding.library.clear(); // it has not been asked
    m_findings.push_back(std::move(finding));
}

void RowWriter::putFindings(const Item& item, const Reading& reading)
{
    Item placed = item;
    placed.line = m_hasNumbers ? item.line : 0;
    for (const Severity severity : {Severity::damage, Severity::note})
    {
        std::string list;
        for (const Finding& finding : m_findings)
        {
            if (info(finding.code).severity == severity)
            {
                list += list.empty() ? "" : ",";
                appendFinding(list, placed, finding);
            }
        }
        m_out.put(severity == Severity::damage ? R"(},"damages":[)" : R"(],"notes":[)");
        m_out.put(list);
    }
    m_out.put(R"(],"rest":)");
    if (reading.rest == std::string_view::npos)
    {
        m_out.put("null");
    }
    else
    {
        putHex(m_out, item.rendering.bytes.substr(std::min(reading.rest, item.rendering.bytes.size())));
    }
    m_out.put(R"(,"original":)");
    if (reading.isClean() && reading.hasNotes)
    {
        putHex(m_out, item.rendering.bytes);
    }
    else
    {
        m_out.put("null");
    }
    m_out.put('}');
    m_damaged += reading.isDamaged ? 1 : 0;
}

void RowWriter::end(const Item& item, const Reading& reading)
{
    m_out.put(R"(},"texts":)");
    m_out.put(m_texts.text());
    m_out.put(R"(},"bytes":)");
    m_out.put(m_bytes.text());
    if (m_findings.empty()) [[likely]]
    {
        m_out.put(R"(},"damages":[],"notes":[],"rest":null,"original":null})");
    }
    else
    {
        putFindings(item, reading);
    }
    m_out.put('\n');
    if (m_recordPlaces != nullptr)
    {
        m_recordPlaces->push_back(m_recordPlace);
    }
    m_texts.cutTo(0);
    m_take();
}

} // namespace bci::tool
