#include "bciLoadLmcMsg.h"

#include "checkLog.h"
#include "codec/tagLookup.h"
#include "messageOperations.h"
#include "shapes.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <syslog.h>

using bci::codec::BinaryReader;
using bci::codec::BinaryWriter;
using bci::codec::Field;
using bci::codec::Fields;
using bci::codec::Oddity;
using bci::codec::rows;
using bci::codec::TextReader;
using bci::codec::TextWriter;
using commonStream::istream_binary;
using commonStream::istream_text;
using commonStream::ostream_binary;
using commonStream::ostream_text;

namespace
{

constexpr Field kLoadLmcReqRows[] = {
    BCI_HEADER(VornBcLoadLmcReqS, 115),
    BCI_FIELD(VornBcLoadLmcReqS, loadModule, "loadModule", 136),
    BCI_FIELD(VornBcLoadLmcReqS, searchPath, "searchPath", 143),
};
static_assert(maxTextSize(kLoadLmcReqRows) == 35 + 944);
static_assert(binarySize(kLoadLmcReqRows) == sizeof(VornBcLoadLmcReqS));

constexpr Field kLoadLmcAckRows[] = {
    BCI_HEADER(VornBcLoadLmcAckS, 225),
    // The writer closes this element by the name of another.
    BCI_FIELD(VornBcLoadLmcAckS, lmSeqNr, "lmSeqNr\0loadModule", 246, Oddity::foreignClosing),
};
static_assert(maxTextSize(kLoadLmcAckRows) == 35 + 6);
// getMaxBinaryBufferSize() counts the alignment bytes too, which the form does not carry.
static_assert(binarySize(kLoadLmcAckRows) == 14);

constexpr Field kLoadLmcEndCfmRows[] = {
    BCI_HEADER(VornBcLoadLmcEndCfmS, 328),
    BCI_FIELD(VornBcLoadLmcEndCfmS, loadResult, "loadResult", 349),
};
static_assert(maxTextSize(kLoadLmcEndCfmRows) == 35 + 6);
// getMaxBinaryBufferSize() counts the alignment bytes too, which the form does not carry.
static_assert(binarySize(kLoadLmcEndCfmRows) == 14);

constexpr Field kSelectLmcReqRows[] = {
    BCI_HEADER(VornBcSelectLmcReqS, 439),
    BCI_FIELD(VornBcSelectLmcReqS, loadModule, "loadModule", 460),
};
static_assert(binarySize(kSelectLmcReqRows) == sizeof(VornBcSelectLmcReqS));

// The last row stands for the block, which has no fixed size.
constexpr Field kLoadLmcDataRows[] = {
    BCI_HEADER(VornBcLoadLmcDataS, 581),
    BCI_FIELD(VornBcLoadLmcDataS, lmSeqNr, "lmSeqNr", 602),
    BCI_FIELD(VornBcLoadLmcDataS, padding0, "padding0", 609),
    BCI_FIELD(VornBcLoadLmcDataS, lmBlockSize, "lmBlockSize", 616),
    BCI_FIELD(VornBcLoadLmcDataS, lmBlock, "lmBlock", 623),
};
constexpr Fields kLoadLmcData = {"bciLoadLmcMsg", kLoadLmcDataRows};
constexpr std::size_t kRowsBeforeBlock = 6;
constexpr Fields kBeforeBlock = kLoadLmcData.part(0, kRowsBeforeBlock);
constexpr Field kBlock = kLoadLmcDataRows[kRowsBeforeBlock];
constexpr unsigned int kMaxBlockSize = 4100;
constexpr unsigned int kDataSize = kBlock.offset + kMaxBlockSize;
static_assert(kDataSize == 4120);

// Every operation rejects a block that there is no room for, each with its own line.
bool isTooLarge(const VornBcLoadLmcDataS& message, unsigned int line)
{
    if (message.lmBlockSize <= kMaxBlockSize)
    {
        return false;
    }
    bci::reject(LOG_INFO, kLoadLmcData.source, line, "lmBlockSize %u > %u",
                static_cast<unsigned int>(message.lmBlockSize), kMaxBlockSize);
    return true;
}

// Writes all bytes as they are. put() turns into zeros what stands behind one, so every piece ends with the
// next.
void putRaw(ostream_text& stream, const char* bytes, unsigned int count)
{
    while (count != 0)
    {
        const unsigned int piece = std::min(static_cast<unsigned int>(strnlen(bytes, count)) + 1, count);
        stream.put(bytes, piece);
        bytes += piece;
        count -= piece;
    }
}

// For tools.
constexpr bci::codec::Block kDataBlock = {&kBeforeBlock.rows.back(), kMaxBlockSize,
                                          &kLoadLmcDataRows[kRowsBeforeBlock]};
constexpr bci::codec::Part kLoadLmcDataFurther[] = {&kDataBlock};

} // namespace

