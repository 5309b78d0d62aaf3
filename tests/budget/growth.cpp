// Calls readers, writers and streams with what is bad for them, in three sizes, each 8 times the one before.
// callgrind counts each call and dumps "CASE;PROMISE;SIZE" after it.

#include "bciHwMsg.h"
#include "bciMessage.h"
#include "bciMsgRegistration.h"
#include "contents.h"
#include "stream.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <valgrind/callgrind.h>
#include <vector>

// Keeps the log's costs out of the count.
extern "C" void syslog(int /*priority*/, const char* /*format*/, ...) {}

namespace
{

using commonStream::istream_binary;
using commonStream::istream_text;
using commonStream::ostream_binary;
using commonStream::ostream_text;

using Documents = std::vector<std::string>;
using Reader = bool (*)(char*, unsigned int&, BciMessageBase*&);
using Writer = bool (BciMessageBase::*)(char*, unsigned int&) const;

using Call = std::function<int()>;
using Prepare = std::function<Call(unsigned int size)>; // of what the call is given, in bytes

constexpr int kClasses = std::size(kContents);
constexpr int kAny = -1;

struct Case
{
    std::string name;
    unsigned int size; // the one in the middle
    int result;        // of the call
    Prepare prepare;
    const char* promise = "linear";
};

void count(const std::string& name, const Call& call, int result)
{
    CALLGRIND_ZERO_STATS;
    CALLGRIND_TOGGLE_COLLECT;
    const int outcome = call();
    CALLGRIND_TOGGLE_COLLECT;
    CALLGRIND_DUMP_STATS_AT(name.c_str());
    if (result != kAny && outcome != result)
    {
        std::fprintf(stderr, "%s: %d instead of %d\n", name.c_str(), outcome, result);
        std::exit(1);
    }
}

std::string repeated(std::string_view what, std::size_t size)
{
    std::string result;
    while (result.size() < size)
    {
        result += what;
    }
    result.resize(size);
    return result;
}

std::unique_ptr<BciMessageBase> messageOf(const Content& content)
{
    std::string text = content.text + std::string(1, '\0');
    auto length = static_cast<unsigned int>(text.size());
    BciMessageBase* message = nullptr;
    if (!BciMessageBase::instantiateBciMsgFromText(text.data(), length, message))
    {
        std::fprintf(stderr, "%s: not made of its text\n", content.className);
        std::exit(1);
    }
    return std::unique_ptr<BciMessageBase>(message);
}

std::string written(const BciMessageBase& message, Writer writer)
{
    std::string buffer(400000, '\0');
    auto length = static_cast<unsigned int>(buffer.size());
    (message.*writer)(buffer.data(), length);
    buffer.resize(length);
    return buffer;
}

// One of each class.
template <typename Function>
Documents documents(Function function)
{
    Documents result;
    for (const Content& content : kContents)
    {
        result.push_back(function(content));
    }
    return result;
}

// Returns how many are read.
Call reading(Documents documents, Reader reader)
{
    return [documents = std::move(documents), reader]() mutable
    {
        int read = 0;
        for (std::string& document : documents)
        {
            auto length = static_cast<unsigned int>(document.size());
            BciMessageBase* message = nullptr;
            read += reader(document.data(), length, message) ? 1 : 0;
            delete message;
        }
        return read;
    };
}

std::string inEachValue(const char* text, const char* filler, unsigned int size)
{
    const auto fields = static_cast<unsigned int>(std::count(text, text + std::strlen(text), ':'));
    std::string result;
    for (const char* at = text; *at != '\0'; ++at)
    {
        result += *at;
        if (*at == ':')
        {
            result += repeated(filler, size / fields);
        }
    }
    return result;
}

void addText(std::vector<Case>& cases)
{
    const auto add = [&cases](const std::string& name, auto make, const char* promise = "linear")
    {
        cases.push_back({"text, " + name, 1024, kAny,
                         [make](unsigned int size)
                         { return reading(make(size), &BciMessageBase::instantiateBciMsgFromText); },
                         promise});
    };
    for (const char* const filler : {"0", "9", "+", "-", "x", ":", " ", "0+"})
    {
        const std::string name = std::string(" '") + filler + "'...";
        add("in each value" + name, [filler](unsigned int size)
            { return documents([&](const Content& each) { return inEachValue(each.text, filler, size); }); });
        add("in front" + name, [filler](unsigned int size)
            { return documents([&](const Content& each) { return repeated(filler, size) + each.text; }); });
        add(
            "behind a delimiter more" + name,
            [filler](unsigned int size)
            { return documents([&](const Content& each) { return each.text + (":" + repeated(filler, size)); }); },
            "constant");
        add("longest log," + name, [filler](unsigned int size)
            { return Documents{"23433738:1:2:x:7:9:65535:" + repeated(filler, size)}; });
        add(
            "longest block," + name,
            [filler](unsigned int size)
            { return Documents{"23431174:1:2:258:3:4100:" + repeated(filler, 5000 + size)}; },
            "constant");
    }
}

void addBinary(std::vector<Case>& cases)
{
    constexpr unsigned int kLongest = 4120; // so many bytes any message takes
    for (const int byte : {0, 1, 255})
    {
        for (const bool whole : {false, true})
        {
            const auto prepare = [byte, whole](unsigned int size)
            {
                const auto document = [&](const Content& content)
                {
                    std::string binary = written(*messageOf(content), &BciMessageBase::serializeToBinary);
                    binary.resize(whole ? binary.size() : 12);
                    return binary + std::string(kLongest + size, static_cast<char>(byte));
                };
                return reading(documents(document), &BciMessageBase::instantiateBciMsgFromBinary);
            };
            cases.push_back({std::string("binary, ") + (whole ? "messages" : "headers") + " and then " +
                                 std::to_string(byte) + "...",
                             1024, whole ? kClasses : kAny, prepare, "constant"});
        }
    }
}

// What stands about in documents.
struct Filler
{
    const char* name;
    const char* text;
    unsigned int tags; // in front of all; with more than 512 there is no index
};

constexpr Filler kFillers[] = {
    {"letters", "x", 0},
    {"blanks", " ", 0},
    {"brackets", "<", 0},
    {"slashes", "</", 0},
    {"near misses", "<sigN</sigN", 0},
    {"closing tags", "</a>", 0},
    {"tags", "<a>", 600},
};

std::string inFrontOfAll(const Filler& filler)
{
    return repeated("<a>", filler.tags * 3);
}

enum class Place
{
    inFront,
    between, // opening and closing tags
    atEnd,   // behind opening tags, none of which is closed
    inValues
};

struct Element
{
    std::string name;
    std::string value;
};

std::vector<Element> elementsOf(const Content& content)
{
    const std::string xml = written(*messageOf(content), &BciMessageBase::serializeToXml);
    std::vector<Element> elements;
    std::size_t at = 0;
    while ((at = xml.find('<', at)) != std::string::npos)
    {
        const std::size_t behind = xml.find('>', at) + 1;
        const std::size_t closing = xml.find('<', behind);
        elements.push_back({xml.substr(at + 1, behind - at - 2), xml.substr(behind, closing - behind)});
        at = xml.find('>', closing);
    }
    return elements;
}

std::string xmlWith(const std::vector<Element>& elements, const Filler& filler, unsigned int size, Place place)
{
    const std::string filling = repeated(filler.text, size);
    std::string opening;
    std::string closing;
    std::string inOrder;
    for (const auto& [name, value] : elements)
    {
        const std::string& behind = place == Place::inValues ? filling : std::string();
        opening += "<" + name + ">" + value;
        closing += "</" + name + ">";
        inOrder += "<" + name + ">" + value + behind + "</" + name + ">";
    }
    std::string result = inFrontOfAll(filler);
    switch (place)
    {
    case Place::inFront:
        return result + filling + inOrder;
    case Place::between:
        return result + opening + filling + closing;
    case Place::atEnd:
        return result + opening + filling;
    default:
        return result + inOrder;
    }
}

// The longest log there is, of empty entries, under those names that the reader looks for.
std::vector<Element> elementsOfLog()
{
    constexpr std::size_t kPlace = 10;
    std::vector<Element> elements = {{"sigNo", "23433738"}, {"clientRef", "1"}, {"serverRef", "2"},
                                     {"dateTime", "x"},     {"padding0", "0"},  {"logId", "9"},
                                     {"length", "424"}};
    std::string name = "hwLogData_0";
    for (unsigned int i = 0; i < sizeof(VornBcHwLogSetReqS::hwLogData); ++i)
    {
        name.replace(kPlace, 1, std::to_string(i));
        elements.push_back({name, ""});
    }
    return elements;
}

int find(const std::string& document, const std::string& tag)
{
    char content[424];
    int offset = 0;
    return getTagContents(document.c_str(), tag.c_str(), content, sizeof content, offset) ? 1 : 0;
}

void addXml(std::vector<Case>& cases)
{
    const auto add =
        [&cases](const std::string& name, unsigned int size, int result, auto make, const char* promise = "linear")
    {
        cases.push_back({"xml, " + name, size, result,
                         [make](unsigned int all)
                         { return reading(make(all), &BciMessageBase::instantiateBciMsgFromXml); },
                         promise});
    };
    // The elements, the signal number, and two for the index. Next to this what a pass over the document takes:
    // one for an element that has an opening tag alone, or none.
    const auto addPasses = [&cases, &add](const std::string& name, const char* promise, auto document)
    {
        const auto whole = [document](unsigned int size) { return "<pass>" + document(size); };
        add(
            name, 1024, 1, [whole](unsigned int size) { return Documents{whole(size)}; }, promise);
        for (const char* const tag : {"pass", "none"})
        {
            const auto prepare = [whole, tag](unsigned int size)
            { return [text = whole(size), tag] { return find(text, tag); }; };
            cases.push_back({"xml, " + name + ", pass " + tag, 1024, 0, prepare});
        }
    };
    for (const Filler& filler : kFillers)
    {
        // An entry of a log is too long with something between its tags.
        const std::tuple<const char*, Place, int> places[] = {{" in front", Place::inFront, kClasses},
                                                              {" between the tags", Place::between, kClasses - 1},
                                                              {" at the end", Place::atEnd, 0},
                                                              {" in the values", Place::inValues, kAny}};
        for (const auto& [name, place, read] : places)
        {
            const auto make = [filler, at = place](unsigned int size) {
                return documents([&](const Content& content)
                                 { return xmlWith(elementsOf(content), filler, size, at); });
            };
            add(filler.name + std::string(name), 512, read, make);
        }
        for (const Place place : {Place::inFront, Place::between})
        {
            const char* const name = place == Place::inFront ? " in front" : " between the tags";
            addPasses(std::string("capabilities, ") + filler.name + name, "passes: 96",
                      [filler, place](unsigned int size)
                      { return xmlWith(elementsOf(kContents[1]), filler, size, place); });
        }
    }
    for (const Filler& filler : {kFillers[0], kFillers[6]})
    {
        addPasses(std::string("longest log, ") + filler.name + " in front", "passes: 434",
                  [filler](unsigned int size) { return xmlWith(elementsOfLog(), filler, size, Place::inFront); });
    }
    // From 7 to 480 tags of one name.
    add(
        "one name for all tags", 180, 1,
        [](unsigned int size) {
            return Documents{xmlWith(elementsOf(kContents[0]), {"", "<a>", 0}, size, Place::inFront)};
        },
        "square up to 512 tags");
}

void addTags(std::vector<Case>& cases)
{
    const auto add = [&cases](const std::string& name, unsigned int size, int result, auto document, auto tag,
                              const char* promise = "linear")
    {
        const auto prepare = [document, tag](unsigned int all)
        { return [text = document(all), name = tag(all)] { return find(text, name); }; };
        cases.push_back({"getTagContents, " + name, size, result, prepare, promise});
    };
    const auto sigNo = [](unsigned int /*size*/) { return "sigNo"; };
    for (const Filler& filler : kFillers)
    {
        const std::string name = filler.name;
        add(
            name + ", none", 4096, 0, [filler](unsigned int size) { return repeated(filler.text, size); }, sigNo);
        add(
            name + ", not closed", 4096, 0,
            [filler](unsigned int size) { return "<sigNo>" + repeated(filler.text, size); }, sigNo);
        add(
            name + ", at the end", 4096, 1,
            [filler](unsigned int size) { return repeated(filler.text, size) + "<sigNo>1</sigNo>"; }, sigNo);
        add(
            name + ", inside", 4096, 1,
            [filler](unsigned int size) { return "<sigNo>" + repeated(filler.text, size) + "</sigNo>"; }, sigNo);
    }
    add(
        "a long tag and its beginnings", 4096, 0,
        [](unsigned int size) { return repeated("<" + std::string(size / 8, 'a'), size); },
        [](unsigned int size) { return std::string(size / 8, 'a') + "b"; });
    add(
        "a long tag of brackets", 512, 0, [](unsigned int size) { return std::string(size, '<'); },
        [](unsigned int size) { return std::string(size / 8, '<'); }, "document x tag");
}

Call writing(std::vector<std::shared_ptr<BciMessageBase>> messages, Writer writer, unsigned int size)
{
    return [messages = std::move(messages), writer, buffer = std::string(size, 'x')]() mutable
    {
        int written = 0;
        for (const auto& message : messages)
        {
            auto length = static_cast<unsigned int>(buffer.size());
            written += (message.get()->*writer)(buffer.data(), length) ? 1 : 0;
        }
        return written;
    };
}

void addWriters(std::vector<Case>& cases)
{
    const std::pair<std::string, Writer> forms[] = {{"text", &BciMessageBase::serializeToText},
                                                    {"binary", &BciMessageBase::serializeToBinary},
                                                    {"xml", &BciMessageBase::serializeToXml}};
    for (const auto& [name, form] : forms)
    {
        const auto all = [writer = form](unsigned int size)
        {
            std::vector<std::shared_ptr<BciMessageBase>> messages;
            std::transform(std::begin(kContents), std::end(kContents), std::back_inserter(messages), messageOf);
            return writing(messages, writer, size);
        };
        cases.push_back({"write " + name + ", all classes", 65536, kClasses, all});
        // As many entries as there are, all of them empty, in a buffer that has room for them.
        const auto log = [writer = form](unsigned int size)
        {
            VornBcHwLogSetReqS wire = {};
            wire.sigNo = 23433738;
            wire.length = 65535;
            const auto message = std::make_shared<BciHwLogSetReqMsg>(wire.sigNo);
            message->setMsg(reinterpret_cast<const char*>(&wire));
            return writing({message}, writer, size);
        };
        cases.push_back({"write " + name + ", longest log", 262144, 1, log});
    }
}

// In steps as long as the stream has not come to its end. Returns whether it has.
template <typename Stream, typename Step>
Prepare through(const char* data, Step step)
{
    return [data, step](unsigned int size)
    {
        return [buffer = repeated(data, size), other = std::string(size, '\0'), step]() mutable
        {
            Stream stream;
            stream.attachBuffer(buffer.data(), static_cast<unsigned int>(buffer.size()));
            for (std::size_t i = 0; i < buffer.size() && !stream.eof(); ++i)
            {
                step(stream, other.data(), static_cast<unsigned int>(other.size()));
            }
            return stream.eof() ? 1 : 0;
        };
    };
}

template <typename Stream, typename Number>
Prepare numbers(const char* data)
{
    return through<Stream>(data,
                           [](Stream& stream, char* /*other*/, unsigned int /*size*/)
                           {
                               Number number = 1;
                               if constexpr (std::is_base_of_v<commonStream::istreambase, Stream>)
                               {
                                   stream >> number;
                               }
                               else
                               {
                                   stream << number;
                               }
                               if constexpr (std::is_same_v<Stream, istream_text>)
                               {
                                   char delimiter;
                                   stream >> delimiter;
                                   stream.status(stream.status() & 1U); // goes on after what is no number
                               }
                           });
}

void addStreams(std::vector<Case>& cases)
{
    const auto add = [&cases](const char* name, const Prepare& prepare) {
        cases.push_back({std::string("stream, ") + name, 4096, 1, prepare});
    };
    const auto delimited = [](auto& stream, char* other, unsigned int size)
    {
        char delimiter;
        stream.get(other, size - 1, ':');
        stream.status(stream.status() & 1U);
        stream.get(delimiter);
    };
    add("text numbers", numbers<istream_text, unsigned int>("1:"));
    add("text numbers of zeros", numbers<istream_text, short>("0"));
    add("text numbers that are long", numbers<istream_text, unsigned long long>("00000000000000000000000000001:"));
    add("text numbers that are none", numbers<istream_text, int>("+"));
    add("text numbers with a sign behind", numbers<istream_text, int>("1+"));
    add("binary numbers", numbers<istream_binary, unsigned short>("1"));
    add("delimited text, short", through<istream_text>("x:", delimited));
    add("delimited text, none", through<istream_text>(":", delimited));
    add("delimited text, no delimiter", through<istream_text>("x", delimited));
    add("delimited text in binary", through<istream_binary>("x:", delimited));
    add("characters", through<istream_text>("x", [](istream_text& stream, char* other, unsigned int /*size*/)
                                            { stream.get(*other); }));
    add("numbers out as text", numbers<ostream_text, unsigned long>("x"));
    add("numbers out as binary", numbers<ostream_binary, unsigned short>("x"));
    add("zeros out as text", through<ostream_text>("x", [](ostream_text& stream, char* other, unsigned int size)
                                                   { stream.put(other, size / 4); }));
    add("characters out", through<ostream_text>("x", [](ostream_text& stream, char* /*other*/,
                                                        unsigned int /*size*/) { stream.put('x'); }));
}

} // namespace

// With an argument: those cases alone whose names begin so.
int main(int argc, char* argv[])
{
    const std::string_view chosen = argc > 1 ? argv[1] : "";
    BciMsgRegistry::registerSupportedMsgClasses();
    std::vector<Case> cases;
    addText(cases);
    addBinary(cases);
    addXml(cases);
    addTags(cases);
    addWriters(cases);
    addStreams(cases);
    for (const Case& each : cases)
    {
        if (!each.name.starts_with(chosen))
        {
            continue;
        }
        for (const unsigned int size : {each.size / 8, each.size, each.size * 8})
        {
            count(each.name + ';' + each.promise + ';' + std::to_string(size), each.prepare(size), each.result);
        }
    }
}
