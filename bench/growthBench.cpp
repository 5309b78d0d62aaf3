// Cost against size: messages that are the same but for a count, which stands at the end of their benchmarks'
// names.

#include "bciCapabilityMsg.h"
#include "bciHwMsg.h"
#include "bciLoadLmcMsg.h"
#include "benchmarks.h"
#include "codecs.h"
#include "contents.h"
#include "fields.h"

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>

namespace bench
{

namespace
{

template <typename Message, typename Wire>
void registerSize(const std::string& name, const Wire& wire, bool reverse)
{
    const auto decoder = [&](Form form)
    {
        const std::shared_ptr<BciMessageBase> message = messageOf<Message>(wire);
        registerDecode(benchmarkName(name, form, "decode", "bci"), message, messageOf<Message>(Wire{}), form,
                       readable(*message, form));
    };
    for (const Form form : kWrittenForms)
    {
        registerEncode(benchmarkName(name, form, "encode", "bci"), messageOf<Message>(wire), form);
        decoder(form);
    }
    if (reverse)
    {
        decoder(Form::xmlReversed);
    }
}

std::string nameOf(const char* message, unsigned int size)
{
    return std::string(message) + '-' + std::to_string(size);
}

void registerLogs()
{
    for (const unsigned int entries : {1, 2, 4, 8, 16, 32, 64, 128, 212, 424})
    {
        VornBcHwLogSetReqS wire = {};
        fillLog(wire, entries);
        registerSize<BciHwLogSetReqMsg>(nameOf("BciHwLogSetReqMsg", entries), wire, true);
    }
}

void registerCapabilities()
{
    for (const unsigned int entries : {0, 1, 2, 4, 6, 8, 10})
    {
        CapabilityCfm wire = {};
        fillInterfaceAndClimate(wire, entries);
        registerSize<BciCapabilityCfmMsg>(nameOf("BciCapabilityCfmMsg", 2 * entries), wire, true);
    }
}

constexpr unsigned int kBeforeBlock = offsetof(LoadLmcData, lmBlock);

// What no writer of a block can do without: to copy the bytes and to clear what is left of the buffer.
[[gnu::noinline]] void copyIn(const LoadLmcData& wire, char* buffer, unsigned int size)
{
    const unsigned int used = kBeforeBlock + wire.lmBlockSize;
    if (size >= used)
    {
        std::memcpy(buffer, &wire, used);
        std::memset(buffer + used, 0, size - used);
    }
}

[[gnu::noinline]] void copyOut(const char* data, unsigned int size, LoadLmcData& wire)
{
    if (size >= kBeforeBlock && size <= sizeof wire)
    {
        std::memcpy(&wire, data, hidden(size));
    }
}

// In the same buffer as the library's.
void registerCopies(const std::string& name, const LoadLmcData& content, unsigned int size)
{
    const auto wire = std::make_shared<LoadLmcData>(content);
    benchmark::RegisterBenchmark(benchmarkName(name, Form::binary, "encode", "memcpy").c_str(),
                                 [wire, size](benchmark::State& state)
                                 {
                                     char* const buffer = workplace(wire.get());
                                     auto* copy = copyIn;
                                     benchmark::DoNotOptimize(copy);
                                     for ([[maybe_unused]] auto _ : state)
                                     {
                                         copy(*wire, buffer, size);
                                         benchmark::ClobberMemory();
                                     }
                                 });
    benchmark::RegisterBenchmark(
        benchmarkName(name, Form::binary, "decode", "memcpy").c_str(),
        [wire](benchmark::State& state)
        {
            const unsigned int used = kBeforeBlock + wire->lmBlockSize;
            const char* const buffer = place({reinterpret_cast<const char*>(wire.get()), used}, wire.get());
            auto* copy = copyOut;
            benchmark::DoNotOptimize(copy);
            for ([[maybe_unused]] auto _ : state)
            {
                copy(buffer, used, *wire);
                benchmark::ClobberMemory();
            }
        });
}

void registerBlocks()
{
    for (const unsigned int size : {0, 16, 64, 256, 512, 1024, 2048, 3072, 4096, 4100})
    {
        LoadLmcData wire = {};
        fillBlock(wire, size);
        const std::string name = nameOf("BciLoadLmcData", size);
        registerSize<BciLoadLmcData>(name, wire, false);
        registerCopies(name, wire, bufferSize(*messageOf<BciLoadLmcData>(wire), Form::binary));
    }
}

} // namespace

void registerGrowth()
{
    registerLogs();
    registerCapabilities();
    registerBlocks();
}

} // namespace bench
