#include "messageKit.h"

#include <algorithm>
#include <malloc.h>

using commonStream::istream_binary;
using commonStream::istream_text;
using commonStream::ostream_binary;
using commonStream::ostream_text;

namespace
{

constexpr char kUntouched = '\xA5';

template <typename Stream>
Written write(const BciMessageBase& message, bool (BciMessageBase::*operation)(Stream&) const,
              unsigned int capacity)
{
    constexpr std::size_t kGuard = 16;
    std::vector<char> memory(kGuard + capacity + kGuard, kUntouched);
    char* const buffer = memory.data() + kGuard;
    Stream stream;
    stream.attachBuffer(buffer, capacity);

    const bool result = (message.*operation)(stream);

    EXPECT_LE(stream.length(), capacity);
    EXPECT_EQ(stream.tellp(), stream.length());
    const std::string all(memory.begin(), memory.end());
    const std::size_t end = kGuard + stream.length();
    EXPECT_EQ(all.substr(0, kGuard), std::string(kGuard, kUntouched)) << "in front of the buffer";
    EXPECT_EQ(all.substr(end), std::string(all.size() - end, kUntouched)) << "behind what was written";
    return {result, std::string(buffer, stream.length()), stream.status()};
}

template <typename Stream>
void asAttached(Stream&)
{
}

template <typename Stream>
Read read(BciMessageBase& message, bool (BciMessageBase::*operation)(Stream&), const std::string& data,
          std::size_t length, void (*prepare)(Stream&) = asAttached<Stream>)
{
    std::vector<char> buffer(data.begin(), data.end());
    Stream stream;
    stream.attachBuffer(buffer.data(), static_cast<unsigned int>(length));
    prepare(stream);

    const bool result = (message.*operation)(stream);

    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), data) << "the data changed";
    EXPECT_EQ(stream.length(), length);
    return {result, stream.status(), stream.tellg()};
}

std::string bigEndian(unsigned long value, std::size_t size)
{
    std::string result(size, '\0');
    for (std::size_t i = size; i != 0; value >>= 8)
    {
        result[--i] = static_cast<char>(value);
    }
    return result;
}

// Spares a failure the bytes at the end that no test has set.
std::string withoutFill(const std::string& structure)
{
    return structure.substr(0, structure.find_last_not_of(kFill) + 1);
}

} // namespace

std::ostream& operator<<(std::ostream& out, const Written& written)
{
    return out << (written.result ? "true " : "false ") << testing::PrintToString(written.bytes) << " status "
               << written.status;
}

std::ostream& operator<<(std::ostream& out, const Read& read)
{
    return out << (read.result ? "true" : "false") << " status " << read.status << " position " << read.position;
}

Written writeText(const BciMessageBase& message, unsigned int capacity)
{
    return write<ostream_text>(message, &BciMessageBase::serializeBciMsgToText, capacity);
}

Written writeBinary(const BciMessageBase& message, unsigned int capacity)
{
    return write<ostream_binary>(message, &BciMessageBase::serializeBciMsgToBinary, capacity);
}

Written writeXml(const BciMessageBase& message, unsigned int capacity)
{
    return write<ostream_text>(message, &BciMessageBase::serializeBciMsgToXml, capacity);
}

void expectBeginnings(Writer writer, const BciMessageBase& message, const std::string& whole, unsigned int step)
{
    const unsigned int size = sizeOf(whole);
    for (unsigned int capacity = 0; capacity < size; capacity += step)
    {
        EXPECT_EQ(writer(message, capacity), (Written{true, whole.substr(0, capacity), 3})) << capacity;
    }
    EXPECT_EQ(writer(message, size), (Written{true, whole, 1}));
    EXPECT_EQ(writer(message, size + 1), (Written{true, whole, 0}));
}

Read readText(BciMessageBase& message, const std::string& text)
{
    return read<istream_text>(message, &BciMessageBase::deserializeBciMsgFromText, text, text.size());
}

Read readBinary(BciMessageBase& message, const std::string& bytes)
{
    return read<istream_binary>(message, &BciMessageBase::deserializeBciMsgFromBinary, bytes, bytes.size());
}

Read readXml(BciMessageBase& message, const std::string& document)
{
    return read<istream_text>(message, &BciMessageBase::deserializeBciMsgFromXml, document + '\0',
                              document.size());
}

Read readXmlOffAFailedStream(BciMessageBase& message, const std::string& document)
{
    const auto fail = [](istream_text& stream)
    {
        stream.seekg(20U);
        stream.setfail();
    };
    return read<istream_text>(message, &BciMessageBase::deserializeBciMsgFromXml, document + '\0', document.size(),
                              fail);
}

std::string element(const std::string& tag, const std::string& content)
{
    return "\t<" + tag + ">\n\t  " + content + "\n\t</" + tag + ">\n";
}

std::string headerElements(const std::string& sigNo, const std::string& clientRef, const std::string& serverRef)
{
    return element("sigNo", sigNo) + element("clientRef", clientRef) + element("serverRef", serverRef);
}

