// Writes an audit confirm as text, and reads one back from a buffer whose signal is not known beforehand.

#include "bciAuditMsg.h"
#include "bciMsgRegistration.h"

#include <cstdio>

int main()
{
    BciMsgRegistry::registerSupportedMsgClasses(); // once, at start-up

    BciAuditCfm confirm(BCI_AUDIT_CFM);
    confirm.m_auditCfm.sigNo = BCI_AUDIT_CFM; // the constructor fills nothing in
    confirm.m_auditCfm.addressInfo.clientRef = 1;
    confirm.m_auditCfm.addressInfo.serverRef = 2;
    confirm.m_auditCfm.mainState = 3;

    char buffer[64];
    unsigned int length = sizeof buffer; // in: the buffer's size, out: the characters written
    confirm.serializeToText(buffer, length);
    std::printf("%u characters: %s\n", length, buffer);

    BciMessageBase* message = nullptr;
    length = sizeof buffer; // in: the data's size, out: the characters consumed
    if (BciMessageBase::instantiateBciMsgFromText(buffer, length, message) && message->getSigNo() == BCI_AUDIT_CFM)
    {
        const BciAuditCfm& received = *static_cast<BciAuditCfm*>(message);
        std::printf("main state: %d\n", received.m_auditCfm.mainState);
    }
    delete message;
}
