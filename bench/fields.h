// The fields of the peers' messages, named once: visit() hands a structure's fields to a visitor, all that stand
// next to each other in one call.
//
// A visitor is called with rows, and answers whether to go on. For the capability confirm it has two members more:
//   list<depth>(count, elements)  the elements of an array, of which so many are there
//   choice(identity, content)     the member of the union
// which it does best with the functions visitElements() and visitContent() below.
#ifndef BENCH_FIELDS_H
#define BENCH_FIELDS_H

#include "contents.h"

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <type_traits>

// Field by field there is nothing left of the visitors in the machine code.
#define BENCH_INLINE [[gnu::always_inline]] inline

namespace bench
{

// Where XML leaves the common way.
enum class Oddity
{
    none,
    bareOpening,   // no tab in front, one blank more behind
    notReadFromXml // passed over by the reader
};

// The name of an XML element. A tag that ends in one underscore receives an index behind it, one that ends in two
// receives one between them and one behind.
struct Name
{
    char text[40] = {}; // with '0' in the place of indexes
    std::size_t size = 0;
    std::size_t first = 0; // where they stand; 0 if there is none
    std::size_t second = 0;

    // With indexes below 10.
    BENCH_INLINE void put(char* to, const unsigned int (&indexes)[2]) const
    {
        std::memcpy(to, text, size);
        if (first != 0)
        {
            to[first] = static_cast<char>('0' + indexes[0]);
        }
        if (second != 0)
        {
            to[second] = static_cast<char>('0' + indexes[1]);
        }
    }
};

consteval Name makeName(std::string_view tag)
{
    Name name;
    const auto append = [&name](std::string_view text)
    {
        std::copy(text.begin(), text.end(), name.text + name.size);
        name.size += text.size();
    };
    const bool twofold = tag.ends_with("__");
    append(tag.substr(0, tag.size() - (twofold ? 1 : 0)));
    if (tag.ends_with("_"))
    {
        name.first = name.size;
        append("0");
    }
    if (twofold)
    {
        append("_");
        name.second = name.size;
        append("0");
    }
    return name;
}

template <std::size_t N>
struct Tag
{
    char text[N];

    consteval Tag(const char (&literal)[N])
    {
        std::copy_n(literal, N, text);
    }
};

// A field. `Member` is const where the structure is.
template <Tag kTag, typename Member, Oddity kTheOddity>
struct Row
{
    using Value = std::remove_const_t<Member>;
    static constexpr const char* kTagText = kTag.text;
    static constexpr Name kName = makeName(kTag.text);
    static constexpr Oddity kOddity = kTheOddity;
    static constexpr bool kIsText = std::is_array_v<Member>;

