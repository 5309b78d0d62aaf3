// The shape of a message, for tools: what a rendering consists of, in wire order. It points at the same
// rows that the codecs read; the codecs themselves never look at it.
#ifndef BCI_CODEC_SCHEMA_H
#define BCI_CODEC_SCHEMA_H

#include "field.h"

namespace bci::codec
{

struct Shape
{
    const char* className;
    const char* structureName;
    unsigned int structureSize; // bytes
    Fields fields;
};

} // namespace bci::codec

#endif
