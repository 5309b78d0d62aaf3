#include "bciHwMsg.h"

#include "checkLog.h"
#include "codec/tagLookup.h"
#include "messageOperations.h"
#include "shapes.h"

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <syslog.h>

using bci::codec::BinaryReader;
using bci::codec::Elements;
using bci::codec::Field;
using bci::codec::Fields;
using bci::codec::Oddity;
using bci::codec::rows;
using bci::codec::Subscripts;
using bci::codec::TextReader;
using bci::codec::TextWriter;
using commonStream::istream_binary;
using commonStream::istream_text;
using commonStream::ostream_binary;
using commonStream::ostream_text;

namespace
{

constexpr const char* kSource = "bciHwMsg";

constexpr Field kGetHwPidCfmRows[] = {
    BCI_HEADER(VornBcGetHwPidCfmS, 268),
    BCI_FIELD(VornBcGetHwPidCfmS, productionDate, "productionDate", 289),
    BCI_FIELD(VornBcGetHwPidCfmS, padding0, "padding0", 296),
    BCI_FIELD(VornBcGetHwPidCfmS, padding1, "padding1", 303),
    BCI_FIELD(VornBcGetHwPidCfmS, productName, "productName", 310),
    BCI_FIELD(VornBcGetHwPidCfmS, padding2, "padding2", 317),
    // The element starts without its tab, and has one blank more before its value.
    BCI_FIELD(VornBcGetHwPidCfmS, padding3, "padding3", 324, Oddity::bareOpening),
    BCI_FIELD(VornBcGetHwPidCfmS, productNumber, "productNumber", 331),
    BCI_FIELD(VornBcGetHwPidCfmS, padding4, "padding4", 338),
    BCI_FIELD(VornBcGetHwPidCfmS, padding5, "padding5", 345),
    BCI_FIELD(VornBcGetHwPidCfmS, productRevision, "productRevision", 352),
    BCI_FIELD(VornBcGetHwPidCfmS, padding6, "padding6", 359),
    BCI_FIELD(VornBcGetHwPidCfmS, padding7, "padding7", 366),
    // Written, but never looked up.
    BCI_FIELD(VornBcGetHwPidCfmS, serialNumber, "serialNumber", 0, Oddity::notReadFromXml),
};
static_assert(maxTextSize(kGetHwPidCfmRows) == 35 + 304);
// getMaxBinaryBufferSize() counts the alignment bytes too, which the form does not carry.
static_assert(binarySize(kGetHwPidCfmRows) == 90);

constexpr Field kHwLogGetReqRows[] = {
    BCI_HEADER(VornBcHwLogGetReqS, 452),
    BCI_FIELD(VornBcHwLogGetReqS, logId, "logId", 473),
};
static_assert(maxTextSize(kHwLogGetReqRows) == 35 + 11);
static_assert(binarySize(kHwLogGetReqRows) == sizeof(VornBcHwLogGetReqS));

constexpr Field kHwLogSetReqRows[] = {
    BCI_HEADER(VornBcHwLogSetReqS, 667),
    BCI_FIELD(VornBcHwLogSetReqS, dateTime, "dateTime", 688),
    BCI_FIELD(VornBcHwLogSetReqS, padding0, "padding0", 695),
    BCI_FIELD(VornBcHwLogSetReqS, logId, "logId", 702),
    BCI_FIELD(VornBcHwLogSetReqS, length, "length", 709),
    BCI_FIELD(VornBcHwLogSetReqS, hwLogData, "hwLogData_", 720),
};
static_assert(maxTextSize(kHwLogSetReqRows) == 35 + 1780);
static_assert(binarySize(kHwLogSetReqRows) == sizeof(VornBcHwLogSetReqS));

constexpr std::size_t kSetRowsBeforeEntries = 7;
constexpr Fields kHwLogSetReqFixed = Fields(kSource, kHwLogSetReqRows).part(0, kSetRowsBeforeEntries);
constexpr Fields kLogEntries = Fields(kSource, kHwLogSetReqRows).part(kSetRowsBeforeEntries, 1);
constexpr unsigned int kLogSize = sizeof(VornBcHwLogSetReqS::hwLogData);
constexpr unsigned int kFailBit = 2; // of a stream's status

// Calls a function with each log entry, as a field of the message, and its index. An entry without a
// terminator ends with the array, and no entry begins beyond it.
template <typename Function>
void forEachEntry(const VornBcHwLogSetReqS& message, Function function)
{
    const char* const data = reinterpret_cast<const char*>(message.hwLogData);
    Field entry = kLogEntries.rows.front();
    Fields entries = kLogEntries; // its sizes are those of the longest entry
    entries.rows = {&entry, 1};
    unsigned int used = 0;
    for (unsigned int i = 0; i < message.length && used < kLogSize; ++i)
    {
        entry.offset = static_cast<U16>(offsetof(VornBcHwLogSetReqS, hwLogData) + used);
        entry.size = static_cast<U16>(kLogSize - used);
        function(entries, i);
        used += static_cast<unsigned int>(strnlen(data + used, kLogSize - used)) + 1;
    }
}

// The names that the XML reader looks entries up by. Each is the one before with the single character
// behind the underscore replaced by the digits of the index. That is right up to hwLogData_10; from then on
// the digits of earlier names stay behind: hwLogData_110, hwLogData_1210.
class EntryName
{
public:
    const char* next()
    {
        char digits[11];
        const auto count = static_cast<std::size_t>(std::snprintf(digits, sizeof digits, "%u", m_index));
        char* const place = m_name + kPlace;
        const char* const rest = m_index == 0 ? place : place + 1;
        std::memmove(place + count, rest, std::strlen(rest) + 1);
        std::memcpy(place, digits, count);
        ++m_index;
        return m_name;
    }

private:
    static constexpr std::size_t kPlace = 10;
    unsigned int m_index = 0;
    // Indexes end with the array, at 424: one digit more stays behind from each of 90 names, then two.
    char m_name[kPlace + 1 + 90 + std::size_t{2} * (kLogSize - 99) + 1] = "hwLogData_";
};

constexpr Field kHwLogGetCfmRows[] = {
    BCI_HEADER(VornBcHwLogGetCfmS, 871),
    BCI_FIELD(VornBcHwLogGetCfmS, length, "length", 892),
    BCI_FIELD(VornBcHwLogGetCfmS, hwLogData, "hwLogData_0", 906),
};
static_assert(maxTextSize(kHwLogGetCfmRows) == 35 + 1707);
static_assert(binarySize(kHwLogGetCfmRows) == sizeof(VornBcHwLogGetCfmS));
constexpr Fields kHwLogGetCfmFixed = Fields(kSource, kHwLogGetCfmRows).part(0, 4);
constexpr Fields kHwLogGetCfmEntry = Fields(kSource, kHwLogGetCfmRows).part(4, 1);

// For tools.
constexpr bci::codec::LogEntries kHwLogSetReqEntries = {&kHwLogSetReqFixed.rows.back(),
                                                        &kHwLogSetReqRows[kSetRowsBeforeEntries]};
constexpr bci::codec::Part kHwLogSetReqFurther[] = {&kHwLogSetReqEntries};
constexpr bci::codec::Limit kHwLogGetCfmLength = {&kHwLogGetCfmFixed.rows.back(), 1};
constexpr bci::codec::Part kHwLogGetCfmFurther[] = {&kHwLogGetCfmLength, kHwLogGetCfmEntry.rows};

} // namespace

