#include "bciMessage.h"

#include "codec/optimize.h"
#include "codec/tagLookup.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <syslog.h>

using commonStream::istream_binary;
using commonStream::istream_text;
using commonStream::ostream_binary;
using commonStream::ostream_text;

// The earliest priority that is not the system's own: the registry is there before any static object
// that may want to register something, also in a program that is linked with the static library.
__attribute__((init_priority(101))) std::map<SIGSELECT, BciMsgFactory> BciMessageBase::s_bciRegistrationMap;

const unsigned int BciMessageBase::MAX_BUFFER_LEN_FOR_LONGLONG;
const unsigned int BciMessageBase::MAX_BUFFER_LEN_FOR_ULONGLONG;
const unsigned int BciMessageBase::MAX_BUFFER_LEN_FOR_LONG;
const unsigned int BciMessageBase::MAX_BUFFER_LEN_FOR_ULONG;
const unsigned int BciMessageBase::MAX_BUFFER_LEN_FOR_SHORT;
const unsigned int BciMessageBase::MAX_BUFFER_LEN_FOR_USHORT;
const unsigned int BciMessageBase::MAX_BUFFER_LEN_FOR_UCHAR;
const unsigned int BciMessageBase::MAX_BUFFER_LEN_FOR_CHAR;

namespace
{

// Clears what is often no more than a few bytes.
inline void clear(char* to, unsigned int size)
{
    if (size >= sizeof(std::uint64_t))
    {
        std::memset(to, 0, size);
        return;
    }
    for (; size != 0; --size)
    {
        *to++ = '\0';
    }
}

// One rendering through one operation of a message: `length` goes in as the buffer's size and comes out
// as what was written. Whatever is not written is zero.
template <typename Stream>
BCI_INLINE bool serialize(const BciMessageBase& message, bool (BciMessageBase::*operation)(Stream&) const,
                          char* buffer, unsigned int& length, bool clearsBefore)
{
    const unsigned int size = length;
    if (buffer != nullptr && (clearsBefore || !bci::codec::kForSpeed))
    {
        std::memset(buffer, 0, size);
    }
    Stream stream;
    stream.attachBuffer(buffer, size);
    const bool result =
        (message.*operation)(stream) && !stream.fail(); // COVERAGE_EXCLUDED: fail() is always false
    length = stream.length();
    if (bci::codec::kForSpeed && buffer != nullptr && !clearsBefore && length < size)
    {
        clear(buffer + length, size - length);
    }
    return result;
}

// The other way: `length` comes out as what was consumed.
template <typename Stream>
BCI_INLINE bool deserialize(BciMessageBase& message, bool (BciMessageBase::*operation)(Stream&), char* buffer,
                            unsigned int& length)
{
    Stream stream;
    stream.attachBuffer(buffer, length);
    const bool result =
        (message.*operation)(stream) && !stream.fail(); // COVERAGE_EXCLUDED: fail() is always false
    length = stream.tellg();
    return result;
}

// The first number of a rendering; 0 if there is none.
template <typename Stream>
SIGSELECT peekSigNo(char* buffer, unsigned int length)
{
    SIGSELECT sigNo = 0;
    Stream stream;
    stream.attachBuffer(buffer, length);
    stream >> sigNo;
    return sigNo;
}

} // namespace

BciMessageBase::BciMessageBase(char* msg, unsigned short size, unsigned long sigNo)
    : MessageBase(msg, size, sigNo), m_bciMessagePtr(msg), m_bciMessageSize(size), m_writesThroughStream(0)
{
}

BciMessageBase::~BciMessageBase() = default;

char* BciMessageBase::getMsg() const
{
    return m_bciMessagePtr;
}

void BciMessageBase::setMsg(const char* src)
{
    std::copy_n(src, m_bciMessageSize, m_bciMessagePtr);
}

