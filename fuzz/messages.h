// Messages for the harnesses: made from inputs, noted in traces, held against a strict reading.
#ifndef FUZZ_MESSAGES_H
#define FUZZ_MESSAGES_H

#include "bciMessage.h"
#include "catalogue.h"
#include "harness.h"
#include "input.h"

namespace bci::fuzz
{

using tool::Form;

// One signal of each message class, in the order of the classes' names.
const std::vector<Signal>& classes();

// The class that an input names by its next byte.
const Signal& classOf(Input& input);

// One message of a class, always the same.
BciMessageBase& messageOf(const Signal& signal);

// Fills a message from an input: numbers big-endian, texts and blocks byte by byte. What lies beyond counts is
// filled with one byte.
void fill(const Signal& signal, BciMessageBase& message, char beyond, Input& input);

// Fills a message all alike: below 0x80 every byte with that value, else every number with its low five bits.
void fill(const Signal& signal, BciMessageBase& message, std::uint8_t value);

// The values of a message's fields, in the order of the binary form.
std::string valuesOf(const Signal& signal, const BciMessageBase& message);

// Notes all of a message's wire structure.
void add(Trace& trace, const Signal& signal, const BciMessageBase& message);

bool write(const BciMessageBase& message, Form form, char* buffer, unsigned int& length);
bool read(BciMessageBase& message, Form form, char* buffer, unsigned int& length);

// What stands in a buffer behind a rendering of a form.
inline std::string_view endOf(Form form)
{
    return form == Form::xml ? std::string_view("\0", 1) : std::string_view();
}

// Whether a form promises that the codec reads what its own writer writes of a structure.
bool isPromised(const Signal& signal, Form form, char* structure);

// That a message has read the fields of a structure, as far as a form carries them: numbers in XML up to the
// largest of a signed number, texts up to their terminator.
void expectSameFields(const Signal& signal, Form form, char* structure, const BciMessageBase& message);

// Holds what a message has read of a rendering (in the host's byte order; XML with a zero behind it) against a
// strict reading: without damage, the values and what was consumed are the same; without any finding, the codec
// writes the same bytes for them. Returns whether there is no damage, and the form promises to bring back such
// values.
bool compareWithStrictReading(const Signal& signal, Form form, std::string_view rendering, bool result,
                              unsigned int consumed, const BciMessageBase& message);

// Instantiates a message from an input, and notes all about it.
void instantiate(Input input, Form form, Trace& trace);

// Reads an input into a message of any class, and notes all about it.
void deserialize(Input input, Form form, Trace& trace);

} // namespace bci::fuzz

#endif
