// Any bytes as rows of JSON, from which signals are made.

#include "harness.h"
#include "jsonRows.h"
#include "records.h"

namespace bci::fuzz
{

void run(Input input, Trace& trace)
{
    const Guarded bytes(input.rest());
    tool::MemoryStream stream(std::string_view(bytes.data(), bytes.size()));
    tool::JsonRows rows(stream, "in");
    std::string made;
    while (rows.next())
    {
        trace.add("row", rows.text());
        trace.add("problem", rows.problem());
        trace.add("place", rows.place(rows.text().size() / 2));
        tool::Rendering rendering;
        trace.add("wrong", tool::readRow(rows.text(), made, rendering));
        trace.add("made", made);
    }
}

} // namespace bci::fuzz