constexpr Fields bci::kGetHwPidCfm = {kSource, kGetHwPidCfmRows};

const bci::codec::Shape bci::kGetHwPidCfmShape = {"BciGetHwPidCfmMsg",
                                                  "VornBcGetHwPidCfmS",
                                                  sizeof(VornBcGetHwPidCfmS),
                                                  {kGetHwPidCfmRows},
                                                  bci::kGetHwPidCfm.source};

BCI_DEFINE_CONSTRUCTOR(BciGetHwPidCfmMsg, m_getHwPidCfm)
BCI_DEFINE_MESSAGE(BciGetHwPidCfmMsg, m_getHwPidCfm)
BCI_DEFINE_WRITERS(BciGetHwPidCfmMsg, m_getHwPidCfm, kGetHwPidCfm)

bool BciGetHwPidCfmMsg::deserializeBciMsgFromText(istream_text& stream)
{
    std::memset(&m_getHwPidCfm, 0, m_bciMessageSize);
    return BCI_CODEC(readText, m_getHwPidCfm, kGetHwPidCfm);
}

bool BciGetHwPidCfmMsg::deserializeBciMsgFromBinary(istream_binary& stream)
{
    std::memset(&m_getHwPidCfm, 0, m_bciMessageSize);
    return BCI_CODEC(readBinary, m_getHwPidCfm, kGetHwPidCfm);
}

// Unlike the others, this reader clears nothing first.
bool BciGetHwPidCfmMsg::deserializeBciMsgFromXml(istream_text& stream)
{
    return BCI_CODEC(readXml, m_getHwPidCfm, kGetHwPidCfm);
}

