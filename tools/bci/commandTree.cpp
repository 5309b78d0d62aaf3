#include "commandTree.h"

#include "catalogue.h"
#include "finding.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace bci::tool
{

namespace
{

// What stands in the braces of a type name like "TEXT:{text,json}".
std::vector<std::string> membersOf(const std::string& typeName)
{
    const std::size_t begin = typeName.find('{');
    const std::size_t end = typeName.find('}', begin);
    if (begin == std::string::npos || end == std::string::npos)
    {
        return {};
    }
    return CLI::detail::split(typeName.substr(begin + 1, end - begin - 1), ',');
}

Parameter parameterOf(const CLI::Option& option, const std::vector<std::string>& verbs)
{
    Parameter parameter;
    for (const std::string& name : option.get_lnames())
    {
        parameter.names.push_back("--" + name);
    }
    for (const std::string& name : option.get_snames())
    {
        parameter.names.push_back("-" + name);
    }
    const std::string typeName = option.get_type_name();
    const std::string type = typeName.substr(0, typeName.find(':'));
    parameter.label = option.get_positional() ? option.get_name(true) : type;
    parameter.words = membersOf(typeName);
    if (type == "VERB")
    {
        parameter.words = verbs;
    }
    else if (type == "CODE")
    {
        std::transform(codes().begin(), codes().end(), std::back_inserter(parameter.words),
                       [](const CodeInfo& code) { return code.name; });
    }
    const bool isSignal = type == "SIGNAL" || parameter.label == "SIGNAL";
    parameter.value = option.get_items_expected_max() == 0 ? Value::none
                      : !parameter.words.empty()           ? Value::word
                      : isSignal                           ? Value::signal
                                                           : Value::file;
    parameter.help = option.get_description();
    parameter.preset = parameter.value == Value::none ? "" : option.get_default_str();
    parameter.isRequired = option.get_required();
    parameter.isRepeated = option.get_expected_max() >= CLI::detail::expected_max_vector_size;
    return parameter;
}

Command commandOf(const CLI::App& app, const std::string& parent, const std::vector<std::string>& verbs)
{
    Command command;
    command.name = app.get_name();
    command.path = parent.empty() ? command.name : parent + " " + command.name;
    command.help = app.get_description();
    command.footer = app.get_footer();
    for (const CLI::Option* option : app.get_options())
    {
        (option->get_positional() ? command.arguments : command.options).push_back(parameterOf(*option, verbs));
    }
    for (const CLI::App* sub : app.get_subcommands({}))
    {
        command.commands.push_back(commandOf(*sub, command.path, verbs));
    }
    return command;
}

} // namespace

Command commandTree(const CLI::App& app)
{
    std::vector<std::string> verbs;
    for (const CLI::App* verb : app.get_subcommands({}))
    {
        verbs.push_back(verb->get_name());
    }
    return commandOf(app, "", verbs);
}

std::vector<std::string> signalWords()
{
    std::vector<std::string> words;
    std::vector<std::string> classes;
    for (const Signal& signal : signals())
    {
        words.emplace_back(signal.name);
        classes.emplace_back(signal.shape->className);
    }
    std::sort(classes.begin(), classes.end());
    classes.erase(std::unique(classes.begin(), classes.end()), classes.end());
    words.insert(words.end(), classes.begin(), classes.end());
    return words;
}

} // namespace bci::tool
