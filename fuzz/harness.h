// What the fuzzers share. A harness is a function that takes an input, does with it whatever it is for, checks
// what can be checked at once, and notes everything that comes out. Every input is run twice, with other bytes in
// the buffers, and has to give the same both times; and the same again on any other host.
#ifndef FUZZ_HARNESS_H
#define FUZZ_HARNESS_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bci::fuzz
{

// What a fuzzer made up, taken from its front. Behind the end there are zeros.
class Input
{
public:
    explicit Input(std::string_view bytes) : m_bytes(bytes) {}

    bool isEmpty() const
    {
        return m_bytes.empty();
    }

    std::uint8_t byte()
    {
        return static_cast<std::uint8_t>(number(1));
    }

    // Big-endian.
    std::uint64_t number(std::size_t size)
    {
        std::uint64_t value = 0;
        for (; size != 0; --size)
        {
            value <<= 8;
            if (!m_bytes.empty())
            {
                value |= static_cast<unsigned char>(m_bytes.front());
                m_bytes.remove_prefix(1);
            }
        }
        return value;
    }

    // As many as there are, at most.
    std::string_view take(std::size_t most)
    {
        const std::string_view taken = m_bytes.substr(0, most);
        m_bytes.remove_prefix(taken.size());
        return taken;
    }

    std::string_view rest() const
    {
        return m_bytes;
    }

private:
    std::string_view m_bytes;
};

// What came out. It must not depend on the host. Labels are literals.
class Trace
{
public:
    void add(const char* label, std::int64_t number);
    void add(const char* label, std::string_view bytes);
    void clear();
    bool operator==(const Trace& other) const;

    // A line for each.
    std::string text() const;

private:
    struct Part
    {
        const char* label;
        std::size_t end;
        bool isNumber;
    };

    std::vector<Part> m_parts;
    std::string m_bytes;
};

// Every harness defines this.
void run(Input input, Trace& trace);

// Where log lines go.
extern Trace* current;

// Of the memory that a result must not depend on: another one in the second run.
extern char fillByte;

// Ends the program: something is wrong with what was tested.
[[noreturn]] void fail(const std::string& what);

inline void expect(bool isRight, const char* what)
{
    if (!isRight)
    {
        fail(what);
    }
}

// Memory of just so many bytes: one byte outside of it is found by the sanitizers, and otherwise, where it was
// written, by what stands around it.
class Guarded
{
public:
    explicit Guarded(std::size_t size);
    explicit Guarded(std::string_view content, std::string_view behind = {});
    Guarded(const Guarded&) = delete;
    Guarded& operator=(const Guarded&) = delete;
    ~Guarded();

    char* data() const
    {
        return m_memory.get() + kGuard;
    }

    unsigned int size() const
    {
        return static_cast<unsigned int>(m_size);
    }

private:
#ifdef BCI_FUZZ_SANITIZED
    static constexpr std::size_t kGuard = 0;
#else
    static constexpr std::size_t kGuard = 16;
#endif

    std::size_t m_size;
    std::unique_ptr<char[]> m_memory;
};

// The first word of a binary form, between the target's byte order, which inputs and traces have, and the host's.
inline void turnFirstWord(char* bytes, std::size_t size)
{
    if (std::endian::native == std::endian::little && size >= 4)
    {
        std::swap(bytes[0], bytes[3]);
        std::swap(bytes[1], bytes[2]);
    }
}

} // namespace bci::fuzz

#endif
