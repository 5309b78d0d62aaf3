// The library by itself: every message class in all six directions.

#include "benchmarks.h"
#include "codecs.h"
#include "contents.h"
#include "peers.h"

namespace bench
{

namespace
{

void registerReversed(const char* name, std::shared_ptr<BciMessageBase> message,
                      std::shared_ptr<BciMessageBase> empty)
{
    const std::string document = readable(*message, Form::xmlReversed);
    registerDecode(benchmarkName(name, Form::xmlReversed, "decode", "bci"), std::move(message), std::move(empty),
                   Form::xmlReversed, document);
}

} // namespace

void registerCodecs()
{
    for (const Content& content : contents())
    {
        for (const Form form : kWrittenForms)
        {
            const std::shared_ptr<BciMessageBase> message = content.filled();
            registerEncode(benchmarkName(content.name, form, "encode", "bci"), message, form);
            registerDecode(benchmarkName(content.name, form, "decode", "bci"), message, content.empty(), form,
                           readable(*message, form));
        }
    }
    forEachSubject(
        []<typename S>(const S& subject) {
            registerReversed(subject.name, subject.message(), messageOf<typename S::Message>(typename S::Wire{}));
        });
}

} // namespace bench
