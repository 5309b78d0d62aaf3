#include "build.h"
#include "bytes.h"
#include "containers.h"
#include "jsonRows.h"
#include "names.h"
#include "output.h"
#include "recordWriter.h"
#include "records.h"
#include "verbs.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unistd.h>
#include <utility>
#include <vector>

namespace bci::tool
{

namespace
{

constexpr const char* kFooter =
    R"(Values: numbers are decimal or 0x...; texts are taken as they are; a block is given as hex digits, which may
begin with 0x or hex:. NAME=@FILE takes the bytes of a file, for a text or a block (@- is standard input); a text
that begins with @ is given with two. What is not given is zero or empty, but for counts, lengths and the
identities of capabilities: they follow from the elements, bytes and fields that are given.

Rows: one JSON object on a line, or objects over several lines or in an array, as "bci decode --json" prints them.
A row needs "signal", "name" or "class"; fields stand in "numbers", "texts" and "bytes" or beside the class:
{"class":"BciAuditCfm","clientRef":1,"mainState":3}. A row is written in the form that it says, or else as text.

Exit status: 0 if all is well, 1 if a row could not be encoded (all others are), 2 for trouble: wrong use, also
values in arguments that do not fit, or a file that cannot be read or written.

Examples:
  bci encode BciAuditCfm clientRef=1 mainState=3
  bci encode 0x1658401 clientRef=1 --to hex --first-word little
  bci encode LOAD_LMC_DATA lmSeqNr=1 lmBlock=@module.bin --to binary --output block.bin
  bci decode --json log.txt | bci encode --to pcap --output log.pcap)";

void complain(const std::string& problem)
{
    std::fflush(stdout);
    std::fprintf(stderr, "bci: %s\n", problem.c_str());
}

// What a record is beyond its values.
struct Origin
{
    std::optional<Form> form;
    std::optional<std::endian> firstWord;
    std::string time;
    std::string direction;
    std::string original; // its rendering, where the library would write another one
};

// Throws BadValues if there are problems, together with those of the values.
void throwWithValues(const Signal& signal, const Values& values, std::vector<std::string> problems)
{
    if (problems.empty())
    {
        return;
    }
    try
    {
        buildStructure(signal, values);
    }
    catch (const BadValues& bad)
    {
        problems.insert(problems.end(), bad.problems.begin(), bad.problems.end());
    }
    throw BadValues(std::move(problems));
}

// Throws BadValues if the library does not write the structure, or loses a value.
std::string rendered(const Signal& signal, const std::vector<char>& structure, Form form, std::endian firstWord,
                     const Values& values)
{
    std::string rendering;
    try
    {
        rendering = render(structure, signal, form, firstWord);
    }
    catch (const Trouble& trouble)
    {
        throw BadValues({values.place() + ": " + trouble.what()});
    }
    if (const std::optional<LostValue> lost = lostValue(signal, structure, rendering, form, firstWord))
    {
        const Values::Named* const given = values.find(lost->name);
        throw BadValues({(given != nullptr ? given->second.place : values.place() + ": " + lost->name) + ": " +
                         quote(lost->value) + " does not survive in " + formName(form)});
    }
    return rendering;
}

// As it was, if nothing has changed. Throws BadValues.
std::string renderingOf(const Signal& signal, const Values& values, const Origin& origin, Form form,
                        std::endian firstWord)
{
    const std::vector<char> structure = buildStructure(signal, values);
    const bool isAsItWas = !origin.original.empty() && form == origin.form &&
                           (form != Form::binary || firstWord == origin.firstWord) &&
                           sameValues(signal, structure, origin.original, form, firstWord);
    return isAsItWas ? origin.original : rendered(signal, structure, form, firstWord, values);
}

// Throws BadValues, then nothing has been written.
void encode(const Signal& signal, const Values& values, const Origin& origin, RecordWriter& writer)
{
    const Form form = writer.formFor(origin.form, Form::text);
    writer.write(renderingOf(signal, values, origin, form, writer.firstWordFor(origin.firstWord)), form,
                 origin.time, origin.direction);
}

std::string listOf(const std::vector<const Signal*>& signals)
{
    std::string list;
    for (const Signal* const signal : signals)
    {
        list += (list.empty() ? "" : ", ") + std::string(signal->name);
    }
    return list;
}

std::string noSuchSignal(std::string_view written)
{
    constexpr std::size_t kLongestToCompare = 64;
    std::vector<std::string> names;
    for (const Signal& signal : signals())
    {
        names.emplace_back(signal.name);
        names.emplace_back(signal.shape->className);
    }
    return "no signal or class " + quote(written) +
           (written.size() <= kLongestToCompare ? didYouMean(written, names) : "");
}

std::string sharedClass(std::string_view written, const std::vector<const Signal*>& signals)
{
    return fmt::format("{} is the class of {} signals, of which one is wanted: {}", quote(written), signals.size(),
                       listOf(signals));
}

// Rows of JSON.

class JsonRow
{
public:
    JsonRow(const JsonRows& rows, bool force) : m_rows(rows), m_force(force), m_values(rows.place(0)) {}

