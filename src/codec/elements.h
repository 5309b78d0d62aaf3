// Looking up the elements of a document in one pass, as long as it is as the writers write it.
#ifndef BCI_CODEC_ELEMENTS_H
#define BCI_CODEC_ELEMENTS_H

#include "elementIndex.h"
#include "optimize.h"
#include "stream.h"
#include "tagLookup.h"

#include <cstddef>
#include <cstring>
#include <type_traits>

#pragma GCC visibility push(hidden)
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
        if (kForSpeed && m_document != nullptr)
        {
            m_end = m_document + strnlen(m_document, std::size_t{kReach});
        }
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

    // For who looks at the elements himself: where the next one begins, the end if there may be others of its name
    // in front of it.
    const char* next() const
    {
        return m_repeats || m_next == nullptr ? m_end : m_next;
    }

    // The end of the document, or of as much of it as is worth looking at so.
    const char* end() const
    {
        return m_end;
    }

    // Passes the next one.
    void passTo(const char* next)
    {
        m_next = next;
    }

    // The first name with a hash in the whole document, which has to be searched from now on; null if there is
    // none, or names repeat.
    const char* first(U32 hash);

private:
    static constexpr std::ptrdiff_t kReach = 8192; // more than any message takes but those with raw data

    void makeIndex();
    bool takeNext(const char* name, std::size_t size, TagContent& content);

    const char* m_document;
    const char* m_next; // where the next element begins; null after a deviation
    const char* m_end = nullptr;
    bool m_repeats = false;
    std::conditional_t<kForSpeed, ElementIndex, NoIndex> m_index;
};

} // namespace bci::codec
#pragma GCC visibility pop

#endif
