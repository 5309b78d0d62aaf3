// What the tests of message classes share: codec operations on a buffer whose every byte counts, the pieces
// that structures and renderings are made of, and checks of what most classes do alike.
#ifndef TESTS_MESSAGE_KIT_H
#define TESTS_MESSAGE_KIT_H

#include "bciMessage.h"
#include "logCapture.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <new>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

constexpr S32 kLowest = -2147483647 - 1;

// What a writing codec operation leaves behind.
struct Written
{
    bool result;
    std::string bytes;   // up to the stream's length
    unsigned int status; // of the stream

    bool operator==(const Written&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Written& written);

constexpr unsigned int kAmple = 32768; // a buffer that is never full

// Writes into a buffer of `capacity` bytes. Fails the test if anything beyond the stream's length or
// outside the buffer changed.
Written writeText(const BciMessageBase& message, unsigned int capacity = kAmple);
Written writeBinary(const BciMessageBase& message, unsigned int capacity = kAmple);
Written writeXml(const BciMessageBase& message, unsigned int capacity = kAmple);

using Writer = Written (*)(const BciMessageBase&, unsigned int);

// Writes into buffers of every size, or every `step` sizes, up to the whole, and one that is a byte larger.
// What is too short takes the beginning.
void expectBeginnings(Writer writer, const BciMessageBase& message, const std::string& whole,
                      unsigned int step = 1);

// What a reading codec operation leaves behind, beside what the message holds then.
struct Read
{
    bool result;
    unsigned int status;   // of the stream
    unsigned int position; // of the stream

