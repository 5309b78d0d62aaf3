// The shapes of all messages. Each is defined beside its message's rows.
#ifndef BCI_SHAPES_H
#define BCI_SHAPES_H

#include "codec/schema.h"

namespace bci
{

extern const codec::Shape kAuditCfmShape;

} // namespace bci

#endif
