/// @file
/// Bounded streams over a buffer of the caller, in a binary and a text flavour, and the XML tag lookup.
///
/// A stream keeps a pointer to the caller's buffer and nothing more: it allocates nothing, copies no
/// buffer, frees none, throws nothing and logs nothing. What goes wrong shows in its status word alone.
///
/// The library is built without run-time type information: a class derived from a stream is compiled with
/// `-fno-rtti` too, and there is no `dynamic_cast` to one.
///
/// Thread safety: a stream is used by one thread at a time; distinct streams are independent.
#ifndef BCI_STREAM_H
#define BCI_STREAM_H

#include "bciApi.h"

namespace bci
{
namespace codec
{
struct StreamAccess; // the library's own codecs, which go through the buffer directly where all of it fits
}
} // namespace bci

/// The streams of the board control interface.
namespace commonStream
{

/// What the offset of a seek counts from.
enum seekdir : int
{
    BEG = 0, ///< position 0
    CUR = 1, ///< the current position
    END = 2  ///< the stream's `length()`
};

/// What all streams share: the buffer, its lengths and the status word.
///
/// Status word: eof = 1, fail = 2, bad = 4; the stream is good when the whole word is 0. A stream
/// without a buffer holds eof and fail.
class BCI_API streambase
{
public:
    /// Makes a stream without a buffer: lengths 0, status 3 (eof and fail).
    streambase();

    /// Sets the stream's own members to 0. The caller's buffer is left alone.
    virtual ~streambase();

    /// Attaches a buffer of the caller, who keeps owning it and keeps it alive while it is attached.
    /// @param bufferPtr     start of the buffer; null counts as a buffer of length 0
    /// @param bufferLength  size of the buffer in bytes
    /// Status: 0 for a usable buffer; otherwise eof and fail are added to what the word held.
    void attachBuffer(char* bufferPtr, unsigned int bufferLength);

    /// Sets `length()` to 0 and, if a buffer is attached, the status to 0. No position moves.
    void reset();

    /// @return start of the attached buffer, null without one
    char* getBuffer() const;
    /// @return size of the attached buffer in bytes
    unsigned int getBufferLength() const;
    /// @return input: the bytes of data; output: the largest write position reached so far
    unsigned int getLength() const;
    /// @return the same as getLength()
    unsigned int length() const;

    /// @return the status word
    unsigned int status() const;
    /// Replaces the status word.
    /// @param theStatus  the new word, taken as it is
    void status(unsigned int theStatus);
    /// Sets the status word to 0.
    void setgood();
    /// Adds the fail bit.
    void setfail();
    /// Adds the eof bit.
    void seteof();
    /// Adds the bad bit. No stream operation does so.
    void setbad();
    /// @return true exactly when the status word is 0
    bool good() const;
    /// @return always false, whatever the status word holds
    ///
    /// The codecs' results are the negation of this: a short buffer or a malformed number is reported as
    /// success, and shows in status() and in the lengths alone. Code that wants to know asks good().
    bool fail() const;
    /// @return whether the eof bit is set
    bool eof() const;
    /// @return whether the bad bit is set
    bool bad() const;

protected:
    /// What seekg() and seekp() share: moves a position within 0 ... length().
    void seek(unsigned int& position, seekdir dir, int offset);
    /// The same, to a place that counts from the start.
    void seek(unsigned int& position, unsigned int target);
    /// Sets or clears eof after a seek.
    void updateEof(unsigned int position);

    char* m_bufferPtr;           ///< start of the caller's buffer, or null
    unsigned int m_bufferLength; ///< size of the buffer in bytes
    unsigned int m_length;       ///< input: bytes of data; output: largest write position reached
    unsigned int m_statusFlags;  ///< the status word

    friend struct ::bci::codec::StreamAccess;
};

/// Input side: a read position within the attached data.
///
/// Reading operations do nothing on a stream that is not good, unless they say so. No operation reads past
/// the data.
class BCI_API istreambase : public virtual streambase
{
public:
    /// Makes a stream without a buffer, read position 0.
    istreambase();
    ~istreambase() override;

