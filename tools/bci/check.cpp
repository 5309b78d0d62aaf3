#include "commandIo.h"
#include "library.h"
#include "output.h"
#include "rows.h"
#include "verbs.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <memory>

namespace bci::tool
{

namespace
{

constexpr std::size_t kContext = 100; // characters of a line that are shown around a place

const FieldValue* findField(const Record& record, const std::string& name)
{
    const auto found = std::find_if(record.fields.begin(), record.fields.end(),
                                    [&](const FieldValue& one) { return one.name == name; });
    return found != record.fields.end() ? &*found : nullptr;
}

std::string shownValue(const Difference& difference)
{
    return difference.stored.value_or("its old value");
}

// What the library has done with a field in which something is wrong.
std::string done(const Finding& finding, const Record& record, const Verdict& verdict)
{
    for (const Difference& difference : verdict.differences)
    {
        if (difference.field == finding.field)
        {
            return difference.stored ? "stores " + *difference.stored : "keeps its old value";
        }
    }
    const FieldValue* const field = findField(record, finding.field);
    if (field != nullptr && field->isLost)
    {
        return field->field.kind == codec::Kind::text ? "stores an empty text" : "stores 0";
    }
    return finding.library;
}

// Findings about a record, those included that only the library's own reading shows.
std::vector<Finding> allFindings(const Item& item, const Record& record, const Verdict& verdict)
{
    std::vector<Finding> findings = record.findings;
    for (Finding& finding : findings)
    {
        if (info(finding.code).severity == Severity::damage)
        {
            finding.library = done(finding, record, verdict);
        }
    }
    if (!record.reading.isClean())
    {
        return findings;
    }
    if (!verdict.result)
    {
        findings.push_back({Code::libraryRefuses, item.rendering.bytes.size(), 0, "", "success", "failure",
                            verdict.log.empty() ? "answers failure" : "logs \"" + verdict.log.back() + "\""});
    }
    for (const Difference& difference : verdict.differences)
    {
        if (const FieldValue* const field = findField(record, difference.field))
        {
            findings.push_back({Code::libraryDiffers, field->position, field->length, field->name,
                                quote(field->raw ? hexDigits(field->value) : field->value), shownValue(difference),
                                difference.stored ? "stores " + *difference.stored : "keeps its old value"});
        }
    }
    return findings;
}

// One line with what is at a place, and one with a mark under it.
std::string caret(std::string_view bytes, std::size_t position, std::size_t length, const Colours& colours)
{
    position = std::min(position, bytes.size());
    const std::size_t lineBegin = position == 0 ? 0 : bytes.substr(0, position).rfind('\n') + 1;
    const std::size_t lineEnd = std::min(bytes.find('\n', position), bytes.size());
    const std::size_t begin = position - lineBegin > kContext / 2 ? position - kContext / 2 : lineBegin;
    const std::size_t end = std::min(lineEnd, begin + kContext);
    const auto columns = [&](std::size_t from, std::size_t to)
    {
        std::string shown;
        for (const char ch : bytes.substr(from, to - from))
        {
            shown += static_cast<unsigned char>(ch) < 0x80 ? escaped(std::string_view(&ch, 1)) : ".";
        }
        return shown;
    };
    const std::string before = columns(begin, position);
    const std::string marked = columns(position, std::min(position + std::max<std::size_t>(length, 1), end));
    std::string text = "    " + std::string(begin != lineBegin ? "..." : "") + columns(begin, end) +
                       (end != lineEnd ? "..." : "") + "\n    ";
    text += std::string(before.size() + (begin != lineBegin ? 3 : 0), ' ') +
            colours.red("^" + std::string(marked.empty() ? 0 : marked.size() - 1, '~')) + "\n";
    return text;
}

// The bytes around a place, with a mark under those that are wrong.
std::string ruler(std::string_view bytes, std::size_t position, std::size_t length, const Colours& colours)
{
    constexpr std::size_t kBytesPerRow = 16;
    const std::size_t row = std::min(position, bytes.empty() ? 0 : bytes.size() - 1) / kBytesPerRow * kBytesPerRow;
    const std::string_view shown = bytes.substr(std::min(row, bytes.size()), kBytesPerRow);
    char offset[24];
    std::snprintf(offset, sizeof offset, "    %08lx  ", static_cast<unsigned long>(row));
    std::string text = offset;
    for (std::size_t i = 0; i < shown.size(); ++i)
    {
        text += (i == 0 ? "" : " ") + hexDigits(shown.substr(i, 1));
    }
    const std::size_t first = position - row;
    const std::size_t last = std::min(first + std::max<std::size_t>(length, 1), std::max(shown.size(), first + 1));
    text += "\n" + std::string(14 + 3 * first, ' ') + colours.red(std::string(3 * (last - first) - 1, '^')) + "\n";
    return text;
}

std::string libraryLine(const Verdict& verdict)
{
    std::string text = verdict.result ? "success" : "failure";
    text += ", length " + std::to_string(verdict.length);
    constexpr std::size_t kMost = 6;
    for (std::size_t i = 0; i < std::min(kMost, verdict.differences.size()); ++i)
    {
        text += ", " + verdict.differences[i].field + " " + shownValue(verdict.differences[i]);
    }
    if (verdict.differences.size() > kMost)
    {
        text += ", and " + std::to_string(verdict.differences.size() - kMost) + " more";
    }
    for (const std::string& line : verdict.log)
    {
        text += "; logs \"" + escaped(line.substr(0, 200)) + "\"";
    }
    return text;
}

const char* verdictOf(const Record& record, const std::vector<Finding>& findings)
{
    const bool isDamaged =
        !record.reading.isClean() ||
        std::any_of(findings.begin(), findings.end(),
                    [](const Finding& one) { return info(one.code).severity == Severity::damage; });
    return isDamaged ? "damaged" : findings.empty() ? "clean" : "noted";
}

// Where the results go.
class Report
{
public:
    explicit Report(Output& output) : m_output(output) {}
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;
    virtual ~Report() = default;

