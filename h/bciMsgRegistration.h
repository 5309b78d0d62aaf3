/// @file
/// The signal numbers of the board control interface, and their registration.
#ifndef BCI_MSG_REGISTRATION_H
#define BCI_MSG_REGISTRATION_H

#include "bciApi.h"
#include "scalarTypes.h"

/// Audit confirm, BciAuditCfm.
constexpr SIGSELECT BCI_AUDIT_CFM = 0x1658401;

/// Binds the signal numbers to their message classes.
class BCI_API BciMsgRegistry
{
public:
    /// Registers every signal number that the library knows. To be called once, before messages are
    /// created from buffers; the library never calls it itself. Calling it again changes nothing.
    static void registerSupportedMsgClasses();
};

#endif
