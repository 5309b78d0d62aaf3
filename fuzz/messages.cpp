#include "messages.h"

#include "bciMsgRegistration.h"
#include "codec/schema.h"
#include "reading.h"
#include "vornBcBasic.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <map>
#include <memory>
#include <set>

namespace bci::fuzz
{

namespace
{

using codec::Field;
using codec::Kind;
using codec::Subscripts;

constexpr std::size_t kMostStructure = 4120;
constexpr unsigned int kMostWritten = 32768;

class Filler : public codec::Visitor
{
public:
    explicit Filler(Input& input) : m_input(input) {}

    void field(const Field& field, char* base, const Subscripts* /*subscripts*/) override
    {
        if (field.kind == Kind::text)
        {
            bytes(base + field.offset, field.size);
            return;
        }
        storeNumber(field, static_cast<std::int64_t>(m_input.number(field.size)), base);
    }

    void beginEntries(const codec::LogEntries& entries, std::int64_t /*count*/, char* base) override
    {
        bytes(base + entries.array->offset, entries.array->size);
    }

    void entry(const Field& /*entry*/, char* /*base*/, const Subscripts& /*subscripts*/) override {}

    void block(const Field& block, char* base) override
    {
        bytes(base + block.offset, block.size);
    }

private:
    void bytes(char* to, std::size_t size)
    {
        const std::string_view given = m_input.take(size);
        std::fill(std::copy(given.begin(), given.end(), to), to + size, '\0');
    }

    Input& m_input;
};

// Every number the same, but in unions: of what one member has, another makes other numbers on another host.
class Leveller : public codec::Visitor
{
public:
    explicit Leveller(int value) : m_value(value) {}

    void field(const Field& field, char* base, const Subscripts* /*subscripts*/) override
    {
        if (field.kind != Kind::text && !m_isInChoice)
        {
            storeNumber(field, m_value, base);
        }
    }

    void beginChoice(const codec::Choice& /*choice*/, const codec::Case* /*chosen*/, char* /*base*/) override
    {
        m_isInChoice = true;
    }

    void endChoice(const codec::Choice& /*choice*/, char* /*base*/) override
    {
        m_isInChoice = false;
    }

    void entry(const Field& /*entry*/, char* /*base*/, const Subscripts& /*subscripts*/) override {}
    void block(const Field& /*block*/, char* /*base*/) override {}

private:
    int m_value;
    bool m_isInChoice = false;
};

// The values as the form has them, and of the other bytes a sum that does not depend on their order within a word.
class Noter : public codec::Visitor
{
public:
    explicit Noter(char* structure) : m_structure(structure) {}

    void field(const Field& field, char* base, const Subscripts* /*subscripts*/) override
    {
        const auto value = static_cast<std::uint64_t>(loadNumber(field, base));
        for (int shift = 8 * (field.size - 1); field.kind != Kind::text && shift >= 0; shift -= 8)
        {
            m_values += static_cast<char>(value >> shift);
        }
        m_values.append(base + field.offset, field.kind == Kind::text ? field.size : 0);
        see(base + field.offset, field.size);
    }

    void beginEntries(const codec::LogEntries& entries, std::int64_t /*count*/, char* base) override
    {
        field(*entries.array, base, nullptr);
    }

    void entry(const Field& /*entry*/, char* /*base*/, const Subscripts& /*subscripts*/) override {}

    void block(const Field& block, char* base) override
    {
        m_values.append(base + block.offset, block.size);
        see(base + block.offset, block.size);
    }

    const std::string& values() const
    {
        return m_values;
    }

    void addTo(Trace& trace, std::size_t size) const
    {
        std::uint64_t others = 0;
        for (std::size_t i = 0; i < size; ++i)
        {
            others += m_isSeen[i] ? 0 : (i / 4 + 1) * (static_cast<unsigned char>(m_structure[i]) + 1U);
        }
        trace.add("values", m_values);
        trace.add("other bytes", static_cast<std::int64_t>(others));
    }

private:
    void see(const char* from, std::size_t size)
    {
        std::memset(m_isSeen.data() + (from - m_structure), 1, size);
    }

