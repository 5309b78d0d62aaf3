// A record as a whole: its fields, what is wrong with it, and its wire structure.
#ifndef BCI_TOOL_RECORD_H
#define BCI_TOOL_RECORD_H

#include "reading.h"
#include "records.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace bci::tool
{

struct FieldValue
{
    std::string name;
    codec::Field field;
    bool raw;             // a block: bytes, not characters
    bool isLost;          // its value could not be read
    std::size_t position; // of the value in the rendering, in bytes
    std::size_t length;   // there, in bytes
    std::string value;    // as text; the bytes of a block as they are
};

struct Record
{
    std::vector<FieldValue> fields;
    std::vector<Finding> findings;
    std::vector<char> structure; // the wire structure, in the host's layout; what no field fills is zero
    Reading reading;

    // What has not been read.
    std::string_view rest(const Item& item) const
    {
        return item.rendering.bytes.substr(std::min(reading.rest, item.rendering.bytes.size()));
    }
};

// A sink that collects one record after another and hands each on.
class Collector
{
public:
    static constexpr bool kNeedsStructure = true;

    using Take = std::function<void(const Item&, const Record&)>;

    explicit Collector(Take take) : m_take(std::move(take)) {}

    char* structure(std::size_t size);
    void number(const FieldPlace& place, std::int64_t value, std::string_view digits, std::size_t position);
    void text(const FieldPlace& place, std::string_view characters, std::size_t position);
    void block(const FieldPlace& place, std::string_view bytes, std::size_t position);
    void nothing(const FieldPlace& place, bool raw);
    void finding(Finding finding);
    void begin(const Item& item);
    void cancel() {}
    void end(const Item& item, const Reading& reading);

private:
    Take m_take;
    bool m_isBinary = false;
    Record m_record;
};

// Reads one rendering, which is followed by nothing else.
Record inspect(const Rendering& rendering);

// The fields of a wire structure in the host's layout. Positions and lengths are those in the structure.
Record recordOf(const Signal& signal, std::vector<char> structure);

// The value of a field there, as text; the bytes of a block as they are.
std::string valueIn(const FieldValue& field, const char* structure);

// The first of a record's fields that a rendering of it does not bring back (a ':' within a text is one that text
// does not), or null.
const FieldValue* firstLost(const Record& record, const Rendering& rendering);

// The name of a field's type, as the wire structures have it; texts are "text", blocks "U8[]".
const char* typeName(codec::Kind kind);
const char* typeName(const FieldValue& value);

} // namespace bci::tool

#endif