    // Throws BadValues.
    void read()
    {
        const JsonValue row = parsed();
        if (row.type != JsonValue::Type::object)
        {
            problem(row, "a row is an object");
        }
        for (const auto& [name, value] : row.members)
        {
            if (isMember(name) && !m_seen.insert(name).second)
            {
                problem(value, name + ": given twice");
            }
            else
            {
                member(name, value);
            }
        }
        if (!m_damage.empty())
        {
            throw BadValues({m_damage});
        }
        if (m_signals.size() == 1)
        {
            throwWithValues(signal(), m_values, m_problems);
        }
        else if (m_signals.size() > 1)
        {
            problem(*m_signalMember, sharedClass(m_signalMember->content, m_signals));
        }
        else if (!m_hasSignalMember)
        {
            problem(row, "which signal? A row needs 'signal', 'name' or 'class'");
        }
        if (!m_problems.empty())
        {
            throw BadValues(std::move(m_problems));
        }
    }

    const Signal& signal() const
    {
        return *m_signals.front();
    }

    const Values& values() const
    {
        return m_values;
    }

    const Origin& origin() const
    {
        return m_origin;
    }

private:
    using Type = JsonValue::Type;

    JsonValue parsed() const
    {
        try
        {
            return parseJson(m_rows.text());
        }
        catch (const JsonError& error)
        {
            throw BadValues({m_rows.place(error.position) + ": no JSON: " + error.what()});
        }
    }

    static bool isMember(std::string_view name)
    {
        static const std::set<std::string_view> members = {
            "schema", "input", "record",  "offset", "line",  "time",    "direction", "form", "firstWord", "signal",
            "name",   "class", "numbers", "texts",  "bytes", "damages", "notes",     "rest", "original"};
        return members.contains(name);
    }

    void member(const std::string& name, const JsonValue& value)
    {
        if (name == "signal" || name == "name" || name == "class")
        {
            identify(name, value);
        }
        else if (name == "numbers" || name == "texts" || name == "bytes")
        {
            fields(name, value);
        }
        else if (name == "schema" && value.content != "1")
        {
            problem(value, "only schema 1 is known");
        }
        else if (name == "form")
        {
            m_origin.form = oneOf<Form>(
                name, value,
                {{"text", Form::text}, {"binary", Form::binary}, {"xml", Form::xml}, {"XML", Form::xml}});
        }
        else if (name == "firstWord")
        {
            m_origin.firstWord =
                oneOf<std::endian>(name, value, {{"big", std::endian::big}, {"little", std::endian::little}});
        }
        else if (name == "time")
        {
            m_origin.time = text(name, value);
        }
        else if (name == "direction")
        {
            m_origin.direction = text(name, value);
        }
        else if (name == "original")
        {
            original(value);
        }
        else if (name == "damages" && value.elements != 0 && !m_force)
        {
            m_damage = place(value) + ": this record was damaged; --force takes its values as they are";
        }
        else if (!isMember(name))
        {
            field(name, value, Value::Kind::written);
        }
    }