    virtual void record(const Item& item, const Record& record, const std::vector<Finding>& findings,
                        const Verdict& verdict, const std::vector<Loss>* losses) = 0;
    // `isWhole`: all inputs could be read.
    virtual void finish(bool isWhole) = 0;

protected:
    Output& m_output; // NOLINT(cppcoreguidelines-non-private-member-variables-in-classes)
};

class TextReport : public Report
{
public:
    TextReport(Output& output, bool showsAll) : Report(output), m_showsAll(showsAll) {}

    void record(const Item& item, const Record& record, const std::vector<Finding>& findings,
                const Verdict& verdict, const std::vector<Loss>* losses) override
    {
        ++m_records;
        const std::string verdictText = verdictOf(record, findings);
        m_damaged += verdictText == "damaged" ? 1 : 0;
        m_noted += verdictText == "noted" ? 1 : 0;
        if (findings.empty() && (losses == nullptr || losses->empty()) && !m_showsAll)
        {
            return;
        }
        const Rendering& rendering = item.rendering;
        std::string text = m_colours.bold(placeOf(item, 0)) + ": " +
                           (rendering.signal != nullptr ? rendering.signal->name : "no signal") + ", " +
                           (item.hasForm ? formName(rendering.form) : "form unknown") + ": " +
                           (verdictText == "damaged" ? m_colours.red(verdictText) : verdictText) + "\n";
        for (const Finding& finding : findings)
        {
            const bool isNote = info(finding.code).severity == Severity::note;
            text += "  " + placeOf(item, finding.position) + ": " +
                    (isNote ? m_colours.yellow("note") : m_colours.red("damage")) + ": " + message(finding) + "\n";
            text += item.hasForm && rendering.form != Form::binary
                        ? caret(rendering.bytes, finding.position, finding.length, m_colours)
                        : ruler(rendering.bytes, finding.position, finding.length, m_colours);
            text += "    the library " + finding.library + "\n";
        }
        if (rendering.signal != nullptr)
        {
            text += "  the library's own result: " + libraryLine(verdict) + "\n";
        }
        if (losses != nullptr)
        {
            for (const Loss& loss : *losses)
            {
                text += std::string("  ") + formName(loss.form) + " loses " +
                        (loss.field.empty() ? "the message: " + loss.back
                                            : loss.field + ": " + loss.value + " comes back as " + loss.back) +
                        "\n";
            }
        }
        m_output.write(text);
    }