unsigned int BciGetHwPidCfmMsg::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + 304;
}

constexpr Fields bci::kHwLogGetReq = {kSource, kHwLogGetReqRows};

const bci::codec::Shape bci::kHwLogGetReqShape = {"BciHwLogGetReqMsg",
                                                  "VornBcHwLogGetReqS",
                                                  sizeof(VornBcHwLogGetReqS),
                                                  {kHwLogGetReqRows},
                                                  bci::kHwLogGetReq.source};

BCI_DEFINE_CONSTRUCTOR(BciHwLogGetReqMsg, m_hwLogGetReq)
BCI_DEFINE_MESSAGE(BciHwLogGetReqMsg, m_hwLogGetReq)
BCI_DEFINE_CODECS(BciHwLogGetReqMsg, m_hwLogGetReq, kHwLogGetReq)

unsigned int BciHwLogGetReqMsg::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + 11;
}

constexpr Fields bci::kHwLogSetReq = {kSource, kHwLogSetReqRows};

const bci::codec::Shape bci::kHwLogSetReqShape = {"BciHwLogSetReqMsg",
                                                  "VornBcHwLogSetReqS",
                                                  sizeof(VornBcHwLogSetReqS),
                                                  {kHwLogSetReqFixed.rows, kHwLogSetReqFurther},
                                                  bci::kHwLogSetReq.source};

BCI_DEFINE_CONSTRUCTOR(BciHwLogSetReqMsg, m_hwLogSetReq)
BCI_DEFINE_MESSAGE(BciHwLogSetReqMsg, m_hwLogSetReq)

bool BciHwLogSetReqMsg::serializeBciMsgToText(ostream_text& stream) const
{
    TextWriter out(stream);
    writeText(rows<kHwLogSetReqFixed>, &m_hwLogSetReq, out);
    forEachEntry(m_hwLogSetReq,
                 [&](const Fields& entry, unsigned int /*index*/) { writeText(entry, &m_hwLogSetReq, out); });
    return !stream.fail();
}

bool BciHwLogSetReqMsg::serializeBciMsgToBinary(ostream_binary& stream) const
{
    return BCI_CODEC(writeBinary, m_hwLogSetReq, kHwLogSetReq);
}

bool BciHwLogSetReqMsg::serializeBciMsgToXml(ostream_text& stream) const
{
    TextWriter out(stream);
    writeXml(rows<kHwLogSetReqFixed>, &m_hwLogSetReq, out);
    forEachEntry(m_hwLogSetReq,
                 [&](const Fields& entry, unsigned int index)
                 {
                     const Subscripts subscripts = {index, 0};
                     writeXml(entry, &m_hwLogSetReq, out, &subscripts);
                 });
    return !stream.fail();
}

bool BciHwLogSetReqMsg::deserializeBciMsgFromText(istream_text& stream)
{
    {
        TextReader in(stream);
        readText(rows<kHwLogSetReqFixed>, &m_hwLogSetReq, in);
    }
    // Reading leaves it alone once the stream is not good, so the last entry is stored again and again until
    // the array is full.
    char entry[kLogSize + 1] = "";
    char delimiter;
    unsigned int used = 0;
    for (unsigned int i = 0; i < m_hwLogSetReq.length; ++i)
    {
        stream.get(entry, kLogSize, getDelim());
        const auto length = static_cast<unsigned int>(std::strlen(entry));
        if (length + used + 1 > kLogSize)
        {
            syslog(LOG_INFO,
                   "[src/bciHwMsg:622] logIdx %d logDataIdx: %u log length: %u, buffer limit: %u exceeded",
                   static_cast<int>(i), used, length, kLogSize);
            return false;
        }
        std::memcpy(m_hwLogSetReq.hwLogData + used, entry, length + 1);
        used += length + 1;
        stream >> delimiter;
    }
    // One character more is wanted behind the last delimiter, and here the real status counts: a text that
    // ends with its last delimiter is not read.
    stream >> delimiter;
    return (stream.status() & kFailBit) == 0;
}

bool BciHwLogSetReqMsg::deserializeBciMsgFromBinary(istream_binary& stream)
{
    return BCI_CODEC(readBinary, m_hwLogSetReq, kHwLogSetReq);
}

