#include "commandTree.h"
#include "dissector.h"
#include "input.h"
#include "kaitai.h"
#include "names.h"
#include "rowSchema.h"
#include "verbs.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>

namespace bci::tool
{

namespace
{

struct Options
{
    std::string verb;
    std::string shell;
};

// A column of the tables that rows go into, in the order of their members.
struct Column
{
    const char* name;
    const char* duckDb;
    const char* clickHouse;
};

constexpr const char* kDuckDbFindings =
    R"(STRUCT("code" VARCHAR, "field" VARCHAR, "position" BIGINT, "length" BIGINT, "line" BIGINT, )"
    R"("column" BIGINT, "expected" VARCHAR, "found" VARCHAR, "library" VARCHAR)[])";
constexpr const char* kClickHouseFindings =
    "Array(Tuple(code String, field Nullable(String), position Nullable(UInt64), length Nullable(UInt64), "
    "line Nullable(UInt64), column Nullable(UInt64), expected Nullable(String), found Nullable(String), "
    "library Nullable(String)))";
constexpr Column kColumns[] = {
    {"schema", "INTEGER", "UInt8"},
    {"input", "VARCHAR", "String"},
    {"record", "BIGINT", "Nullable(UInt64)"},
    {"offset", "BIGINT", "Nullable(UInt64)"},
    {"line", "BIGINT", "Nullable(UInt64)"},
    {"time", "VARCHAR", "Nullable(String)"},
    {"direction", "VARCHAR", "Nullable(String)"},
    {"form", "VARCHAR", "Nullable(String)"},
    {"firstWord", "VARCHAR", "Nullable(String)"},
    {"signal", "UINTEGER", "Nullable(UInt32)"},
    {"name", "VARCHAR", "Nullable(String)"},
    {"class", "VARCHAR", "Nullable(String)"},
    {"numbers", "MAP(VARCHAR, BIGINT)", "Map(String, Nullable(Int64))"},
    {"texts", "MAP(VARCHAR, VARCHAR)", "Map(String, Nullable(String))"},
    {"bytes", "MAP(VARCHAR, VARCHAR)", "Map(String, Nullable(String))"},
    {"damages", kDuckDbFindings, kClickHouseFindings},
    {"notes", kDuckDbFindings, kClickHouseFindings},
    {"rest", "VARCHAR", "Nullable(String)"},
    {"original", "VARCHAR", "Nullable(String)"},
};

// One line a column, made of its name and type.
template <typename Line>
std::string columns(Line line)
{
    std::string text;
    for (const Column& column : kColumns)
    {
        text += (text.empty() ? "    " : ",\n    ") + line(column);
    }
    return text + "\n";
}

std::string duckDb()
{
    return R"(-- Rows of "bci decode --json", schema 1, for DuckDB.

-- The rows of files, by name or pattern: SELECT * FROM bci_rows('*.ndjson');
CREATE OR REPLACE MACRO bci_rows(files) AS TABLE
SELECT * FROM read_json(files, format = 'newline_delimited', columns = {
)" + columns([](const Column& column) { return fmt::format("'{}': '{}'", column.name, column.duckDb); }) +
           R"(});

-- A table of the same columns: INSERT INTO bci_records SELECT * FROM bci_rows('log.ndjson');
CREATE TABLE IF NOT EXISTS bci_records (
)" + columns([](const Column& column) { return fmt::format("\"{}\" {}", column.name, column.duckDb); }) +
           ");\n";
}

std::string clickHouse()
{
    return R"(-- Rows of "bci decode --json", schema 1, for ClickHouse:
-- bci decode --json log.txt | clickhouse-client --query 'INSERT INTO bci_records FORMAT JSONEachRow'
CREATE TABLE IF NOT EXISTS bci_records
(
)" + columns([](const Column& column) { return fmt::format("`{}` {}", column.name, column.clickHouse); }) +
           R"()
ENGINE = MergeTree
ORDER BY input;

-- SELECT bciDecode(hex) gives the row of a rendering as hex, where the server's configuration includes what follows
-- (user_defined_executable_functions_config) and finds the command:
--
-- <functions>
--     <function>
--         <type>executable</type>
--         <name>bciDecode</name>
--         <return_type>String</return_type>
--         <argument>
--             <type>String</type>
--         </argument>
--         <format>TabSeparatedRaw</format>
--         <command>bci decode --filter</command>
--         <execute_direct>0</execute_direct>
--     </function>
-- </functions>
)";
}