    void finish(bool /*isWhole*/) override
    {
        const auto counted = [](std::uint64_t count, const char* what)
        { return std::to_string(count) + " " + what + (count == 1 ? "" : "s"); };
        m_output.write(counted(m_records, "record") + ", " + std::to_string(m_damaged) + " damaged, " +
                       std::to_string(m_noted) + " with notes\n");
    }

private:
    bool m_showsAll;
    Colours m_colours{1};
    std::uint64_t m_records = 0;
    std::uint64_t m_damaged = 0;
    std::uint64_t m_noted = 0;
};

void appendText(std::string& out, const char* key, std::string_view text)
{
    out += key;
    appendAnyString(out, text);
}

class JsonReport : public Report
{
public:
    using Report::Report;

    void record(const Item& item, const Record& record, const std::vector<Finding>& findings,
                const Verdict& verdict, const std::vector<Loss>* losses) override
    {
        const Rendering& rendering = item.rendering;
        std::string out = R"({"schema":1)";
        appendText(out, R"(,"input":)", item.input);
        out += R"(,"record":)" + std::to_string(item.record) + R"(,"offset":)" + std::to_string(item.offset) +
               R"(,"line":)" + (item.line != 0 ? std::to_string(item.line) : "null");
        if (rendering.signal != nullptr)
        {
            out += R"(,"signal":)" + std::to_string(rendering.signal->number) + R"(,"name":")" +
                   rendering.signal->name + R"(","class":")" + rendering.signal->shape->className + '"';
        }
        else
        {
            out += R"(,"signal":null,"name":null,"class":null)";
        }
        out += std::string(R"(,"form":)") + (!item.hasForm                  ? "null"
                                             : rendering.form == Form::text ? R"("text")"
                                             : rendering.form == Form::xml  ? R"("xml")"
                                                                            : R"("binary")");
        appendText(out, R"(,"verdict":)", verdictOf(record, findings));
        for (const Severity severity : {Severity::damage, Severity::note})
        {
            out += severity == Severity::damage ? R"(,"damages":[)" : R"(,"notes":[)";
            for (const Finding& finding : findings)
            {
                if (info(finding.code).severity == severity)
                {
                    out += out.back() == '}' ? "," : "";
                    appendFinding(out, item, finding);
                }
            }
            out += ']';
        }
        appendVerdict(out, rendering, verdict);
        appendLosses(out, losses);
        m_output.write(out + "}\n");
    }

    void finish(bool /*isWhole*/) override {}

private:
    static void appendVerdict(std::string& out, const Rendering& rendering, const Verdict& verdict)
    {
        if (rendering.signal == nullptr)
        {
            out += R"(,"library":null)";
            return;
        }
        out += std::string(R"(,"library":{"result":)") + (verdict.result ? "true" : "false") + R"(,"length":)" +
               std::to_string(verdict.length) + R"(,"differences":[)";
        for (const Difference& difference : verdict.differences)
        {
            appendText(out, out.back() == '}' ? R"(,{"field":)" : R"({"field":)", difference.field);
            appendText(out, R"(,"library":)", shownValue(difference));
            out += '}';
        }
        out += R"(],"log":[)";
        for (const std::string& line : verdict.log)
        {
            appendText(out, out.back() == '"' ? "," : "", line);
        }
        out += "]}";
    }