    /// As streambase::attachBuffer(); all of the buffer is data, and the read position becomes 0.
    /// @param bufferPtr     start of the data; null counts as no data
    /// @param bufferLength  size of the data in bytes
    void attachBuffer(char* bufferPtr, unsigned int bufferLength);
    /// The same as attaching a null pointer and length 0.
    void detachBuffer();
    /// streambase::reset(), and the read position becomes 0.
    void reset();

    /// @return index of the next byte to read
    unsigned int tellg() const;
    /// Moves the read position. A target outside 0 ... length() sets fail and moves nothing. In every
    /// case eof is set afterwards if the position equals length(), and cleared otherwise. The arithmetic has
    /// 32 bits and a sign: with a length() of 2^31 or more every target is outside.
    /// @param dir     what the offset counts from; any other value makes the seek fail
    /// @param offset  in bytes, may be negative
    /// @return the stream
    istreambase& seekg(seekdir dir, int offset);
    /// The same with a position from the start.
    /// @param pos  new read position in bytes
    /// @return the stream
    istreambase& seekg(unsigned int pos);

protected:
    /// @return bytes from the read position to the end of the data
    unsigned int left() const;
    /// @return the next byte to read
    const char* next() const;
    /// Consumes bytes that are known to be there; eof at the end of the data.
    void advance(unsigned int count);
    /// Limits a byte count to what is left.
    /// @return whether it had to be cut
    bool cutToLeft(unsigned int& count) const;
    /// Reads bytes up to a delimiter, which stays unread; fail if there are some, but fewer than `count` and the
    /// delimiter not among them.
    /// @return how many were read
    unsigned int takeUpTo(char delim, char* valuePtr, unsigned int count);

    unsigned int m_currentReadPosition; ///< index of the next byte to read

    friend struct ::bci::codec::StreamAccess;
};

/// Output side: a write position within the attached buffer.
///
/// Writing operations do not look at the status: they go on after a failure for as long as what they
/// write fits. Filling the buffer to its last byte sets eof; what does not fit sets fail.
class BCI_API ostreambase : public virtual streambase
{
public:
    /// Makes a stream without a buffer, write position 0.
    ostreambase();
    ~ostreambase() override;

    /// As streambase::attachBuffer(); nothing is written yet, and the write position becomes 0.
    /// @param bufferPtr     start of the buffer; null counts as a buffer of length 0
    /// @param bufferLength  size of the buffer in bytes
    void attachBuffer(char* bufferPtr, unsigned int bufferLength);
    /// The same as attaching a null pointer and length 0.
    void detachBuffer();
    /// streambase::reset(), and the write position becomes 0.
    void reset();

    /// @return index of the next byte to write
    unsigned int tellp() const;
    /// Moves the write position within what has been written; the rules are those of
    /// istreambase::seekg(), so seeking into space not yet written fails.
    /// @param dir     what the offset counts from; any other value makes the seek fail
    /// @param offset  in bytes, may be negative
    /// @return the stream
    ostreambase& seekp(seekdir dir, int offset);
    /// The same with a position from the start.
    /// @param pos  new write position in bytes
    /// @return the stream
    ostreambase& seekp(unsigned int pos);

protected:
    /// @return bytes from the write position to the end of the buffer
    unsigned int room() const;
    /// @return where the next byte goes
    char* next() const;
    /// Counts bytes that were written at the write position; eof when the buffer is full.
    void advance(unsigned int count);
    /// Limits a byte count to the room that is left; fail if it had to be cut.
    void cutToRoom(unsigned int& count);

    unsigned int m_currentWritePosition; ///< index of the next byte to write

    friend struct ::bci::codec::StreamAccess;
};

/// Writes numbers as fixed-width fields, most significant byte first, and byte strings as they are.
///
/// One exception, a fact of the format: an unsigned 32-bit number at position 0, the signal number of a
/// message, goes out in the host's own byte order. On the big-endian target that is the same.
///
/// A number that does not fit is not written at all and sets fail.
class BCI_API ostream_binary : public ostreambase
{
public:
    ostream_binary();
    ~ostream_binary() override;