    // Signals are those that every member allows.
    void identify(const std::string& name, const JsonValue& value)
    {
        if (value.type == Type::null)
        {
            return;
        }
        m_hasSignalMember = true;
        if (m_signals.size() == 1 &&
            (value.content == m_signals.front()->name || value.content == m_signals.front()->shape->className))
        {
            return; // it says the same once more, as whole rows do
        }
        std::vector<const Signal*> found = findSignals(value.content);
        if (found.empty() || (value.type != Type::number && value.type != Type::text))
        {
            problem(value, name + ": " + noSuchSignal(value.content));
            return;
        }
        if (m_signalMember)
        {
            std::erase_if(found, [this](const Signal* one)
                          { return std::find(m_signals.begin(), m_signals.end(), one) == m_signals.end(); });
        }
        if (found.empty())
        {
            problem(value,
                    fmt::format("{}: {} is not {}", name, quote(value.content), quote(m_signalMember->content)));
            return;
        }
        m_signals = std::move(found);
        m_signalMember = value;
    }

    void fields(const std::string& map, const JsonValue& value)
    {
        if (value.type != Type::object)
        {
            problem(value, map + ": an object is wanted");
        }
        for (const auto& [name, one] : value.members)
        {
            field(name, one, map == "bytes" ? Value::Kind::hex : Value::Kind::written);
        }
    }

    void field(const std::string& name, const JsonValue& value, Value::Kind kind)
    {
        if (value.type == Type::null && m_force)
        {
            return; // zero, or what follows from the others
        }
        const std::string shown = escaped(std::string_view(name).substr(0, kLongestShown));
        if (value.type == Type::null)
        {
            problem(value, shown + ": no value; --force leaves it out");
        }
        else if (value.type != Type::number && value.type != Type::text)
        {
            problem(value, shown + ": a number or a text is wanted");
        }
        else if (!m_values.add(name, {value.type == Type::number ? Value::Kind::number : kind, value.content,
                                      place(value) + ": " + shown}))
        {
            problem(value, shown + ": given twice");
        }
    }

    void original(const JsonValue& value)
    {
        if (value.type == Type::null)
        {
            return;
        }
        const std::optional<std::string> bytes =
            value.type == Type::text ? decodeHex(value.content) : std::optional<std::string>();
        if (!bytes)
        {
            problem(value, "original: hex digits are wanted");
            return;
        }
        m_origin.original = *bytes;
    }

    std::string text(const std::string& name, const JsonValue& value)
    {
        if (value.type != Type::text && value.type != Type::null)
        {
            problem(value, name + ": a text is wanted");
        }
        return value.type == Type::text ? value.content : "";
    }

    template <typename T>
    std::optional<T> oneOf(const std::string& name, const JsonValue& value,
                           const std::vector<std::pair<std::string, T>>& choices)
    {
        std::string known;
        for (const auto& [choice, meaning] : choices)
        {
            if (value.type == Type::text && value.content == choice)
            {
                return meaning;
            }
            known += (known.empty() ? "" : ", ") + choice;
        }
        if (value.type != Type::null)
        {
            problem(value, fmt::format("{}: {} is none of {}", name, quote(value.content), known));
        }
        return std::nullopt;
    }

    std::string place(const JsonValue& value) const
    {
        return m_rows.place(value.position);
    }

    void problem(const JsonValue& value, const std::string& what)
    {
        if (m_problems.size() < kMostProblems)
        {
            m_problems.push_back(place(value) + ": " + what);
        }
    }

    static constexpr std::size_t kLongestShown = 40;
    static constexpr std::size_t kMostProblems = 20;