    static void appendLosses(std::string& out, const std::vector<Loss>* losses)
    {
        if (losses == nullptr)
        {
            out += R"(,"roundtrip":null)";
            return;
        }
        out += R"(,"roundtrip":[)";
        for (const Loss& loss : *losses)
        {
            appendText(out, out.back() == '}' ? R"(,{"form":)" : R"({"form":)",
                       loss.form == Form::text  ? "text"
                       : loss.form == Form::xml ? "xml"
                                                : "binary");
            appendText(out, R"(,"field":)", loss.field);
            appendText(out, R"(,"value":)", loss.value);
            appendText(out, R"(,"back":)", loss.back);
            out += '}';
        }
        out += ']';
    }
};

// Static Analysis Results Interchange Format 2.1.0.
class SarifReport : public Report
{
public:
    explicit SarifReport(Output& output) : Report(output)
    {
        std::string out =
            R"({"$schema":"https://json.schemastore.org/sarif-2.1.0.json","version":"2.1.0","runs":[)"
            R"({"tool":{"driver":{"name":"bci","version":")" BCI_VERSION R"(","rules":[)";
        for (const CodeInfo& code : codes())
        {
            out += &code == codes().data() ? "" : ",";
            appendText(out, R"({"id":)", code.name);
            appendText(out, R"(,"shortDescription":{"text":)", code.title);
            appendText(out, R"(},"fullDescription":{"text":)", code.explanation);
            out += std::string(R"(},"defaultConfiguration":{"level":")") + level(code) + R"("}})";
        }
        m_output.write(out + R"(]}},"columnKind":"unicodeCodePoints","results":[)");
    }

    void record(const Item& item, const Record& /*record*/, const std::vector<Finding>& findings,
                const Verdict& /*verdict*/, const std::vector<Loss>* losses) override
    {
        for (const Finding& finding : findings)
        {
            add(item, finding.code, finding.position, finding.length,
                message(finding) + "; the library " + finding.library);
        }
        if (losses != nullptr)
        {
            for (const Loss& loss : *losses)
            {
                add(item, Code::libraryDiffers, 0, 0,
                    std::string(formName(loss.form)) + " loses " + loss.field + " " + loss.value + ": " +
                        loss.back);
            }
        }
    }

    void finish(bool isWhole) override
    {
        m_output.write(std::string(R"(],"invocations":[{"executionSuccessful":)") + (isWhole ? "true" : "false") +
                       "}]}]}\n");
    }

private:
    static const char* level(const CodeInfo& code)
    {
        return code.severity == Severity::note ? "note" : "error";
    }

    // Bytes that go on with a character in UTF-8.
    static std::size_t continuations(std::string_view text)
    {
        return static_cast<std::size_t>(std::count_if(
            text.begin(), text.end(), [](char ch) { return (static_cast<unsigned char>(ch) & 0xC0) == 0x80; }));
    }

    // A file name as a reference in a URI.
    static std::string uri(std::string_view name)
    {
        constexpr std::string_view kPlain = "-._~/";
        std::string text;
        for (const char ch : name)
        {
            const auto byte = static_cast<unsigned char>(ch);
            const bool isPlain = (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
                                 (byte >= 'a' && byte <= 'z') || kPlain.find(ch) != std::string_view::npos;
            text += isPlain ? std::string(1, ch) : "%" + hexDigits(std::string_view(&ch, 1));
        }
        return text;
    }

    void add(const Item& item, Code code, std::size_t position, std::size_t length, const std::string& text)
    {
        std::string out = m_isFirst ? "" : ",";
        m_isFirst = false;
        appendText(out, R"({"ruleId":)", info(code).name);
        out += R"(,"ruleIndex":)" + std::to_string(static_cast<std::size_t>(code)) + R"(,"level":")" +
               level(info(code)) + '"';
        appendText(out, R"(,"message":{"text":)", text);
        appendText(out, R"(},"locations":[{"physicalLocation":{"artifactLocation":{"uri":)", uri(item.input));
        out += R"(},"region":{)";
        if (const LineColumn place = lineAndColumn(item, position); place.line != 0)
        {
            // Characters, where the line can be looked at.
            const bool isPlain = item.carrier == Carrier::plain && position <= item.rendering.bytes.size();
            const std::string_view before = item.rendering.bytes.substr(0, isPlain ? position : 0);
            const std::size_t lineBegin = before.rfind('\n') + 1;
            const std::size_t continued = continuations(before.substr(std::min(lineBegin, before.size())));
            const std::uint64_t column = place.column - continued;
            out += R"("startLine":)" + std::to_string(place.line) + R"(,"startColumn":)" + std::to_string(column);
            if (isPlain)
            {
                const std::string_view found = item.rendering.bytes.substr(position, length);
                const std::string_view inLine = found.substr(0, found.find('\n'));
                out += R"(,"endColumn":)" + std::to_string(column + inLine.size() - continuations(inLine));
            }
        }
        else
        {
            out += R"("byteOffset":)" + std::to_string(item.offset + position) + R"(,"byteLength":)" +
                   std::to_string(length);
        }
        m_output.write(out + "}}}]}");
    }

    bool m_isFirst = true;
};

struct Check
{
    Inputs inputs;
    std::string format = "text";
    std::string explained;
    bool roundtrip = false;
    bool strict = false;

