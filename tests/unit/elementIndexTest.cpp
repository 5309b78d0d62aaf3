// The index of a document's tags answers like a search of the whole document.

#include "codec/elementIndex.h"
#include "codec/codec.h"
#include "codec/constants.h"
#include "codec/tagLookup.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace
{

using namespace bci::codec;

// By the definition, without reading in front of a name.
U32 hashOf(const std::string& name)
{
    return nameHash(name.c_str(), name.size(), false);
}

// Where a search finds the place behind the first opening tag of a name; null if there is none.
const char* searched(const std::string& document, const std::string& name)
{
    const std::size_t at = document.find("<" + name + ">");
    return at != std::string::npos ? document.c_str() + at + name.size() + 2 : nullptr;
}

// Asks an index for names one after another, and searches the document for each.
void compare(const std::string& document, const std::vector<std::string>& names)
{
    // An allocation of its own: nothing in front of the document and behind its zero belongs to it.
    const auto copy = std::make_unique<char[]>(document.size() + 1);
    std::memcpy(copy.get(), document.c_str(), document.size() + 1);
    ElementIndex index;
    index.make({copy.get(), document.size()});
    for (const std::string& name : names)
    {
        const char* behind = &copy[0];
        ASSERT_TRUE(index.find(name.c_str(), name.size(), behind)) << document;
        const char* const expected = searched(document, name);
        EXPECT_EQ(behind != nullptr, expected != nullptr) << name << " in " << document;
        if (behind != nullptr && expected != nullptr)
        {
            EXPECT_EQ(behind - copy.get(), expected - document.c_str()) << name << " in " << document;
        }

        TagContent byIndex = {};
        TagContent byTag = {};
        const char* const end = behind != nullptr ? findClosingTag(behind, name.c_str(), byIndex) : nullptr;
        EXPECT_EQ(end, findTag(copy.get(), name.c_str(), byTag)) << name << " in " << document;
        EXPECT_EQ(byIndex.begin, byTag.begin);
        EXPECT_EQ(byIndex.end, byTag.end);

        const char* const first = index.first(hashOf(name));
        if (expected != nullptr)
        {
            ASSERT_NE(first, nullptr) << name;
            EXPECT_LE(first, behind - name.size() - 1) << "another one of the same hash may be in front of it";
        }
    }
}

std::string tagsOf(const std::vector<std::string>& names)
{
    std::string document;
    for (const std::string& name : names)
    {
        document += "<" + name + ">";
    }
    return document;
}

std::vector<std::string> manyNames(unsigned int count)
{
    std::vector<std::string> names;
    for (unsigned int i = 0; i < count; ++i)
    {
        names.push_back("name" + std::to_string(i));
    }
    return names;
}

TEST(ElementIndex, FindsThePlaceBehindATag)
{
    const char* const document = "<a>1</a><bb>2</bb>";
    ElementIndex index;
    index.make(document);
    const char* behind = nullptr;
    EXPECT_TRUE(index.find("bb", 2, behind));
    EXPECT_EQ(behind, document + 12);
    EXPECT_TRUE(index.find("a", 1, behind));
    EXPECT_EQ(behind, document + 3);
    EXPECT_TRUE(index.find("c", 1, behind));
    EXPECT_EQ(behind, nullptr);
    EXPECT_EQ(index.first(hashOf("bb")), document + 9);
    EXPECT_EQ(index.first(hashOf("c")), nullptr);
}

TEST(ElementIndex, OfRepeatedNamesFindsTheFirst)
{
    const char* const document = "<a>1</a><b>2</b><a>3</a><b>4</b>";
    ElementIndex index;
    index.make(document);
    const char* behind = nullptr;
    EXPECT_TRUE(index.find("b", 1, behind));
    EXPECT_EQ(behind, document + 11);
    EXPECT_EQ(index.first(hashOf("b")), document + 9);
    EXPECT_EQ(index.first(hashOf("a")), document + 1);
    compare(std::string(document) + document, {"a", "b", "c"});
}

TEST(ElementIndex, TakesNothingElseForATag)
{
    compare("<a<b>1</b>", {"a", "b", "c"});
    compare("<<a>>", {"a"});
    compare("1 < 2 <a>3</a>", {"a"});
    compare("<a", {"a"});
    compare("<a><b", {"a", "b"});
    compare("<ab><a", {"a", "ab", "b"});
    compare("<", {"a"});
    compare("<></><a>", {"a"});
    compare("</a><a>", {"a"});
    compare("</a></b>", {"a", "b"});
    compare("</<a>", {"a"});
    compare("<a/><b />", {"a", "b", "a/", "b />"});
    compare("<a\n><b ><c>", {"a", "b", "c", "a\n"});
    compare("a>b<c", {"a", "b", "c"});
}

TEST(ElementIndex, NeverFindsAnEmptyName)
{
    const char* const document = "<></><a>";
    ElementIndex index;
    index.make(document);
    const char* behind = document;
    EXPECT_TRUE(index.find("", 0, behind));
    EXPECT_EQ(behind, nullptr);
}

TEST(ElementIndex, FindsNothingInAnEmptyDocument)
{
    compare("", {"a", "ab", "abcdefghij"});
}

TEST(ElementIndex, HasNoAnswerWithoutADocument)
{
    ElementIndex index;
    const char* behind = nullptr;
    EXPECT_FALSE(index.isMade());
    EXPECT_FALSE(index.find("a", 1, behind));
    EXPECT_EQ(index.first(hashOf("a")), nullptr);
}

TEST(ElementIndex, FindsNamesOfEveryLengthFromTheStartOn)
{
    const std::string letters = "abcdefghijklmnopqrst";
    for (std::size_t size = 1; size <= letters.size(); ++size)
    {
        for (std::size_t before = 0; before <= 10; ++before)
        {
            const std::string name = letters.substr(0, size);
            compare(std::string(before, '\t') + "<" + name + ">1</" + name + ">",
                    {name, name + "u", name.substr(1), "x" + name.substr(1)});
        }
    }
}

// A document is looked through in blocks of 64 characters, the last of which overlaps the one before.
TEST(ElementIndex, FindsTagsWhereverBlocksEnd)
{
    for (std::size_t before = 0; before <= 130; ++before)
    {
        for (const std::size_t behind : {0U, 1U, 40U, 63U, 64U, 65U})
        {
            compare(std::string(before, ' ') + "<abc>1</abc><b></b><a" + std::string(behind, '\n'),
                    {"abc", "b", "a"});
            compare(std::string(before, '=') + "<" + std::string(behind, 'a') + ">",
                    {std::string(behind + 1, 'a'), std::string(behind == 0 ? 1 : behind, 'a')});
        }
    }
}

TEST(ElementIndex, TakesNoOtherCharacterForABracket)
{
    for (int ch = 1; ch < 256; ++ch)
    {
        if (ch == '<' || ch == '>')
        {
            continue;
        }
        const std::string other(1, static_cast<char>(ch));
        compare("<a" + other + "a>" + other + "a>", {"a", "aa", "a" + other + "a"});
        compare(other + "a>" + std::string(70, other[0]) + "<b" + other, {"a", "b"});
    }
}

// The last eight characters and the first one are hashed, and the length. What differs in none of them has one
// hash.
TEST(ElementIndex, TellsNamesOfOneHashApart)
{
    const std::string one = "a1_abcdefgh";
    const std::string two = "a2_abcdefgh";
    ASSERT_EQ(hashOf(one), hashOf(two));
    compare(tagsOf({one}), {one, two});
    compare(tagsOf({one, two}), {one, two});
    compare(tagsOf({two, one, one, two}), {one, two});

    const std::string document = tagsOf({two, one});
    ElementIndex index;
    index.make(document);
    EXPECT_EQ(index.first(hashOf(one)), document.c_str() + 1) << "the other one's";
}

// The hash of a name that goes on like another one, where length and last character make up for each other.
TEST(ElementIndex, TellsANameFromALongerOneOfItsHash)
{
    const std::string name(8, 'b');
    const std::string longer = name + "c";
    ASSERT_EQ(hashOf(name), hashOf(longer));
    compare(tagsOf({longer}), {name, longer});
    compare(tagsOf({longer, name}), {name, longer});
}

// A short name's hash is made of all of it, yet has 32 bits alone: among so many names some have the same.
TEST(ElementIndex, TellsShortNamesOfOneHashApart)
{
    std::mt19937 random; // its numbers are the same everywhere
    std::map<U32, std::string> names;
    std::vector<std::pair<std::string, std::string>> collisions;
    for (int i = 0; i < 300000; ++i)
    {
        std::string name = "aaaaaa";
        for (char& ch : name)
        {
            ch = static_cast<char>('a' + random() % 26);
        }
        const auto [other, isNew] = names.insert({hashOf(name), name});
        if (!isNew && other->second != name)
        {
            collisions.emplace_back(other->second, name);
        }
    }
    ASSERT_FALSE(collisions.empty());
    for (const auto& [one, two] : collisions)
    {
        compare(tagsOf({one}), {two, one});
        compare(tagsOf({one, two}), {two, one});
    }
}

// Names whose slots are the same, or follow one another up to the table's end, where the first slots follow.
TEST(ElementIndex, TellsNamesOfOneSlotApart)
{
    constexpr U32 kMask = 255; // the slots of 65 to 128 tags
    std::vector<std::string> lastSlot;
    std::vector<std::string> firstSlot;
    for (unsigned int i = 0; lastSlot.size() < 100 || firstSlot.size() < 3; ++i)
    {
        const std::string name = "n" + std::to_string(i);
        const U32 slot = hashOf(name) & kMask;
        if (slot == kMask && lastSlot.size() < 100)
        {
            lastSlot.push_back(name);
        }
        if (slot == 0 && firstSlot.size() < 3)
        {
            firstSlot.push_back(name);
        }
    }
    const std::string absent = lastSlot.back();
    lastSlot.pop_back();
    std::vector<std::string> names = lastSlot;
    names.insert(names.end(), firstSlot.begin(), firstSlot.end());
    const std::string document = tagsOf(names);
    names.push_back(absent);
    compare(document, names);
}

TEST(ElementIndex, HoldsUpTo512Tags)
{
    for (const unsigned int count : {1U, 7U, 8U, 9U, 16U, 17U, 127U, 128U, 129U, 130U, 256U, 257U, 511U, 512U})
    {
        std::vector<std::string> names = manyNames(count);
        const std::string document = "</b><><name0<" + tagsOf(names) + "</a><></a><";
        names.emplace_back("absent");
        compare(document, names);
        compare(tagsOf(std::vector<std::string>(count, "same")), {"same", "other"});
    }
}

TEST(ElementIndex, HasNoAnswerForMoreTags)
{
    for (const unsigned int count : {513U, 514U, 2000U})
    {
        const std::string document = tagsOf(manyNames(count));
        ElementIndex index;
        index.make(document);
        const char* behind = nullptr;
        EXPECT_FALSE(index.find("name0", 5, behind));
        EXPECT_EQ(index.first(hashOf("name0")), nullptr);
        EXPECT_FALSE(index.find("absent", 6, behind));
        EXPECT_TRUE(index.isMade()) << "there is no other try";
    }
}

TEST(ElementIndex, GivesTheFirstOfAHashInDocumentsOfAnySize)
{
    for (const unsigned int count : {3U, 8U, 9U, 128U, 129U, 512U})
    {
        const std::string document = tagsOf(manyNames(count));
        ElementIndex index;
        index.make(document);
        for (const unsigned int i : {count - 1, 0U, 1U})
        {
            const std::string name = "name" + std::to_string(i);
            EXPECT_EQ(index.first(hashOf(name)), document.c_str() + document.find(name + ">"))
                << name << " of " << count;
        }
        EXPECT_EQ(index.first(hashOf("absent")), nullptr);
    }
}

TEST(ElementIndex, OfSmallBuildsHasNoAnswer)
{
    NoIndex index;
    index.make("<a>");
    const char* behind = nullptr;
    EXPECT_TRUE(index.isMade()) << "nobody makes it";
    EXPECT_FALSE(index.find("a", 1, behind));
    EXPECT_EQ(index.first(hashOf("a")), nullptr);
}

TEST(ElementIndex, AnswersLikeASearchOfRandomDocuments)
{
    std::mt19937 random; // its numbers are the same everywhere
    const auto below = [&random](std::size_t limit) { return static_cast<std::size_t>(random() % limit); };
    const std::vector<std::string> names = {
        "a",           "b",           "ab",        "ba",
        "abcdefg",     "abcdefgh",    "abcdefghi", "xbcdefghi",
        "a1abcdefghi", "a2abcdefghi", "a_1_2",     "abc\tdef",
        " a",          "a ",          "a.b",       "longestOfAllTheNamesThatThereAre"};
    const std::vector<std::string> others = {"<", ">", "/", "</", "<>", "</>", "\n\t", "1", "value", "<<", ">>"};
    for (int i = 0; i < 5000; ++i)
    {
        std::string document;
        for (std::size_t pieces = below(i % 50 == 0 ? 1000 : 12); pieces != 0; --pieces)
        {
            const std::string& name = names[below(names.size())];
            switch (below(5))
            {
            case 0:
                document += "<" + name + ">1</" + name + ">";
                break;
            case 1:
                document += "<" + name + ">";
                break;
            case 2:
                document += "</" + name + ">";
                break;
            case 3:
                document += "<" + name;
                break;
            default:
                document += others[below(others.size())];
            }
        }
        compare(document, names);
    }
}

// The constants of the engine know the hashes of their names beforehand.

constexpr Field kNameRows[] = {{0, 1, Kind::u8, Oddity::none, 1, "ab"},
                               {0, 1, Kind::u8, Oddity::bareOpening, 1, "bc"},
                               {0, 1, Kind::u8, Oddity::bareOpening, 1, "abcdef"},
                               {0, 1, Kind::u8, Oddity::none, 1, "abcdef"},
                               {0, 1, Kind::u8, Oddity::none, 1, "abcdefg"},
                               {0, 1, Kind::u8, Oddity::bareOpening, 1, "abcdefg"},
                               {0, 1, Kind::u8, Oddity::none, 1, "abcdefgh"},
                               {0, 1, Kind::u8, Oddity::none, 1, "abcdefghi"},
                               {0, 1, Kind::u8, Oddity::none, 1, "a_"},
                               {0, 1, Kind::u8, Oddity::none, 1, "b__"},
                               {0, 1, Kind::u8, Oddity::none, 1, "abcdefg_"},
                               {0, 1, Kind::u8, Oddity::none, 1, "abcdefg__"},
                               {0, 1, Kind::u8, Oddity::bareOpening, 1, "longestOfAllTheNames__"}};
constexpr Fields kNames = {"sampleMsg", kNameRows};

template <std::size_t index, bool indexed>
void compareHash(const Subscripts& subscripts)
{
    using Opening = TextBlock<ConstantField<kNames, index>, true, indexed>;
    const ElementName name(kNameRows[index].tag, indexed ? &subscripts : nullptr);
    EXPECT_EQ(Opening::hash(subscripts), nameHash(name.text(), name.size(), false)) << name.text();
}

TEST(ElementIndex, ForgetsTheTagsOfTheDocumentBefore)
{
    const std::string before = "<a><b><c><d><e><f><g><h><i><j>";
    const std::string now = "<a><b><c><d><e><f><g><h><i> j>"; // the last one is none
    ElementIndex index;
    index.make(before);
    index.make(now);

    const char* behind = now.c_str();
    EXPECT_TRUE(index.find("j", 1, behind));
    EXPECT_EQ(behind, nullptr);
    EXPECT_EQ(index.first(hashOf("j")), nullptr);
}

TEST(ElementIndex, HashesNamesLikeConstants)
{
    [&]<std::size_t... index>(std::index_sequence<index...>)
    {
        for (const Subscripts& subscripts : {Subscripts{0, 0}, Subscripts{1, 2}, Subscripts{9, 9}})
        {
            (compareHash<index, false>(subscripts), ...);
            (compareHash<index, true>(subscripts), ...);
        }
    }
    (std::make_index_sequence<std::size(kNameRows)>());
}

} // namespace
