#include "tagLookup.h"

#include "stream.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace bci::codec
{

namespace
{

// What the writers put around every value.
constexpr std::string_view kLayoutBefore = "\n\t  ";
constexpr std::string_view kLayoutBehind = "\n\t";

bool isSpace(char ch)
{
    return ch == ' ' || (ch >= '\t' && ch <= '\r');
}

// Returns where the tag begins, or null; `end` receives the place behind it.
const char* findBracketed(const char* from, const char* opening, const char* tag, const char*& end)
{
    const std::size_t openingLength = std::strlen(opening);
    const std::size_t tagLength = std::strlen(tag);
    while ((from = std::strstr(from, opening)) != nullptr)
    {
        const char* const name = from + openingLength;
        if (std::strncmp(name, tag, tagLength) == 0 && name[tagLength] == '>')
        {
            end = name + tagLength + 1;
            return from;
        }
        ++from;
    }
    return nullptr;
}

TagContent withoutLayout(const char* begin, const char* end)
{
    const std::string_view content(begin, static_cast<std::size_t>(end - begin));
    if (content.starts_with(kLayoutBefore) && content.ends_with(kLayoutBehind))
    {
        return {begin + kLayoutBefore.size(), end - kLayoutBehind.size()};
    }
    while (begin != end && isSpace(*begin))
    {
        ++begin;
    }
    while (begin != end && isSpace(end[-1]))
    {
        --end;
    }
    return {begin, end};
}

} // namespace

const char* findTag(const char* document, const char* tag, TagContent& content)
{
    return findTag(document, tag, tag, content);
}

const char* findTag(const char* document, const char* tag, const char* closingTag, TagContent& content)
{
    if (document == nullptr || *tag == '\0')
    {
        return nullptr;
    }
    const char* begin = nullptr;
    return findBracketed(document, "<", tag, begin) != nullptr ? findClosingTag(begin, closingTag, content)
                                                               : nullptr;
}

const char* findClosingTag(const char* begin, const char* closingTag, TagContent& content)
{
    const char* behind = nullptr;
    const char* const end = findBracketed(begin, "</", closingTag, behind);
    if (end != nullptr)
    {
        content = withoutLayout(begin, end);
    }
    return behind;
}

S32 toNumber(const TagContent& content)
{
    const char* at = content.begin;
    while (at != content.end && isSpace(*at))
    {
        ++at;
    }
    const bool negative = at != content.end && *at == '-';
    if (negative || (at != content.end && *at == '+'))
    {
        ++at;
    }
    const U32 limit = negative ? 0x80000000 : 0x7FFFFFFF;
    U32 magnitude = 0;
    for (; at != content.end && *at >= '0' && *at <= '9'; ++at)
    {
        const U32 digit = static_cast<U32>(*at - '0');
        magnitude = magnitude > (limit - digit) / 10 ? limit : magnitude * 10 + digit;
    }
    return static_cast<S32>(negative ? 0 - magnitude : magnitude);
}

void copyContent(const TagContent& content, char* to, std::size_t size)
{
    if (size != 0)
    {
        const std::size_t copied = std::min(content.size(), size - 1);
        std::memmove(to, content.begin, copied); // a caller may want the content over the document
        to[copied] = '\0';
    }
}

} // namespace bci::codec

bool getTagContents(const char* document, const char* tag, char* content, int& offset)
{
    constexpr unsigned int kContentSize = 424;
    return getTagContents(document, tag, content, kContentSize, offset);
}

bool getTagContents(const char* document, const char* tag, char* content, unsigned int contentSize, int& offset)
{
    bci::codec::TagContent found;
    const char* const behind = bci::codec::findTag(document, tag, found);
    if (behind == nullptr)
    {
        offset = document != nullptr ? static_cast<int>(std::strlen(document)) : 0;
        return false;
    }
    bci::codec::copyContent(found, content, content != nullptr ? contentSize : 0);
    offset = static_cast<int>(behind - document);
    return true;
}
