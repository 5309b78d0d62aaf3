// Stands in front of every source that has mistakes in conditions: tells which one is made, and notes which ones
// could have been.
#ifndef MISTAKE_H
#define MISTAKE_H

#if __cplusplus >= 202002L

#include <cstdio>
#include <cstdlib>
#include <type_traits>

class BciMistakes
{
public:
    BciMistakes()
    {
        const char* const number = std::getenv("BCI_MISTAKE");
        m_number = number != nullptr ? std::atoi(number) : 0;
        m_reached = std::getenv("BCI_MISTAKES_REACHED");
    }

    ~BciMistakes()
    {
        std::FILE* const file = m_reached != nullptr ? std::fopen(m_reached, "a") : nullptr;
        if (file != nullptr)
        {
            for (int number = 0; number < kMost; ++number)
            {
                if (m_seen[number])
                {
                    std::fprintf(file, "%d\n", number);
                }
            }
            std::fclose(file);
        }
    }

    bool is(int number)
    {
        m_seen[number] = true;
        return number == m_number;
    }

private:
    static constexpr int kMost = 10000;
    int m_number;
    const char* m_reached;
    bool m_seen[kMost] = {};
};

inline bool bciMistake(int number)
{
    static BciMistakes mistakes;
    return mistakes.is(number);
}

template <typename T>
constexpr T bciOther(const T& value)
{
    if constexpr (std::is_same_v<T, bool>)
    {
        return !value;
    }
    else if constexpr (std::is_arithmetic_v<T>)
    {
        return static_cast<T>(value + 1);
    }
    else if constexpr (std::is_enum_v<T>)
    {
        return static_cast<T>(static_cast<std::underlying_type_t<T>>(value) + 1);
    }
    else
    {
        return T();
    }
}

#endif
#endif