    ostream_binary& operator<<(bool value);               ///< 1 byte: 1 or 0
    ostream_binary& operator<<(char value);               ///< 1 byte
    ostream_binary& operator<<(unsigned char value);      ///< 1 byte
    ostream_binary& operator<<(short value);              ///< 2 bytes
    ostream_binary& operator<<(unsigned short value);     ///< 2 bytes
    ostream_binary& operator<<(int value);                ///< 4 bytes
    ostream_binary& operator<<(unsigned int value);       ///< 4 bytes; host order at position 0
    ostream_binary& operator<<(long value);               ///< 4 bytes, the low 32 bits
    ostream_binary& operator<<(unsigned long value);      ///< 4 bytes, the low 32 bits; host order at position 0
    ostream_binary& operator<<(unsigned long long value); ///< 8 bytes
    /// Pointers have no rendering; without this they would be written as `bool`.
    ostream_binary& operator<<(const void* value) = delete;

    /// Writes one byte.
    ostream_binary& put(char value);
    /// Writes a byte string, zero bytes included. What does not fit is cut off, and fail is set.
    /// @param valuePtr  the bytes
    /// @param count     how many
    /// @return the stream
    ostream_binary& put(const char* valuePtr, unsigned int count);

private:
    ostream_binary& write(const void* bytes, unsigned int count);
};

/// Reads what ostream_binary writes.
///
/// A number of which not all bytes are there sets fail; target and position stay as they were. Reading
/// the last byte sets eof, after which the stream is not good: a further read does nothing at all.
class BCI_API istream_binary : public istreambase
{
public:
    istream_binary();
    ~istream_binary() override;

    istream_binary& operator>>(bool& value);               ///< 1 byte; true unless it is 0
    istream_binary& operator>>(char& value);               ///< 1 byte
    istream_binary& operator>>(unsigned char& value);      ///< 1 byte
    istream_binary& operator>>(short& value);              ///< 2 bytes
    istream_binary& operator>>(unsigned short& value);     ///< 2 bytes
    istream_binary& operator>>(int& value);                ///< 4 bytes
    istream_binary& operator>>(unsigned int& value);       ///< 4 bytes; host order at position 0
    istream_binary& operator>>(long& value);               ///< 4 bytes, sign-extended where `long` is wider
    istream_binary& operator>>(unsigned long& value);      ///< 4 bytes; host order at position 0
    istream_binary& operator>>(unsigned long long& value); ///< 8 bytes

    /// Reads one byte.
    istream_binary& get(char& value);
    /// Reads a byte string. If fewer bytes are left, those are read and fail is set.
    /// @param valuePtr  room for `count` bytes; no terminator is written
    /// @param count     how many bytes
    /// @return the stream
    istream_binary& get(char* valuePtr, unsigned int count);
    /// Reads bytes up to a delimiter, which stays unread. If some but fewer than `count` bytes are left and
    /// the delimiter is not among them, fail is set.
    /// @param valuePtr  room for `count` bytes; no terminator is written
    /// @param count     how many bytes at most
    /// @param delim     the byte to stop before
    /// @return the stream
    istream_binary& get(char* valuePtr, unsigned int count, char delim);

private:
    bool read(void* bytes, unsigned int count);
};

/// Writes numbers as decimal digits and texts as their characters. Nothing is escaped, padded,
/// separated or terminated: a caller that wants a C string clears the buffer and keeps one byte spare.
///
/// A number or text that does not fit is written up to the end of the buffer, and fail is set.
class BCI_API ostream_text : public ostreambase
{
public:
    ostream_text();
    ~ostream_text() override;

