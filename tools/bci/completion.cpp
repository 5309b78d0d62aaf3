#include "commandTree.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace bci::tool
{

namespace
{

// Calls a function with a command and all below it.
template <typename Function>
void forEach(const Command& command, Function function)
{
    function(command);
    for (const Command& sub : command.commands)
    {
        forEach(sub, function);
    }
}

std::vector<std::string> namesOf(const std::vector<Command>& commands)
{
    std::vector<std::string> names;
    names.reserve(commands.size());
    for (const Command& command : commands)
    {
        names.push_back(command.name);
    }
    return names;
}

std::string replaced(const std::string& text, char what, const char* by)
{
    std::string result;
    for (const char ch : text)
    {
        result += ch == what ? by : std::string(1, ch);
    }
    return result;
}

// In single quotes, for bash and zsh.
std::string quoted(const std::string& text)
{
    return "'" + replaced(text, '\'', "'\\''") + "'";
}

bool isLong(const std::string& name)
{
    return name.starts_with("--");
}

// The words that bash offers for a value; empty if the shell knows better.
std::string bashWords(const Parameter& parameter)
{
    switch (parameter.value)
    {
    case Value::signal:
        return "$signals";
    case Value::word:
        return quoted(fmt::format("{}", fmt::join(parameter.words, " ")));
    case Value::none:
    case Value::file:
        break;
    }
    return {};
}

// What zsh does for a value.
std::string zshAction(const Parameter& parameter)
{
    switch (parameter.value)
    {
    case Value::signal:
        return "_bci_signals";
    case Value::word:
        return fmt::format("({})", fmt::join(parameter.words, " "));
    case Value::none:
    case Value::file:
        break;
    }
    return "_files";
}

std::string zshFunction(const Command& command)
{
    return "_" + replaced(command.path, ' ', "_");
}

std::string zshHelp(const std::string& help)
{
    return replaced(replaced(help, '[', "\\["), ']', "\\]");
}

std::string fishQuoted(const std::string& text)
{
    return "'" + replaced(replaced(text, '\\', "\\\\"), '\'', "\\'") + "'";
}

} // namespace

std::string bashCompletion(const Command& root)
{
    std::vector<std::string> paths;
    std::vector<std::string> taking; // a value
    std::string values;
    std::string options;
    std::string arguments;
    forEach(root,
            [&](const Command& command)
            {
                if (command.path != root.path)
                {
                    paths.push_back(quoted(command.path));
                }
                std::vector<std::string> names;
                for (const Parameter& option : command.options)
                {
                    const std::string words = bashWords(option);
                    for (const std::string& name : option.names)
                    {
                        const std::string place = quoted(command.path + " " + name);
                        if (option.value != Value::none)
                        {
                            taking.push_back(place);
                        }
                        if (!words.empty())
                        {
                            values += fmt::format("            {}) words={} ;;\n", place, words);
                        }
                        if (isLong(name))
                        {
                            names.push_back(name);
                        }
                    }
                }
                options +=
                    fmt::format("            {}) words='{}' ;;\n", quoted(command.path), fmt::join(names, " "));
                if (!command.commands.empty())
                {
                    arguments += fmt::format("            {}) words='{}' ;;\n", quoted(command.path + " 0"),
                                             fmt::join(namesOf(command.commands), " "));
                }
                for (std::size_t i = 0; i < command.arguments.size(); ++i)
                {
                    const Parameter& argument = command.arguments[i];
                    const std::string words = bashWords(argument);
                    if (!words.empty())
                    {
                        const std::string place = quoted(command.path + " ");
                        arguments += fmt::format("            {}{}) words={} ;;\n", place,
                                                 argument.isRepeated ? "*" : std::to_string(i), words);
                    }
                }
            });
    return fmt::format(R"(# bash completion for bci
_bci() {{
    local signals='{0}'
    local cur=${{COMP_WORDS[COMP_CWORD]}} command=bci place=0 option= words= word i
    COMPREPLY=()
    # The command, the option whose value is wanted, and how many arguments stand before.
    for ((i = 1; i < COMP_CWORD; i++)); do
        word=${{COMP_WORDS[i]}}
        if [ -n "$option" ]; then
            [ "$word" = '=' ] || option=
            continue
        fi
        case "$command $word" in
            {1}) command="$command $word" ;;
            {2}) option=$word ;;
            "$command "-?*) ;;
            *) place=$((place + 1)) ;;
        esac
    done
    [ "$cur" != '=' ] || cur=
    if [ -n "$option" ]; then
        case "$command $option" in
{3}        esac
    elif [[ $cur == -* ]]; then
        case "$command" in
{4}        esac
    else
        case "$command $place" in
{5}        esac
    fi
    # Without words, bash completes names of files.
    [ -z "$words" ] || COMPREPLY=($(compgen -W "$words" -- "$cur"))
}}
complete -o default -F _bci bci
)",
                       fmt::join(signalWords(), " "), fmt::join(paths, " | "), fmt::join(taking, " | "), values,
                       options, arguments);
}

