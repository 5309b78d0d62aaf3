#include "commandIo.h"
#include "output.h"
#include "rows.h"
#include "verbs.h"

#include <CLI/CLI.hpp>
#include <fnmatch.h>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

namespace bci::tool
{

namespace
{

// A record of one side, apart from its input.
struct Side
{
    std::string place;
    const Signal* signal;
    Record record;
    std::string bytes;
};

// The records of an input, read ahead on a thread of its own, a few at most.
class SideReader
{
public:
    SideReader(const std::string& file, Packing packing)
        : m_thread([this, file, packing] { readAll(file, packing); })
    {
    }

    SideReader(const SideReader&) = delete;
    SideReader& operator=(const SideReader&) = delete;

    ~SideReader()
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_isUnwanted = true;
        }
        m_changed.notify_all();
        m_thread.join();
    }

    // Null at the end. Throws Trouble.
    std::optional<Side> next()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait(lock, [this] { return !m_sides.empty() || m_isAtEnd; });
        if (m_sides.empty())
        {
            if (m_trouble != nullptr)
            {
                std::rethrow_exception(std::exchange(m_trouble, nullptr));
            }
            return std::nullopt;
        }
        Side side = std::move(m_sides.front());
        m_sides.pop_front();
        m_changed.notify_all();
        return side;
    }

private:
    struct Unwanted
    {
    };

    void readAll(const std::string& file, Packing packing)
    {
        try
        {
            const std::unique_ptr<ByteStream> input = openInput(file);
            Collector collector([this](const Item& item, const Record& record) { add(item, record); });
            RecordReader<Collector> reader(displayName(file), packing, collector);
            reader.readAll(*input);
        }
        catch (const Unwanted&)
        {
        }
        catch (const std::exception&)
        {
            m_trouble = std::current_exception();
        }
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isAtEnd = true;
        m_changed.notify_all();
    }

    void add(const Item& item, const Record& record)
    {
        constexpr std::size_t kMost = 64;
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait(lock, [this] { return m_sides.size() < kMost || m_isUnwanted; });
        if (m_isUnwanted)
        {
            throw Unwanted();
        }
        m_sides.push_back({placeOf(item, 0), item.rendering.signal, record, std::string(item.rendering.bytes)});
        m_changed.notify_all();
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Side> m_sides;
    bool m_isAtEnd = false;
    bool m_isUnwanted = false;
    std::exception_ptr m_trouble;
    std::thread m_thread; // the last: it uses all others
};

struct Diff
{
    std::string fileA;
    std::string fileB;
    std::string from = "auto";
    std::vector<std::string> ignored;
    bool json = false;

    int run() const
    {
        if (fileA == "-" && fileB == "-")
        {
            throw Trouble("only one of the two can be standard input");
        }
        Output output;
        SideReader first(fileA, packingOf(from));
        SideReader second(fileB, packingOf(from));
        bool isFound = false;
        bool isDamaged = false;
        for (std::uint64_t number = 1;; ++number)
        {
            const std::optional<Side> left = first.next();
            const std::optional<Side> right = second.next();
            if (!left && !right)
            {
                break;
            }
            for (const std::optional<Side>* const side : {&left, &right})
            {
                isDamaged = isDamaged || (*side && (*side)->record.reading.isDamaged);
            }
            isFound = compare(number, left, right, output) || isFound;
        }
        output.flush();
        if (isDamaged)
        {
            say("damaged records are among them: 'bci check' tells where");
        }
        return isFound || isDamaged ? kFound : kClean;
    }

private:
    struct Line
    {
        std::string field;
        std::optional<std::string> left;
        std::optional<std::string> right;
    };

    bool isIgnored(const std::string& name) const
    {
        return std::any_of(ignored.begin(), ignored.end(),
                           [&](const std::string& pattern)
                           { return pattern == name || ::fnmatch(pattern.c_str(), name.c_str(), 0) == 0; });
    }

    static std::optional<std::string> shown(const FieldValue* value)
    {
        if (value == nullptr || value->isLost)
        {
            return std::nullopt;
        }
        return value->raw ? hexDigits(value->value) : value->value;
    }

