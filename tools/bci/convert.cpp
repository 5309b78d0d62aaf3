#include "commandIo.h"
#include "output.h"
#include "recordWriter.h"
#include "rows.h"
#include "verbs.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <optional>

namespace bci::tool
{

namespace
{

struct Convert
{
    Inputs inputs;
    std::string to;
    std::string form;
    std::string firstWord;

    int run() const
    {
        if (to == "json")
        {
            Output output;
            RowWriter rows(output.buffer(), [&output] { output.flushIfLarge(); });
            const int status = readInputs(inputs, rows, [&output] { output.flush(); });
            output.flush();
            return status != kClean ? status : rows.damaged() != 0 ? kFound : kClean;
        }
        bool isFound = false;
        std::optional<std::endian> order;
        if (!firstWord.empty())
        {
            order = firstWord == "big" ? std::endian::big : std::endian::little;
        }
        const Target target = targets().at(to);
        RecordWriter writer(target, order);
        Collector collector(
            [&](const Item& item, const Record& record)
            {
                isFound = isFound || record.reading.isDamaged;
                for (const Finding& finding : record.findings)
                {
                    if (inputs.verbose || info(finding.code).severity == Severity::damage)
                    {
                        writer.flush(); // in the order in which it came
                        say(item, finding);
                    }
                }
                const bool carries = (target == Target::trace || target == Target::pcap) && form.empty();
                if (carries && item.hasForm)
                {
                    // These carry a record as it is, damaged or not.
                    writer.write(item.rendering.bytes, item.rendering.form, item.time, item.direction);
                }
                else if (record.reading.isClean())
                {
                    isFound = !write(item, record, writer) || isFound;
                }
            });
        const int status = readInputs(inputs, collector, [&writer] { writer.flush(); });
        writer.finish();
        return status != kClean ? status : isFound ? kFound : kClean;
    }

private:
    // Returns whether the form holds all of the record.
    bool write(const Item& item, const Record& record, RecordWriter& writer) const
    {
        const Rendering& from = item.rendering;
        const Form wanted = form == "text"     ? Form::text
                            : form == "xml"    ? Form::xml
                            : form == "binary" ? Form::binary
                                               : writer.formFor(from.form);
        const std::endian order =
            writer.firstWordFor(from.form == Form::binary ? std::optional(from.firstWord) : std::nullopt);
        const std::string written = render(record.structure, *from.signal, wanted, order);
        if (const FieldValue* const lost = firstLost(record, {written, wanted, order, from.signal}))
        {
            writer.flush();
            say(placeOf(item, lost->position) + ": " + lost->name + ": " +
                quote(lost->raw ? hexDigits(lost->value) : lost->value) + " does not survive in " +
                formName(wanted));
            return false;
        }
        writer.write(written, wanted, item.time, item.direction);
        return true;
    }
};

} // namespace

Run addConvert(CLI::App& app)
{
    CLI::App* const verb = app.add_subcommand("convert", "Turn signals into another form");
    const auto convert = std::make_shared<Convert>();
    std::vector<std::string> names = {"json"};
    for (const auto& [name, target] : targets())
    {
        names.push_back(name);
    }
    convert->inputs.addTo(*verb);
    verb->add_option("--to", convert->to,
                     "What to write; hex is that of the binary form, trace and pcap carry each record as it is")
        ->required()
        ->check(CLI::IsMember(names));
    verb->add_option("--form", convert->form, "Form of the records in a trace or capture, if not their own")
        ->check(CLI::IsMember(std::vector<std::string>{"text", "binary", "xml"}));
    verb->add_option("--first-word", convert->firstWord,
                     "Byte order of the first word in binary and hex, if not the record's own or big")
        ->check(CLI::IsMember(std::vector<std::string>{"big", "little"}));
    verb->footer("A record that is damaged, or of which the other form does not hold a value, is told on standard "
                 "error and not written. JSON, and traces and captures of records in their own form, hold damaged "
                 "ones too.\n\n"
                 "Examples:\n"
                 "  bci convert --to xml record.bin\n"
                 "  bci convert --to hex --first-word little record.txt\n"
                 "  bci convert --to pcap --form binary trace.log > trace.pcap");
    return [convert] { return convert->run(); };
}

} // namespace bci::tool
