// Records as rows of NDJSON.
#ifndef BCI_TOOL_ROWS_H
#define BCI_TOOL_ROWS_H

#include "buffer.h"
#include "records.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace bci::tool
{

// Appends a text as a JSON string. It has to be valid UTF-8, as isUtf8() tells.
void appendString(std::string& out, std::string_view text);

bool isUtf8(std::string_view text);

// A text as a JSON string, whatever it holds: bytes that are no UTF-8 become the replacement character.
void appendAnyString(std::string& out, std::string_view text);

// A finding as a JSON object.
void appendFinding(std::string& out, const Item& item, const Finding& finding);

// A sink that writes one row for each record.
class RowWriter
{
public:
    static constexpr bool kNeedsStructure = false;

    // Appends the rows to a text. Each row that is complete is announced: `take` may empty the text.
    RowWriter(Buffer& out, std::function<void()> take);

    // Where the number of each record has to go, for who knows them only later: they are left out, and this holds
    // their places in the buffer.
    void leaveRecordsTo(std::vector<std::size_t>& places)
    {
        m_recordPlaces = &places;
    }

    // Leaves the number of the record and of the line, and so the lines of findings, to be null.
    void withoutNumbers()
    {
        m_hasNumbers = false;
    }

    std::uint64_t damaged() const
    {
        return m_damaged;
    }

    void forgetDamage()
    {
        m_damaged = 0;
    }

    char* structure(std::size_t size)
    {
        m_structure.resize(std::max(size, m_structure.size()));
        return m_structure.data();
    }

    void number(const FieldPlace& place, std::int64_t value, std::string_view digits, std::size_t position);
    void text(const FieldPlace& place, std::string_view characters, std::size_t position);
    void block(const FieldPlace& place, std::string_view bytes, std::size_t position);
    void nothing(const FieldPlace& place, bool raw);
    void finding(Finding finding);
    void begin(const Item& item);
    void cancel();
    void end(const Item& item, const Reading& reading);

private:
    // The beginning of a member, for each field that has been seen lately.
    struct Key
    {
        const char* tag = nullptr;
        codec::Subscripts subscripts = {};
        std::size_t size = 0;
        std::array<char, 64> text = {};
    };
    static constexpr unsigned int kNoSubscript = 0xFFFFFFFF;
    static_assert(sizeof(Key::text) > codec::kMaxTagLength + codec::kLongestSubscripts + sizeof R"(,"[]":)");

    char* putKey(Buffer& out, const FieldPlace& place);
    const std::string& kindOf(const Item& item);
    void putFindings(const Item& item, const Reading& reading);

    Buffer& m_out;
    std::function<void()> m_take;
    bool m_hasNumbers = true;
    std::vector<std::size_t>* m_recordPlaces = nullptr;
    std::uint64_t m_damaged = 0;
    std::vector<char> m_structure;
    std::size_t m_rowBegin = 0;
    std::size_t m_recordPlace = 0;
    std::string m_input;   // the row's beginning, up to the input's name
    std::string m_inputOf; // which that is of
    Buffer m_texts;        // empty between rows
    Buffer m_bytes;
    std::vector<Finding> m_findings;
    std::vector<std::string> m_kinds; // the parts that are the same for a signal in a form
    std::vector<Key> m_keys = std::vector<Key>(1024);
};

} // namespace bci::tool

#endif