constexpr Fields bci::kLoadLmcReq = {"bciLoadLmcMsg", kLoadLmcReqRows};

const bci::codec::Shape bci::kLoadLmcReqShape = {
    "BciLoadLmcReq", "VornBcLoadLmcReqS", sizeof(VornBcLoadLmcReqS), {kLoadLmcReqRows}, bci::kLoadLmcReq.source};

BCI_DEFINE_CONSTRUCTOR(BciLoadLmcReq, m_loadLmcReq)
BCI_DEFINE_MESSAGE(BciLoadLmcReq, m_loadLmcReq)
BCI_DEFINE_CODECS(BciLoadLmcReq, m_loadLmcReq, kLoadLmcReq)

unsigned int BciLoadLmcReq::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + 944;
}

constexpr Fields bci::kLoadLmcAck = {"bciLoadLmcMsg", kLoadLmcAckRows};

const bci::codec::Shape bci::kLoadLmcAckShape = {
    "BciLoadLmcAck", "VornBcLoadLmcAckS", sizeof(VornBcLoadLmcAckS), {kLoadLmcAckRows}, bci::kLoadLmcAck.source};

BCI_DEFINE_CONSTRUCTOR(BciLoadLmcAck, m_loadLmcAck)
BCI_DEFINE_MESSAGE(BciLoadLmcAck, m_loadLmcAck)
BCI_DEFINE_CODECS(BciLoadLmcAck, m_loadLmcAck, kLoadLmcAck)

unsigned int BciLoadLmcAck::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + 6;
}

constexpr Fields bci::kLoadLmcEndCfm = {"bciLoadLmcMsg", kLoadLmcEndCfmRows};

const bci::codec::Shape bci::kLoadLmcEndCfmShape = {"BciLoadLmcEndCfm",
                                                    "VornBcLoadLmcEndCfmS",
                                                    sizeof(VornBcLoadLmcEndCfmS),
                                                    {kLoadLmcEndCfmRows},
                                                    bci::kLoadLmcEndCfm.source};

BCI_DEFINE_CONSTRUCTOR(BciLoadLmcEndCfm, m_loadLmcEndCfm)
BCI_DEFINE_MESSAGE(BciLoadLmcEndCfm, m_loadLmcEndCfm)
BCI_DEFINE_CODECS(BciLoadLmcEndCfm, m_loadLmcEndCfm, kLoadLmcEndCfm)

unsigned int BciLoadLmcEndCfm::getMaxTextBufferSize()
{
    return BciMessageBase::getMaxTextBufferSize() + 6;
}

constexpr Fields bci::kSelectLmcReq = {"bciLoadLmcMsg", kSelectLmcReqRows};

const bci::codec::Shape bci::kSelectLmcReqShape = {"BciSelectLmcReq",
                                                   "VornBcSelectLmcReqS",
                                                   sizeof(VornBcSelectLmcReqS),
                                                   {kSelectLmcReqRows},
                                                   bci::kSelectLmcReq.source};

BCI_DEFINE_CONSTRUCTOR(BciSelectLmcReq, m_selectLmcReq)
BCI_DEFINE_MESSAGE(BciSelectLmcReq, m_selectLmcReq)
BCI_DEFINE_CODECS(BciSelectLmcReq, m_selectLmcReq, kSelectLmcReq)

unsigned int BciSelectLmcReq::getMaxTextBufferSize()
{
    // Neither the mask nor the 180 follow from anything.
    return (BciMessageBase::getMaxTextBufferSize() & 0xFF) + 180;
}

const bci::codec::Shape bci::kLoadLmcDataShape = {"BciLoadLmcData",
                                                  "VornBcLoadLmcDataS",
                                                  kDataSize,
                                                  {kBeforeBlock.rows, kLoadLmcDataFurther},
                                                  kLoadLmcData.source};

// One byte more is for the zero that the text reader puts behind a full block.
BciLoadLmcData::BciLoadLmcData(SIGSELECT sigNo)
    : BciMessageBase(nullptr, kDataSize, sigNo),
      m_loadLmcData(static_cast<VornBcLoadLmcDataS*>(std::malloc(kDataSize + 1)))
{
    m_bciMessagePtr = reinterpret_cast<char*>(m_loadLmcData);
    BCI_WRITES_THROUGH_STREAM;
}

