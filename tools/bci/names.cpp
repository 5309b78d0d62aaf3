#include "names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace bci::tool
{

namespace
{

char lower(char ch)
{
    return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch - 'A' + 'a') : ch;
}

std::string lowered(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lower);
    return result;
}

// A name without what the names of its kind have in common.
std::string bare(std::string_view name)
{
    std::string text = lowered(name);
    if (text.starts_with("bci"))
    {
        text.erase(0, text.starts_with("bci_") ? 4 : 3);
    }
    if (text.ends_with("msg"))
    {
        text.resize(text.size() - 3);
    }
    return text;
}

// Insertions, removals, replacements and swaps of neighbours that make one text of another.
std::size_t distance(std::string_view one, std::string_view other)
{
    std::vector<std::vector<std::size_t>> costs(one.size() + 1, std::vector<std::size_t>(other.size() + 1));
    for (std::size_t i = 0; i <= one.size(); ++i)
    {
        for (std::size_t j = 0; j <= other.size(); ++j)
        {
            if (i == 0 || j == 0)
            {
                costs[i][j] = i + j;
                continue;
            }
            const std::size_t replaced = costs[i - 1][j - 1] + (one[i - 1] == other[j - 1] ? 0 : 1);
            costs[i][j] = std::min({costs[i - 1][j] + 1, costs[i][j - 1] + 1, replaced});
            if (i > 1 && j > 1 && one[i - 1] == other[j - 2] && one[i - 2] == other[j - 1])
            {
                costs[i][j] = std::min(costs[i][j], costs[i - 2][j - 2] + 1);
            }
        }
    }
    return costs[one.size()][other.size()];
}

constexpr std::size_t kSlots = 256;

std::size_t slotOf(SIGSELECT number)
{
    return number * 2654435769U >> 8 & (kSlots - 1);
}

std::array<const Signal*, kSlots> makeSlots()
{
    std::array<const Signal*, kSlots> slots = {};
    for (const Signal& signal : signals())
    {
        std::size_t slot = slotOf(signal.number);
        while (slots[slot] != nullptr)
        {
            slot = (slot + 1) % kSlots;
        }
        slots[slot] = &signal;
    }
    return slots;
}

} // namespace

bool hasBrackets(const codec::Field& field, const codec::Subscripts* subscripts)
{
    return subscripts != nullptr && field.tag[std::strlen(field.tag) - 1] != '_';
}

std::string fieldName(const codec::Field& field, const codec::Subscripts* subscripts)
{
    std::string name = codec::ElementName(field.tag, subscripts).text();
    if (hasBrackets(field, subscripts))
    {
        name += "[" + std::to_string(subscripts->first) + "]";
    }
    return name;
}

const Signal* signalOfNumber(SIGSELECT number)
{
    static const std::array<const Signal*, kSlots> slots = makeSlots();
    std::size_t slot = slotOf(number);
    while (slots[slot] != nullptr && slots[slot]->number != number)
    {
        slot = (slot + 1) % kSlots;
    }
    return slots[slot];
}

std::vector<const Signal*> findSignals(std::string_view numberNameOrClass)
{
    std::string_view digits = numberNameOrClass;
    int base = 10;
    if (digits.starts_with("0x") || digits.starts_with("0X"))
    {
        digits.remove_prefix(2);
        base = 16;
    }
    SIGSELECT number = 0;
    const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
    const bool isNumber = error == std::errc{} && stop == digits.data() + digits.size();
    const std::string name = bare(numberNameOrClass);
    std::vector<const Signal*> found;
    for (const Signal& signal : signals())
    {
        if (isNumber ? signal.number == number
                     : bare(signal.name) == name || bare(signal.shape->className) == name)
        {
            found.push_back(&signal);
        }
    }
    return found;
}

std::vector<std::string> nearest(std::string_view name, std::span<const std::string> names)
{
    constexpr std::size_t kMost = 3;
    constexpr std::size_t kDressing = 8; // more than what bare() takes away
    const std::string wanted = lowered(name);
    std::vector<std::pair<std::size_t, const std::string*>> near;
    for (const std::string& candidate : names)
    {
        const std::string other = lowered(candidate);
        if (wanted.size() > other.size() + other.size() / 3 + kDressing)
        {
            continue; // far in any case, and comparing takes the product of both sizes
        }
        std::size_t far = std::min(distance(wanted, other), distance(bare(wanted), bare(other)));
        if (wanted.size() >= 3 && other.find(wanted) != std::string::npos)
        {
            far = std::min<std::size_t>(far, 1);
        }
        if (far <= std::max<std::size_t>(1, std::min(wanted.size(), other.size()) / 3))
        {
            near.emplace_back(far, &candidate);
        }
    }
    std::stable_sort(near.begin(), near.end(),
                     [](const auto& one, const auto& two) { return one.first < two.first; });
    std::vector<std::string> result;
    for (const auto& [far, candidate] : near)
    {
        if (result.size() < kMost && std::find(result.begin(), result.end(), *candidate) == result.end())
        {
            result.push_back(*candidate);
        }
    }
    return result;
}

std::string didYouMean(std::string_view name, std::span<const std::string> names)
{
    std::string text;
    for (const std::string& one : nearest(name, names))
    {
        text += (text.empty() ? "; did you mean '" : " or '") + one + "'";
    }
    return text.empty() ? text : text + "?";
}

} // namespace bci::tool
