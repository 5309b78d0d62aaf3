// Operations of the streams, one after another as an input says.

#include "harness.h"
#include "stream.h"

#include <algorithm>
#include <type_traits>

namespace bci::fuzz
{

namespace
{

using commonStream::istream_binary;
using commonStream::istream_text;
using commonStream::ostream_binary;
using commonStream::ostream_text;
using commonStream::seekdir;

constexpr unsigned int kMostOperations = 200;

unsigned int position(const commonStream::istreambase& stream)
{
    return stream.tellg();
}

unsigned int position(const commonStream::ostreambase& stream)
{
    return stream.tellp();
}

template <typename Target>
void seek(commonStream::istreambase& stream, Target target)
{
    stream.seekg(target);
}

template <typename Target>
void seek(commonStream::ostreambase& stream, Target target)
{
    stream.seekp(target);
}

void seek(commonStream::istreambase& stream, seekdir direction, int offset)
{
    stream.seekg(direction, offset);
}

void seek(commonStream::ostreambase& stream, seekdir direction, int offset)
{
    stream.seekp(direction, offset);
}

// What the first word of a binary stream has to be so that it is the same bytes on every host.
template <typename T>
T inFirstOrder(T value, bool isFirst)
{
    if (!isFirst || std::endian::native == std::endian::big)
    {
        return value;
    }
    return static_cast<T>(__builtin_bswap32(static_cast<std::uint32_t>(value)));
}

// The end of the buffer, as behind it nothing may be touched.
template <typename Stream>
void attach(Stream& stream, const Guarded& buffer, Input& input)
{
    const unsigned int length = static_cast<unsigned int>(input.byte()) % (buffer.size() + 1);
    stream.attachBuffer(buffer.data() + buffer.size() - length, length);
}

// What all streams have. Returns false for an operation of a stream's own.
template <typename Stream>
bool doCommon(Stream& stream, std::uint8_t operation, const Guarded& buffer, Input& input)
{
    switch (operation)
    {
    case 0:
        seek(stream, static_cast<unsigned int>(input.byte()));
        return true;
    case 1:
        seek(stream, static_cast<unsigned int>(input.number(4)));
        return true;
    case 2:
    {
        const auto direction = static_cast<seekdir>(input.byte() % 4);
        seek(stream, direction, static_cast<std::int8_t>(input.byte()));
        return true;
    }
    case 3:
    {
        const auto direction = static_cast<seekdir>(input.byte() % 4);
        seek(stream, direction, static_cast<int>(input.number(4)));
        return true;
    }
    case 4:
        stream.setgood();
        return true;
    case 5:
        stream.setfail();
        return true;
    case 6:
        stream.seteof();
        return true;
    case 7:
        stream.setbad();
        return true;
    case 8:
        stream.status(input.byte());
        return true;
    case 9:
        stream.reset();
        return true;
    case 10:
        stream.detachBuffer();
        return true;
    case 11:
        attach(stream, buffer, input);
        return true;
    case 12:
        stream.attachBuffer(nullptr, input.byte());
        return true;
    // As a streambase: neither moves a position, which can lie behind the new buffer.
    case 30:
        attach<commonStream::streambase>(stream, buffer, input);
        return true;
    case 31:
        stream.streambase::reset();
        return true;
    default:
        return false;
    }
}

// How far positions reach.
template <typename Stream>
unsigned int reach(const Stream& stream)
{
    return std::max({position(stream), stream.length(), stream.getBufferLength()});
}

template <typename Stream>
void addState(Trace& trace, const Stream& stream, unsigned int reachBefore)
{
    trace.add("status", stream.status());
    trace.add("position", position(stream));
    trace.add("length", stream.length());
    trace.add("buffer length", stream.getBufferLength());
    trace.add("predicates", stream.good() | stream.fail() << 1 | stream.eof() << 2 | stream.bad() << 3);
    expect(reach(stream) <= std::max(reachBefore, stream.getBufferLength()), "a stream has left its buffer");
}

template <typename Stream>
void writeNumber(Stream& stream, std::uint8_t operation, bool isFirst, Input& input)
{
    switch (operation % 10)
    {
    case 0:
        stream << ((input.byte() & 1) != 0);
        break;
    case 1:
        stream << static_cast<char>(input.byte());
        break;
    case 2:
        stream << static_cast<unsigned char>(input.byte());
        break;
    case 3:
        stream << static_cast<short>(input.number(2));
        break;
    case 4:
        stream << static_cast<unsigned short>(input.number(2));
        break;
    case 5:
        stream << static_cast<int>(input.number(4));
        break;
    case 6:
        stream << inFirstOrder(static_cast<unsigned int>(input.number(4)), isFirst);
        break;
    case 7:
        stream << static_cast<long>(input.number(8));
        break;
    case 8:
        stream << inFirstOrder(static_cast<unsigned long>(input.number(8)), isFirst);
        break;
    default:
        stream << static_cast<unsigned long long>(input.number(8));
        break;
    }
}

void writeOwn(ostream_text& stream, std::uint8_t operation, Input& input)
{
    if (operation % 4 == 0)
    {
        stream.put(static_cast<char>(input.byte()));
    }
    else if (operation % 4 == 1)
    {
        const Guarded text(input.take(input.byte()));
        stream.put(text.data(), text.size());
    }
    else
    {
        writeNumber(stream, input.byte(), false, input);
    }
}

void writeOwn(ostream_binary& stream, std::uint8_t operation, Input& input)
{
    if (operation % 4 == 0)
    {
        stream.put(static_cast<char>(input.byte()));
    }
    else if (operation % 4 == 1)
    {
        const Guarded bytes(input.take(input.byte()));
        stream.put(bytes.data(), bytes.size());
    }
    else
    {
        writeNumber(stream, input.byte(), stream.tellp() == 0, input);
    }
}

template <typename T, typename Stream>
void readOne(Stream& stream, bool isFirst, Trace& trace)
{
    T value = static_cast<T>(0x5A5A5A5A);
    const unsigned int before = stream.tellg();
    stream >> value;
    // Where nothing was read, the value is that from before, in the host's order.
    value = inFirstOrder(value, isFirst && stream.tellg() != before);
    if constexpr (std::is_same_v<T, char>)
    {
        trace.add("value", static_cast<unsigned char>(value));
    }
    else
    {
        trace.add("value", static_cast<std::int64_t>(value));
    }
}

template <typename Stream>
void readNumber(Stream& stream, std::uint8_t operation, bool isFirst, Trace& trace)
{
    switch (operation % 9)
    {
    case 0:
        return readOne<char>(stream, false, trace);
    case 1:
        return readOne<unsigned char>(stream, false, trace);
    case 2:
        return readOne<short>(stream, false, trace);
    case 3:
        return readOne<unsigned short>(stream, false, trace);
    case 4:
        return readOne<int>(stream, false, trace);
    case 5:
        return readOne<unsigned int>(stream, isFirst, trace);
    case 6:
        return readOne<long>(stream, false, trace);
    case 7:
        return readOne<unsigned long>(stream, isFirst, trace);
    default:
        return readOne<unsigned long long>(stream, false, trace);
    }
}

void convert(const istream_text& stream, std::uint8_t operation, Input& input, Trace& trace)
{
    const Guarded digits(input.take(input.byte()), std::string_view("\0", 1));
    unsigned long word = 0x5A;
    long signedWord = 0x5A;
    unsigned long long wide = 0x5A;
    long long signedWide = 0x5A;
    bool isNegative = false;
    bool result = false;
    switch (operation % 6)
    {
    case 0:
        result = stream.asciiToInt(digits.data(), word, isNegative);
        break;
    case 1:
        result = stream.asciiToSigned(digits.data(), signedWord);
        break;
    case 2:
        result = stream.asciiToUnsigned(digits.data(), word);
        break;
    case 3:
        result = stream.asciiToLongLong(digits.data(), wide, isNegative);
        break;
    case 4:
        result = stream.asciiToSignedLongLong(digits.data(), signedWide);
        break;
    default:
        result = stream.asciiToUnsignedLongLong(digits.data(), wide);
        break;
    }
    trace.add("result", result);
    trace.add("negative", isNegative);
    trace.add("unsigned", static_cast<std::int64_t>(word));
    trace.add("signed", signedWord);
    trace.add("wide", static_cast<std::int64_t>(wide));
    trace.add("signed and wide", signedWide);
}

void readOwn(istream_text& stream, std::uint8_t operation, Input& input, Trace& trace)
{
    switch (operation % 6)
    {
    case 0:
    {
        char ch = 'Z';
        stream.get(ch);
        trace.add("character", static_cast<unsigned char>(ch));
        break;
    }
    case 1:
    {
        const unsigned int count = input.byte();
        const Guarded text(count + std::size_t{1});
        text.data()[0] = '\0'; // nothing is written if there is nothing
        stream.get(text.data(), count, static_cast<char>(input.byte()));
        trace.add("text", text.data());
        break;
    }
    case 2:
    {
        const Guarded number(32);
        trace.add("consumed", stream.getNumber(number.data()));
        trace.add("number", number.data());
        break;
    }
    case 3:
        convert(stream, input.byte(), input, trace);
        break;
    default:
        readNumber(stream, input.byte(), false, trace);
        break;
    }
    trace.add("count", stream.gcount());
}

void readOwn(istream_binary& stream, std::uint8_t operation, Input& input, Trace& trace)
{
    const unsigned int before = stream.tellg();
    switch (operation % 5)
    {
    case 0:
    {
        char ch = 'Z';
        stream.get(ch);
        trace.add("character", static_cast<unsigned char>(ch));
        break;
    }
    case 1:
    {
        const Guarded bytes(input.byte());
        stream.get(bytes.data(), bytes.size());
        trace.add("bytes", std::string_view(bytes.data(), stream.tellg() - before));
        break;
    }
    case 2:
    {
        const Guarded bytes(input.byte());
        stream.get(bytes.data(), bytes.size(), static_cast<char>(input.byte()));
        trace.add("bytes", std::string_view(bytes.data(), stream.tellg() - before));
        break;
    }
    default:
        readNumber(stream, input.byte(), before == 0, trace);
        break;
    }
}

template <typename Stream>
void runOutput(Input input, Trace& trace)
{
    const Guarded buffer(input.byte());
    std::fill_n(buffer.data(), buffer.size(), 'B'); // what is not written stays
    Stream stream;
    stream.attachBuffer(buffer.data(), buffer.size());
    for (unsigned int i = 0; i < kMostOperations && !input.isEmpty(); ++i)
    {
        const std::uint8_t operation = input.byte() % 32;
        const unsigned int reachBefore = reach(stream);
        if (!doCommon(stream, operation, buffer, input))
        {
            writeOwn(stream, operation, input);
        }
        addState(trace, stream, reachBefore);
    }
    trace.add("buffer", std::string_view(buffer.data(), buffer.size()));
}

template <typename Stream>
void runInput(Input input, Trace& trace)
{
    const Guarded buffer(input.take(input.byte()));
    Stream stream;
    stream.attachBuffer(buffer.data(), buffer.size());
    for (unsigned int i = 0; i < kMostOperations && !input.isEmpty(); ++i)
    {
        const std::uint8_t operation = input.byte() % 32;
        const unsigned int reachBefore = reach(stream);
        if (!doCommon(stream, operation, buffer, input))
        {
            readOwn(stream, operation, input, trace);
        }
        addState(trace, stream, reachBefore);
    }
}

void runStatics(Input input, Trace& trace)
{
    const auto number = input.number(8);
    const bool isNegative = (input.byte() & 1) != 0;
    const Guarded digits(22);
    ostream_text::intToAscii(digits.data(), static_cast<unsigned long>(number), isNegative);
    trace.add("int", digits.data());
    ostream_text::unsignedToAscii(digits.data(), static_cast<unsigned long>(number));
    trace.add("unsigned", digits.data());
    ostream_text::signedToAscii(digits.data(), static_cast<long>(number));
    trace.add("signed", digits.data());
    ostream_text::longLongToAscii(digits.data(), number, isNegative);
    trace.add("long long", digits.data());
    ostream_text::unsignedLongLongToAscii(digits.data(), number);
    trace.add("unsigned long long", digits.data());
    ostream_text::signedLongLongToAscii(digits.data(), static_cast<long long>(number));
    trace.add("signed long long", digits.data());
}

} // namespace

void run(Input input, Trace& trace)
{
    switch (input.byte() % 5)
    {
    case 0:
        return runOutput<ostream_text>(input, trace);
    case 1:
        return runOutput<ostream_binary>(input, trace);
    case 2:
        return runInput<istream_text>(input, trace);
    case 3:
        return runInput<istream_binary>(input, trace);
    default:
        return runStatics(input, trace);
    }
}

} // namespace bci::fuzz
