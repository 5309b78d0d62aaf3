#include "elements.h"

#include <cstring>

namespace bci::codec
{

namespace
{

// Whether a text begins so. Stops at the zero that ends the document.
bool startsWith(const char* text, const char* beginning, std::size_t size)
{
    return std::strncmp(text, beginning, size) == 0;
}

} // namespace

bool Elements::takeNext(const char* name, std::size_t size, TagContent& content)
{
    if (m_next == nullptr)
    {
        return false;
    }
    // One element of the format begins without its tab.
    const char* const opening = m_next + (*m_next == '\t' ? 1 : 0);
    m_next = nullptr;
    if (*opening != '<' || !startsWith(opening + 1, name, size) || !startsWith(opening + 1 + size, ">\n\t  ", 5))
    {
        return false;
    }
    const char* const begin = opening + 1 + size + 5;
    const char* const closing = std::strchr(begin, '<');
    if (closing == nullptr || closing - begin < 2 || closing[-2] != '\n' || closing[-1] != '\t' ||
        closing[1] != '/' || !startsWith(closing + 2, name, size) || !startsWith(closing + 2 + size, ">\n", 2))
    {
        return false;
    }
    content = {begin, closing - 2};
    m_next = closing + 2 + size + 2;
    return true;
}

bool Elements::find(const char* name, std::size_t size, TagContent& content)
{
    const bool taken = takeNext(name, size, content);
    if (taken && !m_repeats)
    {
        return true;
    }
    if (!m_index.isMade())
    {
        makeIndex();
    }
    const char* behind;
    if (m_index.find(name, size, behind))
    {
        return behind != nullptr && findClosingTag(behind, name, content) != nullptr;
    }
    return findTag(m_document, name, content) != nullptr;
}

const char* Elements::first(U32 hash)
{
    if (m_repeats)
    {
        return nullptr;
    }
    m_next = nullptr;
    if (!m_index.isMade()) [[unlikely]]
    {
        makeIndex();
    }
    return m_index.first(hash);
}

// There is one of the whole document, however far the end has been looked for.
void Elements::makeIndex()
{
    if (m_document != nullptr)
    {
        const char* const end = m_end - m_document < kReach ? m_end : m_end + std::strlen(m_end);
        m_index.make({m_document, static_cast<std::size_t>(end - m_document)});
    }
}

} // namespace bci::codec