std::string without(const std::string& document, const std::string& tag)
{
    const std::size_t begin = document.find("<" + tag + ">");
    const std::string closing = "</" + tag + ">";
    const std::size_t end = document.find(closing, begin);
    EXPECT_NE(begin, std::string::npos) << tag;
    EXPECT_NE(end, std::string::npos) << tag;
    return document.substr(0, begin) + document.substr(end + closing.size());
}

unsigned int sizeOf(const std::string& rendering)
{
    return static_cast<unsigned int>(rendering.size());
}

std::string bytes(std::initializer_list<int> values)
{
    std::string result;
    for (const int value : values)
    {
        result.push_back(static_cast<char>(value));
    }
    return result;
}

std::string zeros(std::size_t count)
{
    return std::string(count, '\0');
}

std::string be16(unsigned int value)
{
    return bigEndian(value, 2);
}

std::string be32(unsigned long value)
{
    return bigEndian(value, 4);
}

std::string firstWord(SIGSELECT sigNo)
{
    return inMemory(sigNo);
}

std::string binaryHeader(SIGSELECT sigNo, S32 clientRef, S32 serverRef)
{
    return firstWord(sigNo) + be32(static_cast<U32>(clientRef)) + be32(static_cast<U32>(serverRef));
}

std::string host16(U16 value)
{
    return inMemory(value);
}

std::string hostHeader(SIGSELECT sigNo, S32 clientRef, S32 serverRef)
{
    return inMemory(sigNo) + inMemory(clientRef) + inMemory(serverRef);
}

std::string filledUp(const std::string& beginning, std::size_t size)
{
    return beginning + std::string(size - beginning.size(), kFill);
}

std::string rejectCause(U16 errorCode, U16 padding0, const std::string& description, U16 padding1)
{
    return host16(errorCode) + host16(padding0) + filledUp(description, 110) + host16(padding1);
}

std::string structureOf(const BciMessageBase& message, std::size_t structureSize)
{
    return {message.getMsg(), structureSize};
}

void setStructure(BciMessageBase& message, const std::string& structure)
{
    // Other bytes first: memory may hold by chance what is not copied.
    std::transform(structure.begin(), structure.end(), message.getMsg(),
                   [](char byte) { return static_cast<char>(~byte); });
    message.setMsg(structure.data());
    EXPECT_EQ(structureOf(message, structure.size()), structure);
}

void expectReading(BciMessageBase& message, Reader reader, const std::string& before, const Reading& reading)
{
    SCOPED_TRACE(testing::PrintToString(reading.data.substr(0, 500)));
    const std::string after = reading.after + before.substr(reading.after.size());
    setStructure(message, before);
    EXPECT_EQ(reader(message, reading.data), reading.outcome);
    EXPECT_EQ(withoutFill(structureOf(message, before.size())), withoutFill(after));
    EXPECT_EQ(takeLog(), reading.log);
}

void expectEachMissingElementStopsTheReader(BciMessageBase& message, const std::string& before,
                                            const std::string& document, const std::string& structure,
                                            const std::vector<Missing>& elements)
{
    for (const auto& [tag, format, offset] : elements)
    {
        const std::string::size_type end = document.find("</" + tag + ">");
        for (const std::string& lacking : {without(document, tag), document.substr(0, end)})
        {
            expectReading(message, readXml, before,
                          {lacking, {false, 0, 0}, structure.substr(0, offset), {{6, format, {tag}}}});
        }
    }
    istream_text detached;
    setStructure(message, before);
    EXPECT_FALSE(message.deserializeBciMsgFromXml(detached));
    EXPECT_EQ(structureOf(message, before.size()), before);
    EXPECT_EQ(takeLog(), (Log{{6, elements.front().format, {elements.front().tag}}}));
}

void expectSetMsgCopies(BciMessageBase& message, std::size_t structureSize)
{
    std::vector<char> source(structureSize); // ends where the structure does
    for (const int start : {0, 128})         // no byte is the same twice
    {
        for (std::size_t i = 0; i < structureSize; ++i)
        {
            source[i] = static_cast<char>(start + static_cast<int>(i));
        }
        message.setMsg(source.data());
        EXPECT_EQ(structureOf(message, structureSize), std::string(source.begin(), source.end()));
    }
    const std::string header = hostHeader(4294967295U, kLowest, 2147483647);
    std::memcpy(source.data(), header.data(), header.size());
    message.setMsg(source.data());
    EXPECT_EQ(structureOf(message, structureSize), std::string(source.begin(), source.end()));
    EXPECT_EQ(message.getSigNo(), 4294967295U);
    EXPECT_EQ(message.getAddressInfo().clientRef, kLowest);
    EXPECT_EQ(message.getAddressInfo().serverRef, 2147483647);
}

// The C library fills with the complement of the value it is given. The sanitizer takes none, and fills with a
// byte of its own.
FilledHeap::FilledHeap() : m_fill(mallopt(M_PERTURB, 0xA5) != 0 ? '\x5A' : '\xBE') {}

FilledHeap::~FilledHeap()
{
    mallopt(M_PERTURB, 0);
}

char FilledHeap::fill() const
{
    return m_fill;
}

bool FilledHeap::isFresh(const char* block, std::size_t size) const
{
    return std::all_of(block, block + size, [this](char byte) { return byte == m_fill; });
}