unsigned int BciMessageBase::getMaxTextBufferSize()
{
    // sigNo, clientRef and serverRef, each with its delimiter
    return MAX_BUFFER_LEN_FOR_ULONG + 2 * MAX_BUFFER_LEN_FOR_LONG + 3;
}

char BciMessageBase::getDelim() const
{
    return DELIM;
}

bool BciMessageBase::registerBciMsgClass(SIGSELECT sigNo, BciMsgFactory factory)
{
    s_bciRegistrationMap.insert({sigNo, factory});
    return true;
}

bool BciMessageBase::isMsgClassRegistered(SIGSELECT sigNo)
{
    return s_bciRegistrationMap.find(sigNo) != s_bciRegistrationMap.end();
}

bool BciMessageBase::instantiateBciMsg(SIGSELECT sigNo, BciMessageBase*& msg)
{
    const auto entry = s_bciRegistrationMap.find(sigNo);
    if (entry == s_bciRegistrationMap.end())
    {
        syslog(LOG_INFO, "[src/bciMessage:83] cannot find sigNo %u", static_cast<unsigned int>(sigNo));
        return false;
    }
    const BciMsgFactory factory = entry->second;
    if (factory == nullptr)
    {
        return false;
    }
    msg = factory(sigNo);
    if (msg == nullptr)
    {
        syslog(LOG_INFO, "[src/bciMessage:98] msgPtr is null");
        return false;
    }
    return true;
}

bool BciMessageBase::instantiateBciMsgFromText(char* buffer, unsigned int& length, BciMessageBase*& msg)
{
    return instantiateBciMsg(peekSigNo<istream_text>(buffer, length), msg) &&
           msg->deserializeFromText(buffer, length);
}

bool BciMessageBase::instantiateBciMsgFromBinary(char* buffer, unsigned int& length, BciMessageBase*& msg)
{
    if (!instantiateBciMsg(peekSigNo<istream_binary>(buffer, length), msg))
    {
        return false;
    }
    // Of the three forms, this one alone takes back a message that could not be read.
    if (!msg->deserializeFromBinary(buffer, length))
    {
        delete msg;
        msg = nullptr;
        return false;
    }
    return true;
}

bool BciMessageBase::instantiateBciMsgFromXml(char* buffer, unsigned int& length, BciMessageBase*& msg)
{
    bci::codec::TagContent sigNo;
    if (bci::codec::findTag(buffer, "sigNo", sigNo) == nullptr)
    {
        syslog(LOG_INFO, "[src/bciMessage:197] tag %s not found", "sigNo");
        return false;
    }
    return instantiateBciMsg(static_cast<SIGSELECT>(bci::codec::toNumber(sigNo)), msg) &&
           msg->deserializeFromXml(buffer, length);
}

bool BciMessageBase::serializeToText(char* buffer, unsigned int& length) const
{
    return serialize(*this, &BciMessageBase::serializeBciMsgToText, buffer, length, m_writesThroughStream == 0);
}

bool BciMessageBase::serializeToBinary(char* buffer, unsigned int& length) const
{
    return serialize(*this, &BciMessageBase::serializeBciMsgToBinary, buffer, length, m_writesThroughStream == 0);
}

bool BciMessageBase::serializeToXml(char* buffer, unsigned int& length) const
{
    return serialize(*this, &BciMessageBase::serializeBciMsgToXml, buffer, length, m_writesThroughStream == 0);
}

bool BciMessageBase::deserializeFromText(char* buffer, unsigned int& length)
{
    return deserialize(*this, &BciMessageBase::deserializeBciMsgFromText, buffer, length);
}

bool BciMessageBase::deserializeFromBinary(char* buffer, unsigned int& length)
{
    return deserialize(*this, &BciMessageBase::deserializeBciMsgFromBinary, buffer, length);
}

// Reading XML does not move the stream, so the length comes out as 0.
bool BciMessageBase::deserializeFromXml(char* buffer, unsigned int& length)
{
    return deserialize(*this, &BciMessageBase::deserializeBciMsgFromXml, buffer, length);
}