BciLoadLmcData::~BciLoadLmcData()
{
    std::free(m_loadLmcData);
}

BCI_DEFINE_HEAP_FACTORY(BciLoadLmcData)
BCI_DEFINE_ACCESSORS(BciLoadLmcData, *m_loadLmcData)

unsigned int BciLoadLmcData::getMaxBinaryBufferSize()
{
    // The 23 follow from nothing: the form takes 20 bytes and the block.
    return m_loadLmcData->lmBlockSize + 23;
}

unsigned int BciLoadLmcData::getMaxTextBufferSize()
{
    // Follows from nothing, and is too little for most blocks.
    return 1000;
}

bool BciLoadLmcData::serializeBciMsgToText(ostream_text& stream) const
{
    TextWriter out(stream);
    writeText(rows<kBeforeBlock>, m_bciMessagePtr, out);
    if (isTooLarge(*m_loadLmcData, 503))
    {
        return false;
    }
    const char* const block = m_bciMessagePtr + kBlock.offset;
    const unsigned int size = m_loadLmcData->lmBlockSize;
    if (!putBytes(out, block, size))
    {
        out.through([=](ostream_text& at) { putRaw(at, block, size); });
    }
    out.through([this](ostream_text& at) { at << getDelim(); });
    return !stream.fail();
}

bool BciLoadLmcData::serializeBciMsgToBinary(ostream_binary& stream) const
{
    BinaryWriter out(stream);
    writeBinary(rows<kBeforeBlock>, m_bciMessagePtr, out);
    if (isTooLarge(*m_loadLmcData, 522))
    {
        return false;
    }
    const char* const block = m_bciMessagePtr + kBlock.offset;
    const unsigned int size = m_loadLmcData->lmBlockSize;
    if (!putBytes(out, block, size))
    {
        out.through([=](ostream_binary& at) { at.put(block, size); });
    }
    return !stream.fail();
}

bool BciLoadLmcData::serializeBciMsgToXml(ostream_text& stream) const
{
    TextWriter out(stream);
    writeXml(rows<kBeforeBlock>, m_bciMessagePtr, out);
    if (isTooLarge(*m_loadLmcData, 549))
    {
        return false;
    }
    const char* const block = m_bciMessagePtr + kBlock.offset;
    const unsigned int size = m_loadLmcData->lmBlockSize;
    out.through([](ostream_text& at) { putOpening(at, kBlock); });
    if (!putBytes(out, block, size))
    {
        out.through([=](ostream_text& at) { putRaw(at, block, size); });
    }
    out.through([](ostream_text& at) { putClosing(at, kBlock); });
    return !stream.fail();
}

bool BciLoadLmcData::deserializeBciMsgFromText(istream_text& stream)
{
    TextReader in(stream);
    readText(rows<kBeforeBlock>, m_bciMessagePtr, in);
    if (isTooLarge(*m_loadLmcData, 563))
    {
        return false;
    }
    in.through(
        [this](istream_text& at)
        {
            at.get(m_bciMessagePtr + kBlock.offset, m_loadLmcData->lmBlockSize, getDelim());
            char delimiter;
            at >> delimiter;
        });
    return !stream.fail();
}

bool BciLoadLmcData::deserializeBciMsgFromBinary(istream_binary& stream)
{
    BinaryReader in(stream);
    readBinary(rows<kBeforeBlock>, m_bciMessagePtr, in);
    if (isTooLarge(*m_loadLmcData, 572))
    {
        return false;
    }
    in.through([this](istream_binary& at)
               { at.get(m_bciMessagePtr + kBlock.offset, m_loadLmcData->lmBlockSize); });
    return !stream.fail();
}

bool BciLoadLmcData::deserializeBciMsgFromXml(istream_text& stream)
{
    bci::codec::Elements elements(stream);
    if (!readXml(rows<kBeforeBlock>, m_bciMessagePtr, elements) || isTooLarge(*m_loadLmcData, 618))
    {
        return false;
    }
    bci::codec::TagContent content;
    if (!elements.find(kBlock.tag, std::strlen(kBlock.tag), content))
    {
        logMissing(kLoadLmcData, kBlock, kBlock.tag, elements.document());
        return false;
    }
    // Zeros fill the block up behind a shorter content, and no terminator follows a longer one.
    char* const block = m_bciMessagePtr + kBlock.offset;
    const std::size_t copied = std::min<std::size_t>(content.size(), m_loadLmcData->lmBlockSize);
    std::memcpy(block, content.begin, copied);
    std::memset(block + copied, 0, m_loadLmcData->lmBlockSize - copied);
    return true;
}