    bool operator==(const Read&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Read& read);

// Reads data that end where their allocation ends. Fails the test if the data change. For XML a terminating
// zero stands behind the data, not counted in the stream's length.
Read readText(BciMessageBase& message, const std::string& text);
Read readBinary(BciMessageBase& message, const std::string& bytes);
Read readXml(BciMessageBase& message, const std::string& document);
// From a stream that has failed before and stands at position 20.
Read readXmlOffAFailedStream(BciMessageBase& message, const std::string& document);

using Reader = Read (*)(BciMessageBase&, const std::string&);

// An element as the writers lay it out.
std::string element(const std::string& tag, const std::string& content);

// The common header's three elements.
std::string headerElements(const std::string& sigNo = "1", const std::string& clientRef = "2",
                           const std::string& serverRef = "3");

// Takes the first element of a name, from its '<' to the end of its closing tag, out of a document.
std::string without(const std::string& document, const std::string& tag);

// The length of a rendering, as streams count it.
unsigned int sizeOf(const std::string& rendering);

// Bytes from numbers: bytes({0x01, 0xFF}).
std::string bytes(std::initializer_list<int> values);
std::string zeros(std::size_t count);
// Numbers as the binary form has them, most significant byte first.
std::string be16(unsigned int value);
std::string be32(unsigned long value);
// The signal number at the start of a binary form: in the host's order.
std::string firstWord(SIGSELECT sigNo);
// The header as the binary form has it.
std::string binaryHeader(SIGSELECT sigNo, S32 clientRef, S32 serverRef);

// A value's bytes, in the host's order. For numbers of a structure.
template <typename T>
std::string inMemory(const T& value)
{
    return {reinterpret_cast<const char*>(&value), sizeof value};
}

std::string host16(U16 value);
// The header as the structures have it.
std::string hostHeader(SIGSELECT sigNo, S32 clientRef, S32 serverRef);

constexpr char kFill = '\x5A'; // 'Z': what structures hold where a test says nothing else

// A structure, or a field, of which the beginning is given: the rest is kFill.
std::string filledUp(const std::string& beginning, std::size_t size);

// The cause of a reject, as the structures have it.
std::string rejectCause(U16 errorCode, U16 padding0, const std::string& description, U16 padding1);

// Sets an array of U8 to a text, and all of it behind the text to zero.
template <std::size_t N>
void setText(U8 (&to)[N], const std::string& text)
{
    std::memset(to, 0, N);
    std::memcpy(to, text.data(), text.size() < N ? text.size() : N);
}

// The characters of an array of U8 up to its first zero.
template <std::size_t N>
std::string textOf(const U8 (&from)[N])
{
    return {reinterpret_cast<const char*>(from), strnlen(reinterpret_cast<const char*>(from), N)};
}

// All bytes of the wire structure.
std::string structureOf(const BciMessageBase& message, std::size_t structureSize);

// Gives a message its wire structure. Fails the test if the message does not hold all of it then.
void setStructure(BciMessageBase& message, const std::string& structure);

// A message of a class with this wire structure. There is no run-time type information: the factory's result
// is known to be of the class.
template <typename Message>
std::unique_ptr<Message> holding(const std::string& structure)
{
    std::unique_ptr<Message> message(static_cast<Message*>(Message::instantiateBciMsg(1)));
    setStructure(*message, structure);
    return message;
}

// A message of a class whose wire structure holds `fill` in every byte.
template <typename Message>
std::unique_ptr<Message> filled(std::size_t structureSize, char fill = kFill)
{
    return holding<Message>(std::string(structureSize, fill));
}

// A reading operation and what comes of it.
struct Reading
{
    std::string data;
    Read outcome;
    std::string after; // the structure then; where this ends, it is as it was
    Log log = {};
};

// Reads into a message that holds `before`.
void expectReading(BciMessageBase& message, Reader reader, const std::string& before, const Reading& reading);

// Reads each into a filled message of its own.
template <typename Message>
void expectReadings(Reader reader, std::size_t structureSize, const std::vector<Reading>& readings)
{
    for (const Reading& reading : readings)
    {
        expectReading(*filled<Message>(structureSize), reader, std::string(structureSize, kFill), reading);
    }
}

// Binary data of several lengths, read into filled messages. The structure, which has its fields where the
// binary form has them, is read up to where reading ended.
template <typename Message>
void expectBinaryReadings(const std::string& binary, const std::string& structure,
                          const std::vector<std::pair<std::size_t, Read>>& outcomes)
{
    for (const auto& [length, outcome] : outcomes)
    {
        expectReadings<Message>(readBinary, structure.size(),
                                {{binary.substr(0, length), outcome, structure.substr(0, outcome.position)}});
    }
}

struct Missing
{
    std::string tag;
    std::string format; // of the line in the log
    std::size_t offset; // of the field: what lies in front of it is read
};

// A document with its elements in the order of the fields reads to `structure`. Takes each element out of it, ends
// it within each, and offers a stream without a document, to a message that holds `before`.
void expectEachMissingElementStopsTheReader(BciMessageBase& message, const std::string& before,
                                            const std::string& document, const std::string& structure,
                                            const std::vector<Missing>& elements);

// Likewise, with a filled message.
template <typename Message>
void expectEachMissingElementStopsTheReader(const std::string& document, const std::string& structure,
                                            const std::vector<Missing>& elements)
{
    const std::string before(structure.size(), kFill);
    expectEachMissingElementStopsTheReader(*holding<Message>(before), before, document, structure, elements);
}

// The place of a field in its structure; its type is the first argument: expectField<U16>(&Wire::field, 12).
template <typename Field, typename Wire>
void expectField(Field Wire::*field, std::ptrdiff_t offset)
{
    const Wire wire{};
    const char* const at = reinterpret_cast<const char*>(&(wire.*field));
    EXPECT_EQ(at - reinterpret_cast<const char*>(&wire), offset) << __PRETTY_FUNCTION__;
}

// The size of a signal's structure, and the header at its start.
template <typename Wire>
void expectSignal(std::size_t size)
{
    EXPECT_EQ(sizeof(Wire), size) << __PRETTY_FUNCTION__;
    expectField<SIGSELECT>(&Wire::sigNo, 0);
    expectField<VornNodeCommonAddressInfoS>(&Wire::addressInfo, 4);
    expectField<S32>(&VornNodeCommonAddressInfoS::clientRef, 0);
    expectField<S32>(&VornNodeCommonAddressInfoS::serverRef, 4);
}

// The structure of a message that is made in storage full of kFill. It is to lie in the message's member.
template <typename Message, typename Wire>
std::string constructed(Wire Message::*member, SIGSELECT sigNo)
{
    alignas(Message) unsigned char storage[sizeof(Message)];
    std::memset(storage, kFill, sizeof storage);
    Message* const message = new (storage) Message(sigNo);
    EXPECT_EQ(message->getMsg(), reinterpret_cast<char*>(&(message->*member)));
    std::string structure = structureOf(*message, sizeof(Wire));
    message->~Message();
    return structure;
}

// setMsg() copies the structure, all of it and not a byte more, and the accessors answer from the copy.
void expectSetMsgCopies(BciMessageBase& message, std::size_t structureSize);

// A message that holds its structure in a member: the constructor leaves it as the storage was, setMsg() copies
// it, every message from the factory has its own, and the buffer sizes do not depend on it.
template <typename Message, typename Wire>
void expectOwnStructure(Wire Message::*member, unsigned int maxText, unsigned int maxBinary)
{
    EXPECT_EQ(constructed(member, 23429121), std::string(sizeof(Wire), kFill));
    const auto first = filled<Message>(sizeof(Wire));
    const auto second = filled<Message>(sizeof(Wire));
    expectSetMsgCopies(*first, sizeof(Wire));
    EXPECT_EQ(structureOf(*second, sizeof(Wire)), std::string(sizeof(Wire), kFill));
    for (const auto& message : {first.get(), second.get()})
    {
        EXPECT_EQ(message->getMsg(), reinterpret_cast<char*>(&(message->*member)));
        EXPECT_EQ(message->getDelim(), ':');
        EXPECT_EQ(message->getMaxTextBufferSize(), maxText);
        EXPECT_EQ(message->getMaxBinaryBufferSize(), maxBinary);
    }
}

// While it lives, the C library fills fresh memory of the heap with one byte. Blocks that were freed and kept
// for reuse it may hand out as they are. Under the address sanitizer memory is filled in any case.
class FilledHeap
{
public:
    FilledHeap();
    ~FilledHeap();
    FilledHeap(const FilledHeap&) = delete;
    FilledHeap& operator=(const FilledHeap&) = delete;

    char fill() const;

    // A message of a class that has its structure in a block of the heap, freshly filled and as the
    // constructor leaves it. Makes as many as it takes; if none has such a block the last one is returned.
    template <typename Message>
    std::unique_ptr<Message> make(SIGSELECT sigNo, std::size_t blockSize) const
    {
        std::vector<std::unique_ptr<Message>> messages;
        do
        {
            messages.push_back(std::make_unique<Message>(sigNo));
        } while (messages.size() < 1000 && !isFresh(messages.back()->getMsg(), blockSize));
        return std::move(messages.back());
    }

private:
    // Allocates nothing: what it freed would be the next message's block.
    bool isFresh(const char* block, std::size_t size) const;

    char m_fill;
};

#endif