    ostream_text& operator<<(bool value);               ///< '1' or '0'
    ostream_text& operator<<(char value);               ///< the character, as put(char)
    ostream_text& operator<<(unsigned char value);      ///< a number, not a character
    ostream_text& operator<<(short value);              ///< signed decimal
    ostream_text& operator<<(unsigned short value);     ///< unsigned decimal
    ostream_text& operator<<(int value);                ///< signed decimal
    ostream_text& operator<<(unsigned int value);       ///< unsigned decimal
    ostream_text& operator<<(long value);               ///< signed decimal of the low 32 bits
    ostream_text& operator<<(unsigned long value);      ///< unsigned decimal of the low 32 bits
    ostream_text& operator<<(unsigned long long value); ///< unsigned decimal, up to 20 digits
    /// Pointers have no rendering; without this they would be written as `bool`.
    ostream_text& operator<<(const void* value) = delete;

    /// Writes one character. The zero character is ignored: nothing is written, nothing changes.
    ostream_text& put(char ch);
    /// Writes exactly `count` characters: those of the text up to its terminator, then zero bytes.
    /// @param valuePtr  the text; needs no terminator within `count`
    /// @param count     how many characters
    /// @return the stream
    ostream_text& put(const char* valuePtr, unsigned int count);

    /// Renders a 32-bit number.
    /// @param output       room for 22 characters; receives digits and a terminating zero
    /// @param unsignedVal  the magnitude, taken modulo 2^32
    /// @param negative     whether a '-' goes in front, also of 0
    static void intToAscii(char* output, unsigned long unsignedVal, bool negative);
    /// Renders an unsigned 32-bit number; parameters as for intToAscii().
    static void unsignedToAscii(char* output, unsigned long unsignedVal);
    /// Renders a signed 32-bit number; `signedVal` is taken modulo 2^32.
    static void signedToAscii(char* output, long signedVal);
    /// intToAscii() on 64 bits.
    static void longLongToAscii(char* output, unsigned long long unsignedVal, bool negative);
    /// unsignedToAscii() on 64 bits.
    static void unsignedLongLongToAscii(char* output, unsigned long long unsignedVal);
    /// signedToAscii() on 64 bits.
    static void signedLongLongToAscii(char* output, long long signedVal);
};

/// Reads what ostream_text writes.
///
/// A number is a run of decimal digits with what getNumber() lets through around them; it is converted as
/// by the asciiTo...() of its type. What is no number, or does not fit the target's range, sets fail and
/// leaves the target as it was; but unsigned 32 and 64-bit targets receive what the conversion had summed
/// up by then ("-5" leaves 5, "A1" leaves 1). Two cases differ, on purpose, because the conversion does
/// nothing on a stream that is not good:
/// - a number that runs up to the very end of the data sets eof, not fail;
/// - a sign or 'x' in the middle of a number, or one longer than 31 characters, sets fail;
/// in both, targets of up to 16 bits and signed ones receive 0, and unsigned 32 and 64-bit ones keep
/// their value.
class BCI_API istream_text : public istreambase
{
public:
    istream_text();
    ~istream_text() override;

    istream_text& operator>>(char& ch);                  ///< one character, as get(char&)
    istream_text& operator>>(unsigned char& value);      ///< a number of at most 255
    istream_text& operator>>(short& value);              ///< at most 32767; below -32768 the low 16 bits are taken
    istream_text& operator>>(unsigned short& value);     ///< a number of at most 65535
    istream_text& operator>>(int& value);                ///< -2147483647 ... 2147483647
    istream_text& operator>>(unsigned int& value);       ///< modulo 2^32
    istream_text& operator>>(long& value);               ///< -2147483647 ... 2147483647
    istream_text& operator>>(unsigned long& value);      ///< modulo 2^32
    istream_text& operator>>(unsigned long long& value); ///< modulo 2^64

