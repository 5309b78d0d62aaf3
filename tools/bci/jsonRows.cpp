#include "jsonRows.h"

#include "input.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <utility>

namespace bci::tool
{

namespace
{

constexpr std::string_view kSpace = " \t\r\n";

// Goes through a text and leaves word of how far it has come: the parser tells no positions but those of errors.
class Cursor
{
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    Cursor(const char* at, const char** progress) : m_at(at), m_progress(progress) {}

    reference operator*() const
    {
        return *m_at;
    }

    Cursor& operator++()
    {
        *m_progress = ++m_at;
        return *this;
    }

    Cursor operator++(int)
    {
        const Cursor before = *this;
        ++*this;
        return before;
    }

    bool operator==(const Cursor& other) const
    {
        return m_at == other.m_at;
    }

    bool operator!=(const Cursor& other) const
    {
        return m_at != other.m_at;
    }

private:
    const char* m_at;
    const char** m_progress;
};

// The parser's wording without its own prefixes, and without the piece of input, which may be long.
std::string wording(const std::string& what)
{
    std::string text = what.substr(std::min(what.find("] ") + 2, what.size()));
    if (text.starts_with("parse error at"))
    {
        text.erase(0, text.find(": ") + 2);
    }
    if (const std::size_t piece = text.find("; last read: "); piece != std::string::npos)
    {
        const std::size_t expected = text.rfind("; expected ");
        text.erase(piece, expected == std::string::npos || expected < piece ? expected : expected - piece);
    }
    constexpr std::size_t kLongest = 200;
    return escaped(std::string_view(text).substr(0, kLongest));
}

class Tree : public nlohmann::json_sax<nlohmann::json>
{
public:
    explicit Tree(std::string_view text) : m_text(text), m_progress(text.data()) {}

    JsonValue parse()
    {
        const char* const begin = m_text.data();
        if (!nlohmann::json::sax_parse(Cursor(begin, &m_progress), Cursor(begin + m_text.size(), &m_progress),
                                       this))
        {
            throw JsonError(m_errorAt, m_error);
        }
        return std::move(m_root);
    }

    bool null() override
    {
        return add(JsonValue::Type::null, "");
    }

    bool boolean(bool value) override
    {
        return add(JsonValue::Type::boolean, value ? "true" : "false");
    }

    bool number_integer(number_integer_t value) override
    {
        return add(JsonValue::Type::number, std::to_string(value));
    }

    bool number_unsigned(number_unsigned_t value) override
    {
        return add(JsonValue::Type::number, std::to_string(value));
    }

    bool number_float(number_float_t /*value*/, const string_t& written) override
    {
        return add(JsonValue::Type::number, written);
    }

    bool string(string_t& value) override
    {
        return add(JsonValue::Type::text, std::move(value));
    }

    bool binary(binary_t& /*value*/) override
    {
        return false; // JSON has none
    }

    bool start_object(std::size_t /*size*/) override
    {
        return begin(JsonValue::Type::object);
    }

    bool key(string_t& name) override
    {
        m_key = std::move(name);
        m_keyEnd = static_cast<std::size_t>(m_progress - m_text.data());
        return true;
    }

    bool end_object() override
    {
        return end();
    }

    bool start_array(std::size_t /*size*/) override
    {
        return begin(JsonValue::Type::array);
    }

    bool end_array() override
    {
        return end();
    }

    bool parse_error(std::size_t position, const std::string& /*token*/,
                     const nlohmann::detail::exception& error) override
    {
        m_errorAt = std::min(position == 0 ? 0 : position - 1, m_text.size());
        m_error = wording(error.what());
        return false;
    }

private:
    bool add(JsonValue::Type type, std::string content)
    {
        if (JsonValue* const value = place())
        {
            value->type = type;
            value->content = std::move(content);
        }
        return true;
    }

    bool begin(JsonValue::Type type)
    {
        JsonValue* const value = place();
        if (value != nullptr)
        {
            value->type = type;
            m_open.push_back(value);
        }
        else
        {
            ++m_deeper;
        }
        return true;
    }

    bool end()
    {
        if (m_deeper != 0)
        {
            --m_deeper;
        }
        else
        {
            m_open.pop_back();
        }
        return true;
    }

    // Where the value belongs that has been read; null if it is not kept.
    JsonValue* place()
    {
        constexpr std::size_t kDeepest = 2;
        if (m_deeper != 0)
        {
            return nullptr;
        }
        if (m_open.empty())
        {
            m_root.position = std::min(m_text.find_first_not_of(kSpace), m_text.size());
            return &m_root;
        }
        JsonValue& parent = *m_open.back();
        if (parent.type == JsonValue::Type::array)
        {
            ++parent.elements;
            return nullptr;
        }
        if (m_open.size() > kDeepest)
        {
            return nullptr;
        }
        parent.members.push_back({std::move(m_key), JsonValue()});
        JsonValue& value = parent.members.back().value;
        // Behind the key come a colon and the value.
        value.position = std::min(m_text.find_first_not_of(" \t\r\n:", m_keyEnd), m_text.size());
        return &value;
    }

