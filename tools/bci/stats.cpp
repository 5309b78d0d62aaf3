#include "commandIo.h"
#include "output.h"
#include "rows.h"
#include "verbs.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <array>
#include <memory>
#include <vector>

namespace bci::tool
{

namespace
{

// A sink that counts.
class Counter : public Trial
{
public:
    void finding(const Finding& finding)
    {
        m_found.push_back(finding.code);
    }

    void begin(const Item& /*item*/)
    {
        m_found.clear();
    }

    void cancel() {}

    void end(const Item& item, const Reading& reading)
    {
        const Rendering& rendering = item.rendering;
        Count& count = rendering.signal != nullptr
                           ? signals_[static_cast<std::size_t>(rendering.signal - signals().data())]
                           : unknown;
        for (Count* const one : {&count, &total})
        {
            ++one->records;
            one->bytes += rendering.bytes.size();
            one->damaged += reading.isDamaged ? 1 : 0;
        }
        if (item.hasForm)
        {
            ++forms[static_cast<std::size_t>(rendering.form)];
        }
        for (const Code code : m_found)
        {
            ++found[static_cast<std::size_t>(code)];
        }
    }

    struct Count
    {
        std::uint64_t records = 0;
        std::uint64_t bytes = 0;
        std::uint64_t damaged = 0;
    };

    void add(const Counter& other)
    {
        const auto sum = [](Count& to, const Count& from)
        {
            to.records += from.records;
            to.bytes += from.bytes;
            to.damaged += from.damaged;
        };
        for (std::size_t i = 0; i < signals_.size(); ++i)
        {
            sum(signals_[i], other.signals_[i]);
        }
        sum(unknown, other.unknown);
        sum(total, other.total);
        for (std::size_t i = 0; i < forms.size(); ++i)
        {
            forms[i] += other.forms[i];
        }
        for (std::size_t i = 0; i < found.size(); ++i)
        {
            found[i] += other.found[i];
        }
    }

    std::vector<Count> signals_ = std::vector<Count>(signals().size());
    Count unknown;
    Count total;
    std::array<std::uint64_t, 3> forms = {};
    std::vector<std::uint64_t> found = std::vector<std::uint64_t>(codes().size());

private:
    std::vector<Code> m_found;
};

struct CountJob
{
    Counter& sink()
    {
        return counter;
    }

    void clear()
    {
        counter = {};
    }

    Counter counter;
};

struct Stats
{
    Inputs inputs;
    unsigned int jobs = 1;
    bool json = false;

    int run() const
    {
        Output output;
        Counter counter;
        const int status = jobs == 1 ? readInputs(inputs, counter, [] {})
                                     : readInputs<CountJob>(
                                           inputs, jobs, counter, [] {}, [] {},
                                           [&counter](const CountJob& job) { counter.add(job.counter); });
        output.write(json ? asJson(counter) : asText(counter));
        output.flush();
        return status != kClean ? status : counter.total.damaged != 0 ? kFound : kClean;
    }

    static std::string asText(const Counter& counter)
    {
        const auto line = [](std::string_view name, std::string_view className, const Counter::Count& count)
        {
            return fmt::format("{:<30}  {:<26}  {:>12}  {:>10}  {:>15}\n", name, className, count.records,
                               count.damaged, count.bytes);
        };
        std::string text = fmt::format("{:<30}  {:<26}  {:>12}  {:>10}  {:>15}\n", "signal", "class", "records",
                                       "damaged", "bytes");
        for (std::size_t i = 0; i < counter.signals_.size(); ++i)
        {
            if (counter.signals_[i].records != 0)
            {
                text += line(signals()[i].name, signals()[i].shape->className, counter.signals_[i]);
            }
        }
        if (counter.unknown.records != 0)
        {
            text += line("unknown", "", counter.unknown);
        }
        text += line("total", "", counter.total);
        text += fmt::format("\nforms: {} text, {} binary, {} XML\n", counter.forms[0], counter.forms[1],
                            counter.forms[2]);
        bool isFirst = true;
        for (std::size_t i = 0; i < counter.found.size(); ++i)
        {
            if (counter.found[i] != 0)
            {
                text += fmt::format(
                    "{}{:<20}  {:<6}  {:>12}\n",
                    isFirst ? fmt::format("\n{:<20}  {:<6}  {:>12}\n", "finding", "kind", "count") : "",
                    codes()[i].name, codes()[i].severity == Severity::note ? "note" : "damage", counter.found[i]);
                isFirst = false;
            }
        }
        return text;
    }

    static std::string asJson(const Counter& counter)
    {
        const auto count = [](const Counter::Count& one)
        { return fmt::format(R"("records":{},"damaged":{},"bytes":{})", one.records, one.damaged, one.bytes); };
        std::string text = fmt::format(
            R"({{"schema":1,{},"forms":{{"text":{},"binary":{},"xml":{}}},"unknown":{{{}}},)"
            R"("signals":[)",
            count(counter.total), counter.forms[0], counter.forms[1], counter.forms[2], count(counter.unknown));
        for (std::size_t i = 0; i < counter.signals_.size(); ++i)
        {
            if (counter.signals_[i].records != 0)
            {
                text += fmt::format(R"({}{{"signal":{},"name":"{}","class":"{}",{}}})",
                                    text.back() == '}' ? "," : "", static_cast<unsigned long>(signals()[i].number),
                                    signals()[i].name, signals()[i].shape->className, count(counter.signals_[i]));
            }
        }
        text += R"(],"findings":{)";
        for (std::size_t i = 0; i < counter.found.size(); ++i)
        {
            text += fmt::format(R"({}"{}":{})", i == 0 ? "" : ",", codes()[i].name, counter.found[i]);
        }
        return text + "}}\n";
    }
};

} // namespace

Run addStats(CLI::App& app)
{
    CLI::App* const verb =
        app.add_subcommand("stats", "Count the records of each signal, and what is wrong with them");
    const auto stats = std::make_shared<Stats>();
    stats->inputs.addTo(*verb);
    verb->add_flag("--json", stats->json, "Write one JSON object");
    addJobs(*verb, stats->jobs, "Read lines on so many threads");
    verb->footer("Examples:\n"
                 "  bci stats --jobs 4 log.txt.zst\n"
                 "  bci stats --json log.txt | jq .findings");
    return [stats] { return stats->run(); };
}

} // namespace bci::tool