    const JsonRows& m_rows;
    bool m_force;
    Values m_values;
    Origin m_origin;
    std::set<std::string> m_seen;
    std::vector<const Signal*> m_signals;
    bool m_hasSignalMember = false;
    std::optional<JsonValue> m_signalMember; // the last that told the signal
    std::string m_damage;                    // the only thing to say of a damaged record
    std::vector<std::string> m_problems;
};

// Returns whether all rows of a file have been written.
bool encodeRows(const std::string& fileName, bool force, RecordWriter& writer)
{
    const std::unique_ptr<ByteStream> input = openInput(fileName);
    JsonRows rows(*input, displayName(fileName));
    bool allWell = true;
    while (rows.next())
    {
        try
        {
            if (!rows.problem().empty())
            {
                throw BadValues({rows.place(0) + ": " + rows.problem()});
            }
            JsonRow row(rows, force);
            row.read();
            encode(row.signal(), row.values(), row.origin(), writer);
        }
        catch (const BadValues& bad)
        {
            std::for_each(bad.problems.begin(), bad.problems.end(), complain);
            allWell = false;
        }
    }
    return allWell;
}

int encodeFiles(const std::vector<std::string>& fileNames, bool force, RecordWriter& writer)
{
    int status = kClean;
    for (const std::string& fileName : fileNames)
    {
        try
        {
            status = encodeRows(fileName, force, writer) ? status : std::max(status, kFound);
        }
        catch (const Trouble& trouble)
        {
            complain(trouble.what());
            status = kTrouble;
        }
    }
    if (status == kClean || writer.hasBegun())
    {
        writer.finish(); // else an output that is there stays as it is
    }
    return status;
}

// Values in arguments.

std::string contentOf(const std::string& fileName)
{
    constexpr std::size_t kMost = std::size_t{1} << 16; // more than any field takes
    const auto close = [](std::FILE* file) { std::fclose(file); };
    std::unique_ptr<std::FILE, decltype(close)> opened;
    if (fileName != "-")
    {
        opened.reset(std::fopen(fileName.c_str(), "rb"));
    }
    std::FILE* const file = fileName == "-" ? stdin : opened.get();
    std::string content(kMost, '\0');
    if (file != nullptr)
    {
        content.resize(std::fread(content.data(), 1, content.size(), file));
    }
    if (file == nullptr || std::ferror(file) != 0)
    {
        throw Trouble(displayName(fileName) + ": " + std::strerror(errno));
    }
    return content;
}

Value valueOf(const std::string& written, std::string place)
{
    if (written.starts_with("@@"))
    {
        return {Value::Kind::written, written.substr(1), std::move(place)};
    }
    if (written.starts_with('@'))
    {
        return {Value::Kind::bytes, contentOf(written.substr(1)), std::move(place)};
    }
    return {Value::Kind::written, written, std::move(place)};
}

// "argument 2 (clientRef=1)".
std::string argumentPlace(std::size_t number, std::string_view argument)
{
    constexpr std::size_t kLongest = 60;
    const std::string shown =
        argument.size() <= kLongest ? std::string(argument) : std::string(argument.substr(0, kLongest)) + "...";
    return fmt::format("argument {} ({})", number, escaped(shown));
}

const Signal& signalOf(const std::string& argument, const std::string& place)
{
    const std::vector<const Signal*> found = findSignals(argument);
    if (found.empty())
    {
        throw BadValues({place + ": " + noSuchSignal(argument) +
                         (access(argument.c_str(), F_OK) == 0 ? "; a file is read with --json" : "")});
    }
    if (found.size() > 1)
    {
        throw BadValues({place + ": " + sharedClass(argument, found)});
    }
    return *found.front();
}

void encodeArguments(const std::string& signalArgument, const std::vector<std::string>& arguments,
                     RecordWriter& writer)
{
    Values values(argumentPlace(1, signalArgument));
    const Signal& signal = signalOf(signalArgument, values.place());
    std::vector<std::string> problems;
    for (std::size_t i = 0; i < arguments.size(); ++i)
    {
        const std::string& argument = arguments[i];
        const std::string place = argumentPlace(i + 2, argument);
        const std::size_t equals = argument.find('=');
        try
        {
            if (equals == std::string::npos)
            {
                problems.push_back(place + ": NAME=VALUE is wanted");
            }
            else if (!values.add(argument.substr(0, equals), valueOf(argument.substr(equals + 1), place)))
            {
                problems.push_back(place + ": given twice");
            }
        }
        catch (const Trouble& trouble)
        {
            problems.push_back(place + ": " + trouble.what());
        }
    }
    throwWithValues(signal, values, std::move(problems));
    encode(signal, values, {}, writer);
    writer.finish();
}

struct Options
{
    std::string signal;
    std::vector<std::string> values;
    std::vector<std::string> jsonFiles;
    std::string to;
    std::string firstWord;
    std::string output = "-";
    bool force = false;
};

int run(const Options& options)
{
    std::optional<std::endian> firstWord;
    if (!options.firstWord.empty())
    {
        firstWord = options.firstWord == "big" ? std::endian::big : std::endian::little;
    }
    RecordWriter writer(options.to.empty() ? Target::own : targets().at(options.to), firstWord, options.output);
    const bool fromStandardInput = options.signal.empty() || options.signal == "-";
    if (!options.jsonFiles.empty() ? !options.signal.empty() : fromStandardInput && !options.values.empty())
    {
        throw Trouble("rows of JSON have their values in themselves; no arguments are wanted beside them");
    }
    if (!options.jsonFiles.empty())
    {
        return encodeFiles(options.jsonFiles, options.force, writer);
    }
    if (fromStandardInput)
    {
        return encodeFiles({"-"}, options.force, writer);
    }
    try
    {
        encodeArguments(options.signal, options.values, writer);
        return kClean;
    }
    catch (const BadValues& bad)
    {
        std::for_each(bad.problems.begin(), bad.problems.end(), complain);
        return kTrouble;
    }
}

std::vector<std::string> targetNames()
{
    std::vector<std::string> names;
    for (const auto& [name, target] : targets())
    {
        names.push_back(name);
    }
    return names;
}

} // namespace