std::string zshCompletion(const Command& root)
{
    std::string functions;
    forEach(root,
            [&functions](const Command& command)
            {
                functions += "\n" + zshFunction(command) + "() {\n";
                if (!command.commands.empty())
                {
                    functions += "    local context state state_descr line\n    typeset -A opt_args\n";
                }
                functions += command.commands.empty() ? "    _arguments -s" : "    _arguments -s -C";
                for (const Parameter& option : command.options)
                {
                    std::string names = option.names.front();
                    for (const std::string& name : option.names)
                    {
                        const std::string others =
                            option.isRepeated ? "*" : fmt::format("({})", fmt::join(option.names, " "));
                        const bool takes = option.value != Value::none;
                        const std::string value =
                            takes ? ":" + replaced(option.label, ':', "\\:") + ":" + zshAction(option) : "";
                        functions += " \\\n        " + quoted(others + name + (takes && isLong(name) ? "=" : "") +
                                                              "[" + zshHelp(option.help) + "]" + value);
                    }
                }
                for (const Parameter& argument : command.arguments)
                {
                    functions += " \\\n        " + quoted((argument.isRepeated   ? "*:"
                                                           : argument.isRequired ? ":"
                                                                                 : "::") +
                                                          argument.label + ":" + zshAction(argument));
                }
                if (command.commands.empty())
                {
                    functions += "\n}\n";
                    return;
                }
                functions += " \\\n        '1: :->command' '*:: :->rest'\n    case $state in\n        command)\n"
                             "            local -a commands\n            commands=(\n";
                for (const Command& sub : command.commands)
                {
                    functions +=
                        "                " + quoted(sub.name + ":" + replaced(sub.help, ':', "\\:")) + "\n";
                }
                functions += "            )\n            _describe command commands ;;\n        rest)\n"
                             "            case $words[1] in\n";
                for (const Command& sub : command.commands)
                {
                    functions += fmt::format("                {}) {} ;;\n", sub.name, zshFunction(sub));
                }
                functions += "            esac ;;\n    esac\n}\n";
            });
    return fmt::format(R"(#compdef bci
# zsh completion for bci

_bci_signals() {{
    local -a signals
    signals=({})
    compadd -a signals
}}
{}
if [[ $funcstack[1] == _bci ]]; then
    _bci "$@"
else
    compdef _bci bci
fi
)",
                       fmt::join(signalWords(), " "), functions);
}

std::string fishCompletion(const Command& root)
{
    std::string lines;
    const auto wordsOf = [](const Parameter& parameter)
    {
        return parameter.value == Value::signal ? std::string("\"$__bci_signals\"")
                                                : fishQuoted(fmt::format("{}", fmt::join(parameter.words, " ")));
    };
    forEach(root,
            [&](const Command& command)
            {
                const std::string below =
                    command.path == root.path ? "" : " " + command.path.substr(root.path.size() + 1);
                const std::string in = fmt::format("complete -c bci -n '__bci_in{}'", below);
                const std::string at = fmt::format("complete -c bci -n '__bci_at{}'", below);
                for (const Command& sub : command.commands)
                {
                    lines += fmt::format("{} -f -a {} -d {}\n", at, sub.name, fishQuoted(sub.help));
                }
                for (const Parameter& option : command.options)
                {
                    lines += command.path == root.path ? at : in;
                    for (const std::string& name : option.names)
                    {
                        lines += isLong(name) ? " -l " + name.substr(2) : " -s " + name.substr(1);
                    }
                    lines += option.value == Value::none   ? ""
                             : option.value == Value::file ? " -r -F"
                                                           : " -x -a " + wordsOf(option);
                    lines += " -d " + fishQuoted(option.help) + "\n";
                }
                for (const Parameter& argument : command.arguments)
                {
                    if (argument.value != Value::file)
                    {
                        lines += fmt::format("{} -f -a {}\n", in, wordsOf(argument));
                    }
                }
            });
    return fmt::format(R"(# fish completion for bci

# The words before the current one that are no options.
function __bci_words
    for word in (commandline -opc)[2..-1]
        string match -q -- '-*' $word; or echo $word
    end
end

# Whether they begin with these.
function __bci_in
    set -l words (__bci_words) ''
    string match -q -- "$argv *" "$words"
end

# Whether they are these.
function __bci_at
    set -l words (__bci_words)
    test "$words" = "$argv"
end

set -g __bci_signals {}

{})",
                       fmt::join(signalWords(), " "), lines);
}

} // namespace bci::tool
