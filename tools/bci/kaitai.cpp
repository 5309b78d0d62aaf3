#include "kaitai.h"

#include "layout.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <string_view>

namespace bci::tool
{

namespace
{

bool isUpper(char ch)
{
    return ch >= 'A' && ch <= 'Z';
}

// A name as identifiers have to be there: "hwLogData_" becomes "hw_log_data".
std::string identifier(std::string_view name)
{
    std::string result;
    for (std::size_t i = 0; i < name.size(); ++i)
    {
        const bool beginsWord = isUpper(name[i]) && i != 0 && name[i - 1] != '_' && !isUpper(name[i - 1]);
        result += beginsWord ? "_" : "";
        result += isUpper(name[i]) ? static_cast<char>(name[i] - 'A' + 'a') : name[i];
    }
    result.erase(result.find_last_not_of('_') + 1);
    return result;
}

std::string typeOf(const codec::Field& field)
{
    const bool isSigned = field.kind == codec::Kind::s16 || field.kind == codec::Kind::s32;
    return field.kind == codec::Kind::text ? "padded_text" : fmt::format("{}{}", isSigned ? 's' : 'u', field.size);
}

// Lines of YAML, each as deep as it has to be.
class Lines
{
public:
    explicit Lines(std::size_t depth) : m_indent(depth, ' ') {}

    template <typename... Arguments>
    void add(fmt::format_string<Arguments...> format, Arguments&&... arguments)
    {
        m_text += m_indent + fmt::format(format, std::forward<Arguments>(arguments)...) + "\n";
    }

    void append(const std::string& lines)
    {
        m_text += lines;
    }

    const std::string& text() const
    {
        return m_text;
    }

private:
    std::string m_indent;
    std::string m_text;
};

// The fields of a type, and the types that they are of.
class Type
{
public:
    explicit Type(std::size_t depth) : m_depth(depth), m_fields(depth + 2), m_types(depth + 2) {}

    void add(const Piece& piece)
    {
        switch (piece.kind)
        {
        case Piece::Kind::field:
            begin(piece);
            addValue(*piece.field);
            break;
        case Piece::Kind::list:
            addList(piece);
            break;
        case Piece::Kind::choice:
            addChoice(piece);
            break;
        case Piece::Kind::entries:
            begin(piece);
            m_fields.add("  size: {}", piece.size);
            m_fields.add("  type: packed_texts({})", identifier(piece.counter->tag));
            break;
        case Piece::Kind::block:
            begin(piece);
            m_fields.add("  size: \"{}\"", atMost(identifier(piece.counter->tag), piece.bound));
            break;
        case Piece::Kind::limit:
            break; // a greater number changes nothing in the layout
        }
    }

    void addUnused(const std::string& name, const std::string& size)
    {
        m_fields.add("- id: {}", name);
        m_fields.add("  {}", size);
    }

    std::string text() const
    {
        const std::string indent(m_depth, ' ');
        std::string text = indent + (m_fields.text().empty() ? "seq: []\n" : "seq:\n") + m_fields.text();
        return m_types.text().empty() ? text : text + indent + "types:\n" + m_types.text();
    }

private:
    static std::string atMost(const std::string& count, unsigned int bound)
    {
        return fmt::format("{0} < {1} ? {0} : {1}", count, bound);
    }

    void begin(const Piece& piece)
    {
        m_fields.add("- id: {}", identifier(piece.field->tag));
        m_fields.add("  -orig-id: \"{}\"", piece.name);
    }

    void addValue(const codec::Field& field)
    {
        if (field.kind == codec::Kind::text)
        {
            m_fields.add("  size: {}", field.size);
        }
        m_fields.add("  type: {}", typeOf(field));
    }

    void addType(const std::string& name, const Type& type)
    {
        m_types.add("{}:", name);
        m_types.append(type.text());
    }

    void addList(const Piece& list)
    {
        const std::string count = identifier(list.counter->tag);
        const bool isPlain = list.content.size() == 1 && list.content.front().kind == Piece::Kind::field;
        const std::string name = isPlain ? identifier(list.content.front().field->tag) : count + "_elements";
        if (isPlain)
        {
            begin(list.content.front());
            addValue(*list.content.front().field);
        }
        else
        {
            Type element(m_depth + 4);
            for (const Piece& piece : list.content)
            {
                element.add(piece);
            }
            addType(count + "_element", element);
            m_fields.add("- id: {}", name);
            m_fields.add("  type: {}_element", count);
        }
        m_fields.add("  repeat: expr");
        m_fields.add("  repeat-expr: \"{}\"", atMost(count, list.bound));
        if (list.isWhole)
        {
            addUnused("unused_" + name, fmt::format("size: \"({} - ({})) * {}\"", list.bound,
                                                    atMost(count, list.bound), list.stride));
        }
    }

