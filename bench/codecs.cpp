#include "codecs.h"

#include "bciHwMsg.h"
#include "bciMsgRegistration.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

namespace bench
{

namespace
{

constexpr std::size_t kPageSize = 4096;
alignas(kPageSize) char theWorkplace[kWorkplaceSize + kPageSize];

const char* nameOf(Form form)
{
    switch (form)
    {
    case Form::text:
        return "text";
    case Form::binary:
        return "binary";
    case Form::xml:
        return "xml";
    case Form::xmlReversed:
        break;
    }
    return "xml-reversed";
}

bool isXml(Form form)
{
    return form == Form::xml || form == Form::xmlReversed;
}

bool serialize(const BciMessageBase& message, Form form, char* buffer, unsigned int& length)
{
    switch (form)
    {
    case Form::text:
        return message.serializeToText(buffer, length);
    case Form::binary:
        return message.serializeToBinary(buffer, length);
    default:
        return message.serializeToXml(buffer, length);
    }
}

bool deserialize(BciMessageBase& message, Form form, char* buffer, unsigned int length)
{
    switch (form)
    {
    case Form::text:
        return message.deserializeFromText(buffer, length);
    case Form::binary:
        return message.deserializeFromBinary(buffer, length);
    default:
        return message.deserializeFromXml(buffer, length);
    }
}

template <auto kOperation>
void encode(benchmark::State& state, const BciMessageBase& message, unsigned int size)
{
    char* const buffer = workplace(message.getMsg());
    for ([[maybe_unused]] auto _ : state)
    {
        unsigned int length = size;
        benchmark::DoNotOptimize((message.*kOperation)(buffer, length));
        benchmark::DoNotOptimize(length);
        benchmark::ClobberMemory();
    }
}

template <auto kOperation>
void decode(benchmark::State& state, BciMessageBase& message, const std::string& data)
{
    char* const buffer = place(data, message.getMsg());
    const auto size = static_cast<unsigned int>(data.size());
    for ([[maybe_unused]] auto _ : state)
    {
        unsigned int length = size;
        benchmark::DoNotOptimize((message.*kOperation)(buffer, length));
        benchmark::DoNotOptimize(length);
        benchmark::ClobberMemory();
    }
}

// The hardware identity's serial number is not read from XML.
void takeOverWhatXmlLeaves(const BciMessageBase& original, BciMessageBase& message)
{
    if (original.getSigNo() == BCI_GET_HW_PID_CFM)
    {
        auto& to = static_cast<BciGetHwPidCfmMsg&>(message).m_getHwPidCfm.serialNumber;
        std::memcpy(to, static_cast<const BciGetHwPidCfmMsg&>(original).m_getHwPidCfm.serialNumber, sizeof to);
    }
}

// Names of log entries as the reader looks them up: each is the one before with the character behind the
// underscore replaced by the index. The writer's are the same up to hwLogData_10.
std::string withReadableEntryNames(const std::string& document)
{
    const std::string bracket = "<hwLogData_";
    std::string result;
    std::string name = "hwLogData_0";
    const std::size_t place = name.size() - 1;
    std::size_t from = 0;
    unsigned int index = 0;
    for (std::size_t at = document.find(bracket); at != std::string::npos; at = document.find(bracket, from))
    {
        const std::size_t closing = document.find("</", at);
        name.replace(place, 1, std::to_string(index++));
        result.append(document, from, at + 1 - from).append(name);
        const std::size_t content = document.find('>', at);
        result.append(document, content, closing + 2 - content).append(name);
        from = document.find('>', closing);
    }
    return result.append(document, from);
}

} // namespace

std::string benchmarkName(const std::string& message, Form form, const char* direction, const std::string& peer)
{
    return message + '/' + nameOf(form) + '/' + direction + '/' + peer;
}

void fail(const std::string& benchmark, const std::string& why)
{
    std::fprintf(stderr, "%s: %s\n", benchmark.c_str(), why.c_str());
    std::exit(EXIT_FAILURE);
}

char* workplace(const void* structure)
{
    const std::size_t offset = (reinterpret_cast<std::uintptr_t>(structure) + kPageSize / 2) % kPageSize;
    return theWorkplace + offset / 64 * 64;
}

char* place(const std::string& data, const void* structure)
{
    return static_cast<char*>(std::memcpy(workplace(structure), data.c_str(), data.size() + 1));
}

std::string rendering(const BciMessageBase& message, Form form)
{
    unsigned int length = kWorkplaceSize;
    char* const buffer = workplace();
    serialize(message, form, buffer, length);
    return {buffer, length};
}

unsigned int bufferSize(BciMessageBase& message, Form form)
{
    const auto size = static_cast<unsigned int>(rendering(message, form).size());
    switch (form)
    {
    case Form::text:
        return std::max(size, message.getMaxTextBufferSize());
    case Form::binary:
        return std::max(size, message.getMaxBinaryBufferSize());
    default:
        return size + 1;
    }
}

std::string reversed(const std::string& document)
{
    std::vector<std::string> elements;
    for (std::size_t from = 0; from != document.size();)
    {
        const std::size_t end = document.find(">\n", document.find("\n\t</", from)) + 2;
        elements.push_back(document.substr(from, end - from));
        from = end;
    }
    std::string result;
    for (auto element = elements.rbegin(); element != elements.rend(); ++element)
    {
        result += *element;
    }
    return result;
}

std::string readable(const BciMessageBase& message, Form form)
{
    std::string data = rendering(message, form);
    const SIGSELECT sigNo = message.getSigNo();
    if (sigNo == BCI_HW_LOG_SET_REQ && form == Form::text)
    {
        data += '\0'; // the reader wants one character behind the last delimiter
    }
    if (sigNo == BCI_HW_LOG_SET_REQ && isXml(form))
    {
        data = withReadableEntryNames(data);
    }
    if (sigNo == BCI_LOAD_LMC_ACK && isXml(form))
    {
        const std::string wrong = "loadModule"; // closes lmSeqNr
        data.replace(data.rfind(wrong), wrong.size(), "lmSeqNr");
    }
    return form == Form::xmlReversed ? reversed(data) : data;
}

bool readsBack(const BciMessageBase& original, const std::string& data, Form form, BciMessageBase& empty)
{
    if (isXml(form))
    {
        takeOverWhatXmlLeaves(original, empty);
    }
    std::string copy = data;
    return deserialize(empty, form, copy.data(), static_cast<unsigned int>(copy.size())) &&
           rendering(empty, Form::binary) == rendering(original, Form::binary);
}

void registerEncode(const std::string& name, std::shared_ptr<BciMessageBase> message, Form form)
{
    using Run = void (*)(benchmark::State&, const BciMessageBase&, unsigned int);
    const Run run = form == Form::text     ? encode<&BciMessageBase::serializeToText>
                    : form == Form::binary ? encode<&BciMessageBase::serializeToBinary>
                                           : encode<&BciMessageBase::serializeToXml>;
    const unsigned int size = bufferSize(*message, form);
    benchmark::RegisterBenchmark(name.c_str(), [message = std::move(message), run, size](benchmark::State& state)
                                 { run(state, *message, size); });
}

void registerDecode(const std::string& name, std::shared_ptr<BciMessageBase> original,
                    std::shared_ptr<BciMessageBase> empty, Form form, const std::string& data)
{
    if (!readsBack(*original, data, form, *empty))
    {
        fail(name, "does not read back");
    }
    using Run = void (*)(benchmark::State&, BciMessageBase&, const std::string&);
    const Run run = form == Form::text     ? decode<&BciMessageBase::deserializeFromText>
                    : form == Form::binary ? decode<&BciMessageBase::deserializeFromBinary>
                                           : decode<&BciMessageBase::deserializeFromXml>;
    benchmark::RegisterBenchmark(name.c_str(), [message = std::move(empty), run, data](benchmark::State& state)
                                 { run(state, *message, data); });
}

} // namespace bench
