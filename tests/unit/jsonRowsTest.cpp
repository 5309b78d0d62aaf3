// Rows of JSON, broken ones too.

#include "jsonRows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>

namespace
{

using namespace bci::tool;

// Gives few bytes at a time.
class Pieces : public ByteStream
{
public:
    explicit Pieces(std::string bytes) : m_bytes(std::move(bytes)) {}

    std::size_t read(char* to, std::size_t most) override
    {
        const std::size_t count = m_bytes.copy(to, std::min<std::size_t>(most, 3), m_position);
        m_position += count;
        return count;
    }

private:
    std::string m_bytes;
    std::size_t m_position = 0;
};

// A line for each row: where it is, and its text or what is wrong.
std::string rowsOf(const std::string& input)
{
    Pieces pieces(input);
    JsonRows rows(pieces, "f");
    std::string text;
    while (rows.next())
    {
        text += rows.place(0) + (rows.problem().empty() ? " " + rows.text() : " - " + rows.problem()) + "\n";
    }
    return text;
}

TEST(JsonRows, AreFoundOnLinesAndInArrays)
{
    EXPECT_EQ(rowsOf(""), "");
    EXPECT_EQ(rowsOf(" \r\n[ ]\n"), "");
    EXPECT_EQ(rowsOf("{\"a\":1}\r\n\r\n {\"b\":\"}\\\"\"} {}"),
              "f:1:1 {\"a\":1}\nf:3:2 {\"b\":\"}\\\"\"}\nf:3:14 {}\n");
    EXPECT_EQ(rowsOf("[{\"a\":[{}]},\n {}]"), "f:1:2 {\"a\":[{}]}\nf:2:2 {}\n");
    EXPECT_EQ(rowsOf("\xEF\xBB\xBF{\n }\n"), "f:1:4 {\n }\n");
}

TEST(JsonRows, OneThatIsBrokenEndsBeforeTheNext)
{
    EXPECT_EQ(rowsOf("{\"a\":{\n{\"b\":1}\n"), "f:1:1 {\"a\":{\nf:2:1 {\"b\":1}\n");
    EXPECT_EQ(rowsOf("{\"a\n{\"b\":1}\n"), "f:1:1 {\"a\nf:2:1 {\"b\":1}\n");
    EXPECT_EQ(rowsOf("{\"a\":\"\\\n{\"b\":1}\n"), "f:1:1 {\"a\":\"\\\nf:2:1 {\"b\":1}\n");
    EXPECT_EQ(rowsOf("[{\"a\":[\n{\"b\":1}\n]"), "f:1:2 {\"a\":[\nf:2:1 {\"b\":1}\n");
    EXPECT_EQ(rowsOf("{}\nx y\n{}\n"), "f:1:1 {}\nf:2:1 - no JSON object: 'x y'\nf:3:1 {}\n");
}

TEST(JsonRows, WhatIsWrongBetweenThemIsTold)
{
    EXPECT_EQ(rowsOf("[{}{},]"),
              "f:1:2 {}\nf:1:4 - no ',' between two elements\nf:1:4 {}\nf:1:7 - no element behind "
              "the last ','\n");
    EXPECT_EQ(rowsOf("[{}"), "f:1:2 {}\nf:1:4 - the array is not closed\n");
    EXPECT_EQ(rowsOf("{},{}\n{}"), "f:1:1 {}\nf:1:3 - no JSON object: ',{}'\nf:2:1 {}\n");
    EXPECT_EQ(rowsOf("[[{}]]\n{}"),
              "f:1:2 - no JSON object: '[{}]]'\nf:2:1 {}\nf:2:3 - the array is not closed\n");
}

TEST(JsonRows, AnInputThatBeginsOtherwiseIsLeft)
{
    EXPECT_EQ(rowsOf("x\ny\n{}\n"), "f:1:1 - neither a JSON object nor an array of them: 'x'\n");
}

TEST(JsonRows, OneThatIsTooLongIsPassedOver)
{
    const std::string fits = "{\"a\":\"" + std::string(kLongestRow - 8, 'x') + "\"}";
    ASSERT_EQ(fits.size(), kLongestRow);
    EXPECT_EQ(rowsOf(fits), "f:1:1 " + fits + "\n");
    EXPECT_EQ(rowsOf("{ " + fits.substr(1) + "\n{}"), "f:1:1 - a row of more than 1048576 bytes\nf:2:1 {}\n");
    EXPECT_EQ(rowsOf(std::string(3000000, '{') + "\n{}"), "f:1:1 - a row of more than 1048576 bytes\nf:2:1 {}\n");
}

TEST(Json, KeepsMembersOfMembersWithTheirPlaces)
{
    const JsonValue row =
        parseJson(" {\"a\" : -1, \"b\":{\"c\":\"\\u00e9\",\"c\":1.50,\"d\":{\"e\":1}}, \"f\":[1,[2],{}],"
                  "\"g\":null}");
    ASSERT_EQ(row.type, JsonValue::Type::object);
    EXPECT_EQ(row.position, 1U);
    ASSERT_EQ(row.members.size(), 4U);
    EXPECT_EQ(row.members[0].name, "a");
    EXPECT_EQ(row.members[0].value.content, "-1");
    EXPECT_EQ(row.members[0].value.position, 8U);
    const JsonValue& map = row.members[1].value;
    ASSERT_EQ(map.members.size(), 3U);
    EXPECT_EQ(map.members[0].value.content, "\xC3\xA9");
    EXPECT_EQ(map.members[1].value.content, "1.50");
    EXPECT_EQ(map.members[1].value.position, 34U);
    EXPECT_EQ(map.members[2].value.type, JsonValue::Type::object);
    EXPECT_TRUE(map.members[2].value.members.empty());
    EXPECT_EQ(row.members[2].value.type, JsonValue::Type::array);
    EXPECT_EQ(row.members[2].value.elements, 3U);
    EXPECT_EQ(row.members[3].value.type, JsonValue::Type::null);
}

std::string errorOf(const std::string& text)
{
    try
    {
        parseJson(text);
    }
    catch (const JsonError& error)
    {
        return std::to_string(error.position) + " " + error.what();
    }
    return "none";
}

TEST(Json, TellsWhereItIsNone)
{
    EXPECT_EQ(errorOf("{\"a\":}"),
              "5 syntax error while parsing value - unexpected '}'; expected '[', '{', or a literal");
    EXPECT_EQ(errorOf("{\"a\":NaN}"), "5 syntax error while parsing value - invalid literal");
    EXPECT_EQ(errorOf("{\"a\":1e999}"), "9 number overflow parsing '1e999'");
    EXPECT_EQ(errorOf("{\"a\":1"), "6 syntax error while parsing object - unexpected end of input; expected '}'");
    EXPECT_EQ(errorOf("{\"a\":\"\xFF\"}"),
              "6 syntax error while parsing value - invalid string: ill-formed UTF-8 byte");
    EXPECT_EQ(errorOf(""), "0 syntax error while parsing value - unexpected end of input; expected '[', '{', or a "
                           "literal");
    EXPECT_EQ(errorOf("{} x"), "3 syntax error while parsing value - invalid literal; expected end of input");
}

TEST(Json, MayBeAsDeepAsItLikes)
{
    constexpr std::size_t kDeep = kLongestRow / 2;
    EXPECT_EQ(errorOf(std::string(kDeep, '[') + std::string(kDeep, ']')), "none");
    EXPECT_TRUE(errorOf(std::string(kDeep, '[')).starts_with(std::to_string(kDeep)));
}

} // namespace
