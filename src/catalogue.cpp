#include "catalogue.h"

#include "bciMsgRegistration.h"

namespace bci
{

namespace
{

constexpr Signal kSignals[] = {
    {BCI_AUDIT_CFM, "BCI_AUDIT_CFM", &kAuditCfmShape},
};

} // namespace

std::span<const Signal> signals()
{
    return kSignals;
}

const Signal* findSignal(SIGSELECT number)
{
    for (const Signal& signal : kSignals)
    {
        if (signal.number == number)
        {
            return &signal;
        }
    }
    return nullptr;
}

} // namespace bci
