// Any input of the command, as its listings show it, and what the library makes of each of its records.

#include "harness.h"
#include "library.h"
#include "output.h"
#include "record.h"

namespace bci::fuzz
{

void run(Input input, Trace& trace)
{
    const auto packing = static_cast<tool::Packing>(input.byte() % 10);
    const Guarded bytes(input.rest());
    tool::Collector collector(
        [&trace](const tool::Item& item, const tool::Record& record)
        {
            trace.add("listing", listing(item, record));
            trace.add("annotation", annotation(item, record));
            trace.add("csv", csv(item, record));
            trace.add("place", placeOf(item, record.reading.end));
            const tool::Verdict verdict = askLibrary(item.rendering, record);
            trace.add("result", verdict.result);
            trace.add("length", verdict.length);
            for (const std::string& line : verdict.log)
            {
                trace.add("log", line);
            }
            for (const tool::Difference& difference : verdict.differences)
            {
                trace.add("field", difference.field);
                trace.add("stored", difference.stored.value_or("its old value"));
            }
            if (!record.reading.isClean())
            {
                return;
            }
            for (const tool::Loss& loss : roundTrip(*item.rendering.signal, record))
            {
                trace.add("form", static_cast<int>(loss.form));
                trace.add("lost", loss.field);
                trace.add("value", loss.value);
                trace.add("back", loss.back);
            }
        });
    tool::MemoryStream stream(std::string_view(bytes.data(), bytes.size()));
    tool::Window window(stream, 2 * tool::kReach);
    try
    {
        trace.add("taken for", tool::RecordReader<tool::Collector>("in", packing, collector).readAll(window));
    }
    catch (const tool::Trouble& trouble)
    {
        trace.add("trouble", trouble.what());
    }
}

} // namespace bci::fuzz
