// Writes records in a form, or packed into something that carries any form.
#ifndef BCI_TOOL_RECORD_WRITER_H
#define BCI_TOOL_RECORD_WRITER_H

#include "input.h"

#include <bit>
#include <cstdio>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace bci::tool
{

// What is written.
enum class Target
{
    own,    // each record in the form that it comes with
    text,   // each on a line
    binary, // one directly behind the other
    xml,    // likewise
    hex,    // the binary form of each as hex digits on a line
    trace,  // a line of a trace for each, which carries its own form
    pcap    // a capture, likewise
};

// Targets by the names that users give them; not that of the form that a record comes with.
const std::map<std::string, Target>& targets();

class RecordWriter
{
public:
    // Records whose own first word has no byte order receive the one given here, or else big-endian. The file, "-"
    // for standard output, is opened with the first record.
    RecordWriter(Target target, std::optional<std::endian> firstWord, std::string fileName = "-");
    RecordWriter(const RecordWriter&) = delete;
    RecordWriter& operator=(const RecordWriter&) = delete;
    ~RecordWriter(); // without finish(), what has not reached the output is dropped

    // The form that a record has to be rendered in: by its own form, if there is one.
    Form formFor(std::optional<Form> own, Form otherwise = Form::binary) const;

    // The byte order of its first word: as asked for, or else its own, if there is one.
    std::endian firstWordFor(std::optional<std::endian> own) const;

    // Adds a rendering. Time and direction are "" where they are not known. Throws Trouble.
    void write(std::string_view rendering, Form form, std::string_view time = "", std::string_view direction = "");

    // Sends to the output what has been written until now. Throws Trouble.
    void flush();

    // Whether a record has been written.
    bool hasBegun() const
    {
        return m_file != nullptr;
    }

    // Has to be called behind the last record. Without records, this makes an empty output. Throws Trouble.
    void finish();

private:
    void begin();
    [[noreturn]] void fail() const;

    Target m_target;
    std::optional<std::endian> m_firstWord;
    std::string m_fileName;
    std::FILE* m_file = nullptr;
    std::string m_buffer;
};

} // namespace bci::tool

#endif
