// Any wire structure written into a buffer of any size, and, where there was room, read back.

#include "messages.h"

#include <algorithm>
#include <cstring>

namespace bci::fuzz
{

namespace
{

constexpr unsigned int kRoom = 20000; // for any form of any message

std::unique_ptr<BciMessageBase> make(const Signal& signal)
{
    BciMessageBase* created = nullptr;
    expect(BciMessageBase::instantiateBciMsg(signal.number, created), "no message of a class");
    return std::unique_ptr<BciMessageBase>(created);
}

void writeTo(const Signal& signal, const BciMessageBase& message, Form form, unsigned int size, Trace& trace)
{
    const std::string before(message.getMsg(), signal.shape->structureSize);
    const Guarded buffer(size);
    unsigned int length = size;
    const bool result = write(message, form, buffer.data(), length);
    expect(length <= size, "wrote more than there is room for");
    expect(std::all_of(buffer.data() + length, buffer.data() + size, [](char byte) { return byte == '\0'; }),
           "something stands behind what was written");
    expect(std::memcmp(before.data(), message.getMsg(), before.size()) == 0, "writing changed the message");
    trace.add("result", result);
    trace.add("length", length);
    std::string written(buffer.data(), length);
    if (form == Form::binary)
    {
        turnFirstWord(written.data(), written.size());
    }
    trace.add("bytes", written);
    if (!result || size != kRoom)
    {
        return;
    }
    const std::unique_ptr<BciMessageBase> back = make(signal);
    fill(signal, *back, std::uint8_t{0x5A});
    const Guarded exact(std::string_view(buffer.data(), length), endOf(form));
    unsigned int consumed = exact.size();
    const bool isRead = read(*back, form, exact.data(), consumed);
    trace.add("read back", isRead);
    trace.add("consumed", consumed);
    add(trace, signal, *back);
    const std::string_view bytes(exact.data(), exact.size());
    const bool isSound =
        compareWithStrictReading(signal, form, form == Form::xml ? bytes.data() : bytes, isRead, consumed, *back);
    if (!isSound || !isPromised(signal, form, message.getMsg()))
    {
        return;
    }
    expectSameFields(signal, form, message.getMsg(), *back);
    // The binary form carries everything.
    expect(form != Form::binary || (consumed == length && valuesOf(signal, *back) == valuesOf(signal, message)),
           "does not read what it wrote");
}

// The same through a stream of the caller, in front of whose position something stands already, and whatever its
// status: as into a buffer that is as much smaller, but for the first word of the binary form.
void writeThroughStream(const BciMessageBase& message, Form form, unsigned int size, unsigned int position)
{
    position = std::min(position, size);
    const Guarded buffer(size);
    const Guarded expected(size - position);
    unsigned int length = size - position;
    const bool result = write(message, form, expected.data(), length);
    if (form == Form::binary && position != 0)
    {
        turnFirstWord(expected.data(), length);
    }
    const auto writeTo = [&](auto& stream, auto operation)
    {
        stream.attachBuffer(buffer.data(), size);
        stream.put(std::string(position, '=').data(), position);
        stream.status(position % 8);
        expect((message.*operation)(stream) == result, "another result through a stream");
        expect(stream.tellp() == position + length && stream.length() == position + length, "another length");
    };
    commonStream::ostream_text text;
    commonStream::ostream_binary binary;
    if (form == Form::binary)
    {
        writeTo(binary, &BciMessageBase::serializeBciMsgToBinary);
    }
    else
    {
        writeTo(text, form == Form::text ? &BciMessageBase::serializeBciMsgToText
                                         : &BciMessageBase::serializeBciMsgToXml);
    }
    const std::string_view written(buffer.data(), size);
    expect(written.find_first_not_of('=') >= position, "something changed in front of the stream's position");
    expect(written.substr(position, length) == std::string_view(expected.data(), length),
           "something else was written through a stream");
    expect(std::all_of(buffer.data() + position + length, buffer.data() + size,
                       [](char byte) { return byte == fillByte; }),
           "something changed behind what was written through a stream");
}

} // namespace

void run(Input input, Trace& trace)
{
    const Signal& signal = classOf(input);
    const std::uint8_t how = input.byte();
    const auto form = static_cast<Form>(how % 3);
    const auto size = static_cast<unsigned int>(input.number(2)) % 8192;
    const std::unique_ptr<BciMessageBase> message = make(signal);
    fill(signal, *message, static_cast<char>(how), input);
    writeTo(signal, *message, form, size, trace);
    writeTo(signal, *message, form, kRoom, trace);
    writeThroughStream(*message, form, size, how / 3U);
}

} // namespace bci::fuzz
