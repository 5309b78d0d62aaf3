// A program that somebody else wrote: it includes every public header, and sends a signal through all three forms.

#include "bciAuditMsg.h"
#include "bciCapabilityMsg.h"
#include "bciCommonMsg.h"
#include "bciConnEstablishMsg.h"
#include "bciFaultMsg.h"
#include "bciHwMsg.h"
#include "bciLoadLmcInitMsg.h"
#include "bciLoadLmcMsg.h"
#include "bciMaintStateMsg.h"
#include "bciMmiMsg.h"
#include "bciMsgRegistration.h"
#include "bciRestartBoardMsg.h"
#include "bciTempMeasMsg.h"
#include "bciUtcTimeMsg.h"
#include "bciVisualIndicationMsg.h"
#include "vornBcEth.h"

#include <cstdio>

namespace
{

typedef bool (BciMessageBase::*Writer)(char*, unsigned int&) const;
typedef bool (*Reader)(char*, unsigned int&, BciMessageBase*&);

void passThrough(const char* form, const BciAuditCfm& confirm, Writer write, Reader read)
{
    char buffer[512] = {};
    unsigned int written = sizeof buffer;
    (confirm.*write)(buffer, written);
    unsigned int length = sizeof buffer;
    BciMessageBase* message = nullptr;
    if (!read(buffer, length, message))
    {
        std::printf("%s: not read\n", form);
        return;
    }
    const VornBcAuditCfmS& received = static_cast<BciAuditCfm*>(message)->m_auditCfm;
    std::printf("%s: %u written, signal %lu, from %ld to %ld, state %d\n", form, written,
                static_cast<unsigned long>(received.sigNo), static_cast<long>(received.addressInfo.clientRef),
                static_cast<long>(received.addressInfo.serverRef), received.mainState);
    delete message;
}

} // namespace

int main()
{
    std::printf("C++ %ld\n", __cplusplus);
    BciMsgRegistry::registerSupportedMsgClasses();
    BciAuditCfm confirm(BCI_AUDIT_CFM);
    confirm.m_auditCfm.sigNo = BCI_AUDIT_CFM;
    confirm.m_auditCfm.addressInfo.clientRef = 1;
    confirm.m_auditCfm.addressInfo.serverRef = -7;
    confirm.m_auditCfm.mainState = 3;
    passThrough("text", confirm, &BciMessageBase::serializeToText, &BciMessageBase::instantiateBciMsgFromText);
    passThrough("binary", confirm, &BciMessageBase::serializeToBinary,
                &BciMessageBase::instantiateBciMsgFromBinary);
    passThrough("xml", confirm, &BciMessageBase::serializeToXml, &BciMessageBase::instantiateBciMsgFromXml);
}
