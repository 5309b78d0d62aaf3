#include "bciMessage.h"

#include "codec/tagLookup.h"

#include <algorithm>
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

// One rendering through one operation of a message: `length` goes in as the buffer's size and comes out
// as what was written.
template <typename Stream, typename Operation>
bool serialize(char* buffer, unsigned int& length, Operation operation)
{
    if (buffer != nullptr)
    {
        std::memset(buffer, 0, length);
    }
    Stream stream;
    stream.attachBuffer(buffer, length);
    const bool result = operation(stream) && !stream.fail();
    length = stream.length();
    stream.detachBuffer();
    return result;
}

// The other way: `length` comes out as what was consumed.
template <typename Stream, typename Operation>
bool deserialize(char* buffer, unsigned int& length, Operation operation)
{
    Stream stream;
    stream.attachBuffer(buffer, length);
    const bool result = operation(stream) && !stream.fail();
    length = stream.tellg();
    stream.detachBuffer();
    return result;
}

// The first number of a rendering; 0 if there is none.
template <typename Stream>
bool peekSigNo(char* buffer, unsigned int length, SIGSELECT& sigNo)
{
    sigNo = 0;
    return deserialize<Stream>(buffer, length,
                               [&](Stream& stream)
                               {
                                   stream >> sigNo;
                                   return true;
                               });
}

} // namespace

BciMessageBase::BciMessageBase(char* msg, unsigned short size, unsigned long sigNo)
    : MessageBase(msg, size, sigNo), m_bciMessagePtr(msg), m_bciMessageSize(size)
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
    SIGSELECT sigNo;
    return peekSigNo<istream_text>(buffer, length, sigNo) && instantiateBciMsg(sigNo, msg) &&
           msg->deserializeFromText(buffer, length);
}

bool BciMessageBase::instantiateBciMsgFromBinary(char* buffer, unsigned int& length, BciMessageBase*& msg)
{
    SIGSELECT sigNo;
    if (!peekSigNo<istream_binary>(buffer, length, sigNo) || !instantiateBciMsg(sigNo, msg))
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
    return serialize<ostream_text>(buffer, length,
                                   [this](ostream_text& stream) { return serializeBciMsgToText(stream); });
}

bool BciMessageBase::serializeToBinary(char* buffer, unsigned int& length) const
{
    return serialize<ostream_binary>(buffer, length,
                                     [this](ostream_binary& stream) { return serializeBciMsgToBinary(stream); });
}

bool BciMessageBase::serializeToXml(char* buffer, unsigned int& length) const
{
    return serialize<ostream_text>(buffer, length,
                                   [this](ostream_text& stream) { return serializeBciMsgToXml(stream); });
}

bool BciMessageBase::deserializeFromText(char* buffer, unsigned int& length)
{
    return deserialize<istream_text>(buffer, length,
                                     [this](istream_text& stream) { return deserializeBciMsgFromText(stream); });
}

bool BciMessageBase::deserializeFromBinary(char* buffer, unsigned int& length)
{
    return deserialize<istream_binary>(
        buffer, length, [this](istream_binary& stream) { return deserializeBciMsgFromBinary(stream); });
}

// Reading XML does not move the stream, so the length comes out as 0.
bool BciMessageBase::deserializeFromXml(char* buffer, unsigned int& length)
{
    return deserialize<istream_text>(buffer, length,
                                     [this](istream_text& stream) { return deserializeBciMsgFromXml(stream); });
}

void insertArraySubscripts(std::string& text, unsigned short firstFromEnd, unsigned short secondFromEnd,
                           const char* first, const char* second)
{
    const auto insert = [&text](std::size_t fromEnd, const char* subscript)
    { text.insert(text.size() - std::min(fromEnd, text.size()), subscript); };
    insert(firstFromEnd, first);
    insert(secondFromEnd, second);
}
