// The public headers over the type header of a kernel.

#include "bciAuditMsg.h"
#include "bciMsgRegistration.h"

#if !defined(TESTS_KERNEL_TYPES)
#error "the kernel's type header was not used"
#endif
