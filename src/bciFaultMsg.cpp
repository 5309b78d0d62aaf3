#include "bciFaultMsg.h"

#include "checkLog.h"
#include "codec/tagLookup.h"
#include "messageOperations.h"
#include "shapes.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <syslog.h>

using bci::codec::BinaryReader;
using bci::codec::BinaryWriter;
using bci::codec::ElementName;
using bci::codec::Elements;
using bci::codec::Field;
using bci::codec::Fields;
using bci::codec::List;
using bci::codec::Oddity;
using bci::codec::Part;
using bci::codec::Subscripts;
using bci::codec::TagContent;
using bci::codec::TextReader;
using bci::codec::TextWriter;
using commonStream::istream_binary;
using commonStream::istream_text;
using commonStream::ostream_binary;
using commonStream::ostream_text;

namespace
{

constexpr const char* kSource = "bciFaultMsg";
constexpr unsigned int kMaxWords = 4;

// The two messages are alike: fields, the last of them the length of the additional data; in one of them
// a padding; the words of the additional data; the fault case.
struct Layout
{
    Fields counted;
    Fields padding;
    Fields word; // its offset counts from the word itself
    U16 words;   // where the words begin, in bytes
    U16 reach;   // words from there to the end of the structure
    Fields faultCase;
};

template <typename Structure>
consteval U16 reach()
{
    return (sizeof(Structure) - offsetof(Structure, additionalData)) / sizeof(U16);
}

constexpr Field kIndicationRows[] = {
    BCI_HEADER(VornBcFaultIndS, 244),
    BCI_FIELD(VornBcFaultIndS, faultId, "faultId", 265),
    BCI_FIELD(VornBcFaultIndS, padding0, "padding0", 272),
    BCI_FIELD(VornBcFaultIndS, faultDescription, "faultDescription", 279),
    // The log line of this element alone quotes the whole document.
    BCI_FIELD(VornBcFaultIndS, padding1, "padding1", 286, Oddity::quotesDocument),
    BCI_FIELD(VornBcFaultIndS, additionalDataLength, "additionalDataLength", 293),
    BCI_FIELD(VornBcFaultIndS, padding2, "padding2", 306),
    BCI_FIELD(VornBcFaultIndS, faultCase, "faultCase", 326),
};
constexpr Fields kIndicationFields = {kSource, kIndicationRows};
constexpr Field kIndicationWordRow[] = {bci::codec::makeField<U16>(0, "additionalData_", 318)};
constexpr Layout kIndication = {
    .counted = kIndicationFields.part(0, 8),
    .padding = kIndicationFields.part(8, 1),
    .word = {kSource, kIndicationWordRow},
    .words = offsetof(VornBcFaultIndS, additionalData),
    .reach = reach<VornBcFaultIndS>(),
    .faultCase = kIndicationFields.part(9, 1),
};
// getMaxBinaryBufferSize() counts the alignment bytes too, which the forms do not carry.
static_assert(binarySize(kIndicationRows) + kMaxWords * sizeof(U16) == 142);

constexpr Field kCeaseRows[] = {
    BCI_HEADER(VornBcFaultceaseIndS, 515),
    BCI_FIELD(VornBcFaultceaseIndS, faultId, "faultId", 536),
    BCI_FIELD(VornBcFaultceaseIndS, additionalDataLength, "additionalDataLength", 543),
    BCI_FIELD(VornBcFaultceaseIndS, faultCase, "faultCase", 568),
};
constexpr Fields kCeaseFields = {kSource, kCeaseRows};
constexpr Field kCeaseWordRow[] = {bci::codec::makeField<U16>(0, "additionalData_", 560, Oddity::ownLogLine)};
constexpr Layout kCease = {
    .counted = kCeaseFields.part(0, 5),
    .padding = kCeaseFields.part(5, 0),
    .word = {kSource, kCeaseWordRow},
    .words = offsetof(VornBcFaultceaseIndS, additionalData),
    .reach = reach<VornBcFaultceaseIndS>(),
    .faultCase = kCeaseFields.part(5, 1),
};
static_assert(binarySize(kCeaseRows) + kMaxWords * sizeof(U16) == 26);
static_assert(maxTextSize(kCeaseRows) + kMaxWords * (textWidth(kCeaseWordRow[0].kind) + 1) == 35 + 42);

// The two of them by number: on the target, an address would cost each operation ten instructions more.
enum class Fault : U8
{
    indication,
    cease
};

const Layout& layoutOf(Fault fault)
{
    return fault == Fault::indication ? kIndication : kCease;
}

unsigned int dataLength(const Layout& layout, const char* message)
{
    U16 length;
    std::memcpy(&length, message + layout.counted.rows.back().offset, sizeof length);
    return length;
}

// The check that every operation but one makes, each with its own line.
bool isTooLong(unsigned int length, int priority, unsigned int line)
{
    if (length <= kMaxWords)
    {
        return false;
    }
    bci::reject(priority, kSource, line, "additionalDataLength %d > %d", length, kMaxWords);
    return true;
}

constexpr unsigned int kUnchecked = 0;

// Without words there is one delimiter more, which no reader expects: it stops there, and the fault case
// keeps its value. A length that is not checked goes on behind the array.
bool writeFaultText(Fault fault, const char* message, ostream_text& stream, unsigned int line)
{
    const Layout& layout = layoutOf(fault);
    TextWriter out(stream);
    writeText(layout.counted, message, out);
    const unsigned int length = dataLength(layout, message);
    if (line != kUnchecked && isTooLong(length, LOG_ERR, line))
    {
        return false;
    }
    writeText(layout.padding, message, out);
    if (length == 0)
    {
        out.through([](ostream_text& at) { at << MessageBase::DELIM; });
    }
    writeText(layout.word, message + layout.words, out, std::min<unsigned int>(length, layout.reach));
    writeText(layout.faultCase, message, out);
    return !stream.fail();
}

bool readFaultText(Fault fault, char* message, istream_text& stream, unsigned int line)
{
    const Layout& layout = layoutOf(fault);
    TextReader in(stream);
    readText(layout.counted, message, in);
    const unsigned int length = dataLength(layout, message);
    if (isTooLong(length, LOG_ERR, line))
    {
        return false;
    }
    readText(layout.padding, message, in);
    readText(layout.word, message + layout.words, in, length);
    readText(layout.faultCase, message, in);
    return !stream.fail();
}

// The form always carries four words, zeros from the length on.
bool writeFaultBinary(Fault fault, const char* message, ostream_binary& stream, unsigned int line)
{
    const Layout& layout = layoutOf(fault);
    BinaryWriter out(stream);
    writeBinary(layout.counted, message, out);
    const unsigned int length = dataLength(layout, message);
    if (isTooLong(length, LOG_ERR, line))
    {
        return false;
    }
    writeBinary(layout.padding, message, out);
    writeBinary(layout.word, message + layout.words, out, length);
    constexpr U16 kNothing[kMaxWords] = {};
    writeBinary(layout.word, kNothing, out, kMaxWords - length);
    writeBinary(layout.faultCase, message, out);
    return !stream.fail();
}

bool readFaultBinary(Fault fault, char* message, istream_binary& stream, unsigned int line)
{
    const Layout& layout = layoutOf(fault);
    BinaryReader in(stream);
    readBinary(layout.counted, message, in);
    if (isTooLong(dataLength(layout, message), LOG_ERR, line))
    {
        return false;
    }
    readBinary(layout.padding, message, in);
    readBinary(layout.word, message + layout.words, in, kMaxWords);
    readBinary(layout.faultCase, message, in);
    return !stream.fail();
}

bool writeFaultXml(Fault fault, const char* message, ostream_text& stream, unsigned int line)
{
    const Layout& layout = layoutOf(fault);
    TextWriter out(stream);
    writeXml(layout.counted, message, out);
    const unsigned int length = dataLength(layout, message);
    if (isTooLong(length, LOG_INFO, line))
    {
        return false;
    }
    writeXml(layout.padding, message, out);
    for (unsigned int i = 0; i < length; ++i)
    {
        const Subscripts subscripts = {i, 0};
        writeXml(layout.word, message + layout.words + i * sizeof(U16), out, &subscripts);
    }
    writeXml(layout.faultCase, message, out);
    return !stream.fail();
}

bool readWordXml(const Layout& layout, char* message, Elements& elements, unsigned int index)
{
    const Subscripts subscripts = {index, 0};
    const ElementName name(layout.word.rows.front().tag, &subscripts);
    TagContent content;
    if (!elements.find(name.text(), name.size(), content))
    {
        if (layout.word.rows.front().oddity == Oddity::ownLogLine)
        {
            // The offset is where the lookup gave up.
            syslog(LOG_INFO, "[src/bciFaultMsg:560] additional data tag not found, i %d offset %d tag %s",
                   static_cast<int>(index), static_cast<int>(std::strlen(elements.document())), name.text());
        }
        else
        {
            logMissing(layout.word, layout.word.rows.front(), name.text(), elements.document());
        }
        return false;
    }
    const U16 word = static_cast<U16>(toNumber(content));
    std::memcpy(message + layout.words + index * sizeof word, &word, sizeof word);
    return true;
}

bool readFaultXml(Fault fault, char* message, istream_text& stream, unsigned int line)
{
    const Layout& layout = layoutOf(fault);
    Elements elements(stream);
    if (!readXml(layout.counted, message, elements))
    {
        return false;
    }
    const unsigned int length = dataLength(layout, message);
    if (isTooLong(length, LOG_INFO, line) || !readXml(layout.padding, message, elements))
    {
        return false;
    }
    for (unsigned int i = 0; i < length; ++i)
    {
        if (!readWordXml(layout, message, elements, i))
        {
            return false;
        }
    }
    return readXml(layout.faultCase, message, elements);
}

// For tools.
constexpr List words(const Layout& layout)
{
    return {.count = &layout.counted.rows.back(),
            .bound = kMaxWords,
            .offset = layout.words,
            .stride = sizeof(U16),
            .element = {layout.word.rows},
            .wholeInBinary = true,
            .delimiterWhenEmpty = true};
}
constexpr List kIndicationWords = words(kIndication);
constexpr Part kIndicationFurther[] = {&kIndicationWords, kIndication.faultCase.rows};
constexpr List kCeaseWords = words(kCease);
constexpr Part kCeaseFurther[] = {&kCeaseWords, kCease.faultCase.rows};

} // namespace

