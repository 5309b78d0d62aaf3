#include "harness.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace bci::fuzz
{

Trace* current = nullptr;
char fillByte = '\0';

namespace
{

constexpr char kGuardByte = '\x6B';

Trace& runWith(char fill, std::string_view bytes, Trace& into)
{
    into.clear();
    current = &into;
    fillByte = fill;
    run(Input(bytes), into);
    return into;
}

} // namespace

void Trace::add(const char* label, std::int64_t number)
{
    for (int shift = 56; shift >= 0; shift -= 8)
    {
        m_bytes += static_cast<char>(number >> shift);
    }
    m_parts.push_back({label, m_bytes.size(), true});
}

void Trace::add(const char* label, std::string_view bytes)
{
    m_bytes += bytes;
    m_parts.push_back({label, m_bytes.size(), false});
}

void Trace::clear()
{
    m_parts.clear();
    m_bytes.clear();
}

bool Trace::operator==(const Trace& other) const
{
    return m_bytes == other.m_bytes &&
           std::equal(m_parts.begin(), m_parts.end(), other.m_parts.begin(), other.m_parts.end(),
                      [](const Part& one, const Part& two)
                      { return one.label == two.label && one.end == two.end; });
}

std::string Trace::text() const
{
    std::string result;
    std::size_t at = 0;
    for (const Part& part : m_parts)
    {
        result += part.label;
        result += ' ';
        std::uint64_t number = 0;
        for (; at < part.end; ++at)
        {
            const auto byte = static_cast<unsigned char>(m_bytes[at]);
            number = number << 8 | byte;
            const bool isPlain = byte >= ' ' && byte < 0x7F && byte != '\\';
            char code[8];
            std::snprintf(code, sizeof code, isPlain ? "%c" : "\\x%02X", unsigned{byte});
            result += part.isNumber ? "" : code;
        }
        result += part.isNumber ? std::to_string(static_cast<std::int64_t>(number)) : "";
        result += '\n';
    }
    return result;
}

void fail(const std::string& what)
{
    std::fprintf(stderr, "%s\n%s", what.c_str(), current != nullptr ? current->text().c_str() : "");
    std::abort();
}

Guarded::Guarded(std::size_t size) : m_size(size), m_memory(new char[size + 2 * kGuard])
{
    std::memset(m_memory.get(), kGuardByte, kGuard);
    std::memset(data(), fillByte, size);
    std::memset(data() + size, kGuardByte, kGuard);
}

Guarded::Guarded(std::string_view content, std::string_view behind) : Guarded(content.size() + behind.size())
{
    std::copy(behind.begin(), behind.end(), std::copy(content.begin(), content.end(), data()));
}

Guarded::~Guarded()
{
    const auto isUntouched = [](const char* guard)
    { return std::all_of(guard, guard + kGuard, [](char byte) { return byte == kGuardByte; }); };
    expect(isUntouched(m_memory.get()), "something was written in front of a buffer");
    expect(isUntouched(data() + m_size), "something was written behind a buffer");
}

// Runs an input in both ways. Returns what came out.
const Trace& runTwice(std::string_view bytes)
{
    static Trace first;
    static Trace second;
    if (!(runWith('\xA5', bytes, first) == runWith('\x5A', bytes, second)))
    {
        std::fprintf(stderr, "the first run:\n%s", first.text().c_str());
        fail("the second run had another result:");
    }
    current = nullptr;
    return first;
}

} // namespace bci::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    bci::fuzz::runTwice({reinterpret_cast<const char*>(data), size});
    return 0;
}
