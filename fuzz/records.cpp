// Any input of the command, packed in whatever it seems to be, as rows; and these as inputs again.

#include "harness.h"
#include "jsonRows.h"
#include "rows.h"

#include <algorithm>

namespace bci::fuzz
{

namespace
{

// Gives so many bytes at a time, as a pipe does.
class Pipe : public tool::ByteStream
{
public:
    Pipe(std::string_view bytes, std::size_t piece) : m_all(bytes), m_piece(piece) {}

    std::size_t read(char* to, std::size_t most) override
    {
        return m_all.read(to, std::min(most, m_piece));
    }

private:
    tool::MemoryStream m_all;
    std::size_t m_piece;
};

std::string rowsOf(std::string_view bytes, tool::Packing packing, std::size_t piece, Trace& trace)
{
    tool::Buffer rows;
    tool::RowWriter writer(rows, [] {});
    Pipe pipe(bytes, piece);
    tool::Window window(pipe, 2 * tool::kReach);
    tool::RecordReader<tool::RowWriter> reader("in", packing, writer);
    try
    {
        trace.add("taken for", reader.readAll(window));
    }
    catch (const tool::Trouble& trouble)
    {
        trace.add("trouble", trouble.what());
    }
    trace.add("damaged", static_cast<std::int64_t>(writer.damaged()));
    return std::string(rows.text());
}

void expectJson(std::string_view row)
{
    try
    {
        tool::parseJson(row);
    }
    catch (const tool::JsonError& error)
    {
        fail("a row that is no JSON: " + std::string(row) + error.what());
    }
}

} // namespace

void run(Input input, Trace& trace)
{
    const auto packing = static_cast<tool::Packing>(input.byte() % 10);
    const std::size_t piece = input.byte() + std::size_t{1};
    const Guarded bytes(input.rest());
    const std::string_view all(bytes.data(), bytes.size());
    // It must not show in what pieces an input comes.
    const std::string rows = rowsOf(all, packing, fillByte == '\x5A' ? piece : all.size() + 1, trace);
    trace.add("rows", rows);
    std::string again;
    for (std::size_t at = 0; at < rows.size();)
    {
        const std::size_t end = std::min(rows.find('\n', at), rows.size());
        const std::string_view row = std::string_view(rows).substr(at, end - at);
        at = end + 1;
        expectJson(row);
        tool::Rendering rendering;
        trace.add("as a row", tool::readRow(row, again, rendering));
        trace.add("made again", again);
    }
}

} // namespace bci::fuzz