    /// Reads one character. On a stream that is not good, or has been made good at its end, fail is set and
    /// `ch` stays as it was.
    istream_text& get(char& ch);
    /// Reads characters up to a delimiter, which stays unread, and terminates them with a zero. If some but
    /// fewer than `count` characters are left and the delimiter is not among them, fail is set. Nothing is
    /// written if the stream is not good or no character is wanted or left.
    /// @param valuePtr  room for `count` + 1 characters
    /// @param count     how many characters at most, the terminator not counted
    /// @param delim     the character to stop before
    /// @return the stream
    istream_text& get(char* valuePtr, unsigned int count, char delim);
    /// @return how many characters the last get(), or `>>` into a `char`, delivered. A get() up to a
    ///         delimiter does not count on a stream that is not good.
    unsigned int gcount() const;

    /// Scans one number, whatever the status. '+', 'x' and 'X' before the first digit are skipped, leading zeros
    /// dropped, '-' and the hex letters copied; any other character ends the scan unread. A sign or 'x' behind a
    /// digit, or a 32nd character to copy, sets fail and ends the scan unread too.
    /// @param buffer  room for 32 characters; receives the number, "0" if only zeros and hex letters
    ///                were seen, and a terminating zero
    /// @return characters consumed; 0, with fail set, if there was no digit
    unsigned int getNumber(char* buffer);

    /// Converts a number as getNumber() delivers it. On a stream that is not good nothing is done, and
    /// the result is true.
    /// @param text      zero-terminated; read from its end up to the first character that is no digit
    /// @param value     receives the magnitude modulo 2^32
    /// @param negative  receives whether that character was a '-'
    /// @return false if that character was any other
    bool asciiToInt(const char* text, unsigned long& value, bool& negative) const;
    /// As asciiToInt(); false, and `value` as it was, for a magnitude above 2147483647. On a stream that is
    /// not good `value` becomes 0.
    bool asciiToSigned(const char* text, long& value) const;
    /// As asciiToInt(); false for a negative number, whose magnitude `value` receives all the same.
    bool asciiToUnsigned(const char* text, unsigned long& value) const;
    /// asciiToInt() on 64 bits.
    bool asciiToLongLong(const char* text, unsigned long long& value, bool& negative) const;
    /// As asciiToLongLong(); false, and `value` as it was, for a magnitude above 60. On a stream that is not
    /// good `value` becomes 0.
    bool asciiToSignedLongLong(const char* text, long long& value) const;
    /// asciiToUnsigned() on 64 bits.
    bool asciiToUnsignedLongLong(const char* text, unsigned long long& value) const;

protected:
    unsigned int m_lastReadCount; ///< characters delivered by the last get

    friend struct ::bci::codec::StreamAccess;

private:
    bool scanNumber(char* buffer);
    bool scanSigned(long& value, long maximum);
    bool scanUnsigned(unsigned long& value, unsigned long maximum);
};

} // namespace commonStream

/// Finds the first element of a name in an XML document and copies its content.
///
/// The content is what stands between the first "<tag>" and the next "</tag>". If it has the layout
/// that the writers give it (newline, tab and two blanks in front, newline and tab behind), exactly that
/// is removed; otherwise all white space at both ends is. Nothing is unescaped, and neither order nor
/// nesting of the elements matters.
///
/// Re-entrant; allocates nothing.
///
/// @param document  the XML text, zero-terminated; null holds no element
/// @param tag       the element's name without brackets; an empty name is never found
/// @param content   room for 424 characters; receives the content, cut to 423 characters, and a
///                  terminating zero; untouched if there is no such element. Null receives nothing
/// @param offset    receives the index just past the closing tag, or, if there is no such element, the
///                  document's length
/// @return whether the element was found
BCI_API bool getTagContents(const char* document, const char* tag, char* content, int& offset);

/// The same for a content buffer of any size.
/// @param document     as above
/// @param tag          as above
/// @param content      room for `contentSize` characters
/// @param contentSize  the content is cut to one character less, to leave room for the terminating zero;
///                     0 writes nothing
/// @param offset       as above
/// @return as above
BCI_API bool getTagContents(const char* document, const char* tag, char* content, unsigned int contentSize,
                            int& offset);

namespace commonStream
{
using ::getTagContents;
}

#endif
