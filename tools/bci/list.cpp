#include "input.h"
#include "layout.h"
#include "names.h"
#include "verbs.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <fnmatch.h>
#include <memory>

namespace bci::tool
{

namespace
{

struct Options
{
    std::vector<std::string> patterns;
    std::vector<std::string> classes;
    std::string format = "text";
};

std::string lowered(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char ch) { return static_cast<char>(std::tolower(ch)); });
    return text;
}

std::string hex(SIGSELECT number)
{
    return fmt::format("0x{:X}", number);
}

// Names match a pattern that they have in them; what has signs of the shell matches names and numbers as a whole,
// names without "BCI_" or "Bci" too.
bool matches(const Signal& signal, const std::string& pattern)
{
    const std::string wanted = lowered(pattern);
    const std::string name = lowered(signal.name);
    const std::string className = lowered(signal.shape->className);
    const std::string whole[] = {name,
                                 name.substr(4),
                                 className,
                                 className.substr(3),
                                 std::to_string(signal.number),
                                 lowered(hex(signal.number))};
    return name.find(wanted) != std::string::npos || className.find(wanted) != std::string::npos ||
           std::any_of(std::begin(whole), std::end(whole),
                       [&wanted](const std::string& one) { return fnmatch(wanted.c_str(), one.c_str(), 0) == 0; });
}

std::vector<const codec::Shape*> shapesOf(const std::vector<std::string>& classes)
{
    std::vector<const codec::Shape*> shapes;
    for (const std::string& name : classes)
    {
        const std::vector<const Signal*> found = findSignals(name);
        if (found.empty())
        {
            std::vector<std::string> names;
            for (const Signal& signal : signals())
            {
                names.emplace_back(signal.shape->className);
            }
            throw Trouble("no class " + quote(name) + didYouMean(name, names));
        }
        shapes.push_back(found.front()->shape);
    }
    return shapes;
}

std::vector<const Signal*> chosen(const Options& options)
{
    const std::vector<const codec::Shape*> shapes = shapesOf(options.classes);
    std::vector<const Signal*> found;
    for (const Signal& signal : signals())
    {
        const bool named = options.patterns.empty() ||
                           std::any_of(options.patterns.begin(), options.patterns.end(),
                                       [&signal](const std::string& one) { return matches(signal, one); });
        if (named && (shapes.empty() || std::find(shapes.begin(), shapes.end(), signal.shape) != shapes.end()))
        {
            found.push_back(&signal);
        }
    }
    return found;
}

std::string asText(const std::vector<const Signal*>& found)
{
    if (found.empty())
    {
        return {};
    }
    std::string text = fmt::format("{:8}  {:9}  {:25}  {:29}  {:>9}  {:>5}\n", "number", "hex", "class", "name",
                                   "binary", "text");
    for (const Signal* signal : found)
    {
        const Layout layout = layoutOf(*signal->shape);
        std::string binary = std::to_string(layout.mostBinary);
        if (layout.leastBinary != layout.mostBinary)
        {
            binary = std::to_string(layout.leastBinary) + "-" + binary;
        }
        text += fmt::format("{:8}  {:9}  {:25}  {:29}  {:>9}  {:>5}\n", signal->number, hex(signal->number),
                            signal->shape->className, signal->name, binary, layout.mostText);
    }
    return text;
}

std::string asJson(const std::vector<const Signal*>& found)
{
    std::string text;
    for (const Signal* signal : found)
    {
        const Layout layout = layoutOf(*signal->shape);
        text +=
            fmt::format(R"({}{{"number":{},"hex":"{}","class":"{}","name":"{}","binaryLeast":{},)"
                        R"("binaryMost":{},"textMost":{}}})",
                        text.empty() ? "\n" : ",\n", signal->number, hex(signal->number), signal->shape->className,
                        signal->name, layout.leastBinary, layout.mostBinary, layout.mostText);
    }
    return "[" + text + (text.empty() ? "]\n" : "\n]\n");
}

std::string asCsv(const std::vector<const Signal*>& found)
{
    std::string text = "number,hex,class,name,binaryLeast,binaryMost,textMost\n";
    for (const Signal* signal : found)
    {
        const Layout layout = layoutOf(*signal->shape);
        text +=
            fmt::format("{},{},{},{},{},{},{}\n", signal->number, hex(signal->number), signal->shape->className,
                        signal->name, layout.leastBinary, layout.mostBinary, layout.mostText);
    }
    return text;
}

int list(const Options& options)
{
    const std::vector<const Signal*> found = chosen(options);
    const std::string text = options.format == "json"  ? asJson(found)
                             : options.format == "csv" ? asCsv(found)
                                                       : asText(found);
    std::fwrite(text.data(), 1, text.size(), stdout);
    if (found.empty())
    {
        std::fputs("bci: no signal matches\n", stderr);
        return kFound;
    }
    return kClean;
}

} // namespace

Run addList(CLI::App& app)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const verb = app.add_subcommand("list", "List all signals: number, class, name and sizes");
    verb->add_option(
            "PATTERN", options->patterns,
            "Show only signals whose name or class has this in it or matches it as a whole (*, ? and [...] "
            "as in the shell), or whose number, decimal or 0x..., matches; the case of letters does not "
            "matter")
        ->type_name("SIGNAL");
    verb->add_option("--class", options->classes, "Show only signals of this class, or of this signal's class")
        ->type_name("SIGNAL")
        ->allow_extra_args(false);
    verb->add_option("--format", options->format, "How to print the list")
        ->capture_default_str()
        ->check(CLI::IsMember({"text", "json", "csv"}));
    verb->footer(
        "Binary sizes are those of the form in bytes, text sizes the most characters that the form takes.\n"
        "\n"
        "Exit status: 0, 1 if no signal matches, or 2 for trouble (wrong use, an unknown class).\n"
        "\n"
        "Examples:\n"
        "  bci list\n"
        "  bci list 'audit*' lmc\n"
        "  bci list --class BciGenericRejMsg --format csv");
    return [options] { return list(*options); };
}

} // namespace bci::tool
