#include "stream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

using commonStream::ostream_text;
using namespace std::string_view_literals;

namespace
{

const unsigned int defaultSize = 424;

using Lookup = bool (*)(const char*, const char*, char*, int&);
using SizedLookup = bool (*)(const char*, const char*, char*, unsigned int, int&);

struct Result
{
    bool found;
    std::string content;
    int offset;

    bool operator==(const Result&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Result& result)
{
    return out << (result.found ? "found " : "not found ") << testing::PrintToString(result.content) << " offset "
               << result.offset;
}

// What the content buffer holds before a lookup.
const std::string_view before = "before";

std::vector<char> contentBuffer(unsigned int size)
{
    std::vector<char> content(size, '\0');
    std::copy(before.begin(), before.end(), content.begin());
    return content;
}

// A document with its terminator and not a byte behind it.
std::vector<char> documentOf(std::string_view text)
{
    std::vector<char> document(text.begin(), text.end());
    document.push_back('\0');
    return document;
}

// Looks a tag up with both signatures, which have to agree.
Result lookUp(std::string_view text, const char* tag)
{
    const std::vector<char> document = documentOf(text);
    std::vector<char> content = contentBuffer(defaultSize);
    std::vector<char> sizedContent = contentBuffer(defaultSize);
    Result result{false, "", -1};
    Result sized{false, "", 1000000};
    result.found = getTagContents(document.data(), tag, content.data(), result.offset);
    result.content = content.data();
    sized.found = getTagContents(document.data(), tag, sizedContent.data(), defaultSize, sized.offset);
    sized.content = sizedContent.data();
    EXPECT_EQ(sized, result);
    EXPECT_EQ(document, documentOf(text));
    return result;
}

Result notFound(int offset)
{
    return {false, std::string(before), offset};
}

// Looks a tag up with a content buffer of a size and returns the whole buffer.
Result lookUpSized(std::string_view text, const char* tag, unsigned int contentSize)
{
    const std::vector<char> document = documentOf(text);
    std::vector<char> content(contentSize, '#');
    Result result{false, "", -1};
    result.found = getTagContents(document.data(), tag, content.data(), contentSize, result.offset);
    result.content.assign(content.begin(), content.end());
    return result;
}

// The content of the element "a" of a document that holds nothing else.
std::string contentOf(const std::string& inner)
{
    const std::string document = "<a>" + inner + "</a>";
    const Result result = lookUp(document, "a");
    EXPECT_TRUE(result.found);
    EXPECT_EQ(result.offset, static_cast<int>(document.size()));
    return result.content;
}

TEST(TagLookup, FindsTheValueOfAnElement)
{
    EXPECT_EQ(lookUp("\t<sigNo>\n\t  30019\n\t</sigNo>\n", "sigNo"), (Result{true, "30019", 27}));
}

TEST(TagLookup, IsOneFunctionUnderTwoNames)
{
    EXPECT_EQ(static_cast<Lookup>(&commonStream::getTagContents), static_cast<Lookup>(&::getTagContents));
    EXPECT_EQ(static_cast<SizedLookup>(&commonStream::getTagContents),
              static_cast<SizedLookup>(&::getTagContents));
}

TEST(TagLookup, FindsElementsThroughTheNamespaceOfTheStreams)
{
    const std::vector<char> document = documentOf("<a>12</a>");
    std::vector<char> content = contentBuffer(defaultSize);
    int offset = -1;
    EXPECT_TRUE(commonStream::getTagContents(document.data(), "a", content.data(), offset));
    EXPECT_STREQ(content.data(), "12");
    EXPECT_EQ(offset, 9);
    content.assign(2, '#');
    EXPECT_TRUE(commonStream::getTagContents(document.data(), "a", content.data(), 2, offset));
    EXPECT_STREQ(content.data(), "1");
    EXPECT_EQ(offset, 9);
}

TEST(TagLookup, FindsWhatTextOutputWrites)
{
    const std::string opening = "\t<maintState>\n\t   ";
    const std::string closing = "\n\t</maintState>\n";
    std::vector<char> buffer(64, '\0');
    ostream_text output;
    output.attachBuffer(buffer.data(), 64);
    output.put(opening.c_str(), static_cast<unsigned int>(opening.size()) - 1) << 4294967295UL;
    output.put(closing.c_str(), static_cast<unsigned int>(closing.size()));
    std::vector<char> content(11, '#');
    int offset = -1;
    EXPECT_TRUE(getTagContents(output.getBuffer(), "maintState", content.data(), 11, offset));
    EXPECT_STREQ(content.data(), "4294967295");
    EXPECT_EQ(offset, 42);
    EXPECT_EQ(output.length(), 43U);
}

TEST(TagLookup, FindsElementsInAnyOrder)
{
    const std::string_view document = "\t<b>\n\t  2\n\t</b>\n\t<c>\n\t  3\n\t</c>\n\t<a>\n\t  1\n\t</a>\n";
    EXPECT_EQ(lookUp(document, "a"), (Result{true, "1", 47}));
    EXPECT_EQ(lookUp(document, "b"), (Result{true, "2", 15}));
    EXPECT_EQ(lookUp(document, "c"), (Result{true, "3", 31}));
}

TEST(TagLookup, FindsTheFirstOccurrence)
{
    EXPECT_EQ(lookUp("<a>1</a><b>2</b><a>3</a>", "a"), (Result{true, "1", 8}));
}

TEST(TagLookup, SearchesEveryTimeFromTheStart)
{
    EXPECT_EQ(lookUp("<a>1</a><a>2</a>", "a"), (Result{true, "1", 8}));
    EXPECT_EQ(lookUp("<a>1</a><a>2</a>", "b"), notFound(16));
    EXPECT_EQ(lookUp("<a>1</a><a>2</a>", "a"), (Result{true, "1", 8}));
}

TEST(TagLookup, DoesNotFindATagThatIsThePrefixOfAnother)
{
    EXPECT_EQ(lookUp("<maintStateX>1</maintStateX>", "maintState"), notFound(28));
    EXPECT_EQ(lookUp("<additionalData_10>7</additionalData_10>", "additionalData_1"), notFound(40));
}

TEST(TagLookup, FindsATagBehindALongerOneThatItIsThePrefixOf)
{
    EXPECT_EQ(lookUp("<data_10>7</data_10><data_1>8</data_1>", "data_1"), (Result{true, "8", 38}));
}

TEST(TagLookup, DoesNotFindATagThatIsTheEndOfAnother)
{
    EXPECT_EQ(lookUp("<maintState>1</maintState>", "State"), notFound(26));
}

TEST(TagLookup, DoesNotFindATagThatGoesOnBehindAnother)
{
    EXPECT_EQ(lookUp("<maintState>1</maintState>", "maintStateX"), notFound(26));
}

TEST(TagLookup, FindsExactTagsAlone)
{
    EXPECT_EQ(lookUp("<SIGNO>1</SIGNO>", "sigNo"), notFound(16));
    EXPECT_EQ(lookUp("<sigNo >1</sigNo>", "sigNo"), notFound(17));
    EXPECT_EQ(lookUp("< sigNo>1</sigNo>", "sigNo"), notFound(17));
    EXPECT_EQ(lookUp("<sigNo>1</sigNo >", "sigNo"), notFound(17));
    EXPECT_EQ(lookUp("<sigNo>1</SIGNO>", "sigNo"), notFound(16));
    EXPECT_EQ(lookUp("<sigNo>1< /sigNo>", "sigNo"), notFound(17));
}

TEST(TagLookup, DoesNotFindTheTagWithoutItsBrackets)
{
    EXPECT_EQ(lookUp("sigNo>1</sigNo>", "sigNo"), notFound(15));
    EXPECT_EQ(lookUp("sigNo 1 sigNo", "sigNo"), notFound(13));
}

TEST(TagLookup, DoesNotFindAnElementWithoutItsOpening)
{
    EXPECT_EQ(lookUp("\n\t  1\n\t</a>\n", "a"), notFound(12));
}

TEST(TagLookup, DoesNotFindAnElementWithoutItsClosing)
{
    EXPECT_EQ(lookUp("\t<a>\n\t  1\n\t", "a"), notFound(11));
    EXPECT_EQ(lookUp("<a>1<b>2</b>", "a"), notFound(12));
    EXPECT_EQ(lookUp("<a>1<a>", "a"), notFound(7));
}

TEST(TagLookup, DoesNotTakeAClosingBeforeTheOpening)
{
    EXPECT_EQ(lookUp("</a><a>1", "a"), notFound(8));
    EXPECT_EQ(lookUp("</a><a>1</a>", "a"), (Result{true, "1", 12}));
}

TEST(TagLookup, DoesNotTakeTheClosingOfALongerTag)
{
    EXPECT_EQ(lookUp("<a>1</ab>", "a"), notFound(9));
    EXPECT_EQ(lookUp("<a>1</ab>2</a>", "a"), (Result{true, "1</ab>2", 14}));
}

TEST(TagLookup, EndsTheContentAtTheNextClosing)
{
    EXPECT_EQ(lookUp("<a>1</a>2</a>", "a"), (Result{true, "1", 8}));
    EXPECT_EQ(lookUp("<a>1<a>2</a>", "a"), (Result{true, "1<a>2", 12}));
}

TEST(TagLookup, FindsAnElementBehindAPartOfItsTag)
{
    EXPECT_EQ(lookUp("<<a>1</a>", "a"), (Result{true, "1", 9}));
    EXPECT_EQ(lookUp("<sig<sigNo>1</sigNo>", "sigNo"), (Result{true, "1", 20}));
    EXPECT_EQ(lookUp("<a>1<</a>", "a"), (Result{true, "1<", 9}));
    EXPECT_EQ(lookUp("<sigNo>1</sig</sigNo>", "sigNo"), (Result{true, "1</sig", 21}));
}

TEST(TagLookup, FindsAnElementWithoutItsLeadingTab)
{
    EXPECT_EQ(lookUp("<a>\n\t  1\n\t</a>\n<b>\n\t  2\n\t</b>\n", "b"), (Result{true, "2", 29}));
}

TEST(TagLookup, FindsAnElementWithinAnother)
{
    EXPECT_EQ(lookUp("<root>\n<a>1</a>\n<b>2</b>\n</root>\n", "b"), (Result{true, "2", 24}));
    EXPECT_EQ(lookUp("<root>\n<a>1</a>\n</root>\n", "root"), (Result{true, "<a>1</a>", 23}));
}

TEST(TagLookup, UnescapesNothing)
{
    EXPECT_EQ(contentOf("&lt;1&amp;2"), "&lt;1&amp;2");
    EXPECT_EQ(contentOf("a<b>&c</d>"), "a<b>&c</d>");
}

TEST(TagLookup, FindsContentThatIsNoNumber)
{
    EXPECT_EQ(lookUp("\t<sigNo>\n\t  abc\n\t</sigNo>\n", "sigNo"), (Result{true, "abc", 25}));
}

TEST(TagLookup, RemovesTheWritersLayout)
{
    EXPECT_EQ(contentOf("\n\t  4294967295\n\t"), "4294967295");
}

TEST(TagLookup, RemovesNoMoreThanTheWritersLayout)
{
    EXPECT_EQ(contentOf("\n\t    two blanks  \n\t"), "  two blanks  ");
    EXPECT_EQ(contentOf("\n\t  \tx\t\n\t"), "\tx\t");
    EXPECT_EQ(contentOf("\n\t  \n\t  x\n\t\n\t"), "\n\t  x\n\t");
    EXPECT_EQ(contentOf("\n\t  \r\v\fx\r\v\f\n\t"), "\r\v\fx\r\v\f");
}

TEST(TagLookup, KeepsTheThirdBlank)
{
    EXPECT_EQ(contentOf("\n\t   5\n\t"), " 5");
}

TEST(TagLookup, KeepsAValueOfBlanks)
{
    EXPECT_EQ(contentOf("\n\t     \n\t"), "   ");
}

TEST(TagLookup, KeepsBlanksWithinAValue)
{
    EXPECT_EQ(contentOf("\n\t  a  b\n\tc\n\t"), "a  b\n\tc");
    EXPECT_EQ(contentOf("a  b\n\tc"), "a  b\n\tc");
}

TEST(TagLookup, TakesContentWithoutLayoutAsItIs)
{
    EXPECT_EQ(contentOf("5"), "5");
}

TEST(TagLookup, TrimsTheSixWhiteSpaceCharactersOfOtherContent)
{
    for (const char space : {' ', '\t', '\n', '\v', '\f', '\r'})
    {
        SCOPED_TRACE(static_cast<int>(space));
        const std::string spaces(3, space);
        EXPECT_EQ(contentOf(spaces + "5"), "5");
        EXPECT_EQ(contentOf("5" + spaces), "5");
        EXPECT_EQ(contentOf(spaces + "a" + spaces + "b" + spaces), "a" + spaces + "b");
    }
    EXPECT_EQ(contentOf(" \t\n\v\f\r5\r\f\v\n\t "), "5");
}

TEST(TagLookup, TrimsNoOtherCharacter)
{
    for (const char other : {'\x01', '\x08', '\x0e', '\x1c', '\x1f', '\x7f', '\x85', '\xa0'})
    {
        SCOPED_TRACE(static_cast<int>(other));
        const std::string value = other + std::string("5") + other;
        EXPECT_EQ(contentOf(" " + value + " "), value);
    }
}

TEST(TagLookup, TrimsContentThatHasTheLayoutAtOneEndAlone)
{
    EXPECT_EQ(contentOf("\n\t   5"), "5");
    EXPECT_EQ(contentOf("\n\t   5 \n"), "5");
    EXPECT_EQ(contentOf("\n\t   5 \t"), "5");
    EXPECT_EQ(contentOf(" 5 \n\t"), "5");
    EXPECT_EQ(contentOf("\n\t 5 \n\t"), "5");
    EXPECT_EQ(contentOf("\n   5 \n\t"), "5");
    EXPECT_EQ(contentOf(" \n\t   5 \n\t"), "5");
    EXPECT_EQ(contentOf("\n\t   5 \n\t "), "5");
}

TEST(TagLookup, TrimsContentThatAnEditorLaidOut)
{
    EXPECT_EQ(contentOf("\n        5 \n    "), "5");
    EXPECT_EQ(contentOf("\r\n\t   5 \r\n\t"), "5");
}

TEST(TagLookup, FindsEmptyContent)
{
    EXPECT_EQ(lookUp("<a></a>", "a"), (Result{true, "", 7}));
    EXPECT_EQ(lookUp("<a>\n\t  \n\t</a>", "a"), (Result{true, "", 13}));
}

TEST(TagLookup, FindsEmptyContentInPartsOfTheLayout)
{
    for (const char* inner :
         {" ", "\n", "\n\t", "\n\t ", "\n\t  ", "\n\t  \n", "\n\t  \t", "\n\t\n\t", "\n\t \n\t", " \t\r\n\v\f"})
    {
        SCOPED_TRACE(testing::PrintToString(inner));
        EXPECT_EQ(contentOf(inner), "");
    }
}

TEST(TagLookup, CopiesContentOf423Characters)
{
    const std::string inner(423, 'x');
    EXPECT_EQ(contentOf(inner), inner);
    EXPECT_EQ(contentOf("\n\t  " + inner + "\n\t"), inner);
}

TEST(TagLookup, CutsContentTo423Characters)
{
    const std::string inner = std::string(422, 'x') + "yz";
    EXPECT_EQ(contentOf(inner), std::string(422, 'x') + "y");
    EXPECT_EQ(contentOf("\n\t  " + inner + "\n\t"), std::string(422, 'x') + "y");
    EXPECT_EQ(contentOf(std::string(5000, 'x')), std::string(423, 'x'));
}

TEST(TagLookup, CutsContentToOneLessThanItsSize)
{
    EXPECT_EQ(lookUpSized("<a>12345</a>", "a", 6), (Result{true, std::string("12345\0"sv), 12}));
    EXPECT_EQ(lookUpSized("<a>12345</a>", "a", 5), (Result{true, std::string("1234\0"sv), 12}));
    EXPECT_EQ(lookUpSized("<a>12345</a>", "a", 2), (Result{true, std::string("1\0"sv), 12}));
}

TEST(TagLookup, WritesATerminatorAloneForASizeOfOne)
{
    EXPECT_EQ(lookUpSized("<a>12345</a>", "a", 1), (Result{true, std::string("\0"sv), 12}));
    EXPECT_EQ(lookUpSized("<a></a>", "a", 1), (Result{true, std::string("\0"sv), 7}));
}

TEST(TagLookup, WritesNothingForASizeOfZero)
{
    const std::vector<char> document = documentOf("<a>12345</a>");
    char content = '#';
    int offset = -1;
    EXPECT_TRUE(getTagContents(document.data(), "a", &content, 0, offset));
    EXPECT_EQ(content, '#');
    EXPECT_EQ(offset, 12);
    EXPECT_FALSE(getTagContents(document.data(), "b", &content, 0, offset));
    EXPECT_EQ(content, '#');
    EXPECT_EQ(offset, 12);
}

TEST(TagLookup, CopiesMoreThan423CharactersIntoALargerBuffer)
{
    const std::string inner(500, 'x');
    EXPECT_EQ(lookUpSized("<a>" + inner + "</a>", "a", 501), (Result{true, inner + '\0', 507}));
    EXPECT_EQ(lookUpSized("<a>" + inner + "</a>", "a", 425), (Result{true, std::string(424, 'x') + '\0', 507}));
}

TEST(TagLookup, RemovesWhiteSpaceBeforeItCuts)
{
    EXPECT_EQ(lookUpSized("<a>      ab cd </a>", "a", 4), (Result{true, std::string("ab \0"sv), 19}));
    EXPECT_EQ(lookUpSized("<a>\n\t  12345\n\t</a>", "a", 4), (Result{true, std::string("123\0"sv), 18}));
}

TEST(TagLookup, LeavesTheContentUntouchedWhenNothingIsFound)
{
    for (const std::string_view document : {"", "<b>1</b>", "<a>1", "1</a>", "</a><a>1"})
    {
        SCOPED_TRACE(document);
        const std::vector<char> text = documentOf(document);
        const std::vector<char> expected(defaultSize, '#');
        std::vector<char> content = expected;
        int offset = -1;
        EXPECT_FALSE(getTagContents(text.data(), "a", content.data(), offset));
        EXPECT_EQ(content, expected);
        EXPECT_EQ(lookUpSized(document, "a", 4).content, "####");
        EXPECT_EQ(lookUpSized(document, "a", 1).content, "#");
    }
}

TEST(TagLookup, WritesNothingIntoANullContent)
{
    const std::vector<char> document = documentOf("<a>12345</a>");
    int offset = -1;
    EXPECT_TRUE(getTagContents(document.data(), "a", nullptr, offset));
    EXPECT_EQ(offset, 12);
    offset = -1;
    EXPECT_TRUE(getTagContents(document.data(), "a", nullptr, 4, offset));
    EXPECT_EQ(offset, 12);
    offset = -1;
    EXPECT_FALSE(getTagContents(document.data(), "b", nullptr, offset));
    EXPECT_EQ(offset, 12);
}

TEST(TagLookup, FindsNothingInANullDocument)
{
    char content = '#';
    int offset = -1;
    EXPECT_FALSE(getTagContents(nullptr, "a", &content, offset));
    EXPECT_EQ(content, '#');
    EXPECT_EQ(offset, 0);
    offset = -1;
    EXPECT_FALSE(getTagContents(nullptr, "a", &content, 1, offset));
    EXPECT_EQ(content, '#');
    EXPECT_EQ(offset, 0);
}

TEST(TagLookup, FindsNothingInAnEmptyDocument)
{
    EXPECT_EQ(lookUp("", "a"), notFound(0));
}

TEST(TagLookup, NeverFindsAnEmptyTag)
{
    EXPECT_EQ(lookUp("<>1</>", ""), notFound(6));
    EXPECT_EQ(lookUp("", ""), notFound(0));
}

TEST(TagLookup, FindsATagLongerThanTheDocumentNowhere)
{
    EXPECT_EQ(lookUp("<a>", "additionalData_2"), notFound(3));
    EXPECT_EQ(lookUp("<", "a"), notFound(1));
}

TEST(TagLookup, FindsNothingInADocumentThatEndsBeforeTheClosingDoes)
{
    const std::string_view document = "<sigNo>5</sigNo>";
    for (unsigned int length = 0; length < 16; ++length)
    {
        SCOPED_TRACE(length);
        EXPECT_EQ(lookUp(document.substr(0, length), "sigNo"), notFound(static_cast<int>(length)));
    }
    EXPECT_EQ(lookUp(document, "sigNo"), (Result{true, "5", 16}));
}

TEST(TagLookup, FindsNothingBehindTheTerminator)
{
    EXPECT_EQ(lookUp("\0<a>1</a>"sv, "a"), notFound(0));
    EXPECT_EQ(lookUp("<b>1</b>\0<a>1</a>"sv, "a"), notFound(8));
    EXPECT_EQ(lookUp("<a>1\0</a>"sv, "a"), notFound(4));
    EXPECT_EQ(lookUp("<a\0><a>1</a>"sv, "a"), notFound(2));
    EXPECT_EQ(lookUp("<a>1</a\0></a>"sv, "a"), notFound(7));
}

TEST(TagLookup, FindsDifferentTagsInSeveralThreads)
{
    const std::vector<char> document = documentOf("<a>\n\t  11\n\t</a>\n<b> 222 </b>\n<c>3333</c>\n");
    const auto countRight = [&document](const char* tag, const char* value, int end, int& right)
    {
        for (int i = 0; i < 500; ++i)
        {
            std::vector<char> content(8, '#');
            int offset = -1;
            const bool found = getTagContents(document.data(), tag, content.data(), 8, offset);
            right += found && std::string_view(content.data()) == value && offset == end ? 1 : 0;
        }
    };
    int right[3] = {};
    std::thread first(countRight, "a", "11", 15, std::ref(right[0]));
    std::thread second(countRight, "b", "222", 28, std::ref(right[1]));
    std::thread third(countRight, "c", "3333", 40, std::ref(right[2]));
    first.join();
    second.join();
    third.join();
    EXPECT_EQ(right[0], 500);
    EXPECT_EQ(right[1], 500);
    EXPECT_EQ(right[2], 500);
}

} // namespace
