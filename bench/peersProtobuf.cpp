// Protocol buffers: the wire format for binary, their text format for text. One message object per type is used
// again and again, as is recommended; it is filled from the wire structure and read back into it.

#include "peers.h"

#include "messages.pb.h"

#include <google/protobuf/io/zero_copy_stream_impl_lite.h>
#include <google/protobuf/text_format.h>

namespace bench
{

namespace
{

// From the structure into the message.

template <std::size_t N>
void assign(std::string* to, const U8 (&text)[N])
{
    to->assign(textOf(text));
}

template <typename Wire, typename Message>
void setHeader(const Wire& from, Message& to)
{
    to.set_sig_no(from.sigNo);
    to.set_client_ref(from.addressInfo.clientRef);
    to.set_server_ref(from.addressInfo.serverRef);
}

void convert(const GenericMsgS& from, proto::GenericMsg& to)
{
    setHeader(from, to);
}

void convert(const VornBcAuditCfmS& from, proto::AuditCfm& to)
{
    setHeader(from, to);
    to.set_main_state(from.mainState);
}

void convert(const GenericRejMsgS& from, proto::GenericRejMsg& to)
{
    setHeader(from, to);
    to.set_error_code(from.cause.errorCode);
    to.set_padding0(from.cause.padding0);
    assign(to.mutable_error_description(), from.cause.errorDescription);
    to.set_padding1(from.cause.padding1);
}

void convert(const VornBcGetHwPidCfmS& from, proto::GetHwPidCfm& to)
{
    setHeader(from, to);
    assign(to.mutable_production_date(), from.productionDate);
    to.set_padding0(from.padding0);
    to.set_padding1(from.padding1);
    assign(to.mutable_product_name(), from.productName);
    to.set_padding2(from.padding2);
    to.set_padding3(from.padding3);
    assign(to.mutable_product_number(), from.productNumber);
    to.set_padding4(from.padding4);
    to.set_padding5(from.padding5);
    assign(to.mutable_product_revision(), from.productRevision);
    to.set_padding6(from.padding6);
    to.set_padding7(from.padding7);
    assign(to.mutable_serial_number(), from.serialNumber);
}

void convert(const VornBcLoadingSupportS& from, proto::Loading& to)
{
    to.set_loadable(from.loadable);
    to.set_flash(from.flash);
    to.set_file_system_access(from.fileSystemAccess);
    to.set_padding0(from.padding0);
    to.set_block_size(from.blockSize);
}

void convert(const VornBcEthTermSupportS& from, proto::EthernetTermination& to)
{
    to.set_padding0(from.padding0);
    for (const VornBcEthTermHostParamsS& host : std::span(from.ethTermHostParam).first(from.numOfEthTermHosts))
    {
        proto::Host& added = *to.add_hosts();
        added.set_snid(host.snid);
        added.set_term_role(host.termRole);
    }
}

void convert(const VornBcEthHwIfSupportS& from, proto::EthernetInterface& to)
{
    to.set_local_switch_port_nr(from.localSwitchPortNr);
    for (const VornBcEthLinkParamS& link : std::span(from.ethLinkParam).first(from.numOfEthLinks))
    {
        proto::Link& added = *to.add_links();
        added.set_port_nr(link.portNr);
        added.set_snid(link.snid);
        added.set_band_width(link.bandWidth);
        added.set_direction(link.direction);
    }
}

void convert(const VornBcClimateControlSupportS& from, proto::Climate& to)
{
    to.set_padding0(from.padding0);
    for (const VornBcHotspotParamListS& sensor :
         std::span(from.hotspotParamList).first(from.numOfHotspotTempSensors))
    {
        proto::Sensor& added = *to.add_sensors();
        added.set_set_point(sensor.setPoint);
        added.set_cooling_gain(sensor.coolingGain);
        added.set_time_constant(sensor.timeConstant);
        added.set_padding0(sensor.padding0);
    }
}

void convert(const CapabilityCfm& from, proto::CapabilityCfm& to)
{
    to.Clear(); // keeps the elements' memory
    setHeader(from, to);
    to.set_padding0(from.padding0);
    for (const VornBcBoardCapabilityS& capability :
         std::span(from.boardCapabilities).first(from.numberOfBoardCapabilities))
    {
        proto::Capability& added = *to.add_capabilities();
        added.set_identity(capability.boardCapabilityIdentity);
        added.set_length(capability.boardCapabilityLength);
        switch (capability.boardCapabilityIdentity)
        {
        case 1:
            convert(capability.capability.boardLoading, *added.mutable_loading());
            break;
        case 4:
            convert(capability.capability.boardEthTerm, *added.mutable_ethernet_termination());
            break;
        case 5:
            convert(capability.capability.boardEthHwIf, *added.mutable_ethernet_interface());
            break;
        case 6:
            convert(capability.capability.boardClimate, *added.mutable_climate());
            break;
        default:
            break;
        }
    }
}

// And back.

template <typename Number, typename From>
void get(Number& to, From from)
{
    to = static_cast<Number>(from);
}

template <typename Wire, typename Message>
void getHeader(const Message& from, Wire& to)
{
    get(to.sigNo, from.sig_no());
    get(to.addressInfo.clientRef, from.client_ref());
    get(to.addressInfo.serverRef, from.server_ref());
}

bool convertBack(const proto::GenericMsg& from, GenericMsgS& to)
{
    getHeader(from, to);
    return true;
}

bool convertBack(const proto::AuditCfm& from, VornBcAuditCfmS& to)
{
    getHeader(from, to);
    get(to.mainState, from.main_state());
    return true;
}

bool convertBack(const proto::GenericRejMsg& from, GenericRejMsgS& to)
{
    getHeader(from, to);
    get(to.cause.errorCode, from.error_code());
    get(to.cause.padding0, from.padding0());
    setText(to.cause.errorDescription, from.error_description());
    get(to.cause.padding1, from.padding1());
    return true;
}

bool convertBack(const proto::GetHwPidCfm& from, VornBcGetHwPidCfmS& to)
{
    getHeader(from, to);
    setText(to.productionDate, from.production_date());
    get(to.padding0, from.padding0());
    get(to.padding1, from.padding1());
    setText(to.productName, from.product_name());
    get(to.padding2, from.padding2());
    get(to.padding3, from.padding3());
    setText(to.productNumber, from.product_number());
    get(to.padding4, from.padding4());
    get(to.padding5, from.padding5());
    setText(to.productRevision, from.product_revision());
    get(to.padding6, from.padding6());
    get(to.padding7, from.padding7());
    setText(to.serialNumber, from.serial_number());
    return true;
}

bool convertBack(const proto::Loading& from, VornBcLoadingSupportS& to)
{
    get(to.loadable, from.loadable());
    get(to.flash, from.flash());
    get(to.fileSystemAccess, from.file_system_access());
    get(to.padding0, from.padding0());
    get(to.blockSize, from.block_size());
    return true;
}

// Whether the elements fit the array; if so they are counted.
template <typename Elements, typename Element, std::size_t N>
bool count(const Elements& from, const Element (&)[N], U16& count)
{
    count = static_cast<U16>(from.size());
    return from.size() <= static_cast<int>(N);
}

bool convertBack(const proto::EthernetTermination& from, VornBcEthTermSupportS& to)
{
    get(to.padding0, from.padding0());
    if (!count(from.hosts(), to.ethTermHostParam, to.numOfEthTermHosts))
    {
        return false;
    }
    VornBcEthTermHostParamsS* host = to.ethTermHostParam;
    for (const proto::Host& read : from.hosts())
    {
        get(host->snid, read.snid());
        get(host->termRole, read.term_role());
        ++host;
    }
    return true;
}

bool convertBack(const proto::EthernetInterface& from, VornBcEthHwIfSupportS& to)
{
    get(to.localSwitchPortNr, from.local_switch_port_nr());
    if (!count(from.links(), to.ethLinkParam, to.numOfEthLinks))
    {
        return false;
    }
    VornBcEthLinkParamS* link = to.ethLinkParam;
    for (const proto::Link& read : from.links())
    {
        get(link->portNr, read.port_nr());
        get(link->snid, read.snid());
        get(link->bandWidth, read.band_width());
        get(link->direction, read.direction());
        ++link;
    }
    return true;
}

bool convertBack(const proto::Climate& from, VornBcClimateControlSupportS& to)
{
    get(to.padding0, from.padding0());
    if (!count(from.sensors(), to.hotspotParamList, to.numOfHotspotTempSensors))
    {
        return false;
    }
    VornBcHotspotParamListS* sensor = to.hotspotParamList;
    for (const proto::Sensor& read : from.sensors())
    {
        get(sensor->setPoint, read.set_point());
        get(sensor->coolingGain, read.cooling_gain());
        get(sensor->timeConstant, read.time_constant());
        get(sensor->padding0, read.padding0());
        ++sensor;
    }
    return true;
}

bool convertBack(const proto::Capability& from, VornBcBoardCapabilityS& to)
{
    get(to.boardCapabilityIdentity, from.identity());
    get(to.boardCapabilityLength, from.length());
    switch (from.identity())
    {
    case 1:
        return convertBack(from.loading(), to.capability.boardLoading);
    case 3:
        return true;
    case 4:
        return convertBack(from.ethernet_termination(), to.capability.boardEthTerm);
    case 5:
        return convertBack(from.ethernet_interface(), to.capability.boardEthHwIf);
    case 6:
        return convertBack(from.climate(), to.capability.boardClimate);
    default:
        return false;
    }
}

bool convertBack(const proto::CapabilityCfm& from, CapabilityCfm& to)
{
    getHeader(from, to);
    get(to.padding0, from.padding0());
    if (!count(from.capabilities(), to.boardCapabilities, to.numberOfBoardCapabilities))
    {
        return false;
    }
    VornBcBoardCapabilityS* capability = to.boardCapabilities;
    for (const proto::Capability& read : from.capabilities())
    {
        if (!convertBack(read, *capability++))
        {
            return false;
        }
    }
    return true;
}

template <typename Wire>
struct MessageOf;
template <>
struct MessageOf<GenericMsgS>
{
    using Type = proto::GenericMsg;
};
template <>
struct MessageOf<VornBcAuditCfmS>
{
    using Type = proto::AuditCfm;
};
template <>
struct MessageOf<GenericRejMsgS>
{
    using Type = proto::GenericRejMsg;
};
template <>
struct MessageOf<VornBcGetHwPidCfmS>
{
    using Type = proto::GetHwPidCfm;
};
template <>
struct MessageOf<CapabilityCfm>
{
    using Type = proto::CapabilityCfm;
};

// Made once, and never destroyed.
template <typename Wire>
typename MessageOf<Wire>::Type& sharedMessage()
{
    static auto& message = *new typename MessageOf<Wire>::Type;
    return message;
}

template <typename Wire>
[[gnu::noinline]] unsigned int encodeBinary(const Wire& wire, char* buffer, unsigned int size)
{
    auto& message = sharedMessage<Wire>();
    convert(wire, message);
    return message.SerializeToArray(buffer, static_cast<int>(size))
               ? static_cast<unsigned int>(message.GetCachedSize())
               : 0;
}

template <typename Wire>
[[gnu::noinline]] bool decodeBinary(const char* data, unsigned int size, Wire& wire)
{
    auto& message = sharedMessage<Wire>();
    return message.ParseFromArray(data, static_cast<int>(size)) && convertBack(message, wire);
}

template <typename Wire>
[[gnu::noinline]] unsigned int encodeText(const Wire& wire, char* buffer, unsigned int size)
{
    auto& message = sharedMessage<Wire>();
    convert(wire, message);
    google::protobuf::io::ArrayOutputStream stream(buffer, static_cast<int>(size));
    return google::protobuf::TextFormat::Print(message, &stream) ? static_cast<unsigned int>(stream.ByteCount())
                                                                 : 0;
}

template <typename Wire>
[[gnu::noinline]] bool decodeText(const char* data, unsigned int size, Wire& wire)
{
    auto& message = sharedMessage<Wire>();
    google::protobuf::io::ArrayInputStream stream(data, static_cast<int>(size));
    return google::protobuf::TextFormat::Parse(&stream, &message) && convertBack(message, wire);
}

} // namespace

void registerProtobuf()
{
    GOOGLE_PROTOBUF_VERIFY_VERSION;
    forEachSubject(
        []<typename S>(const S& subject)
        {
            using Wire = typename S::Wire;
            registerOwnForm(subject, Form::binary, "protobuf", &encodeBinary<Wire>, &decodeBinary<Wire>);
            registerOwnForm(subject, Form::text, "protobuf", &encodeText<Wire>, &decodeText<Wire>);
        });
}

} // namespace bench
