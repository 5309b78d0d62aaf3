#include "bciMsgRegistration.h"

#include "bciAuditMsg.h"

namespace
{

struct Registration
{
    SIGSELECT sigNo;
    BciMsgFactory factory;
};

constexpr Registration kRegistrations[] = {
    {BCI_AUDIT_CFM, &BciAuditCfm::instantiateBciMsg},
};

} // namespace

void BciMsgRegistry::registerSupportedMsgClasses()
{
    for (const Registration& registration : kRegistrations)
    {
        BciMessageBase::registerBciMsgClass(registration.sigNo, registration.factory);
    }
}