std::string readRow(std::string_view row, std::string& bytes, Rendering& rendering)
{
    try
    {
        MemoryStream stream(row);
        JsonRows rows(stream, "row");
        rows.next();
        if (!rows.problem().empty())
        {
            return rows.problem();
        }
        JsonRow json(rows, false);
        json.read();
        const Origin& origin = json.origin();
        rendering.signal = &json.signal();
        rendering.form = origin.form.value_or(Form::text);
        rendering.firstWord = origin.firstWord.value_or(std::endian::big);
        bytes = renderingOf(json.signal(), json.values(), origin, rendering.form, rendering.firstWord);
        return {};
    }
    catch (const BadValues& bad)
    {
        return bad.problems.front();
    }
}

Run addEncode(CLI::App& app)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const verb = app.add_subcommand("encode", "Write signals from values by name, or from rows of JSON");
    verb->add_option("SIGNAL", options->signal,
                     "Number, name or class of the signal; without it or with -, rows come from standard input");
    verb->add_option("VALUES", options->values, "Value for each field that is not zero or empty")
        ->type_name("NAME=VALUE");
    verb->add_option("--json", options->jsonFiles, "File of rows, - for standard input; may be repeated")
        ->type_name("FILE")
        ->allow_extra_args(false);
    verb->add_option("--to", options->to,
                     "What to write; hex is that of the binary form (default: the row's own form, or text)")
        ->check(CLI::IsMember(targetNames()));
    verb->add_option("--first-word", options->firstWord,
                     "Byte order of the first word in binary and hex (default: the row's own, or big)")
        ->check(CLI::IsMember({"big", "little"}));
    verb->add_option("--output", options->output, "File to write, - for standard output")
        ->type_name("FILE")
        ->capture_default_str();
    verb->add_flag("--force", options->force, "Take rows of damaged records as they are, without what is null");
    verb->footer(kFooter);
    return [options] { return run(*options); };
}

} // namespace bci::tool
