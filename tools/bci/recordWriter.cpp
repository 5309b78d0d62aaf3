#include "recordWriter.h"

#include "containers.h"

#include <cerrno>
#include <cstring>
#include <utility>

namespace bci::tool
{

const std::map<std::string, Target>& targets()
{
    static const std::map<std::string, Target> byName = {{"text", Target::text},   {"binary", Target::binary},
                                                         {"xml", Target::xml},     {"hex", Target::hex},
                                                         {"trace", Target::trace}, {"pcap", Target::pcap}};
    return byName;
}

RecordWriter::RecordWriter(Target target, std::optional<std::endian> firstWord, std::string fileName)
    : m_target(target), m_firstWord(firstWord), m_fileName(std::move(fileName))
{
}

RecordWriter::~RecordWriter()
{
    if (m_file != nullptr && m_file != stdout)
    {
        std::fclose(m_file);
    }
}

Form RecordWriter::formFor(std::optional<Form> own, Form otherwise) const
{
    switch (m_target)
    {
    case Target::text:
        return Form::text;
    case Target::binary:
    case Target::hex:
        return Form::binary;
    case Target::xml:
        return Form::xml;
    case Target::own:
    case Target::trace:
    case Target::pcap:
        break;
    }
    return own.value_or(otherwise);
}

std::endian RecordWriter::firstWordFor(std::optional<std::endian> own) const
{
    return m_firstWord.value_or(own.value_or(std::endian::big));
}

void RecordWriter::write(std::string_view rendering, Form form, std::string_view time, std::string_view direction)
{
    constexpr std::size_t kPiece = std::size_t{1} << 16;
    begin();
    switch (m_target)
    {
    case Target::hex:
        m_buffer += encodeHex(rendering);
        m_buffer += '\n';
        break;
    case Target::trace:
        m_buffer += formatTrace(time, direction, form, rendering);
        m_buffer += '\n';
        break;
    case Target::pcap:
        m_buffer += pcapPacket(time, rendering);
        break;
    default:
        m_buffer += rendering;
        m_buffer += form == Form::text ? "\n" : "";
        break;
    }
    if (m_buffer.size() >= kPiece)
    {
        flush();
    }
}

void RecordWriter::flush()
{
    if (m_file != nullptr &&
        (std::fwrite(m_buffer.data(), 1, m_buffer.size(), m_file) != m_buffer.size() || std::fflush(m_file) != 0))
    {
        fail();
    }
    m_buffer.clear();
}

void RecordWriter::finish()
{
    begin();
    flush();
    std::FILE* const file = std::exchange(m_file, nullptr);
    if (file != stdout && std::fclose(file) != 0)
    {
        fail();
    }
}

void RecordWriter::begin()
{
    if (m_file != nullptr)
    {
        return;
    }
    m_file = m_fileName == "-" ? stdout : std::fopen(m_fileName.c_str(), "wb");
    if (m_file == nullptr)
    {
        fail();
    }
    if (m_target == Target::pcap)
    {
        m_buffer += pcapHeader();
    }
}

void RecordWriter::fail() const
{
    throw Trouble(m_fileName == "-" ? "cannot write to standard output"
                                    : escaped(m_fileName) + ": " + std::strerror(errno));
}

} // namespace bci::tool
