// Runs the golden files beside this source: what messages hold against what their renderings are.
//
// A file is named after its message class. In it, '#' starts a comment line, and a case is a line
// "case NAME" followed by lines of these kinds, in any order:
//
//   fields F=V ...           what the message holds; every field is named
//   text|binary|xml DATA     the message renders to these bytes, which read back to the same fields
//   writes FORM DATA         the message renders to these bytes
//   reads FORM DATA          these bytes are read ...
//   before F=V ...           ... into a message that holds this (not named: 0xA5 in every byte) ...
//   after F=V ...            ... which then holds this; every field is named
//   result true|false        of the operation; true if not stated
//   length N                 returned by a read; all of it, or 0 for XML, if not stated
//   log PRIORITY "FORMAT" "ARGUMENT" ...
//
// F is the name of the field's XML element, its index included; a name that occurs twice is given twice, in
// order. V is a number, or for texts, log entries and blocks a quoted string; behind the terminator of a text
// that is named, the rest of its array is zero. Which fields there are follows from the counts and selectors
// that stand before them.
//
// DATA is a run of quoted strings with C escapes, or hex digits for binary. Binary is stated as the
// target has it, with its first word big-endian. A line that starts with a blank continues the one
// before. A quoted string with *N behind it stands for N of them.

#include "bciMessage.h"
#include "bciMsgRegistration.h"
#include "catalogue.h"
#include "logCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using bci::Signal;
using bci::codec::Kind;
using bci::codec::Leaf;

struct Case
{
    std::string className;
    std::string name;
    std::multimap<std::string, std::string> lines; // by their first word
};

void PrintTo(const Case& theCase, std::ostream* out)
{
    *out << theCase.className << ", " << theCase.name;
}

std::vector<Case> loadCases()
{
    std::vector<Case> cases;
    for (const auto& file : std::filesystem::directory_iterator(GOLDEN_DIRECTORY))
    {
        if (file.path().extension() != ".golden")
        {
            continue;
        }
        std::ifstream in(file.path());
        std::multimap<std::string, std::string>::iterator last;
        for (std::string line; std::getline(in, line);)
        {
            if (line.empty() || line.front() == '#')
            {
                continue;
            }
            if (line.front() == ' ')
            {
                last->second += line;
                continue;
            }
            const std::size_t blank = line.find(' ');
            const std::string word = line.substr(0, blank);
            const std::string rest = line.substr(line.find_first_not_of(' ', blank));
            static const std::set<std::string> known = {"case",  "fields", "text",  "binary", "xml",    "writes",
                                                        "reads", "before", "after", "result", "length", "log"};
            if (known.count(word) == 0)
            {
                throw std::runtime_error(file.path().string() + ": what is '" + line + "'?");
            }
            if (word == "case")
            {
                cases.push_back({file.path().stem().string(), rest, {}});
            }
            else
            {
                last = cases.back().lines.emplace(word, rest);
            }
        }
    }
    std::sort(cases.begin(), cases.end(),
              [](const Case& left, const Case& right)
              { return left.className + left.name < right.className + right.name; });
    return cases;
}

// Takes a quoted string off the front of a line, repeated as often as it says.
std::string takeQuoted(std::istream& in)
{
    const std::map<char, char> escapes = {{'t', '\t'}, {'n', '\n'}, {'r', '\r'},
                                          {'0', '\0'}, {'"', '"'},  {'\\', '\\'}};
    std::string text;
    char ch = '\0';
    if (!(in >> ch) || ch != '"')
    {
        return text;
    }
    while (in.get(ch) && ch != '"')
    {
        if (ch == '\\')
        {
            in.get(ch);
            if (ch == 'x')
            {
                std::string digits(2, '0');
                in.read(digits.data(), 2);
                ch = static_cast<char>(std::stoi(digits, nullptr, 16));
            }
            else
            {
                ch = escapes.at(ch);
            }
        }
        text += ch;
    }
    unsigned int count = 1;
    if (in.peek() == '*')
    {
        in.ignore() >> count;
    }
    std::string all;
    while (count-- > 0)
    {
        all += text;
    }
    return all;
}

std::string inQuotes(std::string_view text)
{
    std::string result = "\"";
    for (const char ch : text)
    {
        std::array<char, 8> code;
        std::snprintf(code.data(), code.size(), ch < ' ' || ch == '"' || ch == '\\' ? "\\x%02X" : "%c",
                      unsigned{static_cast<unsigned char>(ch)});
        result += code.data();
    }
    return result + "\"";
}

std::string quotedData(std::istream& in)
{
    std::string data;
    while (in >> std::ws && in.peek() == '"')
    {
        data += takeQuoted(in);
    }
    return data;
}

std::string hexData(std::istream& in)
{
    std::string digits;
    std::string data;
    for (std::string word; in >> word;)
    {
        digits += word;
    }
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
    {
        data += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
    }
    if (std::endian::native == std::endian::little && data.size() >= 4)
    {
        std::reverse(data.begin(), data.begin() + 4);
    }
    return data;
}

const Signal& signalOf(const Case& theCase)
{
    for (const Signal& signal : bci::signals())
    {
        if (signal.shape->className == theCase.className)
        {
            return signal;
        }
    }
    throw std::runtime_error("no class " + theCase.className);
}

class Golden : public testing::TestWithParam<Case>
{
protected:
    void SetUp() override
    {
        BciMsgRegistry::registerSupportedMsgClasses();
        BciMessageBase* created = nullptr;
        ASSERT_TRUE(BciMessageBase::instantiateBciMsg(m_signal.number, created));
        m_message.reset(created);
    }

    std::string line(const std::string& word, const std::string& otherwise = "") const
    {
        const auto found = GetParam().lines.find(word);
        return found != GetParam().lines.end() ? found->second : otherwise;
    }

