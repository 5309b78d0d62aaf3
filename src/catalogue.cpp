#include "catalogue.h"

#include "bciMsgRegistration.h"

namespace bci
{

namespace
{

constexpr Signal kSignals[] = {
    {BCI_AUDIT_CFM, "BCI_AUDIT_CFM", &kAuditCfmShape},
};

// By this, tools tell the two byte orders of a first word apart.
constexpr bool noNumberIsOneInBothOrders()
{
    for (const Signal& one : kSignals)
    {
        for (const Signal& other : kSignals)
        {
            if (one.number == turnedRound(other.number))
            {
                return false;
            }
        }
    }
    return true;
}
static_assert(noNumberIsOneInBothOrders());

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
