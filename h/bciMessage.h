/// @file
/// The base of all board control messages: registry, factory and codec entry points.
#ifndef BCI_MESSAGE_H
#define BCI_MESSAGE_H

#include "bciApi.h"
#include "message.h"
#include "scalarTypes.h"
#include "stream.h"
#include "vornNodeCommon.h"

#include <map>
#include <string>

class BciMessageBase;

/// Creates a message of one class for a signal number; null if it could not be allocated. The caller
/// owns the message.
typedef BciMessageBase* (*BciMsgFactory)(SIGSELECT sigNo);

/// A message that wraps one wire structure and renders it into a buffer, or reads it back, in three
/// forms: text, binary and XML.
///
/// Results: the codecs are lenient. A buffer that is too short, or a malformed number, is not an error: the
/// result is true. The returned length may be shorter than expected, and may not: a form that fills its buffer
/// exactly looks like one that was cut, a text that ends within its last number like a whole one, and in
/// binary, where a number that does not fit is left out, a smaller one behind it may still be written. Who
/// needs to know calls the `...BciMsg...` operations with a stream of their own and asks its good() and
/// status(). False means that an XML element is missing or that a message's own check rejected a value, which a
/// codec says in one line of the system log. (BciHwLogSetReqMsg has an exception of its own.) A failed read
/// leaves what was read so far in the wire structure; what the data did not reach holds what it held before, in a
/// message just created what its allocation held. (Two messages are cleared before text and binary are read,
/// BciCapabilityCfmMsg and BciGetHwPidCfmMsg; the log of a BciHwLogSetReqMsg is filled up where its text ends
/// early.)
///
/// Byte order: a binary form begins with the signal number in the host's own byte order, which on the
/// big-endian target is that of all other fields. What a host of the other order wrote needs its first four
/// bytes turned round before it is read.
///
/// Memory: messages are allocated with `new (std::nothrow)`. Registering allocates a node of the registry;
/// where there is no memory for it, `std::bad_alloc` ends the program or leaves the library, by platform.
///
/// To reach the wire structure of a message that came from a buffer, look at getSigNo() and `static_cast`
/// to the class of that number (there is no run-time type information), or cast getMsg().
///
/// Thread safety: registration finishes before other threads use the registry; from then on it is only
/// read, and operations on distinct messages and buffers run in parallel.
class BCI_API BciMessageBase : public MessageBase
{
public:
    /// Takes note of the wire structure. Its content is left alone, and the signal number is not stored
    /// into it.
    /// @param msg    the wire structure, which the derived class owns
    /// @param size   its size in bytes
    /// @param sigNo  the signal number; not used
    BciMessageBase(char* msg, unsigned short size, unsigned long sigNo);
    /// Frees nothing.
    ~BciMessageBase() override;

    char* getMsg() const override;
    void setMsg(const char* src) override;
    /// @return 35, which is what the header takes; derived classes add their fields
    unsigned int getMaxTextBufferSize() override;

    /// Writes the text form: every field as a decimal number or its characters, each followed by ':'.
    /// @param stream  with the caller's buffer attached
    /// @return false if the message's own check rejected a value
    virtual bool serializeBciMsgToText(commonStream::ostream_text& stream) const = 0;
    /// Writes the binary form: the fields at their widths, one after another.
    /// @param stream  with the caller's buffer attached
    /// @return false if the message's own check rejected a value
    virtual bool serializeBciMsgToBinary(commonStream::ostream_binary& stream) const = 0;
    /// Writes the XML form: one element per field, without an enclosing one.
    /// @param stream  with the caller's buffer attached
    /// @return false if the message's own check rejected a value
    virtual bool serializeBciMsgToXml(commonStream::ostream_text& stream) const = 0;
    /// Reads the text form into the wire structure.
    /// @param stream  with the rendering attached
    /// @return false if the message's own check rejected a value
    virtual bool deserializeBciMsgFromText(commonStream::istream_text& stream) = 0;
    /// Reads the binary form into the wire structure.
    /// @param stream  with the rendering attached
    /// @return false if the message's own check rejected a value
    virtual bool deserializeBciMsgFromBinary(commonStream::istream_binary& stream) = 0;
    /// Reads the XML form into the wire structure; stops at the first missing element.
    /// @param stream  with the rendering attached; its buffer is read from the start up to the
    ///                terminating zero, and its read position neither used nor moved
    /// @return false if an element is missing or the message's own check rejected a value
    virtual bool deserializeBciMsgFromXml(commonStream::istream_text& stream) = 0;

    /// @return the delimiter that follows every field of the text form
    char getDelim() const;

    /// Puts a signal number into the registry. A number that is there already keeps its first factory.
    /// @param sigNo    the signal number
    /// @param factory  creates the messages of this number
    /// @return always true
    static bool registerBciMsgClass(SIGSELECT sigNo, BciMsgFactory factory);
    /// @param sigNo  a signal number
    /// @return whether the registry holds it
    static bool isMsgClassRegistered(SIGSELECT sigNo);

    /// Creates an empty message for a signal number.
    /// @param sigNo  a registered signal number
    /// @param msg    receives the message, which the caller deletes; null if it could not be allocated;
    ///               untouched if the number is not registered or its factory is null
    /// @return whether a message was created
    static bool instantiateBciMsg(SIGSELECT sigNo, BciMessageBase*& msg);

