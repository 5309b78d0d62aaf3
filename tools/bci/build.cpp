#include "build.h"

#include "containers.h"
#include "names.h"
#include "record.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <map>
#include <optional>
#include <unordered_set>
#include <utility>
#include <variant>

namespace bci::tool
{

namespace
{

using codec::Field;
using codec::Kind;
using codec::Subscripts;

// What has to hold for a field to be there.
struct Condition
{
    enum class Kind
    {
        atLeast, // a count
        equal,   // a selector
        length   // nothing: the field named is a block's length, the number its bound
    };

    Kind kind;
    std::string field;
    std::int64_t number;
};

using Conditions = std::vector<Condition>;

// All names that fields of a message can have. Members of one choice may share names: each has its conditions.
struct Names
{
    std::vector<std::string> all;
    std::unordered_map<std::string, std::vector<Conditions>> conditions;
    std::unordered_set<std::string> deciding; // counts, lengths and selectors
};

class NameCollector
{
public:
    NameCollector(Names& names, const Subscripts* subscripts, Conditions conditions)
        : m_names(names), m_subscripts(subscripts), m_conditions(std::move(conditions))
    {
    }

    void collect(const codec::Group& group)
    {
        (*this)(group.rows);
        for (const codec::Part& part : group.further)
        {
            std::visit(*this, part);
        }
    }

    void operator()(std::span<const Field> rows)
    {
        for (const Field& field : rows)
        {
            add(fieldName(field, m_subscripts), m_conditions);
        }
    }

    void operator()(const codec::List* list)
    {
        for (unsigned int i = 0; i < list->bound; ++i)
        {
            const Subscripts subscripts =
                m_subscripts == nullptr ? Subscripts{i, 0} : Subscripts{m_subscripts->first, i};
            NameCollector(m_names, &subscripts, with(Condition::Kind::atLeast, *list->count, i + 1))
                .collect(list->element);
        }
    }

    void operator()(const codec::Choice* choice)
    {
        for (const codec::Case& one : choice->cases)
        {
            NameCollector(m_names, m_subscripts, with(Condition::Kind::equal, *choice->selector, one.value))
                .collect(one.content);
        }
    }

    void operator()(const codec::LogEntries* entries)
    {
        for (unsigned int i = 0; i < entries->array->size; ++i)
        {
            const Subscripts subscripts = {i, 0};
            add(fieldName(*entries->array, &subscripts), with(Condition::Kind::atLeast, *entries->count, i + 1));
        }
    }

    void operator()(const codec::Block* block)
    {
        add(fieldName(*block->bytes, nullptr), with(Condition::Kind::length, *block->length, block->bound));
    }

    // What follows is there whatever the number is, and what it counts if it is a count of one at most.
    void operator()(const codec::Limit* limit)
    {
        if (limit->bound == 1)
        {
            m_conditions = with(Condition::Kind::atLeast, *limit->field, 1);
        }
    }

private:
    Conditions with(Condition::Kind kind, const Field& field, std::int64_t number)
    {
        const std::string name = fieldName(field, m_subscripts);
        m_names.deciding.insert(name);
        Conditions conditions = m_conditions;
        conditions.push_back({kind, name, number});
        return conditions;
    }

    void add(const std::string& name, Conditions conditions)
    {
        std::vector<Conditions>& all = m_names.conditions[name];
        if (all.empty())
        {
            m_names.all.push_back(name);
        }
        all.push_back(std::move(conditions));
    }

    Names& m_names;
    const Subscripts* m_subscripts;
    Conditions m_conditions;
};

const Names& namesOf(const codec::Shape& shape)
{
    static std::map<const codec::Shape*, Names> known;
    const auto [names, isNew] = known.try_emplace(&shape);
    if (isNew)
    {
        NameCollector(names->second, nullptr, {}).collect(shape.content);
    }
    return names->second;
}

struct Range
{
    std::int64_t least;
    std::int64_t greatest;
};

Range rangeOf(const Field& field)
{
    const std::int64_t span = std::int64_t{1} << (8 * field.size);
    const bool isSigned = field.kind == Kind::s16 || field.kind == Kind::s32;
    return isSigned ? Range{-span / 2, span / 2 - 1} : Range{0, span - 1};
}

// How often a message can be wrong before it is not told any more.
constexpr std::size_t kMostProblems = 20;

// Fills a structure as walk() asks for one field after another.
class Builder : public codec::Visitor
{
public:
    Builder(const Signal& signal, const Values& values)
        : m_signal(signal), m_values(values), m_names(namesOf(*signal.shape)),
          m_structure(signal.shape->structureSize)
    {
    }