    // Sets the fields that a line names; all else is 0xA5.
    void fill(const std::string& line)
    {
        std::vector<char> structure(m_signal.shape->structureSize, '\xA5');
        std::map<std::string, std::size_t> seen;
        std::istringstream in(line);
        for (std::string name; std::getline(in >> std::ws, name, '=');)
        {
            const Leaf leaf = leafOf(name, seen[name]++, structure.data());
            char* const to = leaf.base + leaf.field.offset;
            if (leaf.field.kind != Kind::text)
            {
                std::int64_t number = 0;
                in >> number;
                storeNumber(leaf.field, number, leaf.base);
                continue;
            }
            const std::string text = takeQuoted(in);
            if (text.size() > leaf.field.size || (leaf.raw && text.size() != leaf.field.size))
            {
                throw std::runtime_error(name + " has other than the " + std::to_string(leaf.field.size) +
                                         " characters that it takes");
            }
            std::memset(to, 0, leaf.field.size);
            std::copy(text.begin(), text.end(), to);
        }
        m_message->setMsg(structure.data());
    }

    Leaf leafOf(const std::string& name, std::size_t which, char* structure) const
    {
        for (const Leaf& leaf : leaves(*m_signal.shape, structure))
        {
            if (leaf.name == name && which-- == 0)
            {
                return leaf;
            }
        }
        throw std::runtime_error("no field " + name);
    }

    // What the message holds, as a line of fields.
    std::string content() const
    {
        std::string line;
        for (const Leaf& leaf : leaves(*m_signal.shape, m_message->getMsg()))
        {
            const std::string_view characters(leaf.base + leaf.field.offset, leaf.field.size);
            line += (line.empty() ? "" : " ") + leaf.name + "=" +
                    (leaf.field.kind != Kind::text ? std::to_string(loadNumber(leaf.field, leaf.base))
                     : leaf.raw                    ? inQuotes(characters)
                                                   : inQuotes(characters.substr(0, characters.find('\0'))));
        }
        return line;
    }

    // A line of fields with its texts quoted in one and the same way.
    static std::string normalised(const std::string& line)
    {
        std::string result;
        std::istringstream in(line);
        for (std::string name; std::getline(in >> std::ws, name, '=');)
        {
            std::string value;
            if (in.peek() == '"')
            {
                value = inQuotes(takeQuoted(in));
            }
            else
            {
                in >> value;
            }
            result += (result.empty() ? "" : " ") + name + "=" + value;
        }
        return result;
    }

    void expectLog()
    {
        Log expected;
        const auto [first, last] = GetParam().lines.equal_range("log");
        for (auto it = first; it != last; ++it)
        {
            std::istringstream in(it->second);
            LogLine logLine{};
            in >> logLine.priority;
            logLine.format = takeQuoted(in);
            while (in >> std::ws && in.peek() == '"')
            {
                logLine.arguments.push_back(takeQuoted(in));
            }
            expected.push_back(logLine);
        }
        EXPECT_EQ(takeLog(), expected);
    }

    void expectWritten(const std::string& form, const std::string& data)
    {
        fill(line("fields"));
        std::vector<char> buffer(data.size() + 1, '\xA5');
        unsigned int length = static_cast<unsigned int>(buffer.size());
        const bool result = form == "text"     ? m_message->serializeToText(buffer.data(), length)
                            : form == "binary" ? m_message->serializeToBinary(buffer.data(), length)
                                               : m_message->serializeToXml(buffer.data(), length);
        EXPECT_EQ(result, line("result", "true") == "true");
        EXPECT_EQ(length, data.size());
        EXPECT_EQ(std::string(buffer.data(), buffer.size()), data + '\0');
        expectLog();
    }

    void expectRead(const std::string& form, const std::string& data, const std::string& after)
    {
        fill(line("before"));
        std::vector<char> buffer(data.begin(), data.end());
        if (form == "xml")
        {
            buffer.push_back('\0');
        }
        unsigned int length = static_cast<unsigned int>(buffer.size());
        const bool result = form == "text"     ? m_message->deserializeFromText(buffer.data(), length)
                            : form == "binary" ? m_message->deserializeFromBinary(buffer.data(), length)
                                               : m_message->deserializeFromXml(buffer.data(), length);
        EXPECT_EQ(result, line("result", "true") == "true");
        EXPECT_EQ(std::to_string(length), line("length", form == "xml" ? "0" : std::to_string(data.size())));
        EXPECT_EQ(content(), normalised(after));
        expectLog();
    }

    const Signal& m_signal = signalOf(GetParam());
    std::unique_ptr<BciMessageBase> m_message;
};

TEST_P(Golden, RenderingIsAsStated)
{
    int operations = 0;
    for (const auto& [word, rest] : GetParam().lines)
    {
        std::istringstream in(rest);
        std::string form = word;
        if (word == "writes" || word == "reads")
        {
            in >> form;
        }
        if (form != "text" && form != "binary" && form != "xml")
        {
            continue;
        }
        SCOPED_TRACE(word + " " + form);
        const std::string data = form == "binary" ? hexData(in) : quotedData(in);
        if (word != "reads")
        {
            expectWritten(form, data);
        }
        if (word != "writes")
        {
            expectRead(form, data, line(word == "reads" ? "after" : "fields"));
        }
        ++operations;
    }
    EXPECT_NE(operations, 0) << "this case compares nothing";
}

std::string nameOf(const testing::TestParamInfo<Case>& golden)
{
    std::string name = golden.param.className + "_" + golden.param.name;
    std::replace_if(
        name.begin(), name.end(), [](char ch) { return std::isalnum(ch) == 0; }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(, Golden, testing::ValuesIn(loadCases()), nameOf);

} // namespace