    char* m_structure;
    std::string m_values;
    std::array<char, kMostStructure> m_isSeen = {};
};

// Takes no more than the structure of what is read strictly.
struct StrictSink
{
    static constexpr bool kNeedsStructure = true;

    char* structure(std::size_t size)
    {
        expect(size <= room.size(), "a structure is larger than all");
        return room.data();
    }

    void number(const tool::FieldPlace&, std::int64_t, std::string_view, std::size_t) {}
    void text(const tool::FieldPlace&, std::string_view, std::size_t) {}
    void block(const tool::FieldPlace&, std::string_view, std::size_t) {}
    void nothing(const tool::FieldPlace&, bool) {}
    void finding(const tool::Finding& finding)
    {
        isDamaged = isDamaged || tool::info(finding.code).severity == tool::Severity::damage;
        isNoted = true;
    }

    std::array<char, kMostStructure> room;
    bool isDamaged = false;
    bool isNoted = false;
};

// What holds after every reading.
void expectOnlyRead(const Guarded& buffer, const std::string& before, unsigned int length)
{
    expect(length <= buffer.size(), "consumed more than there was");
    expect(std::string_view(buffer.data(), buffer.size()) == before, "reading changed the buffer");
}

std::map<SIGSELECT, BciMsgFactory> factories;
SIGSELECT instantiated = 0;

// What memory holds by chance is a part of what comes out, so all of it is written before.
BciMessageBase* makeFilled(SIGSELECT sigNo)
{
    static const std::string bytes(kMostStructure, '\xA5');
    BciMessageBase* const message = factories.at(sigNo)(sigNo);
    message->setMsg(bytes.data());
    instantiated = sigNo;
    return message;
}

const bool isRegistered = []
{
    BciMsgRegistry::registerSupportedMsgClasses();
    factories = BciMessageBase::s_bciRegistrationMap;
    for (auto& [number, factory] : BciMessageBase::s_bciRegistrationMap)
    {
        factory = makeFilled;
    }
    return true;
}();

} // namespace

const std::vector<Signal>& classes()
{
    static const std::vector<Signal> all = []
    {
        std::map<std::string, Signal> byName;
        for (const Signal& signal : signals())
        {
            byName.emplace(signal.shape->className, signal);
        }
        std::vector<Signal> result;
        result.reserve(byName.size());
        for (const auto& [name, signal] : byName)
        {
            result.push_back(signal);
        }
        return result;
    }();
    return all;
}

const Signal& classOf(Input& input)
{
    return classes()[input.byte() % classes().size()];
}

BciMessageBase& messageOf(const Signal& signal)
{
    static std::map<SIGSELECT, std::unique_ptr<BciMessageBase>> messages;
    std::unique_ptr<BciMessageBase>& message = messages[signal.number];
    if (message == nullptr)
    {
        message.reset(makeFilled(signal.number));
    }
    return *message;
}

void fill(const Signal& signal, BciMessageBase& message, char beyond, Input& input)
{
    std::array<char, kMostStructure> structure;
    structure.fill(beyond);
    Filler filler(input);
    walk(*signal.shape, structure.data(), filler);
    message.setMsg(structure.data());
}

void fill(const Signal& signal, BciMessageBase& message, std::uint8_t value)
{
    std::array<char, kMostStructure> structure;
    structure.fill(static_cast<char>(value));
    if (value >= 0x80)
    {
        Leveller leveller(value & 0x1F);
        walk(*signal.shape, structure.data(), leveller);
    }
    message.setMsg(structure.data());
}

std::string valuesOf(const Signal& signal, const BciMessageBase& message)
{
    Noter noter(message.getMsg());
    walk(*signal.shape, message.getMsg(), noter);
    return noter.values();
}

void add(Trace& trace, const Signal& signal, const BciMessageBase& message)
{
    Noter noter(message.getMsg());
    walk(*signal.shape, message.getMsg(), noter);
    noter.addTo(trace, signal.shape->structureSize);
}

bool write(const BciMessageBase& message, Form form, char* buffer, unsigned int& length)
{
    return form == Form::text     ? message.serializeToText(buffer, length)
           : form == Form::binary ? message.serializeToBinary(buffer, length)
                                  : message.serializeToXml(buffer, length);
}

bool read(BciMessageBase& message, Form form, char* buffer, unsigned int& length)
{
    return form == Form::text     ? message.deserializeFromText(buffer, length)
           : form == Form::binary ? message.deserializeFromBinary(buffer, length)
                                  : message.deserializeFromXml(buffer, length);
}

bool isPromised(const Signal& signal, Form form, char* structure)
{
    const std::string_view name = signal.shape->className;
    const std::vector<codec::Leaf> fields = leaves(*signal.shape, structure);
    const auto isAny = [&fields](auto condition) { return std::any_of(fields.begin(), fields.end(), condition); };
    if (form == Form::xml)
    {
        // The one's last element is closed by another's name, the other's twelfth entry is looked up by a wrong
        // one; of two elements of a name, as two capabilities of one identity have them, the first is read twice;
        // and a tag within a value is one like any other.
        std::set<std::string_view> names;
        return name != "BciLoadLmcAck" &&
               !isAny(
                   [&names](const codec::Leaf& leaf)
                   {
                       const bool hasCharacters = leaf.raw || leaf.field.kind == Kind::text;
                       return leaf.name == "hwLogData_11" || !names.insert(leaf.name).second ||
                              (hasCharacters &&
                               std::memchr(leaf.base + leaf.field.offset, '<', leaf.field.size) != nullptr);
                   });
    }
    if (form == Form::text)
    {
        // An empty list has a ':' that is not read; the least number is not read; a text or block ends at its
        // first ':'.
        return !isAny(
            [](const codec::Leaf& leaf)
            {
                if (leaf.raw || leaf.field.kind == Kind::text)
                {
                    return std::memchr(leaf.base + leaf.field.offset, ':', leaf.field.size) != nullptr;
                }
                const std::int64_t value = loadNumber(leaf.field, leaf.base);
                return (leaf.name == "additionalDataLength" && value == 0) ||
                       (leaf.field.kind == Kind::s32 && value == -0x80000000LL);
            });
    }
    return true;
}

void expectSameFields(const Signal& signal, Form form, char* structure, const BciMessageBase& message)
{
    const std::vector<codec::Leaf> wanted = leaves(*signal.shape, structure);
    const std::vector<codec::Leaf> found = leaves(*signal.shape, message.getMsg());
    expect(wanted.size() == found.size(), "has another number of fields");
    for (std::size_t i = 0; i < wanted.size(); ++i)
    {
        const codec::Field& field = wanted[i].field;
        const char* const one = wanted[i].base + field.offset;
        const char* const two = found[i].base + field.offset;
        bool isSame = false;
        if (form == Form::xml && field.oddity == codec::Oddity::notReadFromXml)
        {
            isSame = true;
        }
        else if (wanted[i].raw)
        {
            isSame = std::memcmp(one, two, field.size) == 0;
        }
        else if (field.kind == Kind::text)
        {
            isSame = std::string_view(one, strnlen(one, field.size)) ==
                     std::string_view(two, strnlen(two, found[i].field.size));
        }
        else
        {
            std::int64_t value = loadNumber(field, wanted[i].base);
            if (form == Form::xml)
            {
                value = std::min<std::int64_t>(value, 0x7FFFFFFF);
            }
            isSame = value == loadNumber(field, found[i].base);
        }
        if (!isSame)
        {
            fail(wanted[i].name + " is not what it should be");
        }
    }
}

bool compareWithStrictReading(const Signal& signal, Form form, std::string_view rendering, bool result,
                              unsigned int consumed, const BciMessageBase& message)
{
    StrictSink sink;
    const tool::Reading reading = tool::read({rendering, form, std::endian::native, &signal}, sink);
    if (!reading.isComplete || sink.isDamaged || !isPromised(signal, form, sink.room.data()))
    {
        return false;
    }
    // One character more is what that reader wants.
    expect(result || (form == Form::text && std::string_view(signal.shape->className) == "BciHwLogSetReqMsg"),
           "refused what reads without a fault");
    // One reader wants a character more, another leaves the second delimiter of an empty list.
    const std::string_view name = signal.shape->className;
    const bool isOther = form == Form::text && (name == "BciHwLogSetReqMsg" || name == "BciCapabilityCfmMsg");
    expect(form == Form::xml ? consumed == 0
                             : consumed + isOther >= reading.end && consumed <= reading.end + isOther,
           "has not consumed as much as a strict reading");
    expectSameFields(signal, form, sink.room.data(), message);
    if (sink.isNoted)
    {
        return true;
    }
    BciMessageBase& again = messageOf(signal);
    again.setMsg(sink.room.data());
    static std::string written;
    written.assign(kMostWritten, fillByte);
    unsigned int length = kMostWritten;
    expect(write(again, form, written.data(), length), "does not write what reads without a finding");
    if (std::string_view(written).substr(0, length) != rendering.substr(0, reading.end))
    {
        fail("is written otherwise than it was read, without a finding: " + written.substr(0, length));
    }
    return true;
}

void instantiate(Input input, Form form, Trace& trace)
{
    const Guarded buffer(input.rest(), endOf(form));
    if (form == Form::binary)
    {
        turnFirstWord(buffer.data(), buffer.size());
    }
    const std::string before(buffer.data(), buffer.size());
    unsigned int length = buffer.size();
    BciMessageBase* created = nullptr;
    instantiated = 0;
    const bool result =
        form == Form::text     ? BciMessageBase::instantiateBciMsgFromText(buffer.data(), length, created)
        : form == Form::binary ? BciMessageBase::instantiateBciMsgFromBinary(buffer.data(), length, created)
                               : BciMessageBase::instantiateBciMsgFromXml(buffer.data(), length, created);
    const std::unique_ptr<BciMessageBase> message(created);
    trace.add("result", result);
    trace.add("length", length);
    trace.add("signal", instantiated);
    expectOnlyRead(buffer, before, length);
    expect(instantiated != 0 || length == buffer.size(),
           "consumed something though there was no message to read it");
    expect((message != nullptr) == (instantiated != 0 && (result || form != Form::binary)),
           "a message that was not read is handed out in binary, or gone in another form");
    if (message == nullptr)
    {
        return;
    }
    const Signal& signal = *findSignal(instantiated);
    add(trace, signal, *message);
    const std::string_view bytes(buffer.data(), buffer.size());
    compareWithStrictReading(signal, form, form == Form::xml ? bytes.data() : bytes, result, length, *message);
}

namespace
{

// What is read from the position of a caller's stream is what is read from a buffer that begins there. Its first
// word, which is not at position 0, has the target's byte order.
void expectTheSameThroughStream(const Signal& signal, Form form, std::uint8_t prefill, std::string_view bytes,
                                bool result, unsigned int length, const BciMessageBase& expected)
{
    constexpr std::string_view kInFront = "1:2";
    const std::unique_ptr<BciMessageBase> message(makeFilled(signal.number));
    fill(signal, *message, prefill);
    const Guarded buffer(kInFront, bytes);
    const auto readFrom = [&](auto& stream, auto operation)
    {
        stream.attachBuffer(buffer.data(), buffer.size());
        stream.seekg(static_cast<unsigned int>(kInFront.size()));
        expect((message.get()->*operation)(stream) == result, "another result from a stream");
        expect(stream.tellg() == kInFront.size() + length, "another length from a stream");
    };
    commonStream::istream_text text;
    commonStream::istream_binary binary;
    if (form == Form::text)
    {
        readFrom(text, &BciMessageBase::deserializeBciMsgFromText);
    }
    else
    {
        readFrom(binary, &BciMessageBase::deserializeBciMsgFromBinary);
    }
    expect(std::memcmp(message->getMsg(), expected.getMsg(), signal.shape->structureSize) == 0,
           "something else is read from a stream");
}

// XML is read from the beginning of a stream's buffer to the zero, wherever and however the stream stands.
void expectTheSameThroughXmlStream(const Signal& signal, std::uint8_t prefill, const Guarded& document,
                                   bool result, const BciMessageBase& expected)
{
    const std::unique_ptr<BciMessageBase> message(makeFilled(signal.number));
    fill(signal, *message, prefill);
    const unsigned int length = prefill % document.size();
    const unsigned int position = length / 2;
    commonStream::istream_text stream;
    stream.attachBuffer(document.data(), length);
    stream.seekg(position);
    stream.status(prefill % 8);
    const auto status = stream.status();
    expect(message->deserializeBciMsgFromXml(stream) == result, "another result from a stream");
    expect(stream.tellg() == position && stream.status() == status, "reading XML has changed the stream");
    expect(std::memcmp(message->getMsg(), expected.getMsg(), signal.shape->structureSize) == 0,
           "something else is read from a stream");
}

// Where the data ends early, what it does not reach is as it was; but the number that it ends in may be 0, a text
// ends there, and two messages are cleared before.
void expectTheRestAsItWas(const Signal& signal, Form form, std::uint8_t prefill, std::string_view bytes,
                          const BciMessageBase& whole)
{
    const std::string_view name = signal.shape->className;
    const bool isCleared = form != Form::xml && (name == "BciCapabilityCfmMsg" || name == "BciGetHwPidCfmMsg");
    const bool mayBeZero = form == Form::text || isCleared;
    // The log, which is filled up, is the end of the structure.
    const unsigned int end = form == Form::text && name == "BciHwLogSetReqMsg"
                                 ? offsetof(VornBcHwLogSetReqS, hwLogData)
                                 : signal.shape->structureSize;
    const std::unique_ptr<BciMessageBase> before(makeFilled(signal.number));
    fill(signal, *before, prefill);
    const std::unique_ptr<BciMessageBase> message(makeFilled(signal.number));
    for (const std::size_t left :
         {bytes.size() / 3, bytes.size() / 2, bytes.size() - std::min<std::size_t>(bytes.size(), 2)})
    {
        message->setMsg(before->getMsg());
        const Guarded buffer(bytes.substr(0, left), endOf(form));
        unsigned int length = buffer.size();
        read(*message, form, buffer.data(), length);
        for (unsigned int i = 0; i < end; ++i)
        {
            const char byte = message->getMsg()[i];
            expect(byte == before->getMsg()[i] || byte == whole.getMsg()[i] || (byte == '\0' && mayBeZero),
                   "something has changed that the data does not reach");
        }
    }
}

} // namespace

void deserialize(Input input, Form form, Trace& trace)
{
    const Signal& signal = classOf(input);
    const std::unique_ptr<BciMessageBase> message(makeFilled(signal.number));
    const std::uint8_t prefill = input.byte();
    fill(signal, *message, prefill);
    const Guarded buffer(input.rest(), endOf(form));
    if (form == Form::binary)
    {
        turnFirstWord(buffer.data(), buffer.size());
    }
    const std::string before(buffer.data(), buffer.size());
    unsigned int length = buffer.size();
    const bool result = read(*message, form, buffer.data(), length);
    trace.add("result", result);
    trace.add("length", length);
    add(trace, signal, *message);
    expectOnlyRead(buffer, before, length);
    const std::string_view bytes(buffer.data(), buffer.size());
    compareWithStrictReading(signal, form, form == Form::xml ? bytes.data() : bytes, result, length, *message);
    expectTheRestAsItWas(signal, form, prefill, bytes.substr(0, input.rest().size()), *message);
    if (form == Form::xml)
    {
        expectTheSameThroughXmlStream(signal, prefill, buffer, result, *message);
    }
    else
    {
        expectTheSameThroughStream(signal, form, prefill, input.rest(), result, length, *message);
    }
}

} // namespace bci::fuzz