bool BciHwLogSetReqMsg::deserializeBciMsgFromXml(istream_text& stream)
{
    Elements elements(stream);
    if (!readXml(rows<kHwLogSetReqFixed>, &m_hwLogSetReq, elements))
    {
        return false;
    }
    EntryName names;
    unsigned int used = 0;
    for (unsigned int i = 0; i < m_hwLogSetReq.length; ++i)
    {
        const char* const name = names.next();
        bci::codec::TagContent content;
        if (!elements.find(name, std::strlen(name), content))
        {
            logMissing(kLogEntries, kLogEntries.rows.front(), name, elements.document());
            return false;
        }
        const auto length = static_cast<unsigned int>(content.size());
        if (length + used + 1 > kLogSize)
        {
            syslog(LOG_INFO,
                   "[src/bciHwMsg:726] %s %d at logIdx %d logDataIdx: %u log length: %u buffer limit: %u exceeded",
                   "deserializeBciMsgFromXml", 726, static_cast<int>(i), used, length, kLogSize);
            return false;
        }
        char* const data = reinterpret_cast<char*>(m_hwLogSetReq.hwLogData);
        copyContent(content, data + used, kLogSize - used);
        used += length + 1;
    }
    return true;
}

unsigned int BciHwLogSetReqMsg::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + 1780;
}

constexpr Fields bci::kHwLogGetCfm = {kSource, kHwLogGetCfmRows};

const bci::codec::Shape bci::kHwLogGetCfmShape = {"BciHwLogGetCfmMsg",
                                                  "VornBcHwLogGetCfmS",
                                                  sizeof(VornBcHwLogGetCfmS),
                                                  {kHwLogGetCfmFixed.rows, kHwLogGetCfmFurther},
                                                  bci::kHwLogGetCfm.source};

BCI_DEFINE_CONSTRUCTOR(BciHwLogGetCfmMsg, m_hwLogGetCfm)
BCI_DEFINE_MESSAGE(BciHwLogGetCfmMsg, m_hwLogGetCfm)

bool BciHwLogGetCfmMsg::serializeBciMsgToText(ostream_text& stream) const
{
    if (m_hwLogGetCfm.length >= 2)
    {
        return bci::reject(LOG_INFO, kSource, 744, "length %u > 1", m_hwLogGetCfm.length);
    }
    return BCI_CODEC(writeText, m_hwLogGetCfm, kHwLogGetCfm);
}

// Alone of the six, this one takes any length.
bool BciHwLogGetCfmMsg::serializeBciMsgToBinary(ostream_binary& stream) const
{
    return BCI_CODEC(writeBinary, m_hwLogGetCfm, kHwLogGetCfm);
}

bool BciHwLogGetCfmMsg::serializeBciMsgToXml(ostream_text& stream) const
{
    if (m_hwLogGetCfm.length >= 2)
    {
        return bci::reject(LOG_INFO, kSource, 780, "length %u > 1", m_hwLogGetCfm.length);
    }
    return BCI_CODEC(writeXml, m_hwLogGetCfm, kHwLogGetCfm);
}

// The readers' log lines name the size of the array, though what they test is the length against 1.

bool BciHwLogGetCfmMsg::deserializeBciMsgFromText(istream_text& stream)
{
    TextReader in(stream);
    readText(rows<kHwLogGetCfmFixed>, &m_hwLogGetCfm, in);
    if (m_hwLogGetCfm.length >= 2)
    {
        return bci::reject(LOG_INFO, kSource, 832, "length %u > %u", m_hwLogGetCfm.length, kLogSize);
    }
    readText(rows<kHwLogGetCfmEntry>, &m_hwLogGetCfm, in);
    return !stream.fail();
}

bool BciHwLogGetCfmMsg::deserializeBciMsgFromBinary(istream_binary& stream)
{
    BinaryReader in(stream);
    readBinary(rows<kHwLogGetCfmFixed>, &m_hwLogGetCfm, in);
    if (m_hwLogGetCfm.length >= 2)
    {
        return bci::reject(LOG_INFO, kSource, 853, "length %u > %u", m_hwLogGetCfm.length, kLogSize);
    }
    readBinary(rows<kHwLogGetCfmEntry>, &m_hwLogGetCfm, in);
    return !stream.fail();
}

bool BciHwLogGetCfmMsg::deserializeBciMsgFromXml(istream_text& stream)
{
    Elements elements(stream);
    if (!readXml(rows<kHwLogGetCfmFixed>, &m_hwLogGetCfm, elements))
    {
        return false;
    }
    if (m_hwLogGetCfm.length >= 2)
    {
        return bci::reject(LOG_INFO, kSource, 899, "length %u > %u", m_hwLogGetCfm.length, kLogSize);
    }
    return readXml(rows<kHwLogGetCfmEntry>, &m_hwLogGetCfm, elements);
}

unsigned int BciHwLogGetCfmMsg::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + 1707;
}
