// Rows of JSON: the objects of an input, one on a line, over several lines, or in an array.
#ifndef BCI_TOOL_JSON_ROWS_H
#define BCI_TOOL_JSON_ROWS_H

#include "bytes.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace bci::tool
{

// A value within a row. What lies deeper than the members of a row's members is not kept.
struct JsonValue
{
    enum class Type
    {
        null,
        boolean,
        number,
        text,
        array,
        object
    };

    Type type = Type::null;
    std::size_t position = 0; // in the row, in bytes
    std::string content;      // of a text; a number as it is written
    std::size_t elements = 0; // of an array
    struct Member;
    std::vector<Member> members; // of an object, in their order, repeated ones too
};

struct JsonValue::Member
{
    std::string name;
    JsonValue value;
};

// Text that is no JSON.
struct JsonError : std::runtime_error
{
    JsonError(std::size_t where, const std::string& what);

    std::size_t position; // in bytes
};

// Throws JsonError.
JsonValue parseJson(std::string_view text);

// Bytes that a row may have.
inline constexpr std::size_t kLongestRow = std::size_t{1} << 20;

// The rows of an input. A row ends with the bracket that closes it, or else before a '{' at the beginning of a
// line, so that one broken row does not take the others with it.
class JsonRows
{
public:
    // The stream has to outlive this.
    JsonRows(ByteStream& stream, std::string inputName);

    // On to the next row, or to something that is none. Returns whether there is one. Throws Trouble.
    bool next();

    // As it stands in the input; it need not be JSON.
    const std::string& text() const;

    // Why there is no text; empty if there is one.
    const std::string& problem() const;

    // "file:line:column" of a position in the text; of the problem, if there is one. Lines and columns count from
    // 1, columns in bytes.
    std::string place(std::size_t position) const;

private:
    enum class Comma
    {
        none,
        either,
        wanted,
        behind
    };

    // The next byte, or -1 at the end of the input.
    int peek();
    char take();
    void skipSpace();
    void skipLine();
    void readRow();
    bool tell(std::string problem);

    ByteStream& m_stream;
    std::string m_inputName;
    std::vector<char> m_buffer;
    std::size_t m_position = 0; // in the buffer
    std::size_t m_end = 0;      // of the buffer's content
    std::uint64_t m_line = 1;   // of the next byte
    std::uint64_t m_column = 1;
    bool m_isFirst = true; // nothing has been seen yet
    bool m_inArray = false;
    bool m_finished = false;
    Comma m_comma = Comma::none; // between the elements of the array
    std::string m_text;
    std::vector<std::size_t> m_lineEnds; // where they are in the text
    std::string m_problem;
    std::uint64_t m_rowLine = 1;
    std::uint64_t m_rowColumn = 1;
};

} // namespace bci::tool

#endif