    int run() const
    {
        Output output;
        if (!explained.empty())
        {
            return explain(output);
        }
        std::unique_ptr<Report> report;
        if (format == "json")
        {
            report = std::make_unique<JsonReport>(output);
        }
        else if (format == "sarif")
        {
            report = std::make_unique<SarifReport>(output);
        }
        else
        {
            report = std::make_unique<TextReport>(output, inputs.verbose);
        }
        bool found = false;
        Collector collector(
            [&](const Item& item, const Record& record)
            {
                const Verdict verdict = askLibrary(item.rendering, record);
                const std::vector<Finding> findings = allFindings(item, record, verdict);
                std::vector<Loss> losses;
                if (roundtrip && record.reading.isClean())
                {
                    losses = roundTrip(*item.rendering.signal, record);
                }
                report->record(item, record, findings, verdict, roundtrip ? &losses : nullptr);
                const std::string result = verdictOf(record, findings);
                found = found || result == "damaged" || (strict && result == "noted") || !losses.empty();
            });
        const int status = readInputs(inputs, collector, [&output] { output.flush(); });
        report->finish(status == kClean);
        output.flush();
        return status != kClean ? status : found ? kFound : kClean;
    }

    int explain(Output& output) const
    {
        std::vector<std::string> names;
        for (const CodeInfo& code : codes())
        {
            names.emplace_back(code.name);
            if (explained == code.name || explained == "all")
            {
                output.write(std::string(code.name) + " (" +
                             (code.severity == Severity::note ? "note" : "damage") + ")\n" + code.title + ".\n" +
                             code.explanation + "\nThe library " + code.library + ".\n" +
                             (explained == "all" && &code != &codes().back() ? "\n" : ""));
            }
        }
        if (explained != "all" && findCode(explained) == nullptr)
        {
            say("--explain: no code is called '" + escaped(explained) + "'" + didYouMean(explained, names));
            return kTrouble;
        }
        output.flush();
        return kClean;
    }
};

} // namespace

Run addCheck(CLI::App& app)
{
    CLI::App* const verb =
        app.add_subcommand("check", "Tell what is wrong with records, and what the library makes of them");
    const auto check = std::make_shared<Check>();
    check->inputs.addTo(*verb);
    verb->add_option("--format", check->format, "How results are written")
        ->capture_default_str()
        ->check(CLI::IsMember(std::vector<std::string>{"text", "json", "sarif"}));
    verb->add_flag("--roundtrip", check->roundtrip,
                   "Say which form would lose which value: written and read back by the library");
    verb->add_flag("--strict", check->strict, "Let notes count for the exit status, too");
    verb->add_option("--explain", check->explained, "Explain a code, or all of them")->type_name("CODE");
    verb->footer("Examples:\n"
                 "  bci check log.txt\n"
                 "  bci check --roundtrip --verbose record.xml\n"
                 "  bci check --format sarif log.txt > log.sarif\n"
                 "  bci check --explain cut-short");
    return [check] { return check->run(); };
}

} // namespace bci::tool
