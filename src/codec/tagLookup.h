// Finding elements in an XML document, without copying them.
#ifndef BCI_CODEC_TAG_LOOKUP_H
#define BCI_CODEC_TAG_LOOKUP_H

#include "scalarTypes.h"

#include <cstddef>

#pragma GCC visibility push(hidden) // calls to these need no way round through the linker's tables
namespace bci::codec
{

// What stands between an element's tags, white space of the layout removed. Points into the document.
struct TagContent
{
    const char* begin;
    const char* end;

    std::size_t size() const
    {
        return static_cast<std::size_t>(end - begin);
    }
};

// Finds the first element of a name, or, with a closing tag of another name, the first that such a tag
// closes. Returns the end of its closing tag, or null if there is no such element. Null documents hold
// nothing, empty names are never found.
const char* findTag(const char* document, const char* tag, TagContent& content);
const char* findTag(const char* document, const char* tag, const char* closingTag, TagContent& content);

// The same for an element whose opening tag ends here.
const char* findClosingTag(const char* begin, const char* closingTag, TagContent& content);

// Converts like the target's atoi: white space, one sign, digits up to the first other character, cut to
// the range of 32 bits. No digits give 0.
S32 toNumber(const TagContent& content);

// Copies as many characters as fit in front of a terminating zero. A size of 0 copies nothing.
void copyContent(const TagContent& content, char* to, std::size_t size);

} // namespace bci::codec
#pragma GCC visibility pop

#endif
