// What the tests of message classes share: codec operations on a buffer whose every byte counts, and the
// pieces that renderings are made of.
#ifndef TESTS_MESSAGE_KIT_H
#define TESTS_MESSAGE_KIT_H

#include "bciMessage.h"

#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <ostream>
#include <string>

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

// An element as the writers lay it out.
std::string element(const std::string& tag, const std::string& content);

// The common header's three elements.
std::string headerElements(const std::string& sigNo = "1", const std::string& clientRef = "2",
                           const std::string& serverRef = "3");

// Takes the first element of a name, from its '<' to the end of its closing tag, out of a document.
std::string without(const std::string& document, const std::string& tag);

// Bytes from numbers: bytes({0x01, 0xFF}).
std::string bytes(std::initializer_list<int> values);
std::string zeros(std::size_t count);
// Numbers as the binary form has them, most significant byte first.
std::string be16(unsigned int value);
std::string be32(unsigned long value);
// The signal number at the start of a binary form: in the host's order.
std::string firstWord(SIGSELECT sigNo);

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

// A message of a class whose wire structure holds `fill` in every byte. There is no run-time type
// information: the factory's result is known to be of the class.
template <typename Message>
std::unique_ptr<Message> filled(std::size_t structureSize, char fill = '\x5A')
{
    std::unique_ptr<Message> message(static_cast<Message*>(Message::instantiateBciMsg(1)));
    const std::string structure(structureSize, fill);
    message->setMsg(structure.data());
    return message;
}

// All bytes of the wire structure.
std::string structureOf(const BciMessageBase& message, std::size_t structureSize);

#endif
