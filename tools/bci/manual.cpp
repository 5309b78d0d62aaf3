#include "commandTree.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cctype>
#include <sstream>

namespace bci::tool
{

namespace
{

std::string escaped(const std::string& text)
{
    std::string result;
    for (const char ch : text)
    {
        result += ch == '-' ? "\\-" : ch == '\\' ? "\\e" : std::string(1, ch);
    }
    return result;
}

// A line of running text: the first character must not make a request of it.
std::string textLine(const std::string& text)
{
    const bool isRequest = !text.empty() && (text.front() == '.' || text.front() == '\'');
    return (isRequest ? "\\&" : "") + escaped(text) + "\n";
}

std::string sentence(std::string text)
{
    if (!text.empty() && text.back() != '.')
    {
        text += '.';
    }
    return text;
}

std::string bold(const std::string& text)
{
    return "\\fB" + escaped(text) + "\\fR";
}

std::string italic(const std::string& text)
{
    return "\\fI" + escaped(text) + "\\fR";
}

// "bci-list"
std::string pageName(const Command& command)
{
    std::string name = command.path;
    for (char& ch : name)
    {
        ch = ch == ' ' ? '-' : ch;
    }
    return name;
}

std::string valueOf(const Parameter& parameter)
{
    if (parameter.value != Value::word || parameter.words.size() > 12)
    {
        return italic(parameter.label);
    }
    std::string text;
    for (const std::string& word : parameter.words)
    {
        text += (text.empty() ? "" : "|") + bold(word);
    }
    return text;
}

std::string parameterLines(const Parameter& parameter)
{
    std::string head;
    for (const std::string& name : parameter.names)
    {
        head += (head.empty() ? "" : ", ") + bold(name);
    }
    if (parameter.value != Value::none)
    {
        head += parameter.names.empty() ? italic(parameter.label) : " " + valueOf(parameter);
    }
    std::string text = ".TP\n" + head + "\n" + textLine(sentence(parameter.help));
    if (parameter.names.empty() && !parameter.words.empty())
    {
        text += textLine(fmt::format("One of {}.", fmt::join(parameter.words, ", ")));
    }
    if (!parameter.preset.empty())
    {
        text += textLine("Default: " + parameter.preset + ".");
    }
    if (parameter.isRepeated && !parameter.names.empty())
    {
        text += textLine("May be repeated.");
    }
    return text;
}

std::string synopsis(const Command& command)
{
    std::string text = bold(command.path) + "\n";
    if (!command.commands.empty())
    {
        text += italic(command.path == command.name ? "VERB" : "WHAT") + "\n";
    }
    for (const Parameter& option : command.options)
    {
        if (option.isRequired)
        {
            text += bold(option.names.front()) + " " + italic(option.label) + "\n";
        }
    }
    text += "[" + italic("OPTION") + "]...\n";
    for (const Parameter& argument : command.arguments)
    {
        const std::string name = italic(argument.label);
        text += (argument.isRequired ? name : "[" + name + "]") + (argument.isRepeated ? "...\n" : "\n");
    }
    return text;
}

// What a footer says, by section.
struct Footer
{
    std::string text;
    std::string exitStatus;
    std::string examples;
};

Footer parseFooter(const std::string& footer)
{
    constexpr const char* kExitStatus = "Exit status:";
    constexpr const char* kExamples = "Examples:";
    Footer sections;
    std::string* section = &sections.text;
    std::istringstream lines(footer);
    bool isLiteral = false;
    bool isNewParagraph = false;
    const auto setLiteral = [&](bool now)
    {
        if (now != isLiteral)
        {
            *section += now ? ".nf\n" : ".fi\n";
            isLiteral = now;
        }
    };
    for (std::string line; std::getline(lines, line);)
    {
        const bool isStatus = line.starts_with(kExitStatus);
        if (isStatus || line.starts_with(kExamples))
        {
            setLiteral(false);
            section = isStatus ? &sections.exitStatus : &sections.examples;
            line.erase(0, std::string_view(isStatus ? kExitStatus : kExamples).size());
            line.erase(0, line.find_first_not_of(' '));
            isNewParagraph = false;
        }
        if (line.empty())
        {
            isNewParagraph = true;
            continue;
        }
        if (isNewParagraph && !section->empty())
        {
            setLiteral(false);
            *section += ".PP\n";
        }
        isNewParagraph = false;
        setLiteral(line.starts_with(' '));
        line.erase(0, line.find_first_not_of(' '));
        *section += textLine(line);
    }
    setLiteral(false);
    return sections;
}

} // namespace

std::string manualPage(const Command& command, const Command& root, const std::string& version,
                       const std::string& date)
{
    std::string title = pageName(command);
    for (char& ch : title)
    {
        ch = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
    }
    std::string about = command.help;
    if (!about.empty())
    {
        about.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(about.front())));
        about.resize(about.back() == '.' ? about.size() - 1 : about.size());
    }
    const Footer footer = parseFooter(command.footer);

    std::string page = fmt::format(".TH \"{}\" \"1\" \"{}\" \"{}\" \"Board control interface\"\n", escaped(title),
                                   date, escaped(version));
    page += ".SH NAME\n" + escaped(pageName(command)) + " \\- " + escaped(about) + "\n";
    page += ".SH SYNOPSIS\n" + synopsis(command);
    page += ".SH DESCRIPTION\n" + textLine(sentence(command.help));
    page += footer.text.empty() ? "" : ".PP\n" + footer.text;
    if (!command.commands.empty())
    {
        page += ".SH COMMANDS\n";
        for (const Command& sub : command.commands)
        {
            page += ".TP\n" + bold(sub.name);
            for (const Parameter& argument : sub.arguments)
            {
                page += argument.isRequired ? " " + valueOf(argument) : " [" + italic(argument.label) + "]";
            }
            page += "\n" + textLine(sentence(sub.help));
        }
    }
    if (!command.arguments.empty())
    {
        page += ".SH ARGUMENTS\n";
        for (const Parameter& argument : command.arguments)
        {
            page += parameterLines(argument);
        }
    }
    page += ".SH OPTIONS\n";
    for (const Parameter& option : command.options)
    {
        page += parameterLines(option);
    }
    const std::string status = footer.exitStatus.empty() ? parseFooter(root.footer).exitStatus : footer.exitStatus;
    page += status.empty() ? "" : ".SH \"EXIT STATUS\"\n" + status;
    page += footer.examples.empty() ? "" : ".SH EXAMPLES\n" + footer.examples;
    std::vector<std::string> others;
    if (command.path != root.path)
    {
        others.push_back(pageName(root));
    }
    for (const Command& verb : root.commands)
    {
        if (verb.path != command.path)
        {
            others.push_back(pageName(verb));
        }
    }
    page += ".SH \"SEE ALSO\"\n";
    for (const std::string& other : others)
    {
        page += fmt::format(".BR {} (1){}\n", escaped(other), other == others.back() ? "" : ",");
    }
    return page;
}

} // namespace bci::tool
