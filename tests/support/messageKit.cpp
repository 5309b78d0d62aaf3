#include "messageKit.h"

#include <gtest/gtest.h>

#include <vector>

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
Read read(BciMessageBase& message, bool (BciMessageBase::*operation)(Stream&), const std::string& data,
          std::size_t length)
{
    std::vector<char> buffer(data.begin(), data.end());
    Stream stream;
    stream.attachBuffer(buffer.data(), static_cast<unsigned int>(length));

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
    return {reinterpret_cast<const char*>(&sigNo), sizeof sigNo};
}

std::string structureOf(const BciMessageBase& message, std::size_t structureSize)
{
    return {message.getMsg(), structureSize};
}
