#include "stream.h"

#include "byteOrder.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace commonStream
{

namespace
{

constexpr unsigned int kEof = 1;
constexpr unsigned int kFail = 2;
constexpr unsigned int kBad = 4;

// One rendered number: up to 20 digits, a sign and the terminating zero.
const unsigned int NUM_TEXT_BUFFER_SIZE = 22;
// Whether text output terminates what it writes. It does not: a caller that wants a C string clears its
// buffer first.
const bool NULL_TERMINATED_TEXT_OSTREAM = false;
// One scanned number: up to 31 characters and the terminating zero.
constexpr unsigned int kNumberTokenSize = 32;

// Writes the digits backwards, as they fall out, then turns them round into the caller's buffer.
void toAscii(char* output, unsigned long long magnitude, bool negative)
{
    char digits[NUM_TEXT_BUFFER_SIZE];
    char* digit = digits;
    for (; magnitude > 0xFFFFFFFF; magnitude /= 10)
    {
        *digit++ = static_cast<char>('0' + magnitude % 10);
    }
    std::uint32_t rest = static_cast<std::uint32_t>(magnitude); // dividing it costs the target much less
    do
    {
        *digit++ = static_cast<char>('0' + rest % 10);
        rest /= 10;
    } while (rest != 0);
    if (negative)
    {
        *output++ = '-';
    }
    while (digit != digits)
    {
        *output++ = *--digit;
    }
    *output = '\0';
}

bool isDigit(char ch)
{
    return ch >= '0' && ch <= '9';
}

bool isHexLetter(char ch)
{
    return (ch >= 'A' && ch <= 'F') || (ch >= 'a' && ch <= 'f');
}

} // namespace

streambase::streambase() : m_bufferPtr(nullptr), m_bufferLength(0), m_length(0), m_statusFlags(kEof | kFail) {}

streambase::~streambase()
{
    // Volatile, or the compiler drops stores into an object that is about to end.
    *const_cast<char* volatile*>(&m_bufferPtr) = nullptr;
    *const_cast<volatile unsigned int*>(&m_bufferLength) = 0;
    *const_cast<volatile unsigned int*>(&m_length) = 0;
    *const_cast<volatile unsigned int*>(&m_statusFlags) = 0;
}

void streambase::attachBuffer(char* bufferPtr, unsigned int bufferLength)
{
    m_bufferPtr = bufferPtr;
    m_bufferLength = bufferPtr != nullptr ? bufferLength : 0;
    if (m_bufferLength != 0)
    {
        setgood();
    }
    else
    {
        seteof();
        setfail();
    }
}

void streambase::reset()
{
    m_length = 0;
    if (m_bufferLength != 0)
    {
        setgood();
    }
}

char* streambase::getBuffer() const
{
    return m_bufferPtr;
}

unsigned int streambase::getBufferLength() const
{
    return m_bufferLength;
}

unsigned int streambase::getLength() const
{
    return m_length;
}

unsigned int streambase::length() const
{
    return m_length;
}

unsigned int streambase::status() const
{
    return m_statusFlags;
}

void streambase::status(unsigned int theStatus)
{
    m_statusFlags = theStatus;
}

void streambase::setgood()
{
    m_statusFlags = 0;
}

void streambase::setfail()
{
    m_statusFlags |= kFail;
}

void streambase::seteof()
{
    m_statusFlags |= kEof;
}

void streambase::setbad()
{
    m_statusFlags |= kBad;
}

bool streambase::good() const
{
    return m_statusFlags == 0;
}

bool streambase::fail() const
{
    return false;
}

bool streambase::eof() const
{
    return (m_statusFlags & kEof) != 0;
}

bool streambase::bad() const
{
    return (m_statusFlags & kBad) != 0;
}

void streambase::seek(unsigned int& position, seekdir dir, int offset)
{
    // The arithmetic is that of the 32-bit target on every host: it wraps around, and a target or a
    // length with the top bit set is negative.
    const std::int32_t end = static_cast<std::int32_t>(m_length);
    std::int32_t target = -1;
    switch (dir)
    {
    case BEG:
        target = offset;
        break;
    case CUR:
        target = static_cast<std::int32_t>(position + static_cast<unsigned int>(offset));
        break;
    case END:
        target = static_cast<std::int32_t>(m_length + static_cast<unsigned int>(offset));
        break;
    }
    if (target >= 0 && target <= end)
    {
        position = static_cast<unsigned int>(target);
    }
    else
    {
        setfail();
    }
    updateEof(position);
}

void streambase::seek(unsigned int& position, unsigned int target)
{
    if (target <= m_length)
    {
        position = target;
    }
    else
    {
        setfail();
    }
    updateEof(position);
}

void streambase::updateEof(unsigned int position)
{
    m_statusFlags = position == m_length ? m_statusFlags | kEof : m_statusFlags & ~kEof;
}

istreambase::istreambase() : m_currentReadPosition(0) {}

istreambase::~istreambase() = default;

void istreambase::attachBuffer(char* bufferPtr, unsigned int bufferLength)
{
    streambase::attachBuffer(bufferPtr, bufferLength);
    m_length = m_bufferLength;
    m_currentReadPosition = 0;
}

void istreambase::detachBuffer()
{
    attachBuffer(nullptr, 0);
}

void istreambase::reset()
{
    streambase::reset();
    m_currentReadPosition = 0;
}

unsigned int istreambase::tellg() const
{
    return m_currentReadPosition;
}

istreambase& istreambase::seekg(seekdir dir, int offset)
{
    seek(m_currentReadPosition, dir, offset);
    return *this;
}

istreambase& istreambase::seekg(unsigned int pos)
{
    seek(m_currentReadPosition, pos);
    return *this;
}

// Attaching or resetting through the base class can leave the position behind the data, or the data
// longer than the buffer.
unsigned int istreambase::left() const
{
    const unsigned int end = std::min(m_length, m_bufferLength);
    return m_currentReadPosition < end ? end - m_currentReadPosition : 0;
}

const char* istreambase::next() const
{
    return m_bufferPtr + m_currentReadPosition;
}

void istreambase::advance(unsigned int count)
{
    m_currentReadPosition += count;
    if (m_currentReadPosition == m_length)
    {
        seteof();
    }
}

bool istreambase::cutToLeft(unsigned int& count) const
{
    const unsigned int wanted = count;
    count = std::min(wanted, left());
    return count != wanted;
}

unsigned int istreambase::takeUpTo(char delim, char* valuePtr, unsigned int count)
{
    const bool cut = cutToLeft(count);
    unsigned int copied = count;
    if (count != 0)
    {
        const void* const found = std::memchr(next(), delim, count);
        if (found != nullptr)
        {
            copied = static_cast<unsigned int>(static_cast<const char*>(found) - next());
        }
        std::copy_n(next(), copied, valuePtr);
    }
    if (cut && copied != 0 && copied == count)
    {
        setfail();
    }
    advance(copied);
    return copied;
}

ostreambase::ostreambase() : m_currentWritePosition(0) {}

ostreambase::~ostreambase() = default;

void ostreambase::attachBuffer(char* bufferPtr, unsigned int bufferLength)
{
    streambase::attachBuffer(bufferPtr, bufferLength);
    m_length = 0;
    m_currentWritePosition = 0;
}

void ostreambase::detachBuffer()
{
    attachBuffer(nullptr, 0);
}

void ostreambase::reset()
{
    streambase::reset();
    m_currentWritePosition = 0;
}

unsigned int ostreambase::tellp() const
{
    return m_currentWritePosition;
}

ostreambase& ostreambase::seekp(seekdir dir, int offset)
{
    seek(m_currentWritePosition, dir, offset);
    return *this;
}

ostreambase& ostreambase::seekp(unsigned int pos)
{
    seek(m_currentWritePosition, pos);
    return *this;
}

// Attaching through the base class can leave the position behind the buffer.
unsigned int ostreambase::room() const
{
    return m_currentWritePosition < m_bufferLength ? m_bufferLength - m_currentWritePosition : 0;
}

char* ostreambase::next() const
{
    return m_bufferPtr + m_currentWritePosition;
}

void ostreambase::advance(unsigned int count)
{
    m_currentWritePosition += count;
    m_length = std::max(m_length, m_currentWritePosition);
    if (m_currentWritePosition == m_bufferLength)
    {
        seteof();
    }
}

void ostreambase::cutToRoom(unsigned int& count)
{
    if (count > room())
    {
        count = room();
        setfail();
    }
}

ostream_binary::ostream_binary() = default;

ostream_binary::~ostream_binary() = default;

// All bytes of a number, or none.
ostream_binary& ostream_binary::write(const void* bytes, unsigned int count)
{
    if (room() < count)
    {
        setfail();
        return *this;
    }
    std::memcpy(next(), bytes, count);
    advance(count);
    return *this;
}

ostream_binary& ostream_binary::operator<<(bool value)
{
    return put(value ? '\1' : '\0');
}

ostream_binary& ostream_binary::operator<<(char value)
{
    return put(value);
}

ostream_binary& ostream_binary::operator<<(unsigned char value)
{
    return write(&value, sizeof value);
}

ostream_binary& ostream_binary::operator<<(short value)
{
    value = bci::bigEndian(value);
    return write(&value, sizeof value);
}

ostream_binary& ostream_binary::operator<<(unsigned short value)
{
    value = bci::bigEndian(value);
    return write(&value, sizeof value);
}

ostream_binary& ostream_binary::operator<<(int value)
{
    value = bci::bigEndian(value);
    return write(&value, sizeof value);
}

// The signal number, alone at position 0, keeps the host's byte order.
ostream_binary& ostream_binary::operator<<(unsigned int value)
{
    if (m_currentWritePosition != 0)
    {
        value = bci::bigEndian(value);
    }
    return write(&value, sizeof value);
}

ostream_binary& ostream_binary::operator<<(long value)
{
    return *this << static_cast<std::int32_t>(value);
}

ostream_binary& ostream_binary::operator<<(unsigned long value)
{
    return *this << static_cast<std::uint32_t>(value);
}

ostream_binary& ostream_binary::operator<<(unsigned long long value)
{
    value = bci::bigEndian(value);
    return write(&value, sizeof value);
}

ostream_binary& ostream_binary::put(char value)
{
    return write(&value, sizeof value);
}

ostream_binary& ostream_binary::put(const char* valuePtr, unsigned int count)
{
    cutToRoom(count);
    if (count != 0)
    {
        std::memcpy(next(), valuePtr, count);
    }
    advance(count);
    return *this;
}

istream_binary::istream_binary() = default;

istream_binary::~istream_binary() = default;

// All bytes of a number. Returns whether they could be read.
bool istream_binary::read(void* bytes, unsigned int count)
{
    if (!good())
    {
        return false;
    }
    if (left() < count)
    {
        setfail();
        advance(0);
        return false;
    }
    std::memcpy(bytes, next(), count);
    advance(count);
    return true;
}

istream_binary& istream_binary::operator>>(bool& value)
{
    unsigned char number;
    if (read(&number, sizeof number))
    {
        value = number != 0;
    }
    return *this;
}

istream_binary& istream_binary::operator>>(char& value)
{
    return get(value);
}

istream_binary& istream_binary::operator>>(unsigned char& value)
{
    read(&value, sizeof value);
    return *this;
}

istream_binary& istream_binary::operator>>(short& value)
{
    short number;
    if (read(&number, sizeof number))
    {
        value = bci::bigEndian(number);
    }
    return *this;
}

istream_binary& istream_binary::operator>>(unsigned short& value)
{
    unsigned short number;
    if (read(&number, sizeof number))
    {
        value = bci::bigEndian(number);
    }
    return *this;
}

istream_binary& istream_binary::operator>>(int& value)
{
    std::int32_t number;
    if (read(&number, sizeof number))
    {
        value = bci::bigEndian(number);
    }
    return *this;
}

istream_binary& istream_binary::operator>>(unsigned int& value)
{
    unsigned long number = value;
    *this >> number;
    value = static_cast<unsigned int>(number);
    return *this;
}

istream_binary& istream_binary::operator>>(long& value)
{
    std::int32_t number;
    if (read(&number, sizeof number))
    {
        value = bci::bigEndian(number);
    }
    return *this;
}

// The signal number, alone at position 0, has the host's byte order.
istream_binary& istream_binary::operator>>(unsigned long& value)
{
    const bool atStart = m_currentReadPosition == 0;
    std::uint32_t number;
    if (read(&number, sizeof number))
    {
        value = atStart ? number : bci::bigEndian(number);
    }
    return *this;
}

istream_binary& istream_binary::operator>>(unsigned long long& value)
{
    unsigned long long number;
    if (read(&number, sizeof number))
    {
        value = bci::bigEndian(number);
    }
    return *this;
}

istream_binary& istream_binary::get(char& value)
{
    read(&value, sizeof value);
    return *this;
}

istream_binary& istream_binary::get(char* valuePtr, unsigned int count)
{
    if (!good())
    {
        return *this;
    }
    if (cutToLeft(count))
    {
        setfail();
    }
    if (count != 0)
    {
        std::memcpy(valuePtr, next(), count);
    }
    advance(count);
    return *this;
}

istream_binary& istream_binary::get(char* valuePtr, unsigned int count, char delim)
{
    if (good())
    {
        takeUpTo(delim, valuePtr, count);
    }
    return *this;
}

ostream_text::ostream_text() = default;

ostream_text::~ostream_text() = default;

ostream_text& ostream_text::operator<<(bool value)
{
    return put(value ? '1' : '0');
}

ostream_text& ostream_text::operator<<(char value)
{
    return put(value);
}

ostream_text& ostream_text::operator<<(unsigned char value)
{
    return *this << static_cast<unsigned long>(value);
}

ostream_text& ostream_text::operator<<(short value)
{
    return *this << static_cast<long>(value);
}

ostream_text& ostream_text::operator<<(unsigned short value)
{
    return *this << static_cast<unsigned long>(value);
}

ostream_text& ostream_text::operator<<(int value)
{
    return *this << static_cast<long>(value);
}

ostream_text& ostream_text::operator<<(unsigned int value)
{
    return *this << static_cast<unsigned long>(value);
}

ostream_text& ostream_text::operator<<(long value)
{
    char digits[NUM_TEXT_BUFFER_SIZE];
    signedToAscii(digits, value);
    return put(digits, static_cast<unsigned int>(std::strlen(digits)));
}

ostream_text& ostream_text::operator<<(unsigned long value)
{
    char digits[NUM_TEXT_BUFFER_SIZE];
    unsignedToAscii(digits, value);
    return put(digits, static_cast<unsigned int>(std::strlen(digits)));
}

ostream_text& ostream_text::operator<<(unsigned long long value)
{
    char digits[NUM_TEXT_BUFFER_SIZE];
    unsignedLongLongToAscii(digits, value);
    return put(digits, static_cast<unsigned int>(std::strlen(digits)));
}

ostream_text& ostream_text::put(char ch)
{
    if (ch == '\0')
    {
        return *this;
    }
    if (room() == 0)
    {
        setfail();
        return *this;
    }
    *next() = ch;
    advance(1);
    return *this;
}

ostream_text& ostream_text::put(const char* valuePtr, unsigned int count)
{
    cutToRoom(count);
    if (count != 0)
    {
        const std::size_t length = strnlen(valuePtr, count);
        std::memcpy(next(), valuePtr, length);
        std::memset(next() + length, 0, count - length);
    }
    static_assert(!NULL_TERMINATED_TEXT_OSTREAM);
    advance(count);
    return *this;
}

void ostream_text::intToAscii(char* output, unsigned long unsignedVal, bool negative)
{
    toAscii(output, static_cast<std::uint32_t>(unsignedVal), negative);
}

void ostream_text::unsignedToAscii(char* output, unsigned long unsignedVal)
{
    intToAscii(output, unsignedVal, false);
}

void ostream_text::signedToAscii(char* output, long signedVal)
{
    const bool negative = static_cast<std::int32_t>(signedVal) < 0;
    const unsigned long bits = static_cast<unsigned long>(signedVal);
    intToAscii(output, negative ? 0 - bits : bits, negative);
}

void ostream_text::longLongToAscii(char* output, unsigned long long unsignedVal, bool negative)
{
    toAscii(output, unsignedVal, negative);
}

void ostream_text::unsignedLongLongToAscii(char* output, unsigned long long unsignedVal)
{
    longLongToAscii(output, unsignedVal, false);
}

void ostream_text::signedLongLongToAscii(char* output, long long signedVal)
{
    const unsigned long long bits = static_cast<unsigned long long>(signedVal);
    longLongToAscii(output, signedVal < 0 ? 0 - bits : bits, signedVal < 0);
}

istream_text::istream_text() : m_lastReadCount(0) {}

istream_text::~istream_text() = default;

istream_text& istream_text::operator>>(char& ch)
{
    return get(ch);
}

istream_text& istream_text::operator>>(unsigned char& value)
{
    unsigned long number;
    if (scanUnsigned(number, 0xFF))
    {
        value = static_cast<unsigned char>(number);
    }
    return *this;
}

// There is no lower bound: what lies below -32768 is stored with its low 16 bits.
istream_text& istream_text::operator>>(short& value)
{
    long number;
    if (scanSigned(number, 0x7FFF))
    {
        value = static_cast<short>(number);
    }
    return *this;
}

istream_text& istream_text::operator>>(unsigned short& value)
{
    unsigned long number;
    if (scanUnsigned(number, 0xFFFF))
    {
        value = static_cast<unsigned short>(number);
    }
    return *this;
}

istream_text& istream_text::operator>>(int& value)
{
    long number;
    if (scanSigned(number, 0x7FFFFFFF))
    {
        value = static_cast<int>(number);
    }
    return *this;
}

istream_text& istream_text::operator>>(unsigned int& value)
{
    unsigned long number = value;
    *this >> number;
    value = static_cast<unsigned int>(number);
    return *this;
}

istream_text& istream_text::operator>>(long& value)
{
    long number;
    if (scanSigned(number, 0x7FFFFFFF))
    {
        value = number;
    }
    return *this;
}

// Unlike the others, the unsigned numbers of 32 and 64 bits are converted into the target itself: it keeps its
// value where converting does nothing, and receives the magnitude of a negative number that fails.
istream_text& istream_text::operator>>(unsigned long& value)
{
    char number[kNumberTokenSize];
    if (scanNumber(number) && !asciiToUnsigned(number, value))
    {
        setfail();
    }
    return *this;
}

istream_text& istream_text::operator>>(unsigned long long& value)
{
    char number[kNumberTokenSize];
    if (scanNumber(number) && !asciiToUnsignedLongLong(number, value))
    {
        setfail();
    }
    return *this;
}

istream_text& istream_text::get(char& ch)
{
    m_lastReadCount = 0;
    if (good() && left() != 0)
    {
        ch = *next();
        m_lastReadCount = 1;
    }
    else
    {
        setfail();
    }
    advance(m_lastReadCount);
    return *this;
}

istream_text& istream_text::get(char* valuePtr, unsigned int count, char delim)
{
    if (!good())
    {
        return *this;
    }
    const bool anything = count != 0 && left() != 0;
    m_lastReadCount = takeUpTo(delim, valuePtr, count);
    if (anything)
    {
        valuePtr[m_lastReadCount] = '\0';
    }
    return *this;
}

unsigned int istream_text::gcount() const
{
    return m_lastReadCount;
}

unsigned int istream_text::getNumber(char* buffer)
{
    unsigned int consumed = 0;
    unsigned int copied = 0;
    bool digitSeen = false;
    bool nonZeroSeen = false;
    for (; left() != 0; ++m_currentReadPosition, ++consumed)
    {
        const char ch = *next();
        const bool sign = ch == '+' || ch == '-' || ch == 'x' || ch == 'X';
        if (!sign && !isDigit(ch) && !isHexLetter(ch))
        {
            break;
        }
        const bool copies = ch == '0' ? nonZeroSeen : !sign || ch == '-';
        if ((sign && digitSeen) || (copies && copied == kNumberTokenSize - 1))
        {
            setfail();
            break;
        }
        if (copies)
        {
            buffer[copied++] = ch;
        }
        // A hex letter counts as a digit, yet not as one that keeps the number from being 0.
        digitSeen |= !sign;
        nonZeroSeen |= ch >= '1' && ch <= '9';
    }
    if (digitSeen && !nonZeroSeen)
    {
        buffer[0] = '0';
        copied = 1;
    }
    buffer[copied] = '\0';
    advance(0);
    if (!digitSeen)
    {
        setfail();
        return 0;
    }
    return consumed;
}

bool istream_text::asciiToInt(const char* text, unsigned long& value, bool& negative) const
{
    if (!good())
    {
        return true;
    }
    unsigned long long magnitude;
    const bool converted = asciiToLongLong(text, magnitude, negative);
    value = static_cast<std::uint32_t>(magnitude);
    return converted;
}

bool istream_text::asciiToSigned(const char* text, long& value) const
{
    unsigned long magnitude = 0;
    bool negative = false;
    if (!asciiToInt(text, magnitude, negative) || magnitude > 0x7FFFFFFF)
    {
        return false;
    }
    value = negative ? -static_cast<long>(magnitude) : static_cast<long>(magnitude);
    return true;
}

bool istream_text::asciiToUnsigned(const char* text, unsigned long& value) const
{
    bool negative = false;
    return asciiToInt(text, value, negative) && !negative;
}

// Sums up the digits from the last one towards the first, modulo the width of the target, until something else
// than a digit comes.
bool istream_text::asciiToLongLong(const char* text, unsigned long long& value, bool& negative) const
{
    if (!good())
    {
        return true;
    }
    negative = false;
    value = 0;
    unsigned long long multiplier = 1;
    for (const char* at = text + std::strlen(text); at != text;)
    {
        --at;
        if (!isDigit(*at))
        {
            negative = *at == '-';
            return negative;
        }
        value += static_cast<unsigned long long>(*at - '0') * multiplier;
        multiplier *= 10;
    }
    return true;
}

bool istream_text::asciiToSignedLongLong(const char* text, long long& value) const
{
    // The limit is that small; it is part of the interface.
    constexpr unsigned long long kMaximum = 60;
    unsigned long long magnitude = 0;
    bool negative = false;
    if (!asciiToLongLong(text, magnitude, negative) || magnitude > kMaximum)
    {
        return false;
    }
    value = negative ? -static_cast<long long>(magnitude) : static_cast<long long>(magnitude);
    return true;
}

bool istream_text::asciiToUnsignedLongLong(const char* text, unsigned long long& value) const
{
    bool negative = false;
    return asciiToLongLong(text, value, negative) && !negative;
}

bool istream_text::scanNumber(char* buffer)
{
    return good() && getNumber(buffer) != 0;
}

// Scans a number for a signed target, or an unsigned one, that holds no greater one. Returns whether there is one
// to store. Scanning may leave the stream not good with a number in hand (at the end of the data, or at a sign
// within it). Converting then does nothing and succeeds, so the value is the 0 that stands here.
bool istream_text::scanSigned(long& value, long maximum)
{
    char number[kNumberTokenSize];
    value = 0;
    if (!scanNumber(number))
    {
        return false;
    }
    if (!asciiToSigned(number, value) || value > maximum)
    {
        setfail();
        return false;
    }
    return true;
}

bool istream_text::scanUnsigned(unsigned long& value, unsigned long maximum)
{
    char number[kNumberTokenSize];
    value = 0;
    if (!scanNumber(number))
    {
        return false;
    }
    if (!asciiToUnsigned(number, value) || value > maximum)
    {
        setfail();
        return false;
    }
    return true;
}

} // namespace commonStream
