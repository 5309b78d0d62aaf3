#include "library.h"

#include "bciMessage.h"
#include "output.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <set>

namespace
{

// The log lines of the library since they were last taken.
std::vector<std::string> logged;

void take(const char* format, va_list arguments)
{
    std::array<char, 512> line;
    std::vsnprintf(line.data(), line.size(), format, arguments);
    if (logged.size() < 100)
    {
        logged.emplace_back(line.data());
    }
}

} // namespace

// In the place of the system log: what the library logs is part of its answer, and nothing for the log of this
// machine.
extern "C" void syslog(int /*priority*/, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    take(format, arguments);
    va_end(arguments);
}

// The same as a fortified build calls it.
extern "C" void __syslog_chk(int /*priority*/, int /*flag*/, const char* format, ...) // NOLINT
{
    va_list arguments;
    va_start(arguments, format);
    take(format, arguments);
    va_end(arguments);
}

namespace bci::tool
{

namespace
{

// Reaches the wire structure of any message.
struct Structure : BciMessageBase
{
    static const char* of(const BciMessageBase& message)
    {
        return message.*(&Structure::m_bciMessagePtr);
    }
};

struct ReadBack
{
    std::unique_ptr<BciMessageBase> message; // null if there is none of the number
    bool result = false;
    unsigned int length = 0;
};

// Lets the library read a rendering into a message whose structure is filled with a byte, so that what it leaves
// alone can be told.
ReadBack readBack(const Rendering& rendering, char fill)
{
    ReadBack back;
    BciMessageBase* created = nullptr;
    if (!BciMessageBase::instantiateBciMsg(rendering.signal->number, created))
    {
        return back;
    }
    back.message.reset(created);
    const std::string filled(rendering.signal->shape->structureSize, fill);
    created->setMsg(filled.data());
    std::string buffer(rendering.bytes);
    if (rendering.form == Form::binary && rendering.firstWord != std::endian::native &&
        buffer.size() >= sizeof(SIGSELECT))
    {
        std::reverse(buffer.begin(), buffer.begin() + sizeof(SIGSELECT));
    }
    back.length = static_cast<unsigned int>(buffer.size());
    switch (rendering.form)
    {
    case Form::text:
        back.result = created->deserializeFromText(buffer.data(), back.length);
        break;
    case Form::binary:
        back.result = created->deserializeFromBinary(buffer.data(), back.length);
        break;
    case Form::xml:
        back.result = created->deserializeFromXml(buffer.data(), back.length);
        break;
    }
    return back;
}

// Calls a function with each field of a wire structure that the library has read otherwise or that is lost, and
// with its value, as text: null if it was left alone.
template <typename Lost, typename Function>
void compare(const Record& wanted, Lost isLost, const ReadBack& one, const ReadBack& two, Function function)
{
    for (const FieldValue& field : wanted.fields)
    {
        const std::string first = valueIn(field, Structure::of(*one.message));
        const std::string second = valueIn(field, Structure::of(*two.message));
        if (first != second)
        {
            function(field, nullptr);
        }
        else if (first != field.value || isLost(field))
        {
            const std::string shown = quote(field.raw ? hexDigits(first) : first);
            function(field, &shown);
        }
    }
}

constexpr char kFill = 0;
constexpr char kOtherFill = 0x5A;

} // namespace

Verdict askLibrary(const Rendering& rendering, const Record& record)
{
    Verdict verdict;
    if (rendering.signal == nullptr)
    {
        return verdict;
    }
    logged.clear();
    const ReadBack one = readBack(rendering, kFill);
    verdict.log.swap(logged);
    const ReadBack two = readBack(rendering, kOtherFill);
    logged.clear();
    if (one.message == nullptr || two.message == nullptr)
    {
        return verdict;
    }
    verdict.result = one.result;
    verdict.length = one.length;
    std::set<std::string_view> found;
    for (const FieldValue& field : record.fields)
    {
        if (!field.isLost)
        {
            found.insert(field.name);
        }
    }
    compare(
        recordOf(*rendering.signal, record.structure),
        [&found](const FieldValue& field) { return !found.contains(field.name); }, one, two,
        [&](const FieldValue& field, const std::string* stored) {
            verdict.differences.push_back({field.name, stored != nullptr ? std::optional(*stored) : std::nullopt});
        });
    return verdict;
}

std::vector<Loss> roundTrip(const Signal& signal, const Record& record)
{
    std::vector<Loss> losses;
    for (const Form form : {Form::text, Form::binary, Form::xml})
    {
        std::string written;
        try
        {
            written = render(record.structure, signal, form, std::endian::native);
        }
        catch (const Trouble& trouble)
        {
            losses.push_back({form, "", "", trouble.what()});
            continue;
        }
        const Rendering rendering = {written, form, std::endian::native, &signal};
        const ReadBack one = readBack(rendering, kFill);
        const ReadBack two = readBack(rendering, kOtherFill);
        logged.clear();
        const std::size_t before = losses.size();
        compare(
            recordOf(signal, record.structure), [](const FieldValue& /*field*/) { return false; }, one, two,
            [&](const FieldValue& field, const std::string* stored)
            {
                losses.push_back({form, field.name, quote(field.raw ? hexDigits(field.value) : field.value),
                                  stored != nullptr ? *stored : "its old value"});
            });
        if (!one.result && losses.size() == before)
        {
            losses.push_back({form, "", "", "every value comes back, but the result is failure"});
        }
    }
    return losses;
}

} // namespace bci::tool