    /// Creates a message from its text form.
    /// @param buffer  the rendering; null counts as empty
    /// @param length  in: size of the rendering in bytes; out: bytes consumed. Unchanged if no message
    ///                was created
    /// @param msg     null before the call; receives the message as by instantiateBciMsg(), which the caller
    ///                deletes, also after a false result
    /// @return whether a message was created and read
    static bool instantiateBciMsgFromText(char* buffer, unsigned int& length, BciMessageBase*& msg);
    /// Creates a message from its binary form. Unlike with the other forms, a message that could not be
    /// read is deleted, and `msg` becomes null.
    /// @param buffer  the rendering; null counts as empty
    /// @param length  in: size of the rendering in bytes; out: bytes consumed. Unchanged if no message
    ///                was created
    /// @param msg     null before the call; receives the message as by instantiateBciMsg(), which the caller
    ///                deletes
    /// @return whether a message was created and read
    static bool instantiateBciMsgFromBinary(char* buffer, unsigned int& length, BciMessageBase*& msg);
    /// Creates a message from its XML form.
    /// @param buffer  the rendering, zero-terminated; null holds no element
    /// @param length  out: 0. Unchanged if no message was created; the terminating zero alone ends the
    ///                rendering
    /// @param msg     null before the call; receives the message as by instantiateBciMsg(), which the caller
    ///                deletes, also after a false result
    /// @return whether a message was created and read
    static bool instantiateBciMsgFromXml(char* buffer, unsigned int& length, BciMessageBase*& msg);

    /// Writes the text form into a buffer. All of the buffer is cleared first, so what is not written is
    /// zero; no terminator is counted.
    /// @param buffer  room for `length` bytes; null counts as empty
    /// @param length  in: size of the buffer in bytes; out: characters written
    /// @return false if the message's own check rejected a value; true also if the buffer was too short
    bool serializeToText(char* buffer, unsigned int& length) const;
    /// Writes the binary form into a buffer; otherwise as serializeToText().
    bool serializeToBinary(char* buffer, unsigned int& length) const;
    /// Writes the XML form into a buffer; otherwise as serializeToText(). 20000 bytes hold the longest XML of
    /// any message. A field takes its value, twice its element's name and 13 characters more (3 more than
    /// that in BciLoadLmcAck); `bci decode` shows the names. To be read back the form needs a zero behind
    /// it: a buffer that is at least one byte longer has it.
    bool serializeToXml(char* buffer, unsigned int& length) const;

    /// Reads the text form into this message.
    /// @param buffer  the rendering; null counts as empty
    /// @param length  in: size of the rendering in bytes; out: bytes consumed
    /// @return false if the message's own check rejected a value
    bool deserializeFromText(char* buffer, unsigned int& length);
    /// Reads the binary form into this message.
    /// @param buffer  the rendering; null counts as empty
    /// @param length  in: size of the rendering in bytes; out: bytes consumed
    /// @return false if the message's own check rejected a value
    bool deserializeFromBinary(char* buffer, unsigned int& length);
    /// Reads the XML form into this message.
    /// @param buffer  the rendering, zero-terminated; null holds no element
    /// @param length  out: 0; the terminating zero alone ends the rendering
    /// @return false if an element is missing or the message's own check rejected a value
    bool deserializeFromXml(char* buffer, unsigned int& length);

    /// Registered signal numbers and the factories of their classes. Filled through
    /// registerBciMsgClass(); there from before any static object of the program is made.
    static std::map<SIGSELECT, BciMsgFactory> s_bciRegistrationMap;

protected:
    /// @name Characters that one number takes at most in the text form, by type
    /// @{
    static const unsigned int MAX_BUFFER_LEN_FOR_LONGLONG = 21;  ///< `long long`
    static const unsigned int MAX_BUFFER_LEN_FOR_ULONGLONG = 21; ///< `unsigned long long`
    static const unsigned int MAX_BUFFER_LEN_FOR_LONG = 11;      ///< `long`
    static const unsigned int MAX_BUFFER_LEN_FOR_ULONG = 10;     ///< `unsigned long`
    static const unsigned int MAX_BUFFER_LEN_FOR_SHORT = 6;      ///< `short`
    static const unsigned int MAX_BUFFER_LEN_FOR_USHORT = 5;     ///< `unsigned short`
    static const unsigned int MAX_BUFFER_LEN_FOR_UCHAR = 3;      ///< `unsigned char`
    static const unsigned int MAX_BUFFER_LEN_FOR_CHAR = 4;       ///< `char`
    /// @}

    char* m_bciMessagePtr;           ///< the wire structure
    unsigned short m_bciMessageSize; ///< its size in bytes
    /// Not 0 if the operations write through their stream alone, and none looks at what the buffer holds. Then the
    /// entry points clear only what stays unwritten, and not the whole buffer beforehand. 0, unless a derived
    /// class says otherwise, as the library's own do in builds for speed: what derives from one of these and has a
    /// writer of its own that looks at the buffer sets it back to 0.
    unsigned short m_writesThroughStream;
};

/// Makes the indexed element name of an array field out of its base name: inserts one text and then a
/// second, each at a distance from the end of the text as it stands at that moment. With "snid__", 1, 0,
/// "1" and "3" the result is "snid_1_3".
/// @param text            the base name, changed in place
/// @param firstFromEnd    characters between the first insertion and the end
/// @param secondFromEnd   characters between the second insertion and the end
/// @param first           zero-terminated text to insert first
/// @param second          zero-terminated text to insert second
///
/// A distance longer than the text counts as its whole length.
BCI_API void insertArraySubscripts(std::string& text, unsigned short firstFromEnd, unsigned short secondFromEnd,
                                   const char* first, const char* second);

#endif
