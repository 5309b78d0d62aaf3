// The bci command: shows, makes, converts and judges signals of the board control interface.

#include "bciMsgRegistration.h"
#include "commandIo.h"
#include "input.h"
#include "verbs.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <iostream>
#include <vector>

namespace
{

constexpr const char* kFooter = "Exit status: 0 if all is well, 1 if damage or a difference was found, 2 for "
                                "trouble (wrong use, a file that cannot "
                                "be read, an output that cannot be written).";

} // namespace

int main(int argc, char** argv)
{
    using namespace bci::tool;

    CLI::App app("Shows, makes, converts and judges signals of the board control interface.", "bci");
    app.footer(kFooter);
    app.set_version_flag("--version", "bci " BCI_VERSION);
    app.failure_message([](const CLI::App*, const CLI::Error& error)
                        { return "bci: " + escaped(error.what()) + " (see bci --help)\n"; });
    const std::vector<Run> runs = {addDecode(app), addEncode(app),   addConvert(app),
                                   addCheck(app),  addDescribe(app), addList(app),
                                   addDiff(app),   addStats(app),    addGen(app)};
    try
    {
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
            if (app.exit(error) != 0)
            {
                return kTrouble;
            }
            if (!std::cout.flush() || std::fflush(stdout) != 0)
            {
                throw Trouble("cannot write to standard output");
            }
            return kClean;
        }
        BciMsgRegistry::registerSupportedMsgClasses();
        const std::vector<CLI::App*> verbs = app.get_subcommands([](CLI::App* /*verb*/) { return true; });
        for (std::size_t i = 0; i < runs.size(); ++i)
        {
            if (verbs.at(i)->parsed())
            {
                const int status = runs[i]();
                if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
                {
                    throw Trouble("cannot write to standard output");
                }
                return status;
            }
        }
    }
    catch (const std::exception& trouble)
    {
        say(trouble.what());
    }
    return kTrouble;
}
