// The bci command: shows what a rendering of a board control signal holds, and turns one form into
// another.

#include "bciMsgRegistration.h"
#include "input.h"
#include "verbs.h"

#include <CLI/CLI.hpp>

#include <bit>
#include <cstdio>
#include <exception>
#include <iostream>
#include <map>
#include <string>
#include <vector>

namespace
{

constexpr int kDamageFound = 1;
constexpr int kTrouble = 2;

const std::map<std::string, bci::tool::Target> kTargets = {{"text", bci::tool::Target::text},
                                                           {"binary", bci::tool::Target::binary},
                                                           {"xml", bci::tool::Target::xml},
                                                           {"hex", bci::tool::Target::hex}};
const std::map<std::string, std::endian> kOrders = {{"big", std::endian::big}, {"little", std::endian::little}};

template <typename Value>
std::vector<std::string> keysOf(const std::map<std::string, Value>& values)
{
    std::vector<std::string> keys;
    keys.reserve(values.size());
    for (const auto& [key, value] : values)
    {
        keys.push_back(key);
    }
    return keys;
}

int complain(const std::string& message, int status)
{
    std::cerr << "bci: " << message << '\n';
    return status;
}

// Output that did not reach its place is trouble, whatever the verb came to.
int finish()
{
    return std::cout.flush() && std::fflush(stdout) == 0 ? 0
                                                         : complain("cannot write to standard output", kTrouble);
}

} // namespace

int main(int argc, char** argv)
{
    CLI::App app("Shows and converts signals of the board control interface.", "bci");
    app.footer(
        "Exit status: 0 if all is well, 1 for damaged input, 2 for trouble (wrong use, a file that cannot be "
        "read).");
    app.set_version_flag("--version", "bci " BCI_VERSION);
    app.failure_message([](const CLI::App*, const CLI::Error& error)
                        { return "bci: " + bci::tool::escaped(error.what()) + " (see bci --help)\n"; });

    std::string fileName = "-";
    const auto addFile = [&fileName](CLI::App* verb) {
        verb->add_option("FILE", fileName, "text, binary, XML or hex; - is standard input")->capture_default_str();
    };

    CLI::App* const decode = app.add_subcommand("decode", "Show the fields of a signal, whatever its form");
    addFile(decode);

    CLI::App* const convert = app.add_subcommand("convert", "Turn a signal into another form");
    std::string form;
    convert->add_option("--to", form, "Form to write; hex is that of the binary form")
        ->required()
        ->check(CLI::IsMember(keysOf(kTargets)));
    std::string order = "big";
    convert->add_option("--first-word", order, "Byte order of the first word in binary and hex")
        ->capture_default_str()
        ->check(CLI::IsMember(keysOf(kOrders)));
    addFile(convert);

    CLI::App* const list = app.add_subcommand("list", "List all signals: number, class and name");

    try
    {
        app.parse(argc, argv);
        if (app.get_subcommands().empty())
        {
            throw CLI::RequiredError("A verb");
        }
    }
    catch (const CLI::ParseError& error)
    {
        return app.exit(error) == 0 ? finish() : kTrouble;
    }

    try
    {
        BciMsgRegistry::registerSupportedMsgClasses();
        if (decode->parsed())
        {
            bci::tool::decode(fileName);
        }
        else if (convert->parsed())
        {
            bci::tool::convert(fileName, kTargets.at(form), kOrders.at(order));
        }
        else if (list->parsed())
        {
            bci::tool::list();
        }
    }
    catch (const bci::tool::Damage& damage)
    {
        return complain(bci::tool::displayName(fileName) + damage.what(), kDamageFound);
    }
    catch (const std::exception& trouble)
    {
        return complain(trouble.what(), kTrouble);
    }
    return finish();
}