    std::vector<Line> linesOf(const std::optional<Side>& left, const std::optional<Side>& right) const
    {
        const auto nameOf = [](const Signal* signal)
        { return std::string(signal != nullptr ? signal->name : "unknown"); };
        std::vector<Line> lines;
        if (!left || !right)
        {
            lines.push_back({"record", left ? std::optional(nameOf(left->signal)) : std::nullopt,
                             right ? std::optional(nameOf(right->signal)) : std::nullopt});
            return lines;
        }
        if (left->signal == nullptr && right->signal == nullptr && left->bytes != right->bytes)
        {
            lines.push_back({"bytes", hexDigits(left->bytes), hexDigits(right->bytes)});
        }
        const std::vector<FieldValue>& ours = left->record.fields;
        const std::vector<FieldValue>& theirs = right->record.fields;
        const auto find = [](const std::vector<FieldValue>& fields, const FieldValue& wanted, std::size_t hint)
        {
            if (hint < fields.size() && fields[hint].name == wanted.name)
            {
                return &fields[hint];
            }
            const auto found = std::find_if(fields.begin(), fields.end(),
                                            [&](const FieldValue& one) { return one.name == wanted.name; });
            return found != fields.end() ? &*found : nullptr;
        };
        for (std::size_t i = 0; i < ours.size(); ++i)
        {
            const FieldValue* const other = find(theirs, ours[i], i);
            if (other == nullptr || other->value != ours[i].value || other->isLost != ours[i].isLost)
            {
                lines.push_back({ours[i].name, shown(&ours[i]), shown(other)});
            }
        }
        for (std::size_t i = 0; i < theirs.size(); ++i)
        {
            if (find(ours, theirs[i], i) == nullptr)
            {
                lines.push_back({theirs[i].name, std::nullopt, shown(&theirs[i])});
            }
        }
        std::erase_if(lines, [this](const Line& line) { return isIgnored(line.field); });
        return lines;
    }

    bool compare(std::uint64_t number, const std::optional<Side>& left, const std::optional<Side>& right,
                 Output& output) const
    {
        const std::vector<Line> lines = linesOf(left, right);
        if (lines.empty())
        {
            return false;
        }
        const auto placed = [](const std::optional<Side>& side)
        { return side ? side->place : std::string("none"); };
        std::string text;
        if (!json)
        {
            const Signal* const signal = left ? left->signal : right->signal;
            text = "record " + std::to_string(number) + ", " + placed(left) + ", " + placed(right) + ": " +
                   (signal != nullptr ? signal->name : "unknown") + "\n";
        }
        for (const Line& line : lines)
        {
            const auto value = [](const std::optional<std::string>& one)
            { return one ? escaped(*one) : std::string("(none)"); };
            if (!json)
            {
                text += "  " + line.field + ": " + value(line.left) + " | " + value(line.right) + "\n";
                continue;
            }
            text += R"({"schema":1,"record":)" + std::to_string(number);
            const auto add = [&text](const char* key, const std::optional<std::string>& one)
            {
                text += key;
                if (one)
                {
                    appendAnyString(text, *one);
                }
                else
                {
                    text += "null";
                }
            };
            add(R"(,"left":)", left ? std::optional(left->place) : std::nullopt);
            add(R"(,"right":)", right ? std::optional(right->place) : std::nullopt);
            add(R"(,"field":)", line.field);
            add(R"(,"leftValue":)", line.left);
            add(R"(,"rightValue":)", line.right);
            text += "}\n";
        }
        output.write(text);
        return true;
    }
};

} // namespace

Run addDiff(CLI::App& app)
{
    CLI::App* const verb =
        app.add_subcommand("diff", "Compare the records of two inputs field by field, whatever their forms");
    const auto diff = std::make_shared<Diff>();
    verb->add_option("A", diff->fileA, "An input; - is standard input")->required();
    verb->add_option("B", diff->fileB, "Another")->required();
    verb->add_option("--from", diff->from, "What the inputs are; auto looks at each record")
        ->capture_default_str()
        ->check(CLI::IsMember(packingNames()));
    verb->add_option("--ignore", diff->ignored, "Fields to pass over: names or patterns like 'padding*'")
        ->delimiter(',')
        ->type_name("NAMES");
    verb->add_flag("--json", diff->json, "Write one row of NDJSON for each difference");
    verb->footer("Records are compared in their order.\n\n"
                 "Examples:\n"
                 "  bci diff a.bin b.xml\n"
                 "  bci diff --ignore 'clientRef,serverRef,padding*' yesterday.log today.log");
    return [diff] { return diff->run(); };
}

} // namespace bci::tool