const bci::codec::Shape bci::kFaultIndicationShape = {"BciFaultIndication",
                                                      "VornBcFaultIndS",
                                                      sizeof(VornBcFaultIndS),
                                                      {kIndicationFields.part(0, 9).rows, kIndicationFurther},
                                                      kSource};

BCI_DEFINE_CONSTRUCTOR(BciFaultIndication, m_faultIndication)
BCI_DEFINE_MESSAGE(BciFaultIndication, m_faultIndication)

unsigned int BciFaultIndication::getMaxTextBufferSize()
{
    // Follows from nothing: the rule that other messages go by would give 500.
    return BciMessageBase::getMaxTextBufferSize() + 609;
}

// Alone of the operations of both messages, this one does not check the length.
bool BciFaultIndication::serializeBciMsgToText(ostream_text& stream) const
{
    return writeFaultText(Fault::indication, m_bciMessagePtr, stream, kUnchecked);
}

bool BciFaultIndication::serializeBciMsgToBinary(ostream_binary& stream) const
{
    return writeFaultBinary(Fault::indication, m_bciMessagePtr, stream, 81);
}

bool BciFaultIndication::serializeBciMsgToXml(ostream_text& stream) const
{
    return writeFaultXml(Fault::indication, m_bciMessagePtr, stream, 139);
}

