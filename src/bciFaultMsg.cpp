#include "bciFaultMsg.h"

#include "codec/tagLookup.h"
#include "messageOperations.h"
#include "shapes.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <syslog.h>

using bci::codec::ElementName;
using bci::codec::Elements;
using bci::codec::Field;
using bci::codec::Fields;
using bci::codec::List;
using bci::codec::Oddity;
using bci::codec::Part;
using bci::codec::Subscripts;
using bci::codec::TagContent;
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
    Fields word;      // its offset counts from the word itself
    U16 words;        // where the words begin, in bytes
    U16 reach;        // words from there to the end of the structure
    bool ownWordLine; // the log line of a missing word has a wording of its own
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
    .ownWordLine = false,
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
constexpr Field kCeaseWordRow[] = {bci::codec::makeField<U16>(0, "additionalData_", 560)};
constexpr Layout kCease = {
    .counted = kCeaseFields.part(0, 5),
    .padding = kCeaseFields.part(5, 0),
    .word = {kSource, kCeaseWordRow},
    .words = offsetof(VornBcFaultceaseIndS, additionalData),
    .reach = reach<VornBcFaultceaseIndS>(),
    .ownWordLine = true,
    .faultCase = kCeaseFields.part(5, 1),
};
static_assert(binarySize(kCeaseRows) + kMaxWords * sizeof(U16) == 26);
static_assert(maxTextSize(kCeaseRows) + kMaxWords * (textWidth(kCeaseWordRow[0].kind) + 1) == 35 + 42);

template <typename Byte>
Byte* wordAt(const Layout& layout, Byte* message, unsigned int index)
{
    return message + layout.words + index * sizeof(U16);
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
    char format[64];
    std::snprintf(format, sizeof format, "[src/%s:%u] additionalDataLength %%d > %%d", kSource, line);
    syslog(priority, format, static_cast<int>(length), static_cast<int>(kMaxWords));
    return true;
}

// Without words there is one delimiter more, which no reader expects: it stops there, and the fault case
// keeps its value.
bool writeTextRest(const Layout& layout, const char* message, ostream_text& stream)
{
    const unsigned int length = dataLength(layout, message);
    if (length == 0)
    {
        stream << MessageBase::DELIM;
    }
    // A length that nothing has checked goes on behind the array.
    for (unsigned int i = 0; i < std::min<unsigned int>(length, layout.reach); ++i)
    {
        writeText(layout.word, wordAt(layout, message, i), stream);
    }
    return writeText(layout.faultCase, message, stream);
}

bool readFaultText(const Layout& layout, char* message, istream_text& stream, unsigned int line)
{
    readText(layout.counted, message, stream);
    const unsigned int length = dataLength(layout, message);
    if (isTooLong(length, LOG_ERR, line))
    {
        return false;
    }
    readText(layout.padding, message, stream);
    for (unsigned int i = 0; i < length; ++i)
    {
        readText(layout.word, wordAt(layout, message, i), stream);
    }
    return readText(layout.faultCase, message, stream);
}

// The form always carries four words, zeros from the length on.
bool writeFaultBinary(const Layout& layout, const char* message, ostream_binary& stream, unsigned int line)
{
    writeBinary(layout.counted, message, stream);
    const unsigned int length = dataLength(layout, message);
    if (isTooLong(length, LOG_ERR, line))
    {
        return false;
    }
    writeBinary(layout.padding, message, stream);
    const U16 nothing = 0;
    for (unsigned int i = 0; i < kMaxWords; ++i)
    {
        const void* const word = wordAt(layout, message, i);
        writeBinary(layout.word, i < length ? word : &nothing, stream);
    }
    return writeBinary(layout.faultCase, message, stream);
}

bool readFaultBinary(const Layout& layout, char* message, istream_binary& stream, unsigned int line)
{
    readBinary(layout.counted, message, stream);
    if (isTooLong(dataLength(layout, message), LOG_ERR, line))
    {
        return false;
    }
    readBinary(layout.padding, message, stream);
    for (unsigned int i = 0; i < kMaxWords; ++i)
    {
        readBinary(layout.word, wordAt(layout, message, i), stream);
    }
    return readBinary(layout.faultCase, message, stream);
}

