/// @file
/// The message in which a board reports what it can do.
#ifndef BCI_CAPABILITY_MSG_H
#define BCI_CAPABILITY_MSG_H

#include "bciApi.h"
#include "bciMessage.h"
#include "vornBcBasic.h"

/// Capability confirm: a list of at most two capabilities, each one of five kinds.
///
/// Six operations, six sets of checks: a count above 2 is rejected by all but the binary reader, which
/// keeps it and reads two capabilities; hosts above 4 and links above 10 are rejected by the XML writer
/// alone, sensors above 10 by the XML writer and reader. Elsewhere such a count is carried as it stands,
/// and the elements up to the bound with it. An identity other than 1, 3, 4, 5 and 6 is rejected by all.
class BCI_API BciCapabilityCfmMsg : public BciMessageBase
{
public:
    /// Allocates the wire structure, 192 bytes, and leaves it as the allocation held it; the signal number
    /// is not stored either. If there is no memory getMsg() is null, and the object good for nothing but
    /// being destroyed; instantiateBciMsg() never hands out such an object.
    /// @param sigNo  the signal number
    explicit BciCapabilityCfmMsg(SIGSELECT sigNo);
    /// Frees the wire structure.
    ~BciCapabilityCfmMsg() override;

    /// @param sigNo  the signal number
    /// @return a new message, which the caller deletes; null if it could not be allocated
    static BciMessageBase* instantiateBciMsg(SIGSELECT sigNo);

    SIGSELECT getSigNo() const override;
    VornNodeCommonAddressInfoS getAddressInfo() const override;
    /// @return 16 and 88 more for each capability, by the count that the message holds, whatever it is
    unsigned int getMaxBinaryBufferSize() override;
    /// @return 332, whatever the message holds; the longest text of two capabilities takes more
    unsigned int getMaxTextBufferSize() override;

    bool serializeBciMsgToText(commonStream::ostream_text& stream) const override;
    bool serializeBciMsgToBinary(commonStream::ostream_binary& stream) const override;
    bool serializeBciMsgToXml(commonStream::ostream_text& stream) const override;
    bool deserializeBciMsgFromText(commonStream::istream_text& stream) override;
    bool deserializeBciMsgFromBinary(commonStream::istream_binary& stream) override;
    bool deserializeBciMsgFromXml(commonStream::istream_text& stream) override;

    VornBcGetCapabilitiesCfmS* m_bciCapabilityCfmMsg; ///< the wire structure, owned by the message
};

#endif
