// Random messages of every class, through the codecs and through the walk of the tools. What a form does not
// promise to bring back is stated here: either such values are not made, or the expectation says what
// comes back instead. The messages' own tests have each case by itself.

#include "bciMessage.h"
#include "bciMsgRegistration.h"
#include "catalogue.h"
#include "logCapture.h"
#include "output.h"
#include "record.h"
#include "rows.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <bit>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace
{

using namespace bci::codec;
using bci::tool::Form;

constexpr int kMessages = 200; // of each class and form

// What the rows of a message mean to each other.
struct Relations : std::map<const Field*, std::vector<std::int64_t>> // values that a count or selector may take
{
    explicit Relations(const Group& group)
    {
        collect(group);
    }

    void collect(const Group& group)
    {
        for (const Part& part : group.further)
        {
            if (const auto* list = std::get_if<const List*>(&part))
            {
                upTo((*list)->count, (*list)->bound);
                collect((*list)->element);
            }
            else if (const auto* choice = std::get_if<const Choice*>(&part))
            {
                for (const Case& one : (*choice)->cases)
                {
                    (*this)[(*choice)->selector].push_back(one.value);
                    collect(one.content);
                }
            }
            else if (const auto* entries = std::get_if<const LogEntries*>(&part))
            {
                upTo((*entries)->count, 11); // from the twelfth on, XML is not read back
            }
            else if (const auto* block = std::get_if<const Block*>(&part))
            {
                upTo((*block)->length, (*block)->bound);
            }
            else if (const auto* limit = std::get_if<const Limit*>(&part))
            {
                upTo((*limit)->field, (*limit)->bound);
            }
        }
    }

    void upTo(const Field* field, std::int64_t bound)
    {
        for (std::int64_t value = 0; value <= bound; ++value)
        {
            (*this)[field].push_back(value);
        }
    }
};

// Fills a structure at random with what a form promises to bring back.
class Randomiser : public Visitor
{
public:
    Randomiser(const bci::codec::Shape& shape, Form form, std::mt19937& random)
        : m_relations(shape.content), m_form(form), m_random(random)
    {
    }

    void field(const Field& field, char* base, const Subscripts* /*subscripts*/) override
    {
        if (field.kind == Kind::text)
        {
            text(base + field.offset, field.size, field.size - 1U);
            return;
        }
        const auto related = m_relations.find(&field);
        if (related == m_relations.end())
        {
            storeNumber(field, number(field), base);
            return;
        }
        std::vector<std::int64_t>& values = related->second;
        // Text without additional data does not bring back the fault case.
        const bool notEmpty = m_form == Form::text && std::string_view(field.tag) == "additionalDataLength";
        const std::size_t which = upTo(values.size() - 1 - notEmpty) + notEmpty;
        storeNumber(field, values[which], base);
        if (m_form == Form::xml && std::string_view(field.tag) == "boardCapabilityIdentity_")
        {
            values.erase(values.begin() + static_cast<std::ptrdiff_t>(which)); // two of one kind share values
        }
    }

    void entry(const Field& entry, char* base, const Subscripts& /*subscripts*/) override
    {
        text(base + entry.offset, entry.size, std::min<std::size_t>(entry.size - 1U, 37));
    }

    void block(const Field& block, char* base) override
    {
        for (U16 i = 0; i < block.size; ++i)
        {
            base[block.offset + i] = character();
        }
    }

private:
    std::size_t upTo(std::size_t greatest)
    {
        return std::uniform_int_distribution<std::size_t>(0, greatest)(m_random);
    }

    // Extremes as often as anything else.
    std::int64_t number(const Field& field)
    {
        const bool isSigned = field.kind == Kind::s16 || field.kind == Kind::s32;
        const int bits = 8 * field.size;
        const std::int64_t span = std::int64_t{1} << bits;
        const std::int64_t least = isSigned ? -span / 2 : 0;
        const std::int64_t greatest = least + span - 1;
        switch (upTo(3))
        {
        case 0:
            return greatest;
        case 1:
            // The least number of all is not read from text.
            return field.kind == Kind::s32 && m_form == Form::text ? least + 1 : least;
        case 2:
            return static_cast<std::int64_t>(upTo(9));
        default:
            return std::uniform_int_distribution<std::int64_t>(
                field.kind == Kind::s32 && m_form == Form::text ? least + 1 : least, greatest)(m_random);
        }
    }

    void text(char* to, std::size_t size, std::size_t longest)
    {
        std::fill_n(to, size, '\0');
        const std::size_t length = upTo(2) == 0 ? longest : upTo(longest);
        for (std::size_t i = 0; i < length; ++i)
        {
            to[i] = character();
        }
    }

    // Anything but zero, and what ends a value in the form: ':' in text, '<' in XML.
    char character()
    {
        char ch = '\0';
        while (ch == '\0' || (m_form == Form::text && ch == ':') || (m_form == Form::xml && ch == '<'))
        {
            ch = static_cast<char>(upTo(255));
        }
        return ch;
    }

    Relations m_relations;
    Form m_form;
    std::mt19937& m_random;
};

using Content = std::vector<std::pair<std::string, std::string>>;

Content contentOf(const Shape& shape, char* structure)
{
    Content content;
    for (const Leaf& leaf : leaves(shape, structure))
    {
        const std::string characters(leaf.base + leaf.field.offset, leaf.field.size);
        content.emplace_back(leaf.name,
                             leaf.field.kind != Kind::text
                                 ? std::to_string(loadNumber(leaf.field, leaf.base))
                                 : (leaf.raw ? characters : characters.substr(0, characters.find('\0'))));
    }
    return content;
}

class RandomMessages : public testing::TestWithParam<bci::Signal>
{
protected:
    using Writer = bool (BciMessageBase::*)(char*, unsigned int&) const;
    using Reader = bool (BciMessageBase::*)(char*, unsigned int&);

    void SetUp() override
    {
        BciMsgRegistry::registerSupportedMsgClasses();
    }

    std::unique_ptr<BciMessageBase> message() const
    {
        BciMessageBase* created = nullptr;
        EXPECT_TRUE(BciMessageBase::instantiateBciMsg(GetParam().number, created));
        return std::unique_ptr<BciMessageBase>(created);
    }

    bool is(const char* className) const
    {
        return shape().className == std::string(className);
    }

    const Shape& shape() const
    {
        return *GetParam().shape;
    }

    std::vector<char> randomStructure(Form form)
    {
        std::vector<char> structure(shape().structureSize);
        for (char& byte : structure)
        {
            byte = static_cast<char>(m_random());
        }
        Randomiser randomiser(shape(), form, m_random);
        walk(shape(), structure.data(), randomiser);
        return structure;
    }

    // Writes a random message, has the tools and the codec read it, and compares.
    void roundTrip(Form form, Writer write, Reader read)
    {
        for (int i = 0; i < kMessages; ++i)
        {
            std::vector<char> structure = randomStructure(form);
            Content content = contentOf(shape(), structure.data());
            const std::unique_ptr<BciMessageBase> writer = message();
            writer->setMsg(structure.data());
            std::string buffer(32768, '\xA5');
            auto length = static_cast<unsigned int>(buffer.size());
            ASSERT_TRUE((writer.get()->*write)(buffer.data(), length));
            ASSERT_LT(length, buffer.size());
            EXPECT_EQ(contentOf(shape(), writer->getMsg()), content);

            bci::tool::Record record = inspect(bci::tool::Rendering{std::string_view(buffer).substr(0, length),
                                                                    form, std::endian::native, &GetParam()});
            ASSERT_EQ(contentOf(shape(), record.structure.data()), content);
            Content listed;
            for (const bci::tool::FieldValue& field : record.fields)
            {
                listed.emplace_back(field.name.substr(0, field.name.find('[')), field.value);
            }
            ASSERT_EQ(listed, content);

            const std::unique_ptr<BciMessageBase> reader = message();
            std::vector<char> before = randomStructure(form);
            reader->setMsg(before.data());
            length += form != Form::binary; // the character that the log set request wants, and XML's zero
            const bool result = (reader.get()->*read)(buffer.data(), length);
            if (form == Form::xml && is("BciLoadLmcAck"))
            {
                // Its last element is closed by another name.
                ASSERT_FALSE(result);
                ASSERT_EQ(takeLog(), Log({{6, "[src/bciLoadLmcMsg:246] tag %s not found", {"lmSeqNr"}}}));
                continue;
            }
            ASSERT_TRUE(result);
            if (form == Form::xml)
            {
                expectFromXml(structure.data(), contentOf(shape(), before.data()), content);
            }
            ASSERT_EQ(contentOf(shape(), reader->getMsg()), content);
        }
    }

    // What XML brings back of a content.
    void expectFromXml(char* structure, const Content& before, Content& content)
    {
        constexpr std::int64_t kGreatest = std::numeric_limits<std::int32_t>::max();
        const std::vector<Leaf> fields = leaves(shape(), structure);
        for (std::size_t i = 0; i < fields.size(); ++i)
        {
            auto& [name, value] = content[i];
            if (fields[i].field.kind == Kind::u32)
            {
                value = std::to_string(std::min<std::int64_t>(std::stoll(value), kGreatest));
            }
            if (name == "serialNumber") // is not read
            {
                value = before.back().second;
            }
            if (name.starts_with("boardCapabilityIdentity_") && value == "3")
            {
                EXPECT_EQ(takeLog(), Log({{6, "[src/bciCapabilityMsg:1118] cap %d nothing to do", {"3"}}}));
            }
        }
    }

    std::mt19937 m_random{20261120};
};

TEST_P(RandomMessages, SurviveText)
{
    roundTrip(Form::text, &BciMessageBase::serializeToText, &BciMessageBase::deserializeFromText);
}

TEST_P(RandomMessages, SurviveBinary)
{
    roundTrip(Form::binary, &BciMessageBase::serializeToBinary, &BciMessageBase::deserializeFromBinary);
}

TEST_P(RandomMessages, SurviveXml)
{
    roundTrip(Form::xml, &BciMessageBase::serializeToXml, &BciMessageBase::deserializeFromXml);
}

// One signal of each class.
std::vector<bci::Signal> classes()
{
    std::vector<bci::Signal> result;
    for (const bci::Signal& signal : bci::signals())
    {
        if (std::none_of(result.begin(), result.end(),
                         [&](const bci::Signal& other) { return other.shape == signal.shape; }))
        {
            result.push_back(signal);
        }
    }
    return result;
}

INSTANTIATE_TEST_SUITE_P(, RandomMessages, testing::ValuesIn(classes()),
                         [](const auto& signal) { return std::string(signal.param.shape->className); });

// The same through the pieces of the command.
class RandomRecords : public RandomMessages
{
protected:
    static constexpr int kRecords = 12; // of each signal and form

    std::string randomRendering(Form form, std::endian firstWord)
    {
        std::vector<char> structure = randomStructure(form);
        storeNumber(shape().content.rows.front(), static_cast<std::int64_t>(GetParam().number), structure.data());
        std::string rendering = bci::tool::render(structure, GetParam(), form, firstWord);
        EXPECT_EQ(takeLog(), Log());
        return rendering;
    }

    static std::string rowsOf(const std::string& input)
    {
        bci::tool::Buffer rows;
        bci::tool::MemoryStream stream(input);
        bci::tool::RowWriter writer(rows, [] {});
        bci::tool::RecordReader<bci::tool::RowWriter>("in", bci::tool::Packing::automatic, writer).readAll(stream);
        return std::string(rows.text());
    }

    static std::vector<std::string> linesOf(const std::string& text)
    {
        std::vector<std::string> lines;
        std::istringstream in(text);
        for (std::string line; std::getline(in, line);)
        {
            lines.push_back(line);
        }
        return lines;
    }

    // Reads a rendering, which has no findings but those that say what the binary form carries beyond its values;
    // its row makes it again.
    void expectRow(const std::string& rendering, Form form, std::endian firstWord)
    {
        SCOPED_TRACE(bci::tool::hexDigits(rendering));
        const std::vector<std::string> rows = linesOf(rowsOf(rendering));
        ASSERT_EQ(rows.size(), 1U);
        const auto row = nlohmann::json::parse(rows.front());
        EXPECT_EQ(row["class"], shape().className);
        EXPECT_EQ(row["name"], GetParam().name);
        EXPECT_TRUE(row["damages"].empty()) << row["damages"];
        for (const auto& note : row["notes"])
        {
            EXPECT_EQ(note["code"], "unused-bytes");
            EXPECT_EQ(form, Form::binary);
        }
        EXPECT_EQ(row["original"].is_null(), row["notes"].empty());
        EXPECT_TRUE(row["rest"].is_null());
        std::string again;
        bci::tool::Rendering found;
        EXPECT_EQ(bci::tool::readRow(rows.front(), again, found), "");
        EXPECT_EQ(again, rendering);
        EXPECT_EQ(found.form, form);
        if (form == Form::binary)
        {
            EXPECT_EQ(found.firstWord, firstWord);
        }
    }

    // Changes, removes, repeats or inserts bytes at a few places.
    void damage(std::string& bytes)
    {
        for (std::size_t count = 1 + m_random() % 4; count != 0 && !bytes.empty(); --count)
        {
            const std::size_t at = m_random() % bytes.size();
            const std::size_t length = std::min<std::size_t>(1 + m_random() % 9, bytes.size() - at);
            constexpr std::string_view kSpecial("\0\n:<>-0 \r\t{", 11);
            switch (m_random() % 6)
            {
            case 0:
                bytes[at] = static_cast<char>(m_random());
                break;
            case 1:
                bytes[at] = kSpecial[m_random() % kSpecial.size()];
                break;
            case 2:
                bytes.erase(at, length);
                break;
            case 3:
                bytes.insert(at, bytes.substr(at, length));
                break;
            case 4:
                bytes.insert(at, 1, kSpecial[m_random() % kSpecial.size()]);
                break;
            default:
                bytes.resize(at);
                break;
            }
        }
    }

    // Every byte belongs to one record, or is blank and between two.
    static void expectCovered(const std::string& input)
    {
        std::size_t covered = 0;
        const auto skipTo = [&](std::size_t offset)
        {
            ASSERT_LE(covered, offset);
            ASSERT_EQ(
                input.substr(covered, offset - covered).find_first_not_of(std::string_view(" \t\r\n\v\f\0", 7)),
                std::string::npos)
                << "between " << covered << " and " << offset;
        };
        bci::tool::Collector collector(
            [&](const bci::tool::Item& item, const bci::tool::Record& record)
            {
                const std::string_view bytes = item.rendering.bytes;
                const auto offset = static_cast<std::size_t>(item.offset);
                skipTo(offset);
                const std::size_t size = item.digits.empty() ? bytes.size() : item.digits.size();
                ASSERT_LE(offset + size, input.size());
                if (item.carrier == bci::tool::Carrier::plain)
                {
                    ASSERT_EQ(bytes, std::string_view(input).substr(offset, size));
                }
                for (const bci::tool::Finding& finding : record.findings)
                {
                    ASSERT_LE(finding.position, bytes.size() + 2) << "the end of its line may be in between";
                }
                covered = offset + size;
            });
        bci::tool::MemoryStream stream(input);
        bci::tool::RecordReader<bci::tool::Collector>("in", bci::tool::Packing::automatic, collector)
            .readAll(stream);
        skipTo(input.size());
    }
};

TEST_P(RandomRecords, GoThroughRows)
{
    for (int i = 0; i < kRecords; ++i)
    {
        expectRow(randomRendering(Form::text, std::endian::big), Form::text, std::endian::big);
        expectRow(randomRendering(Form::xml, std::endian::big), Form::xml, std::endian::big);
        for (const std::endian order : {std::endian::big, std::endian::little})
        {
            expectRow(randomRendering(Form::binary, order), Form::binary, order);
        }
    }
}

TEST_P(RandomRecords, AreReadToTheLastByteWhateverTheDamage)
{
    for (int i = 0; i < kRecords; ++i)
    {
        for (const Form form : {Form::text, Form::binary, Form::xml})
        {
            std::string input;
            for (int count = 0; count < 3; ++count)
            {
                input += randomRendering(form, i % 2 == 0 ? std::endian::big : std::endian::little);
                input += form == Form::text ? "\n" : "";
            }
            damage(input);
            SCOPED_TRACE(bci::tool::hexDigits(input));
            ASSERT_NO_FATAL_FAILURE(expectCovered(input));
            const std::string rows = rowsOf(input);
            for (const std::string& row : linesOf(rows))
            {
                ASSERT_TRUE(nlohmann::json::accept(row)) << row;
            }
            ASSERT_EQ(rowsOf(input), rows);
            takeLog();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(, RandomRecords, testing::ValuesIn(bci::signals().begin(), bci::signals().end()),
                         [](const auto& signal) { return std::string(signal.param.name); });

} // namespace
