// Looking elements up in one pass comes to the same as searching the whole document for each.

#include "codec/elements.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

using bci::codec::Elements;
using bci::codec::TagContent;
using commonStream::istream_text;

std::string element(const std::string& tag, const std::string& value)
{
    return "\t<" + tag + ">\n\t  " + value + "\n\t</" + tag + ">\n";
}

// What is found under names that are asked for one after another; "-" where nothing is.
std::string found(std::string document, const std::vector<std::string>& names, bool repeats = false)
{
    istream_text stream;
    stream.attachBuffer(document.data(), static_cast<unsigned int>(document.size()));
    Elements elements(stream);
    elements.repeat(repeats);
    std::string text;
    for (const std::string& name : names)
    {
        TagContent content = {};
        const bool there = elements.find(name.c_str(), name.size(), content);
        text += (there ? "[" + std::string(content.begin, content.end) + "]" : "-");
    }
    return text;
}

TEST(Elements, AreFoundInTheWritersOrder)
{
    EXPECT_EQ(found(element("a", "1") + element("bb", " x ") + element("c", ""), {"a", "bb", "c"}), "[1][ x ][]");
    EXPECT_EQ(found(element("a", "1") + element("b", "2"), {"a", "b", "c"}), "[1][2]-");
}

TEST(Elements, AreFoundInAnyOtherOrder)
{
    const std::string document = element("a", "1") + element("b", "2") + element("c", "3") + element("d", "4");
    EXPECT_EQ(found(document, {"d", "c", "b", "a"}), "[4][3][2][1]");
    EXPECT_EQ(found(document, {"a", "c", "d", "b"}), "[1][3][4][2]");
    EXPECT_EQ(found("\n" + document, {"a", "b", "c", "d"}), "[1][2][3][4]");
}

TEST(Elements, AreTheFirstOfTheirName)
{
    EXPECT_EQ(found(element("a", "1") + element("a", "2") + element("b", "3"), {"a", "b"}), "[1][3]");
    EXPECT_EQ(found(element("b", "1") + element("a", "2") + element("b", "3"), {"a", "b"}), "[2][1]");
    EXPECT_EQ(found(element("a", element("b", "1")) + element("b", "2"), {"a", "b"}),
              "[" + element("b", "1") + "][1]")
        << "an element within a value";
    EXPECT_EQ(found(element("a", "<b>1</b>") + element("b", "2"), {"a", "b"}), "[<b>1</b>][1]");
    EXPECT_EQ(found(element("a", "1</a>2"), {"a"}), "[1]");
}

TEST(Elements, AreTheFirstOfTheirNameWhereNamesRepeat)
{
    const std::string document = element("a", "1") + element("b", "2") + element("a", "3") + element("b", "4");
    EXPECT_EQ(found(document, {"a", "b", "a", "b"}, true), "[1][2][1][2]");

    std::string copy = document + element("c", "5");
    istream_text stream;
    stream.attachBuffer(copy.data(), static_cast<unsigned int>(copy.size()));
    Elements elements(stream);
    TagContent content = {};
    std::string text;
    for (const std::string name : {"a", "b", "a", "b", "c"})
    {
        elements.repeat(text.size() >= 2 && name != "c");
        ASSERT_TRUE(elements.find(name.c_str(), name.size(), content));
        text.append(content.begin, content.end);
    }
    EXPECT_EQ(text, "12125");
}

TEST(Elements, NeedNeitherTheWritersLayoutNorTheirClosingTag)
{
    EXPECT_EQ(found("<a>1</a><b> 2\r\n</b>\t<c>\n\t   3\n\t</c>\n", {"a", "b", "c"}), "[1][2][ 3]");
    EXPECT_EQ(found("<a>\n\t   1\n\t</a>\n" + element("b", "2"), {"a", "b"}), "[ 1][2]") << "without its tab";
    EXPECT_EQ(found("\t<a>\n\t  1\n\t</b>\n" + element("b", "2"), {"a", "b"}), "-[2]");
    EXPECT_EQ(found("\t<a>\n\t  1\n\t</b>\n\t<a>\n\t  3\n\t</a>\n", {"a"}), "[1\n\t</b>\n\t<a>\n\t  3]");
}

TEST(Elements, OfADocumentThatIsCutAreThoseOfASearch)
{
    const std::string document =
        element("a", "1") + element("ab", "xy") + "<c>\n\t   3\n\t</c>\n" + element("b", "");
    for (std::size_t length = 0; length <= document.size(); ++length)
    {
        const std::string cut = document.substr(0, length);
        std::string searched;
        for (const char* name : {"a", "ab", "c", "b"})
        {
            TagContent content = {};
            const bool there = bci::codec::findTag(cut.c_str(), name, content) != nullptr;
            searched += (there ? "[" + std::string(content.begin, content.end) + "]" : "-");
        }
        EXPECT_EQ(found(cut, {"a", "ab", "c", "b"}), searched) << length;
    }
}

TEST(Elements, OfALongDocumentAreFoundToItsEnd)
{
    for (const std::size_t size : {8000U, 8191U, 8192U, 8193U, 20000U})
    {
        const std::string behind = element("b", "2") + element("a", "3");
        const std::string value(size - element("a", "").size() - behind.size(), 'x');
        const std::string document = element("a", value) + behind;
        ASSERT_EQ(document.size(), size);
        EXPECT_EQ(found(document, {"a", "b", "c"}), "[" + value + "][2]-");
        EXPECT_EQ(found(document, {"b", "a"}), "[2][" + value + "]");
        EXPECT_EQ(found("<d>" + document + "<c>4</c>", {"c", "d", "b"}), "[4]-[2]");
    }
}

TEST(Elements, AreNotInANullDocument)
{
    istream_text stream;
    Elements elements(stream);
    TagContent content = {};
    EXPECT_FALSE(elements.find("a", 1, content));
    EXPECT_EQ(elements.document(), nullptr);
}

} // namespace