bool writeFaultXml(const Layout& layout, const char* message, ostream_text& stream, unsigned int line)
{
    writeXml(layout.counted, message, stream);
    const unsigned int length = dataLength(layout, message);
    if (isTooLong(length, LOG_INFO, line))
    {
        return false;
    }
    writeXml(layout.padding, message, stream);
    for (unsigned int i = 0; i < length; ++i)
    {
        const Subscripts subscripts = {i, 0};
        writeXml(layout.word, wordAt(layout, message, i), stream, &subscripts);
    }
    return writeXml(layout.faultCase, message, stream);
}

bool readWordXml(const Layout& layout, char* message, Elements& elements, unsigned int index)
{
    const Subscripts subscripts = {index, 0};
    const ElementName name(layout.word.rows.front().tag, &subscripts);
    TagContent content;
    if (!elements.find(name.text(), name.size(), content))
    {
        if (layout.ownWordLine)
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
    std::memcpy(wordAt(layout, message, index), &word, sizeof word);
    return true;
}

bool readFaultXml(const Layout& layout, char* message, istream_text& stream, unsigned int line)
{
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
                                                      {kIndicationFields.part(0, 9).rows, kIndicationFurther}};

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
    writeText(kIndication.counted, m_bciMessagePtr, stream);
    writeText(kIndication.padding, m_bciMessagePtr, stream);
    return writeTextRest(kIndication, m_bciMessagePtr, stream);
}

bool BciFaultIndication::serializeBciMsgToBinary(ostream_binary& stream) const
{
    return writeFaultBinary(kIndication, m_bciMessagePtr, stream, 81);
}

bool BciFaultIndication::serializeBciMsgToXml(ostream_text& stream) const
{
    return writeFaultXml(kIndication, m_bciMessagePtr, stream, 139);
}

bool BciFaultIndication::deserializeBciMsgFromText(istream_text& stream)
{
    return readFaultText(kIndication, m_bciMessagePtr, stream, 189);
}

bool BciFaultIndication::deserializeBciMsgFromBinary(istream_binary& stream)
{
    return readFaultBinary(kIndication, m_bciMessagePtr, stream, 220);
}

bool BciFaultIndication::deserializeBciMsgFromXml(istream_text& stream)
{
    return readFaultXml(kIndication, m_bciMessagePtr, stream, 300);
}

const bci::codec::Shape bci::kFaultCeaseIndicationShape = {"BciFaultCeaseIndication",
                                                           "VornBcFaultceaseIndS",
                                                           sizeof(VornBcFaultceaseIndS),
                                                           {kCease.counted.rows, kCeaseFurther}};

BCI_DEFINE_CONSTRUCTOR(BciFaultCeaseIndication, m_faultCeaseIndication)
BCI_DEFINE_MESSAGE(BciFaultCeaseIndication, m_faultCeaseIndication)

unsigned int BciFaultCeaseIndication::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + 42;
}

bool BciFaultCeaseIndication::serializeBciMsgToText(ostream_text& stream) const
{
    writeText(kCease.counted, m_bciMessagePtr, stream);
    return !isTooLong(m_faultCeaseIndication.additionalDataLength, LOG_ERR, 350) &&
           writeTextRest(kCease, m_bciMessagePtr, stream);
}

bool BciFaultCeaseIndication::serializeBciMsgToBinary(ostream_binary& stream) const
{
    return writeFaultBinary(kCease, m_bciMessagePtr, stream, 382);
}

bool BciFaultCeaseIndication::serializeBciMsgToXml(ostream_text& stream) const
{
    return writeFaultXml(kCease, m_bciMessagePtr, stream, 426);
}

bool BciFaultCeaseIndication::deserializeBciMsgFromText(istream_text& stream)
{
    return readFaultText(kCease, m_bciMessagePtr, stream, 467);
}

bool BciFaultCeaseIndication::deserializeBciMsgFromBinary(istream_binary& stream)
{
    return readFaultBinary(kCease, m_bciMessagePtr, stream, 492);
}

bool BciFaultCeaseIndication::deserializeBciMsgFromXml(istream_text& stream)
{
    return readFaultXml(kCease, m_bciMessagePtr, stream, 550);
}