    std::vector<char> build()
    {
        walk(*m_signal.shape, m_structure.data(), *this);
        for (const Values::Named& named : m_values.all())
        {
            if (!m_used.contains(&named))
            {
                explainUnused(named);
            }
        }
        if (!m_problems.empty())
        {
            throw BadValues(problems());
        }
        return std::move(m_structure);
    }

    void field(const Field& field, char* base, const Subscripts* subscripts) override
    {
        const std::string name = fieldName(field, subscripts);
        m_nameOf[&field] = name;
        const Values::Named* const given = take(name);
        if (field.kind != Kind::text)
        {
            putNumber(field, base, name, given);
        }
        else if (given != nullptr)
        {
            putText(field, base, *given);
        }
    }

    void entry(const Field& entry, char* base, const Subscripts& subscripts) override
    {
        if (const Values::Named* const given = take(fieldName(entry, &subscripts)))
        {
            putEntry(entry, base, *given);
        }
    }

    void block(const Field& block, char* base) override
    {
        const Values::Named* const given = take(fieldName(block, nullptr));
        if (given == nullptr)
        {
            return;
        }
        const std::optional<std::string> bytes = bytesOf(*given, true);
        if (!bytes || m_wrong.contains(m_lengthName))
        {
            return;
        }
        if (bytes->size() > m_bound)
        {
            problem(*given, fmt::format("{} bytes are more than the {} that fit", bytes->size(), m_bound));
        }
        else if (bytes->size() != block.size)
        {
            problem(*given,
                    fmt::format("{} is {}, and these are {} bytes", m_lengthName, block.size, bytes->size()));
        }
        else
        {
            std::copy(bytes->begin(), bytes->end(), base + block.offset);
        }
    }

    void beginList(const codec::List& list, std::int64_t count, char* /*base*/) override
    {
        expectAtMost(*list.count, count, list.bound);
    }

    void beginChoice(const codec::Choice& choice, const codec::Case* chosen, char* base) override
    {
        const std::string& selector = m_nameOf[choice.selector];
        if (chosen != nullptr || m_wrong.contains(selector))
        {
            return;
        }
        std::string known;
        for (const codec::Case& one : choice.cases)
        {
            known += (known.empty() ? "" : ", ") + std::to_string(one.value);
        }
        problem(selector, m_values.find(selector) == nullptr
                              ? "missing; it is one of " + known
                              : fmt::format("{} is none of {}", loadNumber(*choice.selector, base), known));
    }

    void endEntries(const codec::LogEntries& entries, std::int64_t count, std::int64_t written,
                    char* /*base*/) override
    {
        expectAtMost(*entries.count, count, written);
    }

    void beginBlock(const codec::Block& block, std::int64_t length, char* /*base*/) override
    {
        m_lengthName = m_nameOf[block.length];
        m_bound = block.bound;
        expectAtMost(*block.length, length, block.bound);
    }

    void limit(const codec::Limit& limit, char* base) override
    {
        expectAtMost(*limit.field, codec::loadNumber(*limit.field, base), limit.bound);
    }

private:
    const Values::Named* take(const std::string& name)
    {
        const Values::Named* const given = m_values.find(name);
        if (given != nullptr)
        {
            m_used.insert(given);
        }
        return given;
    }

    void problem(const Values::Named& named, const std::string& what)
    {
        m_problems.emplace(&named - m_values.all().data(), named.second.place + ": " + what);
    }

    // Of a deciding field, from which nothing else shall follow.
    void problem(const std::string& name, const std::string& what)
    {
        m_wrong.insert(name);
        if (const Values::Named* const given = m_values.find(name))
        {
            problem(*given, what);
        }
        else
        {
            m_problems.emplace(m_values.all().size(), m_values.place() + ": " + name + ": " + what);
        }
    }

