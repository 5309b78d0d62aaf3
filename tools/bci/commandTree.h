// The command's own definition, as manual pages and completions need it.
#ifndef BCI_TOOL_COMMAND_TREE_H
#define BCI_TOOL_COMMAND_TREE_H

#include <string>
#include <vector>

namespace CLI
{
class App;
}

namespace bci::tool
{

// What a value may be.
enum class Value
{
    none, // a flag
    file, // or anything else that a shell knows nothing better for
    word, // one of some words
    signal
};

// An option, or an argument without one.
struct Parameter
{
    std::vector<std::string> names; // of options, with their dashes, long ones first
    std::string label;              // of the value, or of the argument
    Value value;
    std::vector<std::string> words;
    std::string help;
    std::string preset; // empty if there is none
    bool isRequired;
    bool isRepeated;
};

// The command itself, a verb, or what a verb has verbs of its own for.
struct Command
{
    std::string path; // "bci list"
    std::string name; // "list"
    std::string help;
    std::string footer;
    std::vector<Parameter> options;
    std::vector<Parameter> arguments;
    std::vector<Command> commands;
};

Command commandTree(const CLI::App& app);

// Names and classes of all signals.
std::vector<std::string> signalWords();

// A manual page (man(7)) of a command; `root` is what it belongs to. The footer's lines "Exit status: ..." and
// "Examples:" begin sections; lines that start with blanks stay as they are.
std::string manualPage(const Command& command, const Command& root, const std::string& version,
                       const std::string& date);

std::string bashCompletion(const Command& root);
std::string zshCompletion(const Command& root);
std::string fishCompletion(const Command& root);

} // namespace bci::tool

#endif
