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
    for (const std::string& name : names)
    {
        const char* behind = &copy[0];
        ASSERT_TRUE(index.find(copy.get(), name.c_str(), name.size(), behind)) << document;
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

        const char* const first = index.first(copy.get(), hashOf(name));
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
    const char* behind = nullptr;
    EXPECT_TRUE(index.find(document, "bb", 2, behind));
    EXPECT_EQ(behind, document + 12);
    EXPECT_TRUE(index.find(document, "a", 1, behind));
    EXPECT_EQ(behind, document + 3);
    EXPECT_TRUE(index.find(document, "c", 1, behind));
    EXPECT_EQ(behind, nullptr);
    EXPECT_EQ(index.first(document, hashOf("bb")), document + 9);
    EXPECT_EQ(index.first(document, hashOf("c")), nullptr);
}

TEST(ElementIndex, OfRepeatedNamesFindsTheFirst)
{
    const char* const document = "<a>1</a><b>2</b><a>3</a><b>4</b>";
    ElementIndex index;
    const char* behind = nullptr;
    EXPECT_TRUE(index.find(document, "b", 1, behind));
    EXPECT_EQ(behind, document + 11);
    EXPECT_EQ(index.first(document, hashOf("b")), document + 9);
    EXPECT_EQ(index.first(document, hashOf("a")), document + 1);
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
    const char* behind = document;
    EXPECT_TRUE(index.find(document, "", 0, behind));
    EXPECT_EQ(behind, nullptr);
}

TEST(ElementIndex, FindsNothingInAnEmptyDocument)
{
    compare("", {"a", "ab", "abcdefghij"});
}

TEST(ElementIndex, HasNoAnswerForANullDocument)
{
    ElementIndex index;
    const char* behind = nullptr;
    EXPECT_FALSE(index.find(nullptr, "a", 1, behind));
    EXPECT_EQ(index.first(nullptr, hashOf("a")), nullptr);
    TagTable<U8, 2> table;
    EXPECT_EQ(table.firstSlot(9), 1U) << "of twice as many slots as tags";
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

    ElementIndex index;
    const std::string document = tagsOf({two, one});
    EXPECT_EQ(index.first(document.c_str(), hashOf(one)), document.c_str() + 1) << "the other one's";
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
    using Few = TagTable<U8, 128>;
    std::vector<std::string> lastSlot;
    std::vector<std::string> firstSlot;
    for (unsigned int i = 0; lastSlot.size() < 40 || firstSlot.size() < 3; ++i)
    {
        const std::string name = "n" + std::to_string(i);
        const unsigned int slot = Few::firstSlot(hashOf(name));
        ASSERT_LT(slot, 256U);
        if (slot == 255)
        {
            lastSlot.push_back(name);
        }
        if (slot == 0)
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
    for (const unsigned int count : {1U, 127U, 128U, 129U, 130U, 256U, 257U, 511U, 512U})
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
        const char* behind = nullptr;
        EXPECT_FALSE(index.find(document.c_str(), "name0", 5, behind));
        EXPECT_EQ(index.first(document.c_str(), hashOf("name0")), nullptr);
        EXPECT_FALSE(index.find(document.c_str(), "absent", 6, behind)) << "nor for the next question";
    }
    const std::string document = tagsOf(manyNames(513));
    ElementIndex index;
    EXPECT_EQ(index.first(document.c_str(), hashOf("name0")), nullptr) << "whichever is the first question";
}

// The one that is asked first makes the table for both.
TEST(ElementIndex, GivesTheFirstOfAHashInDocumentsOfAnySize)
{
    for (const unsigned int count : {3U, 128U, 129U, 512U})
    {
        const std::string document = tagsOf(manyNames(count));
        ElementIndex index;
        for (const unsigned int i : {count - 1, 0U, 1U})
        {
            const std::string name = "name" + std::to_string(i);
            EXPECT_EQ(index.first(document.c_str(), hashOf(name)), document.c_str() + document.find(name + ">"))
                << name << " of " << count;
        }
        EXPECT_EQ(index.first(document.c_str(), hashOf("absent")), nullptr);
    }
}

TEST(ElementIndex, OfSmallBuildsHasNoAnswer)
{
    NoIndex index;
    const char* behind = nullptr;
    EXPECT_FALSE(index.find("<a>", "a", 1, behind));
    EXPECT_EQ(index.first("<a>", hashOf("a")), nullptr);
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