    std::vector<std::string> problems() const
    {
        std::vector<std::string> lines;
        for (const auto& [order, line] : m_problems)
        {
            if (lines.size() == kMostProblems)
            {
                lines.push_back(
                    fmt::format("{}: and {} more", m_values.place(), m_problems.size() - kMostProblems));
                break;
            }
            lines.push_back(line);
        }
        return lines;
    }

    void expectAtMost(const Field& field, std::int64_t actual, std::int64_t greatest)
    {
        const std::string& name = m_nameOf[&field];
        if (actual > greatest && !m_wrong.contains(name))
        {
            problem(name, fmt::format("{} is more than the {} that there is room for", actual, greatest));
        }
    }

    void putNumber(const Field& field, char* base, const std::string& name, const Values::Named* given)
    {
        const bool isSignal = base == m_structure.data() && field.offset == 0 && name == "sigNo";
        std::int64_t number = isSignal ? static_cast<std::int64_t>(m_signal.number) : 0;
        if (given != nullptr)
        {
            const std::optional<std::int64_t> written = numberOf(field, *given);
            if (isSignal && written && *written != number)
            {
                problem(*given, fmt::format("{} is not {}, the number of {}", *written, number, m_signal.name));
            }
            else if (!isSignal)
            {
                number = written.value_or(0);
            }
            if (!written)
            {
                m_wrong.insert(name);
            }
        }
        if (m_names.deciding.contains(name))
        {
            if (given == nullptr || m_wrong.contains(name))
            {
                number = followingNumber(name);
            }
            m_decided[name] = number;
        }
        codec::storeNumber(field, number, base);
    }

    // What a count, a length or a selector is by the elements, bytes or members that are given.
    std::int64_t followingNumber(const std::string& name)
    {
        std::int64_t number = 0;
        std::map<std::int64_t, std::size_t> members; // how many fields of each are given
        for (const Values::Named& named : m_values.all())
        {
            std::unordered_set<std::int64_t> memberOf;
            for (const Condition& condition : conditionsOn(name, named.first))
            {
                switch (condition.kind)
                {
                case Condition::Kind::atLeast:
                    number = std::max(number, condition.number);
                    break;
                case Condition::Kind::equal:
                    memberOf.insert(condition.number);
                    break;
                case Condition::Kind::length:
                    // What is too long is told when it is the block's turn.
                    number = std::min(static_cast<std::int64_t>(bytesOf(named, false).value_or("").size()),
                                      condition.number);
                    break;
                }
            }
            for (const std::int64_t member : memberOf)
            {
                ++members[member];
            }
        }
        return members.empty() ? number : mostLikely(name, members);
    }

    std::int64_t mostLikely(const std::string& selector, const std::map<std::int64_t, std::size_t>& members)
    {
        const auto fewer = [](const auto& one, const auto& other) { return one.second < other.second; };
        const auto [number, fields] = *std::max_element(members.begin(), members.end(), fewer);
        std::string likely;
        for (const auto& [other, otherFields] : members)
        {
            if (otherFields == fields)
            {
                likely += (likely.empty() ? "" : " or ") + std::to_string(other);
            }
        }
        if (likely != std::to_string(number) && !m_wrong.contains(selector))
        {
            problem(selector, "missing; by what is given it may be " + likely);
        }
        return number;
    }

    // The conditions on one field that stand before another.
    std::vector<Condition> conditionsOn(const std::string& deciding, const std::string& name) const
    {
        std::vector<Condition> found;
        const auto known = m_names.conditions.find(name);
        if (known != m_names.conditions.end())
        {
            for (const Conditions& conditions : known->second)
            {
                std::copy_if(conditions.begin(), conditions.end(), std::back_inserter(found),
                             [&deciding](const Condition& one) { return one.field == deciding; });
            }
        }
        return found;
    }