bool BciFaultIndication::deserializeBciMsgFromText(istream_text& stream)
{
    return readFaultText(Fault::indication, m_bciMessagePtr, stream, 189);
}

bool BciFaultIndication::deserializeBciMsgFromBinary(istream_binary& stream)
{
    return readFaultBinary(Fault::indication, m_bciMessagePtr, stream, 220);
}

bool BciFaultIndication::deserializeBciMsgFromXml(istream_text& stream)
{
    return readFaultXml(Fault::indication, m_bciMessagePtr, stream, 300);
}

const bci::codec::Shape bci::kFaultCeaseIndicationShape = {"BciFaultCeaseIndication",
                                                           "VornBcFaultceaseIndS",
                                                           sizeof(VornBcFaultceaseIndS),
                                                           {kCease.counted.rows, kCeaseFurther},
                                                           kSource};

BCI_DEFINE_CONSTRUCTOR(BciFaultCeaseIndication, m_faultCeaseIndication)
BCI_DEFINE_MESSAGE(BciFaultCeaseIndication, m_faultCeaseIndication)

unsigned int BciFaultCeaseIndication::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + 42;
}

bool BciFaultCeaseIndication::serializeBciMsgToText(ostream_text& stream) const
{
    return writeFaultText(Fault::cease, m_bciMessagePtr, stream, 350);
}

bool BciFaultCeaseIndication::serializeBciMsgToBinary(ostream_binary& stream) const
{
    return writeFaultBinary(Fault::cease, m_bciMessagePtr, stream, 382);
}

bool BciFaultCeaseIndication::serializeBciMsgToXml(ostream_text& stream) const
{
    return writeFaultXml(Fault::cease, m_bciMessagePtr, stream, 426);
}

bool BciFaultCeaseIndication::deserializeBciMsgFromText(istream_text& stream)
{
    return readFaultText(Fault::cease, m_bciMessagePtr, stream, 467);
}

bool BciFaultCeaseIndication::deserializeBciMsgFromBinary(istream_binary& stream)
{
    return readFaultBinary(Fault::cease, m_bciMessagePtr, stream, 492);
}

bool BciFaultCeaseIndication::deserializeBciMsgFromXml(istream_text& stream)
{
    return readFaultXml(Fault::cease, m_bciMessagePtr, stream, 550);
}