    std::string_view m_text;
    const char* m_progress;
    JsonValue m_root;
    std::vector<JsonValue*> m_open; // a parent's members stay where they are while one of them is open
    std::size_t m_deeper = 0;       // open arrays and objects that are not kept
    std::string m_key;
    std::size_t m_keyEnd = 0;
    std::size_t m_errorAt = 0;
    std::string m_error;
};

} // namespace

JsonError::JsonError(std::size_t where, const std::string& what) : std::runtime_error(what), position(where) {}

JsonValue parseJson(std::string_view text)
{
    return Tree(text).parse();
}

JsonRows::JsonRows(ByteStream& stream, std::string inputName)
    : m_stream(stream), m_inputName(std::move(inputName)), m_buffer(std::size_t{1} << 16)
{
}

bool JsonRows::next()
{
    m_text.clear();
    m_lineEnds.clear();
    m_problem.clear();
    while (!m_finished)
    {
        skipSpace();
        m_rowLine = m_line;
        m_rowColumn = m_column;
        const bool isFirst = m_isFirst;
        m_isFirst = false;
        const int ch = peek();
        if (ch == -1)
        {
            m_finished = true;
            return m_inArray && tell("the array is not closed");
        }
        if (ch == '[' && isFirst)
        {
            m_inArray = true;
            take();
        }
        else if (ch == '{' && m_comma == Comma::wanted)
        {
            m_comma = Comma::either;
            return tell("no ',' between two elements");
        }
        else if (ch == '{')
        {
            readRow();
            return true;
        }
        else if (ch == ',' && (m_comma == Comma::wanted || m_comma == Comma::either))
        {
            m_comma = Comma::behind;
            take();
        }
        else if (ch == ']' && m_inArray)
        {
            const bool isMissing = m_comma == Comma::behind;
            m_inArray = false;
            m_comma = Comma::none;
            take();
            if (isMissing)
            {
                return tell("no element behind the last ','");
            }
        }
        else
        {
            std::string piece;
            while (piece.size() < 20 && peek() != -1 && peek() != '\n')
            {
                piece += take();
            }
            skipLine();
            m_finished = isFirst;
            m_comma = m_inArray ? Comma::either : Comma::none;
            return tell((isFirst ? "neither a JSON object nor an array of them: " : "no JSON object: ") +
                        quote(piece));
        }
    }
    return false;
}

const std::string& JsonRows::text() const
{
    return m_text;
}

const std::string& JsonRows::problem() const
{
    return m_problem;
}

std::string JsonRows::place(std::size_t position) const
{
    const auto line = std::lower_bound(m_lineEnds.begin(), m_lineEnds.end(), position);
    const std::uint64_t column = line == m_lineEnds.begin() ? m_rowColumn + position : position - *std::prev(line);
    return fmt::format("{}:{}:{}", m_inputName, m_rowLine + static_cast<std::uint64_t>(line - m_lineEnds.begin()),
                       column);
}

int JsonRows::peek()
{
    if (m_position == m_end)
    {
        m_position = 0;
        m_end = m_stream.read(m_buffer.data(), m_buffer.size());
        if (m_end == 0)
        {
            return -1;
        }
    }
    return static_cast<unsigned char>(m_buffer[m_position]);
}

char JsonRows::take()
{
    const char ch = m_buffer[m_position++];
    if (ch == '\n')
    {
        ++m_line;
        m_column = 1;
    }
    else
    {
        ++m_column;
    }
    return ch;
}

void JsonRows::skipSpace()
{
    // A mark of the byte order at the beginning, in UTF-8.
    for (const int byte : {0xEF, 0xBB, 0xBF})
    {
        if (m_isFirst && peek() == byte)
        {
            take();
        }
    }
    for (int ch = peek(); ch != -1 && kSpace.find(static_cast<char>(ch)) != std::string_view::npos; ch = peek())
    {
        take();
    }
}

void JsonRows::skipLine()
{
    while (peek() != -1 && peek() != '\n')
    {
        take();
    }
}

void JsonRows::readRow()
{
    std::uint64_t depth = 0;
    bool inString = false;
    bool isClosed = false;
    bool isTooLong = false;
    for (int next = peek(); !isClosed && next != -1; next = isClosed ? -1 : peek())
    {
        if (next == '{' && m_column == 1 && depth != 0)
        {
            break;
        }
        const char ch = take();
        if (m_text.size() < kLongestRow)
        {
            m_text += ch;
            if (ch == '\n')
            {
                m_lineEnds.push_back(m_text.size() - 1);
            }
        }
        else
        {
            isTooLong = true;
        }
        if (inString)
        {
            if (ch == '\\' && peek() != -1 && peek() != '\n')
            {
                const char masked = take();
                if (m_text.size() < kLongestRow)
                {
                    m_text += masked;
                }
            }
            inString = ch != '"' && ch != '\n';
        }
        else if (ch == '"')
        {
            inString = true;
        }
        else if (ch == '{' || ch == '[')
        {
            ++depth;
        }
        else if (ch == '}' || ch == ']')
        {
            isClosed = --depth == 0;
        }
    }
    if (!isClosed)
    {
        m_text.erase(m_text.find_last_not_of(kSpace) + 1);
    }
    m_comma = !m_inArray ? Comma::none : isClosed ? Comma::wanted : Comma::either;
    if (isTooLong)
    {
        m_text.clear();
        m_lineEnds.clear();
        m_problem = "a row of more than " + std::to_string(kLongestRow) + " bytes";
    }
}

bool JsonRows::tell(std::string problem)
{
    m_problem = std::move(problem);
    return true;
}

} // namespace bci::tool