    std::optional<std::int64_t> numberOf(const Field& field, const Values::Named& given)
    {
        const Value& value = given.second;
        if (value.kind == Value::Kind::hex || value.kind == Value::Kind::bytes)
        {
            problem(given, "these are bytes, and a number is wanted");
            return std::nullopt;
        }
        std::string_view digits = value.content;
        const bool negative = digits.starts_with('-');
        digits.remove_prefix(negative ? 1 : 0);
        const bool isHex = digits.starts_with("0x") || digits.starts_with("0X");
        digits.remove_prefix(isHex ? 2 : 0);
        std::uint64_t magnitude = 0;
        const char* const end = digits.data() + digits.size();
        const auto [stop, error] = std::from_chars(digits.data(), end, magnitude, isHex ? 16 : 10);
        if (error == std::errc::invalid_argument || stop != end)
        {
            problem(given, quote(value.content) + " is no whole number, decimal or 0x...");
            return std::nullopt;
        }
        const Range fits = rangeOf(field);
        const auto greatest = static_cast<std::uint64_t>(negative ? -fits.least : fits.greatest);
        if (error == std::errc::result_out_of_range || magnitude > greatest)
        {
            problem(given, fmt::format("{} is not within {} ... {}", escaped(cut(value.content)), fits.least,
                                       fits.greatest));
            return std::nullopt;
        }
        const auto number = static_cast<std::int64_t>(magnitude);
        return negative ? -number : number;
    }

    static std::string_view cut(std::string_view digits)
    {
        constexpr std::size_t kLongest = 40;
        return digits.substr(0, kLongest);
    }

    // The bytes of a block; null if it has none, which is told or not.
    std::optional<std::string> bytesOf(const Values::Named& given, bool tell)
    {
        const Value& value = given.second;
        if (value.kind == Value::Kind::bytes)
        {
            return value.content;
        }
        if (value.kind == Value::Kind::number)
        {
            if (tell)
            {
                problem(given, "this is a number, and bytes are wanted");
            }
            return std::nullopt;
        }
        std::string_view digits = value.content;
        if (value.kind == Value::Kind::written && digits.starts_with("hex:"))
        {
            digits.remove_prefix(4);
        }
        return hexOf(given, digits, tell);
    }

    std::optional<std::string> hexOf(const Values::Named& given, std::string_view digits, bool tell)
    {
        if (digits.empty())
        {
            return std::string();
        }
        std::optional<std::string> bytes = decodeHex(digits);
        if (!bytes && tell)
        {
            const bool onlyDigits =
                digits.find_first_not_of("0123456789abcdefABCDEF", digits.starts_with("0x") ? 2 : 0) ==
                std::string_view::npos;
            problem(given, onlyDigits && digits.size() % 2 != 0 ? "an odd number of hex digits"
                                                                : quote(digits) + " is not hex");
        }
        return bytes;
    }

    // The characters of a text, null if it cannot be one.
    std::optional<std::string> charactersOf(const Values::Named& given)
    {
        const Value& value = given.second;
        if (value.kind == Value::Kind::number)
        {
            problem(given, "this is a number, and a text is wanted");
            return std::nullopt;
        }
        std::optional<std::string> characters =
            value.kind == Value::Kind::hex ? hexOf(given, value.content, true) : value.content;
        const std::size_t zero = characters ? characters->find('\0') : std::string::npos;
        if (zero != std::string::npos)
        {
            problem(given, fmt::format("a zero byte within the text, behind {} characters", zero));
            return std::nullopt;
        }
        return characters;
    }

    // A text that fills its array has no zero byte behind it. Binary carries it; what the other forms make of it
    // is not seen here.
    void putText(const Field& field, char* base, const Values::Named& given)
    {
        const std::optional<std::string> characters = charactersOf(given);
        if (characters && characters->size() > field.size)
        {
            problem(given, fmt::format("{} characters, where {} fit", characters->size(), field.size - 1));
        }
        else if (characters)
        {
            std::copy(characters->begin(), characters->end(), base + field.offset);
        }
    }

    void putEntry(const Field& entry, char* base, const Values::Named& given)
    {
        const std::optional<std::string> characters = charactersOf(given);
        if (characters && characters->size() >= entry.size)
        {
            problem(given, fmt::format("{} characters, where {} fit behind the entries before", characters->size(),
                                       entry.size - 1));
        }
        else if (characters)
        {
            std::copy(characters->begin(), characters->end(), base + entry.offset);
        }
    }