    Member& member;
};

template <Tag kTag, Oddity kOddity = Oddity::none, typename Member>
constexpr Row<kTag, Member, kOddity> row(Member& member)
{
    return {member};
}

// A size that the compiler does not know. Where it knows that a block is small, and not how small, it may copy or
// clear it by a string instruction, which takes longer to start than a call of the C library.
inline std::size_t hidden(std::size_t size)
{
    asm("" : "+r"(size));
    return size;
}

// The characters of a text, up to its first zero.
template <std::size_t N>
std::string_view textOf(const U8 (&text)[N])
{
    const char* const characters = reinterpret_cast<const char*>(text);
    return {characters, strnlen(characters, N)};
}

// Texts that are too long are cut. The rest of the array is left alone.
template <std::size_t N>
void setText(U8 (&to)[N], std::string_view text)
{
    const std::size_t size = std::min(text.size(), N - 1);
    std::memcpy(to, text.data(), hidden(size));
    to[size] = 0;
}

template <typename S, typename Wire>
concept Like = std::same_as<std::remove_const_t<S>, Wire>;

template <Like<GenericMsgS> S, typename Visitor>
BENCH_INLINE constexpr bool visit(S& message, Visitor& visitor)
{
    return visitor(row<"sigNo">(message.sigNo), row<"clientRef">(message.addressInfo.clientRef),
                   row<"serverRef">(message.addressInfo.serverRef));
}

template <Like<VornBcAuditCfmS> S, typename Visitor>
BENCH_INLINE constexpr bool visit(S& message, Visitor& visitor)
{
    return visitor(row<"sigNo">(message.sigNo), row<"clientRef">(message.addressInfo.clientRef),
                   row<"serverRef">(message.addressInfo.serverRef), row<"mainState">(message.mainState));
}

template <Like<GenericRejMsgS> S, typename Visitor>
BENCH_INLINE constexpr bool visit(S& message, Visitor& visitor)
{
    return visitor(row<"sigNo">(message.sigNo), row<"clientRef">(message.addressInfo.clientRef),
                   row<"serverRef">(message.addressInfo.serverRef), row<"errorCode">(message.cause.errorCode),
                   row<"rejectCausePadding0">(message.cause.padding0),
                   row<"errorDescription">(message.cause.errorDescription),
                   row<"rejectCausePadding1">(message.cause.padding1));
}

template <Like<VornBcGetHwPidCfmS> S, typename Visitor>
BENCH_INLINE constexpr bool visit(S& message, Visitor& visitor)
{
    return visitor(row<"sigNo">(message.sigNo), row<"clientRef">(message.addressInfo.clientRef),
                   row<"serverRef">(message.addressInfo.serverRef), row<"productionDate">(message.productionDate),
                   row<"padding0">(message.padding0), row<"padding1">(message.padding1),
                   row<"productName">(message.productName), row<"padding2">(message.padding2),
                   row<"padding3", Oddity::bareOpening>(message.padding3),
                   row<"productNumber">(message.productNumber), row<"padding4">(message.padding4),
                   row<"padding5">(message.padding5), row<"productRevision">(message.productRevision),
                   row<"padding6">(message.padding6), row<"padding7">(message.padding7),
                   row<"serialNumber", Oddity::notReadFromXml>(message.serialNumber));
}

template <Like<VornBcLoadingSupportS> S, typename Visitor>
BENCH_INLINE constexpr bool visit(S& support, Visitor& visitor)
{
    return visitor(row<"loadable">(support.loadable), row<"flash">(support.flash),
                   row<"fileSystemAccess">(support.fileSystemAccess),
                   row<"loadingSupportPadding0">(support.padding0), row<"blockSize">(support.blockSize));
}

template <Like<VornBcEthTermHostParamsS> S, typename Visitor>
BENCH_INLINE constexpr bool visit(S& host, Visitor& visitor)
{
    return visitor(row<"snid__">(host.snid), row<"termRole__">(host.termRole));
}

template <Like<VornBcEthTermSupportS> S, typename Visitor>
BENCH_INLINE constexpr bool visit(S& support, Visitor& visitor)
{
    return visitor(row<"numOfEthTermHosts">(support.numOfEthTermHosts),
                   row<"ethTermSupportPadding0">(support.padding0)) &&
           visitor.template list<1>(support.numOfEthTermHosts, support.ethTermHostParam);
}

template <Like<VornBcEthLinkParamS> S, typename Visitor>
BENCH_INLINE constexpr bool visit(S& link, Visitor& visitor)
{
    return visitor(row<"portNr__">(link.portNr), row<"snid__">(link.snid), row<"bandWidth__">(link.bandWidth),
                   row<"direction__">(link.direction));
}

template <Like<VornBcEthHwIfSupportS> S, typename Visitor>
BENCH_INLINE constexpr bool visit(S& support, Visitor& visitor)
{
    return visitor(row<"localSwitchPortNr">(support.localSwitchPortNr),
                   row<"numOfEthLinks">(support.numOfEthLinks)) &&
           visitor.template list<1>(support.numOfEthLinks, support.ethLinkParam);
}

template <Like<VornBcHotspotParamListS> S, typename Visitor>
BENCH_INLINE constexpr bool visit(S& sensor, Visitor& visitor)
{
    return visitor(row<"setPoint__">(sensor.setPoint), row<"coolingGain__">(sensor.coolingGain),
                   row<"timeConstant__">(sensor.timeConstant), row<"padding0__">(sensor.padding0));
}

template <Like<VornBcClimateControlSupportS> S, typename Visitor>
BENCH_INLINE constexpr bool visit(S& support, Visitor& visitor)
{
    return visitor(row<"numOfHotspotTempSensors">(support.numOfHotspotTempSensors),
                   row<"climateControlPadding0">(support.padding0)) &&
           visitor.template list<1>(support.numOfHotspotTempSensors, support.hotspotParamList);
}

template <Like<VornBcBoardCapabilityS> S, typename Visitor>
BENCH_INLINE constexpr bool visit(S& capability, Visitor& visitor)
{
    return visitor(row<"boardCapabilityIdentity_">(capability.boardCapabilityIdentity),
                   row<"boardCapabilityLength_">(capability.boardCapabilityLength)) &&
           visitor.choice(capability.boardCapabilityIdentity, capability.capability);
}

template <Like<CapabilityCfm> S, typename Visitor>
BENCH_INLINE constexpr bool visit(S& message, Visitor& visitor)
{
    return visitor(row<"sigNo">(message.sigNo), row<"clientRef">(message.addressInfo.clientRef),
                   row<"serverRef">(message.addressInfo.serverRef),
                   row<"numberOfBoardCapabilities">(message.numberOfBoardCapabilities),
                   row<"padding0">(message.padding0)) &&
           visitor.template list<0>(message.numberOfBoardCapabilities, message.boardCapabilities);
}

// Visits as many elements as are there, `index` counting them. False if there is no room for them.
template <typename Element, std::size_t N, typename Visitor>
BENCH_INLINE bool visitElements(unsigned int count, Element (&elements)[N], unsigned int& index, Visitor& visitor)
{
    static_assert(N <= 10, "names have room for one digit");
    if (count > N)
    {
        return false;
    }
    for (index = 0; index < count; ++index)
    {
        if (!visit(elements[index], visitor))
        {
            return false;
        }
    }
    return true;
}

// Visits the member of the union. False if there is none for the identity.
template <Like<VornBcCapabilityUnionU> S, typename Visitor>
BENCH_INLINE bool visitContent(S16 identity, S& content, Visitor& visitor)
{
    switch (identity)
    {
    case 1:
        return visit(content.boardLoading, visitor);
    case 3:
        return true;
    case 4:
        return visit(content.boardEthTerm, visitor);
    case 5:
        return visit(content.boardEthHwIf, visitor);
    case 6:
        return visit(content.boardClimate, visitor);
    default:
        return false;
    }
}

// What visitors that go through lists and unions field by field have in common.
template <typename Visitor>
class Nesting
{
public:
    template <unsigned int depth, typename Element, std::size_t N>
    BENCH_INLINE bool list(unsigned int count, Element (&elements)[N])
    {
        return visitElements(count, elements, m_indexes[depth], static_cast<Visitor&>(*this));
    }

    template <typename Union>
    BENCH_INLINE bool choice(S16 identity, Union& content)
    {
        return visitContent(identity, content, static_cast<Visitor&>(*this));
    }

protected:
    unsigned int m_indexes[2] = {};
};

} // namespace bench

#endif
