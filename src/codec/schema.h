// The shape of a message, for tools: what a rendering consists of, in wire order. It points at the same
// rows that the codecs read; the codecs themselves never look at it.
#ifndef BCI_CODEC_SCHEMA_H
#define BCI_CODEC_SCHEMA_H

#include "field.h"

#include <cstdint>

namespace bci::codec
{

struct Shape
{
    const char* className;
    const char* structureName;
    unsigned int structureSize; // bytes
    Fields fields;
};

// The number that a field holds in a wire structure of the host. Not for texts.
std::int64_t loadNumber(const Field& field, const char* structure);

// Puts a number there, cut to the field's width.
void storeNumber(const Field& field, std::int64_t number, char* structure);

} // namespace bci::codec

#endif