    void explainUnused(const Values::Named& named)
    {
        const auto known = m_names.conditions.find(named.first);
        if (known != m_names.conditions.end())
        {
            explainAbsent(named, known->second);
        }
        else
        {
            constexpr std::size_t kLongestToCompare = 64;
            const bool compare = named.first.size() <= kLongestToCompare && m_problems.size() < kMostProblems;
            problem(named, fmt::format("{} has no field {}{}", m_signal.shape->className, quote(named.first),
                                       compare ? didYouMean(named.first, m_names.all) : ""));
        }
    }

    // The condition that fails last of all is the one that nearly held. If the field that it is on is wrong, that
    // has been told.
    void explainAbsent(const Values::Named& named, const std::vector<Conditions>& alternatives)
    {
        const Condition* failing = nullptr;
        std::ptrdiff_t best = -1;
        for (const Conditions& conditions : alternatives)
        {
            const auto fails = std::find_if_not(conditions.begin(), conditions.end(),
                                                [this](const Condition& one) { return holds(one); });
            if (fails == conditions.end())
            {
                failing = nullptr;
                break;
            }
            if (fails - conditions.begin() > best)
            {
                best = fails - conditions.begin();
                failing = &*fails;
            }
        }
        if (failing != nullptr && !m_wrong.contains(failing->field))
        {
            problem(named, fmt::format("{} is {}, so there is no {}", failing->field, m_decided[failing->field],
                                       named.first));
        }
        else if (m_problems.empty())
        {
            problem(named, "there is no room for " + named.first);
        }
    }

    bool holds(const Condition& condition) const
    {
        const auto decided = m_decided.find(condition.field);
        if (decided == m_decided.end() || m_wrong.contains(condition.field))
        {
            return false;
        }
        switch (condition.kind)
        {
        case Condition::Kind::atLeast:
            return decided->second >= condition.number;
        case Condition::Kind::equal:
            return decided->second == condition.number;
        case Condition::Kind::length:
            break;
        }
        return true;
    }

    const Signal& m_signal;
    const Values& m_values;
    const Names& m_names;
    std::vector<char> m_structure;
    std::unordered_set<const Values::Named*> m_used;
    std::map<const Field*, std::string> m_nameOf;            // of the fields seen, the last of each
    std::unordered_map<std::string, std::int64_t> m_decided; // deciding fields
    std::unordered_set<std::string> m_wrong;                 // deciding fields of which a problem has been told
    std::string m_lengthName;                                // of the block that comes
    std::size_t m_bound = 0;                                 // likewise
    std::multimap<std::ptrdiff_t, std::string> m_problems;   // in the order of the values
};

} // namespace

Values::Values(std::string place) : m_place(std::move(place)) {}

bool Values::add(std::string_view name, Value value)
{
    if (!m_indexes.emplace(name, m_all.size()).second)
    {
        return false;
    }
    m_all.emplace_back(name, std::move(value));
    return true;
}

const Values::Named* Values::find(std::string_view name) const
{
    const auto index = m_indexes.find(std::string(name));
    return index == m_indexes.end() ? nullptr : &m_all[index->second];
}

std::span<const Values::Named> Values::all() const
{
    return m_all;
}

const std::string& Values::place() const
{
    return m_place;
}

BadValues::BadValues(std::vector<std::string> lines)
    : std::runtime_error(lines.front()), problems(std::move(lines))
{
}

std::vector<char> buildStructure(const Signal& signal, const Values& values)
{
    return Builder(signal, values).build();
}

bool sameValues(const Signal& signal, const std::vector<char>& structure, std::string_view rendering, Form form,
                std::endian firstWord)
{
    return !lostValue(signal, structure, rendering, form, firstWord);
}

std::optional<LostValue> lostValue(const Signal& signal, const std::vector<char>& structure,
                                   std::string_view rendering, Form form, std::endian firstWord)
{
    const Record wanted = recordOf(signal, structure);
    const FieldValue* const lost = firstLost(wanted, {rendering, form, firstWord, &signal});
    if (lost == nullptr)
    {
        return std::nullopt;
    }
    return LostValue{lost->name, lost->value};
}

} // namespace bci::tool
