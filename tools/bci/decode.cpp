#include "commandIo.h"
#include "lineFilter.h"
#include "output.h"
#include "parallel.h"
#include "rows.h"
#include "verbs.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <optional>
#include <vector>

namespace bci::tool
{

namespace
{

// The rows of one piece of an input.
struct RowJob
{
    RowJob() : rows(buffer, [] {})
    {
        rows.leaveRecordsTo(recordPlaces);
    }

    RowWriter& sink()
    {
        return rows;
    }

    void clear()
    {
        buffer.cutTo(0);
        recordPlaces.clear();
        rows.forgetDamage();
    }

    Buffer buffer;
    std::vector<std::size_t> recordPlaces;
    RowWriter rows;
};

struct Decode
{
    Inputs inputs;
    bool json = false;
    bool csv = false;
    bool annotate = false;
    bool filter = false;
    std::string byteRange;
    LineLayout layout;
    unsigned int jobs = 1;

    int run() const
    {
        if (filter)
        {
            return filterAll();
        }
        Output output;
        const int status = json ? writeRows(output) : writeRecords(output);
        output.flush();
        return status;
    }

    int filterAll() const
    {
        const Packing packing = inputs.packing();
        if (packing == Packing::binary || packing == Packing::dump || packing == Packing::pcap)
        {
            throw Trouble("--filter: " + inputs.from + " has no lines");
        }
        Output output;
        int status = kClean;
        for (const std::string& file : inputs.files)
        {
            try
            {
                filterLines(file, packing, layout, byteRange.empty() ? std::nullopt : ByteRange::parse(byteRange),
                            output);
            }
            catch (const Trouble& trouble)
            {
                output.flush();
                say(trouble.what());
                status = kTrouble;
            }
        }
        return status;
    }

    int writeRows(Output& output) const
    {
        RowWriter rows(output.buffer(), [&output] { output.flushIfLarge(); });
        if (jobs == 1)
        {
            const int status = readInputs(inputs, rows, [&output] { output.flush(); });
            return status != kClean ? status : rows.damaged() != 0 ? kFound : kClean;
        }
        std::uint64_t damaged = 0;
        std::uint64_t record = 0;
        const auto take = [&](RowJob& job)
        {
            const std::string_view text = job.buffer.text();
            std::size_t written = 0;
            for (const std::size_t place : job.recordPlaces)
            {
                output.buffer().put(text.substr(written, place - written));
                char* const to = output.buffer().room(20);
                output.buffer().endAt(std::to_chars(to, to + 20, ++record).ptr);
                output.flushIfLarge();
                written = place;
            }
            output.write(text.substr(written));
            damaged += job.rows.damaged();
        };
        const int status = readInputs<RowJob>(
            inputs, jobs, rows, [&output] { output.flush(); }, [&record] { record = 0; }, take);
        return status != kClean ? status : damaged + rows.damaged() != 0 ? kFound : kClean;
    }

    int writeRecords(Output& output) const
    {
        bool isDamaged = false;
        bool isFirst = true;
        if (csv)
        {
            output.write(csvHeader());
        }
        Collector collector(
            [&](const Item& item, const Record& record)
            {
                if (!csv && !isFirst)
                {
                    output.write("\n");
                }
                isFirst = false;
                output.write(csv        ? tool::csv(item, record)
                             : annotate ? annotation(item, record)
                                        : listing(item, record));
                isDamaged = isDamaged || record.reading.isDamaged;
                for (const Finding& finding : record.findings)
                {
                    if (inputs.verbose || info(finding.code).severity == Severity::damage)
                    {
                        output.flush(); // in the order in which it came
                        say(item, finding);
                    }
                }
            });
        const int status = readInputs(inputs, collector, [&output] { output.flush(); });
        return status != kClean ? status : isDamaged ? kFound : kClean;
    }
};

} // namespace

Run addDecode(CLI::App& app)
{
    CLI::App* const verb = app.add_subcommand("decode", "Show the fields of signals, whatever their form");
    const auto decode = std::make_shared<Decode>();
    decode->inputs.addTo(*verb);
    CLI::Option* const json = verb->add_flag("--json", decode->json, "Write one row of NDJSON for each record");
    CLI::Option* const csv = verb->add_flag("--csv", decode->csv, "Write one line of CSV for each field");
    CLI::Option* const annotate =
        verb->add_flag("--annotate", decode->annotate, "Write hex with the names of the fields under their bytes");
    json->excludes(csv)->excludes(annotate);
    csv->excludes(annotate);
    CLI::Option* const jobs = addJobs(*verb, decode->jobs, "With --json, read lines on so many threads");
    jobs->needs(json);
    CLI::Option* const filter =
        verb->add_flag("--filter", decode->filter,
                       "Write exactly one row of NDJSON for each line, at once; damage is told in the row alone");
    filter->excludes(csv)->excludes(annotate)->excludes(jobs);
    verb->add_option("--byte-range", decode->byteRange,
                     "With --filter, take the lines that begin behind byte A and not behind B, or at 0 if A is 0; "
                     "record and line are null then")
        ->type_name("A-B")
        ->needs(filter)
        ->check([](const std::string& text)
                { return ByteRange::parse(text) ? std::string() : text + " is no range of bytes like 0-1000"; });
    CLI::Option* const column =
        verb->add_option("--column", decode->layout.column, "With --filter, take a column of tab-separated values")
            ->type_name("N")
            ->needs(filter)
            ->check(CLI::Range(1, 1000000));
    verb->add_option("--field", decode->layout.member,
                     "With --filter, take a member of a JSON object in each line")
        ->type_name("NAME")
        ->needs(filter)
        ->excludes(column);
    verb->footer("Messages about damage go to standard error; rows hold it themselves.\n\n"
                 "Examples:\n"
                 "  bci decode log.txt\n"
                 "  xxd -r -p hex.txt | bci decode --annotate\n"
                 "  bci decode --json --jobs 4 log.zst | jq .numbers.clientRef\n"
                 "  tail -f log.txt | bci decode --filter");
    return [decode] { return decode->run(); };
}

} // namespace bci::tool
