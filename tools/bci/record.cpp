#include "record.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace bci::tool
{

namespace
{

// Notes where the fields of a structure are.
class Lister : public codec::Visitor
{
public:
    explicit Lister(Record& record) : m_record(record) {}

    void field(const codec::Field& field, char* base, const codec::Subscripts* subscripts) override
    {
        add(field, base, subscripts, false);
    }

    void entry(const codec::Field& entry, char* base, const codec::Subscripts& subscripts) override
    {
        add(entry, base, &subscripts, false);
    }

    void block(const codec::Field& block, char* base) override
    {
        add(block, base, nullptr, true);
    }

private:
    void add(const codec::Field& field, const char* base, const codec::Subscripts* subscripts, bool raw)
    {
        const auto position = static_cast<std::size_t>(base + field.offset - m_record.structure.data());
        m_record.fields.push_back({fieldName(field, subscripts), field, raw, false, position, field.size, {}});
        FieldValue& added = m_record.fields.back();
        added.value = valueIn(added, m_record.structure.data());
    }

    Record& m_record;
};

} // namespace

char* Collector::structure(std::size_t size)
{
    m_record.structure.resize(size);
    return m_record.structure.data();
}

void Collector::number(const FieldPlace& place, std::int64_t value, std::string_view digits, std::size_t position)
{
    std::string text = std::to_string(value);
    const std::size_t length = m_isBinary ? place.field.size : std::max(digits.size(), text.size());
    m_record.fields.push_back({place.name(), place.field, false, false, position, length, std::move(text)});
}

void Collector::text(const FieldPlace& place, std::string_view characters, std::size_t position)
{
    m_record.fields.push_back(
        {place.name(), place.field, false, false, position, characters.size(), std::string(characters)});
}

void Collector::block(const FieldPlace& place, std::string_view bytes, std::size_t position)
{
    m_record.fields.push_back(
        {place.name(), place.field, true, false, position, bytes.size(), std::string(bytes)});
}

void Collector::nothing(const FieldPlace& place, bool raw)
{
    m_record.fields.push_back({place.name(), place.field, raw, true, 0, 0, {}});
}

void Collector::finding(Finding finding)
{
    m_record.findings.push_back(std::move(finding));
}

void Collector::begin(const Item& item)
{
    m_isBinary = item.rendering.form == Form::binary;
    m_record = {};
}

void Collector::end(const Item& item, const Reading& reading)
{
    m_record.reading = reading;
    m_take(item, m_record);
}

Record inspect(const Rendering& rendering)
{
    Record result;
    Collector collector([&result](const Item& /*item*/, const Record& record) { result = record; });
    const std::string document(rendering.bytes); // with the zero that XML needs behind it
    Item item;
    item.rendering = rendering;
    item.rendering.bytes = document;
    collector.begin(item);
    collector.end(item, read(item.rendering, collector));
    return result;
}

Record recordOf(const Signal& signal, std::vector<char> structure)
{
    Record record;
    record.structure = std::move(structure);
    record.reading.isComplete = true;
    Lister lister(record);
    walk(*signal.shape, record.structure.data(), lister);
    return record;
}

std::string valueIn(const FieldValue& field, const char* structure)
{
    const char* const from = structure + field.position;
    if (field.raw)
    {
        return {from, field.length};
    }
    if (field.field.kind == codec::Kind::text)
    {
        return {from, strnlen(from, field.length)};
    }
    return std::to_string(codec::loadNumber(field.field, from - field.field.offset));
}

const FieldValue* firstLost(const Record& record, const Rendering& rendering)
{
    const Record found = inspect(rendering);
    const auto [lost, other] =
        std::mismatch(record.fields.begin(), record.fields.end(), found.fields.begin(), found.fields.end(),
                      [](const FieldValue& one, const FieldValue& two)
                      { return one.name == two.name && one.value == two.value && !two.isLost; });
    if (lost != record.fields.end())
    {
        return &*lost;
    }
    const bool isAll = rendering.bytes.find_first_not_of(std::string_view(" \t\r\n\0", 5), found.reading.end) ==
                       std::string_view::npos;
    return found.reading.isClean() && isAll && other == found.fields.end() ? nullptr : &record.fields.back();
}

const char* typeName(codec::Kind kind)
{
    constexpr std::array kNames = {"U8", "U16", "S16", "U32", "S32", "text"};
    return kNames.at(static_cast<std::size_t>(kind));
}

const char* typeName(const FieldValue& value)
{
    return value.raw ? "U8[]" : typeName(value.field.kind);
}

} // namespace bci::tool
