// Text to be written, faster to add small pieces to than a std::string.
#ifndef BCI_TOOL_BUFFER_H
#define BCI_TOOL_BUFFER_H

#include <cstddef>
#include <cstring>
#include <string_view>
#include <vector>

namespace bci::tool
{

class Buffer
{
public:
    // Room for so many characters behind what is there.
    char* room(std::size_t size)
    {
        if (m_data.size() - m_size < size)
        {
            m_data.resize(2 * m_data.size() + size);
        }
        return m_data.data() + m_size;
    }

    // Says where the characters put into the room end.
    void endAt(const char* end)
    {
        m_size = static_cast<std::size_t>(end - m_data.data());
    }

    void put(std::string_view text)
    {
        std::memcpy(room(text.size()), text.data(), text.size());
        m_size += text.size();
    }

    void put(char ch)
    {
        *room(1) = ch;
        ++m_size;
    }

    // The last character; there has to be one.
    char back() const
    {
        return m_data[m_size - 1];
    }

    std::string_view text() const
    {
        return {m_data.data(), m_size};
    }

    std::size_t size() const
    {
        return m_size;
    }

    void cutTo(std::size_t size)
    {
        m_size = size;
    }

private:
    std::vector<char> m_data = std::vector<char>(4096);
    std::size_t m_size = 0;
};

} // namespace bci::tool

#endif
