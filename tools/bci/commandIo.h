// What the verbs have in common: inputs, standard output, messages, progress.
#ifndef BCI_TOOL_SESSION_H
#define BCI_TOOL_SESSION_H

#include "buffer.h"
#include "parallel.h"
#include "records.h"
#include "verbs.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace CLI
{
class App;
class Option;
} // namespace CLI

namespace bci::tool
{

// Standard output, written in large pieces. Throws Trouble.
class Output
{
public:
    Buffer& buffer()
    {
        return m_text;
    }

    void write(std::string_view bytes)
    {
        m_text.put(bytes);
        flushIfLarge();
    }

    void flushIfLarge()
    {
        if (m_text.size() >= kLarge)
        {
            flush();
        }
    }

    void flush();

private:
    static constexpr std::size_t kLarge = std::size_t{1} << 18;

    Buffer m_text;
};

// Colours for what goes to a stream: none unless that is a terminal, and never against NO_COLOR.
class Colours
{
public:
    explicit Colours(int fileDescriptor);

    std::string bold(std::string_view text) const;
    std::string red(std::string_view text) const;
    std::string yellow(std::string_view text) const;
    std::string cyan(std::string_view text) const;

private:
    std::string with(const char* code, std::string_view text) const;

    bool m_isOn;
};

// A line on standard error: "bci: ...".
void say(std::string_view message);

// What is wrong with a record, as the verbs tell it: "bci: log.txt:3:14: mainState: ...".
void say(const Item& item, const Finding& finding);

// Shows on a terminal how far a long reading has come. Nothing for the first two seconds.
class Progress
{
public:
    // Sizes that are not known count as 0.
    explicit Progress(std::uint64_t totalBytes);
    ~Progress();

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void add(std::uint64_t bytes);

    // Takes the line away, for other output.
    void hide();

private:
    void show(std::chrono::steady_clock::time_point now);

    bool m_isOn;
    bool m_isShown = false;
    std::uint64_t m_total;
    std::uint64_t m_done = 0;
    std::uint64_t m_nextLook = 0;
    std::chrono::steady_clock::time_point m_begin = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point m_shown = m_begin;
};

// The inputs of a verb, as its command line gives them.
struct Inputs
{
    std::vector<std::string> files = {"-"};
    std::string from = "auto";
    bool verbose = false;

    void addTo(CLI::App& verb);
    Packing packing() const;
};

// Adds --jobs.
CLI::Option* addJobs(CLI::App& verb, unsigned int& jobs, const char* help);

const std::vector<std::string>& packingNames();
Packing packingOf(const std::string& name);

// Opens an input and counts what is read of it.
class CountedInput : public ByteStream
{
public:
    CountedInput(const std::string& fileName, Progress& progress);

    std::size_t read(char* to, std::size_t most) override;

private:
    std::unique_ptr<ByteStream> m_stream;
    Progress& m_progress;
};

// Bytes of all files together, 0 if that is not known.
std::uint64_t sizeOf(const std::vector<std::string>& files);

// Sends on what has been written until now.
using Flush = std::function<void()>;

// Reads all inputs, each with a function of its stream. Trouble with one does not stop the others. Returns kClean
// or kTrouble.
template <typename Read>
int forEachInput(const Inputs& inputs, const Flush& flush, Read read)
{
    Progress progress(sizeOf(inputs.files));
    int status = kClean;
    for (const std::string& file : inputs.files)
    {
        try
        {
            CountedInput input(file, progress);
            const std::string taken = read(displayName(file), input);
            if (inputs.verbose)
            {
                progress.hide();
                say(displayName(file) + ": " + taken);
            }
        }
        catch (const Trouble& trouble)
        {
            progress.hide();
            flush();
            say(trouble.what());
            status = kTrouble;
        }
    }
    return status;
}

// Reads all inputs into a sink, record after record.
template <typename Sink>
int readInputs(const Inputs& inputs, Sink& sink, const Flush& flush)
{
    return forEachInput(inputs, flush,
                        [&](const std::string& name, ByteStream& input)
                        {
                            RecordReader<Sink> reader(name, inputs.packing(), sink);
                            reader.onPause(flush);
                            return reader.readAll(input);
                        });
}

// The same with the lines of inputs on several threads, whose jobs are handed on in order; anything else goes to
// the sink. See ParallelReader. `begin` is called in front of each input.
template <typename Job, typename Sink, typename Begin, typename Take>
int readInputs(const Inputs& inputs, unsigned int jobs, Sink& sink, const Flush& flush, Begin begin, Take take)
{
    return forEachInput(inputs, flush,
                        [&](const std::string& name, ByteStream& input) -> std::string
                        {
                            begin();
                            Window window(input);
                            RecordReader<Sink> reader(name, inputs.packing(), sink);
                            if (!reader.hasLines(window))
                            {
                                return reader.readAll(window);
                            }
                            ParallelReader<Job>(name, inputs.packing(), jobs).readLines(window, take);
                            return "lines, each recognised by its own beginning";
                        });
}

} // namespace bci::tool

#endif
