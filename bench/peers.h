// What the library is compared with: the same contents, in the same process.
//
// A peer is a function that writes a wire structure into a buffer, or one that reads such data into a wire
// structure. Registering it tries it once and ends the program if it does not do its job.
#ifndef BENCH_PEERS_H
#define BENCH_PEERS_H

#include "bciAuditMsg.h"
#include "bciCapabilityMsg.h"
#include "bciCommonMsg.h"
#include "bciHwMsg.h"
#include "codecs.h"
#include "contents.h"
#include "fields.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace bench
{

// Returns the characters written; 0 if they do not fit.
template <typename Wire>
using Encode = unsigned int (*)(const Wire&, char* buffer, unsigned int size);

// The structure is zero where the library clears it, too. Returns whether the data are as expected.
template <typename Wire>
using Decode = bool (*)(const char* data, unsigned int size, Wire&);

// A message that there are peers for.
template <typename TheMessage, typename TheWire>
struct Subject
{
    using Message = TheMessage;
    using Wire = TheWire;

    const char* name;
    alignas(64) Wire content;

    std::shared_ptr<BciMessageBase> message() const
    {
        return messageOf<Message>(content);
    }
};

// Calls a function with each subject.
template <typename Function>
void forEachSubject(Function function)
{
    static Subject<BciAuditCfm, VornBcAuditCfmS> auditCfm = {"BciAuditCfm", {}};
    static Subject<BciGenericMsg, GenericMsgS> generic = {"BciGenericMsg", {}};
    static Subject<BciGenericRejMsg, GenericRejMsgS> genericRej = {"BciGenericRejMsg", {}};
    static Subject<BciGetHwPidCfmMsg, VornBcGetHwPidCfmS> getHwPidCfm = {"BciGetHwPidCfmMsg", {}};
    static Subject<BciCapabilityCfmMsg, CapabilityCfm> capability = {kFullCapability, {}};
    fill(auditCfm.content);
    fill(generic.content);
    fill(genericRej.content);
    fill(getHwPidCfm.content);
    fillInterfaceAndClimate(capability.content, 10);
    function(auditCfm);
    function(generic);
    function(genericRej);
    function(getHwPidCfm);
    function(capability);
}

template <typename Wire>
void runEncode(benchmark::State& state, const Wire& content, Encode<Wire> encode, unsigned int size)
{
    char* const buffer = workplace(&content);
    benchmark::DoNotOptimize(encode); // is not known when this is compiled
    for ([[maybe_unused]] auto _ : state)
    {
        benchmark::DoNotOptimize(encode(content, buffer, size));
        benchmark::ClobberMemory();
    }
}

template <typename Wire>
void runDecode(benchmark::State& state, const std::string& data, Decode<Wire> decode)
{
    alignas(64) Wire wire = {};
    const char* const buffer = place(data, &wire);
    const auto size = static_cast<unsigned int>(data.size());
    benchmark::DoNotOptimize(decode);
    benchmark::DoNotOptimize(wire);
    for ([[maybe_unused]] auto _ : state)
    {
        benchmark::DoNotOptimize(decode(buffer, size, wire));
        benchmark::ClobberMemory();
    }
}

// What a peer writes into a buffer of ample size.
template <typename Wire>
std::string written(const Wire& content, Encode<Wire> encode)
{
    constexpr unsigned int kAmple = 32768;
    char* const buffer = workplace();
    return {buffer, encode(content, buffer, kAmple)};
}

template <typename S>
void tryDecode(const S& subject, const std::string& name, Decode<typename S::Wire> decode, const std::string& data)
{
    const auto original = subject.message();
    typename S::Wire wire = {};
    if constexpr (std::same_as<typename S::Wire, VornBcGetHwPidCfmS>)
    {
        if (name.find("xml") != std::string::npos)
        {
            setText(wire.serialNumber, textOf(subject.content.serialNumber)); // need not be read from XML
        }
    }
    const std::string copy = data; // ends where its allocation ends
    if (!decode(copy.data(), static_cast<unsigned int>(copy.size()), wire))
    {
        fail(name, "does not read its data");
    }
    if (rendering(*messageOf<typename S::Message>(wire), Form::binary) != rendering(*original, Form::binary))
    {
        fail(name, "reads something else");
    }
}

// What ends too early is to be refused: readers look where their data end.
template <typename S>
void expectShortDataRefused(const S& subject, Form form, const char* peer, Decode<typename S::Wire> decode)
{
    const std::string data = readable(*subject.message(), form);
    // Not read from XML, and the last element where it is there.
    const std::size_t needed = std::min(data.find("\t<serialNumber>"), data.size());
    for (std::size_t length = 0; length != needed; ++length)
    {
        const std::vector<char> cut(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(length));
        typename S::Wire wire = {};
        if (decode(cut.data(), static_cast<unsigned int>(length), wire))
        {
            fail(benchmarkName(subject.name, form, "decode", peer), "reads what is not there");
        }
    }
}

// A peer that writes the library's own form, into a buffer of the same size, and clears the rest of it or not.
template <typename S>
void registerSameEncode(const S& subject, Form form, const char* peer, Encode<typename S::Wire> encode,
                        bool clears = true)
{
    const std::string name = benchmarkName(subject.name, form, "encode", peer);
    const auto message = subject.message();
    const std::string expected = rendering(*message, form);
    const unsigned int size = bufferSize(*message, form);
    char* const buffer = workplace();
    std::memset(buffer, '~', size + 1);
    const unsigned int length = encode(subject.content, buffer, size);
    if (std::string(buffer, length) != expected || buffer[size] != '~')
    {
        fail(name, "does not write what the library writes");
    }
    if (clears && std::string(buffer + length, size - length) != std::string(size - length, '\0'))
    {
        fail(name, "does not clear the rest of the buffer");
    }
    for (unsigned int tooShort = 0; tooShort < expected.size(); ++tooShort)
    {
        std::memset(buffer, '~', size);
        if (encode(subject.content, buffer, tooShort) > tooShort || buffer[tooShort] != '~')
        {
            fail(name, "writes beyond its buffer");
        }
    }
    benchmark::RegisterBenchmark(name.c_str(), [&subject, encode, size](benchmark::State& state)
                                 { runEncode(state, subject.content, encode, size); });
}

// One that reads the library's own form.
template <typename S>
void registerSameDecode(const S& subject, Form form, const char* peer, Decode<typename S::Wire> decode)
{
    const std::string name = benchmarkName(subject.name, form, "decode", peer);
    const std::string data = readable(*subject.message(), form);
    tryDecode(subject, name, decode, data);
    benchmark::RegisterBenchmark(name.c_str(),
                                 [data, decode](benchmark::State& state) { runDecode(state, data, decode); });
}

// One that has a form of its own.
template <typename S>
void registerOwnForm(const S& subject, Form form, const char* peer, Encode<typename S::Wire> encode,
                     Decode<typename S::Wire> decode)
{
    const std::string encodeName = benchmarkName(subject.name, form, "encode", peer);
    const std::string decodeName = benchmarkName(subject.name, form, "decode", peer);
    const std::string data = written(subject.content, encode);
    if (data.empty())
    {
        fail(encodeName, "writes nothing");
    }
    tryDecode(subject, decodeName, decode, data);
    const auto size = static_cast<unsigned int>(data.size()) + 1;
    benchmark::RegisterBenchmark(encodeName.c_str(), [&subject, encode, size](benchmark::State& state)
                                 { runEncode(state, subject.content, encode, size); });
    benchmark::RegisterBenchmark(decodeName.c_str(),
                                 [data, decode](benchmark::State& state) { runDecode(state, data, decode); });
}

void registerMemcpy();
void registerOptimum();
void registerCharconv();
void registerFmt();
void registerPugixml();
void registerProtobuf();
void registerBoost();
void registerCereal();

} // namespace bench

#endif
