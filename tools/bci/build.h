// Wire structures from values that are given by name.
#ifndef BCI_TOOL_BUILD_H
#define BCI_TOOL_BUILD_H

#include "input.h"

#include <bit>
#include <cstddef>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace bci::tool
{

// What a user gave for a field.
struct Value
{
    enum class Kind
    {
        written, // as one writes it: a number decimal or 0x..., a text as it is, a block as hex digits
        number,  // for a number only, decimal or 0x...
        hex,     // hex digits, for a text or a block
        bytes    // the bytes themselves, for a text or a block
    };

    Kind kind;
    std::string content;
    std::string place; // begins every message about it
};

// The values for one message, by the names that fieldName() makes.
class Values
{
public:
    using Named = std::pair<std::string, Value>;

    // The place begins messages about what is missing.
    explicit Values(std::string place);

    // Returns whether the name had no value yet; if it had, that is kept.
    bool add(std::string_view name, Value value);

    // Null if the name has none.
    const Named* find(std::string_view name) const;

    // All of them, in the order they were added.
    std::span<const Named> all() const;

    const std::string& place() const;

private:
    std::string m_place;
    std::vector<Named> m_all;
    std::unordered_map<std::string, std::size_t> m_indexes;
};

// Values that make no message: one line for each that is wrong, beginning with its place.
struct BadValues : std::runtime_error
{
    explicit BadValues(std::vector<std::string> lines);

    std::vector<std::string> problems;
};

// The wire structure in the host's layout. The signal number is the signal's; a count, a length or the selector of
// a choice that is not given follows from the elements, bytes or members that are; whatever else is not given is
// zero or empty. Throws BadValues with all that is wrong: names that the message does not have, values that do
// not fit their fields, elements beyond their count.
std::vector<char> buildStructure(const Signal& signal, const Values& values);

// Whether a rendering, read strictly, has the values that a wire structure of its signal has.
bool sameValues(const Signal& signal, const std::vector<char>& structure, std::string_view rendering, Form form,
                std::endian firstWord);

// A value that a rendering does not bring back.
struct LostValue
{
    std::string name; // of the field
    std::string value;
};

// The first of those that a wire structure has; a ':' within a text is one that text loses.
std::optional<LostValue> lostValue(const Signal& signal, const std::vector<char>& structure,
                                   std::string_view rendering, Form form, std::endian firstWord);

} // namespace bci::tool

#endif
