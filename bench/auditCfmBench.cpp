// The audit confirm in all six directions, through the public entry points, in buffers of the stated
// sizes (of the form's own size where that is larger).

#include "bciAuditMsg.h"
#include "bciMsgRegistration.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace
{

using Serialize = bool (BciMessageBase::*)(char*, unsigned int&) const;
using Deserialize = bool (BciMessageBase::*)(char*, unsigned int&);

BciAuditCfm& confirm()
{
    static BciAuditCfm message(BCI_AUDIT_CFM);
    message.m_auditCfm = {BCI_AUDIT_CFM, {1, 2}, 3};
    return message;
}

void encode(benchmark::State& state, Serialize serialize, unsigned int size)
{
    const BciAuditCfm& message = confirm();
    std::vector<char> buffer(size);
    for ([[maybe_unused]] auto _ : state)
    {
        unsigned int length = size;
        benchmark::DoNotOptimize((message.*serialize)(buffer.data(), length));
        benchmark::ClobberMemory();
    }
}

void decode(benchmark::State& state, Serialize serialize, Deserialize deserialize, unsigned int size)
{
    BciAuditCfm& message = confirm();
    std::vector<char> buffer(size);
    unsigned int written = size;
    (message.*serialize)(buffer.data(), written);
    for ([[maybe_unused]] auto _ : state)
    {
        unsigned int length = size;
        benchmark::DoNotOptimize((message.*deserialize)(buffer.data(), length));
        benchmark::ClobberMemory();
    }
}

constexpr unsigned int kTextSize = 42;
constexpr unsigned int kBinarySize = 16;
constexpr unsigned int kXmlSize = 256;

BENCHMARK_CAPTURE(encode, text, &BciMessageBase::serializeToText, kTextSize);
BENCHMARK_CAPTURE(encode, binary, &BciMessageBase::serializeToBinary, kBinarySize);
BENCHMARK_CAPTURE(encode, xml, &BciMessageBase::serializeToXml, kXmlSize);
BENCHMARK_CAPTURE(decode, text, &BciMessageBase::serializeToText, &BciMessageBase::deserializeFromText, kTextSize);
BENCHMARK_CAPTURE(decode, binary, &BciMessageBase::serializeToBinary, &BciMessageBase::deserializeFromBinary,
                  kBinarySize);
BENCHMARK_CAPTURE(decode, xml, &BciMessageBase::serializeToXml, &BciMessageBase::deserializeFromXml, kXmlSize);

} // namespace