    void addChoice(const Piece& choice)
    {
        const std::string selector = identifier(choice.counter->tag);
        m_fields.add("- id: {}_content", selector);
        m_fields.add("  size: {}", choice.size);
        m_fields.add("  type:");
        m_fields.add("    switch-on: {}", selector);
        m_fields.add("    cases:");
        for (const Alternative& one : choice.alternatives)
        {
            const std::string name = identifier(one.member) + "_content";
            m_fields.add("      {}: {}", one.value, name);
            Type member(m_depth + 4);
            for (const Piece& piece : one.content)
            {
                member.add(piece);
            }
            member.addUnused("unused", "size-eos: true");
            addType(name, member);
        }
    }

    std::size_t m_depth;
    Lines m_fields;
    Lines m_types;
};

constexpr const char* kHead =
    R"(# The binary form of the signals of the board control interface. Written by "bci gen ksy".
meta:
  id: bci
  title: Signals of the board control interface, binary form
  endian: be
  encoding: UTF-8
doc: |
  One signal. The first word is its number, in the byte order of the host that wrote it; all else is big-endian.
  More elements than there is room for are not read; the count says what was wanted. Bytes that hold no value
  are kept: behind the end of a text, the last element of a list, the member of a union. Texts may be other than
  UTF-8; their bytes are there, too.
)";

// Both orders of the first word are told apart as no number is one in the other order: seen so, all of them lie
// below the least or above the greatest. By multiplication, as not all languages shift alike.
constexpr const char* kFirstWord = R"(seq:
  - id: first_word
    size: 4
  - id: body
    type:
      switch-on: {number}
      cases:
{cases}instances:
  big_word:
    value: ((first_word[0] * 256 + first_word[1]) * 256 + first_word[2]) * 256 + first_word[3]
  little_word:
    value: ((first_word[3] * 256 + first_word[2]) * 256 + first_word[1]) * 256 + first_word[0]
  is_little:
    value: big_word < {least} or big_word > {greatest}
  {number}:
    -orig-id: "{name}"
    value: "is_little ? little_word : big_word"
  signal:
    value: {number}
    enum: signal
enums:
  signal:
{names}types:
  padded_text:
    doc: Characters up to the first zero, or all.
    seq:
      - id: bytes
        terminator: 0
        eos-error: false
      - id: padding
        size-eos: true
    instances:
      text:
        value: bytes.to_s("UTF-8")
  packed_texts:
    doc: Texts one behind the other, each with a zero behind it.
    params:
      - id: count
        type: u4
    seq:
      - id: entries
        type: packed_text
        repeat: until
        repeat-until: entries.size == count or _io.eof
        if: count != 0
      - id: unused
        size-eos: true
  packed_text:
    seq:
      - id: bytes
        terminator: 0
        eos-error: false
    instances:
      text:
        value: bytes.to_s("UTF-8")
)";

} // namespace

std::string kaitai()
{
    std::map<SIGSELECT, const Signal*> byNumber;
    std::map<std::string, std::pair<const codec::Shape*, std::string>> classes; // with the names of their signals
    for (const Signal& signal : signals())
    {
        byNumber.emplace(signal.number, &signal);
        auto& [shape, names] = classes[signal.shape->className];
        shape = signal.shape;
        names += (names.empty() ? "" : ", ") + std::string(signal.name);
    }
    std::string cases;
    std::string names;
    for (const auto& [number, signal] : byNumber)
    {
        cases += fmt::format("        {}: {}\n", number, identifier(signal->shape->className));
        std::string name = signal->name;
        std::transform(name.begin(), name.end(), name.begin(),
                       [](char ch) { return isUpper(ch) ? static_cast<char>(ch - 'A' + 'a') : ch; });
        names += fmt::format("    {}: {}\n", number, name);
    }
    const codec::Field& number = signals().front().shape->content.rows.front();
    std::string text = kHead + fmt::format(fmt::runtime(kFirstWord), fmt::arg("number", identifier(number.tag)),
                                           fmt::arg("name", number.tag), fmt::arg("cases", cases),
                                           fmt::arg("names", names), fmt::arg("least", byNumber.begin()->first),
                                           fmt::arg("greatest", byNumber.rbegin()->first));
    for (const auto& [name, shapeAndSignals] : classes)
    {
        Type type(4);
        const std::vector<Piece> pieces = layoutOf(*shapeAndSignals.first).pieces;
        std::for_each(pieces.begin() + 1, pieces.end(), [&type](const Piece& piece) { type.add(piece); });
        text +=
            fmt::format("  {}:\n    -orig-id: {}\n    doc: {}\n", identifier(name), name, shapeAndSignals.second) +
            type.text();
    }
    return text;
}

} // namespace bci::tool
