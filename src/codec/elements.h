// Looking up the elements of a document in one pass, as long as it is as the writers write it.
#ifndef BCI_CODEC_ELEMENTS_H
#define BCI_CODEC_ELEMENTS_H

#include "stream.h"
#include "tagLookup.h"

#include <cstddef>

namespace bci::codec
{

// Every element is found by the first occurrence of its name, whatever the order. While the elements are asked for
// in the order in which they stand, laid out as the writers do and with no '<' in their values, each is
// found where the one before ended: what lies in front of it holds no other of its name. With the first
// deviation the whole document is searched for this and all further names.
class Elements
{
public:
    explicit Elements(const commonStream::istream_text& stream)
        : m_document(stream.getBuffer()), m_next(m_document)
    {
    }

    const char* document() const
    {
        return m_document;
    }

    // Whether names that are asked for from now on have been asked for before. An element that comes next is not
    // the first of such a name: it is passed over.
    void repeat(bool repeats)
    {
        m_repeats = repeats;
    }

    // Returns whether there is such an element.
    bool find(const char* name, std::size_t size, TagContent& content);

private:
    bool takeNext(const char* name, std::size_t size, TagContent& content);

    const char* m_document;
    const char* m_next; // where the next element begins; null after a deviation
    bool m_repeats = false;
};

} // namespace bci::codec

#endif
