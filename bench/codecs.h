// The library's own codecs, as the benchmarks call them: through the public entry points.
#ifndef BENCH_CODECS_H
#define BENCH_CODECS_H

#include "bciMessage.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <memory>
#include <string>

namespace bench
{

enum class Form
{
    text,
    binary,
    xml,
    xmlReversed // the same document with its elements in reverse order; to be read only
};

inline constexpr Form kWrittenForms[] = {Form::text, Form::binary, Form::xml};

// "BciAuditCfm/text/encode/bci"
std::string benchmarkName(const std::string& message, Form form, const char* direction, const std::string& peer);

// Ends the program: what is to be measured does not do its job.
[[noreturn]] void fail(const std::string& benchmark, const std::string& why);

// Every benchmark writes to this place, or reads from it. It is larger than all renderings, and always as far from
// the structure modulo the size of a page: where addresses are equal in that, loads wait for stores that are none
// of theirs.
constexpr std::size_t kWorkplaceSize = std::size_t{1} << 20;
char* workplace(const void* structure = nullptr);
// Puts data there, a zero behind them, and returns where they are.
char* place(const std::string& data, const void* structure);

// What the library writes.
std::string rendering(const BciMessageBase& message, Form form);
// The buffer that the message asks for, or the form's real size where that is larger; for XML the real size and a
// zero behind it.
unsigned int bufferSize(BciMessageBase& message, Form form);
std::string reversed(const std::string& document);
// What the library reads: the rendering, but where that does not read back.
std::string readable(const BciMessageBase& message, Form form);

// Reads data into an empty message and compares it with another: whether it holds the same, apart from what the
// form does not carry.
bool readsBack(const BciMessageBase& original, const std::string& data, Form form, BciMessageBase& empty);

// Registers the library's part of a benchmark. The messages live on.
void registerEncode(const std::string& name, std::shared_ptr<BciMessageBase> message, Form form);
void registerDecode(const std::string& name, std::shared_ptr<BciMessageBase> original,
                    std::shared_ptr<BciMessageBase> empty, Form form, const std::string& data);

} // namespace bench

#endif