void put(const std::string& text)
{
    std::fwrite(text.data(), 1, text.size(), stdout);
}

// Today, or what SOURCE_DATE_EPOCH says, so that the same sources make the same pages.
std::string date()
{
    std::time_t now = std::time(nullptr);
    if (const char* const epoch = std::getenv("SOURCE_DATE_EPOCH"))
    {
        now = static_cast<std::time_t>(std::strtoll(epoch, nullptr, 10));
    }
    std::tm parts = {};
    char text[11] = "";
    if (gmtime_r(&now, &parts) == nullptr || std::strftime(text, sizeof text, "%Y-%m-%d", &parts) == 0)
    {
        throw Trouble("SOURCE_DATE_EPOCH is no time");
    }
    return text;
}

std::string manual(const CLI::App& app, const std::string& verb)
{
    const Command root = commandTree(app);
    const std::string version = app.version();
    if (verb.empty())
    {
        return manualPage(root, root, version, date());
    }
    std::vector<std::string> names;
    for (const Command& command : root.commands)
    {
        if (command.name == verb)
        {
            return manualPage(command, root, version, date());
        }
        names.push_back(command.name);
    }
    throw Trouble("no verb " + quote(verb) + didYouMean(verb, names));
}

std::string completion(const CLI::App& app, const std::string& shell)
{
    const Command root = commandTree(app);
    return shell == "bash" ? bashCompletion(root) : shell == "zsh" ? zshCompletion(root) : fishCompletion(root);
}

} // namespace

Run addGen(CLI::App& app)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const verb =
        app.add_subcommand("gen", "Print manual pages, completions, and what other programs need");
    verb->require_subcommand(1);
    app.require_subcommand(0, 1); // behind one verb, the name of another is an argument
    CLI::App* const man = verb->add_subcommand("man", "Print the manual page of the command, or of a verb");
    man->add_option("VERB", options->verb, "The verb")->type_name("VERB");
    CLI::App* const shells = verb->add_subcommand("completion", "Print the completion for a shell");
    shells->add_option("SHELL", options->shell, "The shell")
        ->required()
        ->check(CLI::IsMember({"bash", "zsh", "fish"}));
    CLI::App* const duckDbVerb = verb->add_subcommand("sql-duckdb", "Print table definitions for rows in DuckDB");
    CLI::App* const clickHouseVerb =
        verb->add_subcommand("sql-clickhouse", "Print table definitions for rows in ClickHouse");
    CLI::App* const wireshark = verb->add_subcommand("wireshark", "Print a dissector for Wireshark, in Lua");
    CLI::App* const ksy = verb->add_subcommand("ksy", "Print a description of the binary form for Kaitai Struct");
    verb->add_subcommand("json-schema", "Print the JSON Schema of the rows that decode --json writes");
    verb->footer("The date of manual pages is today's, or what SOURCE_DATE_EPOCH says.\n"
                 "\n"
                 "Exit status: 0, or 2 for trouble (wrong use).\n"
                 "\n"
                 "Examples:\n"
                 "  bci gen man decode > /usr/local/share/man/man1/bci-decode.1\n"
                 "  bci gen completion bash > ~/.local/share/bash-completion/completions/bci\n"
                 "  bci gen completion zsh > ~/.zfunc/_bci\n"
                 "  bci gen completion fish > ~/.config/fish/completions/bci.fish\n"
                 "  bci gen sql-duckdb | duckdb signals.db\n"
                 "  bci gen wireshark > ~/.local/lib/wireshark/plugins/bci.lua");
    return [&app, options, man, shells, duckDbVerb, clickHouseVerb, wireshark, ksy]
    {
        put(man->parsed()              ? manual(app, options->verb)
            : shells->parsed()         ? completion(app, options->shell)
            : duckDbVerb->parsed()     ? duckDb()
            : clickHouseVerb->parsed() ? clickHouse()
            : wireshark->parsed()      ? dissector()
            : ksy->parsed()            ? kaitai()
                                       : kRowSchema);
        return kClean;
    };
}

} // namespace bci::tool
