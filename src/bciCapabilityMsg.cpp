#include "bciCapabilityMsg.h"

#include "checkLog.h"
#include "messageOperations.h"
#include "shapes.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <syslog.h>

using bci::codec::BinaryReader;
using bci::codec::BinaryWriter;
using bci::codec::Case;
using bci::codec::Choice;
using bci::codec::Elements;
using bci::codec::Field;
using bci::codec::Fields;
using bci::codec::List;
using bci::codec::Part;
using bci::codec::rows;
using bci::codec::Subscripts;
using bci::codec::TextReader;
using bci::codec::TextWriter;
using commonStream::istream_binary;
using commonStream::istream_text;
using commonStream::ostream_binary;
using commonStream::ostream_text;

namespace
{

constexpr const char* kSource = "bciCapabilityMsg";
constexpr unsigned int kMaxCapabilities = 2;
constexpr unsigned int kCapabilities = offsetof(VornBcGetCapabilitiesCfmS, boardCapabilities);
constexpr unsigned int kCapabilitySize = sizeof(VornBcBoardCapabilityS);
constexpr unsigned int kSize = kCapabilities + kMaxCapabilities * kCapabilitySize;
static_assert(kSize == 192);

constexpr Field kConfirmRows[] = {
    BCI_HEADER(VornBcGetCapabilitiesCfmS, 858),
    BCI_FIELD(VornBcGetCapabilitiesCfmS, numberOfBoardCapabilities, "numberOfBoardCapabilities", 879),
    BCI_FIELD(VornBcGetCapabilitiesCfmS, padding0, "padding0", 892),
};
constexpr Fields kConfirm = {kSource, kConfirmRows};
constexpr Fields kConfirmCounted = kConfirm.part(0, 4);
constexpr Fields kConfirmPadding = kConfirm.part(4, 1);

constexpr Field kCapabilityRows[] = {
    BCI_FIELD(VornBcBoardCapabilityS, boardCapabilityIdentity, "boardCapabilityIdentity_", 905),
    BCI_FIELD(VornBcBoardCapabilityS, boardCapabilityLength, "boardCapabilityLength_", 914),
};
constexpr Fields kCapability = {kSource, kCapabilityRows};

// Of the fields below, those without an index have the same element names in both capabilities. As an
// element is found by its first occurrence, two capabilities of one identity share their values in XML.

constexpr Field kLoadingRows[] = {
    BCI_FIELD(VornBcLoadingSupportS, loadable, "loadable", 923),
    BCI_FIELD(VornBcLoadingSupportS, flash, "flash", 930),
    BCI_FIELD(VornBcLoadingSupportS, fileSystemAccess, "fileSystemAccess", 937),
    BCI_FIELD(VornBcLoadingSupportS, padding0, "loadingSupportPadding0", 944),
    BCI_FIELD(VornBcLoadingSupportS, blockSize, "blockSize", 951),
};

constexpr Field kEthTermRows[] = {
    BCI_FIELD(VornBcEthTermSupportS, numOfEthTermHosts, "numOfEthTermHosts", 960),
    BCI_FIELD(VornBcEthTermSupportS, padding0, "ethTermSupportPadding0", 967),
};
constexpr Field kEthTermHostRows[] = {
    BCI_FIELD(VornBcEthTermHostParamsS, snid, "snid__", 980),
    BCI_FIELD(VornBcEthTermHostParamsS, termRole, "termRole__", 989),
};

constexpr Field kEthHwIfRows[] = {
    BCI_FIELD(VornBcEthHwIfSupportS, localSwitchPortNr, "localSwitchPortNr", 999),
    BCI_FIELD(VornBcEthHwIfSupportS, numOfEthLinks, "numOfEthLinks", 1006),
};
constexpr Field kEthLinkRows[] = {
    BCI_FIELD(VornBcEthLinkParamS, portNr, "portNr__", 1019),
    BCI_FIELD(VornBcEthLinkParamS, snid, "snid__", 1028),
    BCI_FIELD(VornBcEthLinkParamS, bandWidth, "bandWidth__", 1037),
    BCI_FIELD(VornBcEthLinkParamS, direction, "direction__", 1046),
};

constexpr Field kClimateRows[] = {
    BCI_FIELD(VornBcClimateControlSupportS, numOfHotspotTempSensors, "numOfHotspotTempSensors", 1056),
    BCI_FIELD(VornBcClimateControlSupportS, padding0, "climateControlPadding0", 1069),
};
constexpr Field kSensorRows[] = {
    BCI_FIELD(VornBcHotspotParamListS, setPoint, "setPoint__", 1082),
    BCI_FIELD(VornBcHotspotParamListS, coolingGain, "coolingGain__", 1091),
    BCI_FIELD(VornBcHotspotParamListS, timeConstant, "timeConstant__", 1100),
    BCI_FIELD(VornBcHotspotParamListS, padding0, "padding0__", 1109),
};

// What the union holds for one identity: fields; a list, if the last of the `counted` fields counts one;
// and in binary zeros up to the size of the union.
struct Support
{
    S16 identity;
    U16 bound = 0; // elements that there is room for
    Fields counted = {};
    Fields between = {}; // the count and the list
    Fields element = {};
    const char* tooMany = nullptr;     // log line of the XML writer for a count above that
    const char* readTooMany = nullptr; // the same of the XML reader, where it checks

    // In bytes from the union's begin: the count and the list; and the list's measures.
    U16 countAt = counted.rows.empty() ? U16{0} : counted.rows.back().offset;
    U16 list = static_cast<U16>(counted.binarySize + between.binarySize);
    U16 stride = element.binarySize;
    U16 tail = static_cast<U16>(sizeof(VornBcCapabilityUnionU) - list -
                                std::size_t{bound} * stride); // what is left behind it
};

constexpr Fields table(std::span<const Field> rows)
{
    return {kSource, rows};
}

constexpr Support kSupports[] = {
    {.identity = 1, .counted = table(kLoadingRows)},
    {.identity = 3},
    {.identity = 4,
     .bound = 4,
     .counted = table(kEthTermRows).part(0, 1),
     .between = table(kEthTermRows).part(1, 1),
     .element = table(kEthTermHostRows),
     .tooMany = "[src/bciCapabilityMsg:417] numEthTermHosts %d > %d"},
    {.identity = 5,
     .bound = 10,
     .counted = table(kEthHwIfRows),
     .element = table(kEthLinkRows),
     .tooMany = "[src/bciCapabilityMsg:460] numEthLinks %d > %d"},
    {.identity = 6,
     .bound = 10,
     .counted = table(kClimateRows).part(0, 1),
     .between = table(kClimateRows).part(1, 1),
     .element = table(kSensorRows),
     .tooMany = "[src/bciCapabilityMsg:510] numHotSpotTempSensors %d > %d",
     .readTooMany = "[src/bciCapabilityMsg:1063] numOfHotspotTempSensors %d > %d"},
};
constexpr S16 kWithoutContent = 3;

static_assert(kSupports[0].tail == 72 && kSupports[1].tail == 84 && kSupports[2].tail == 64);
static_assert(kSupports[3].tail == 0 && kSupports[4].tail == 0);
static_assert(kSupports[2].stride == sizeof(VornBcEthTermHostParamsS) &&
              kSupports[3].stride == sizeof(VornBcEthLinkParamS) &&
              kSupports[4].stride == sizeof(VornBcHotspotParamListS));

// One of them as a constant, to be used like it.
template <std::size_t index>
struct ConstantSupport
{
    static constexpr const Support& kSupport = kSupports[index];
    static constexpr Fields kCounted = kSupport.counted;
    static constexpr Fields kBetween = kSupport.between;
    static constexpr Fields kElement = kSupport.element;

    static constexpr S16 identity = kSupport.identity;
    static constexpr U16 bound = kSupport.bound;
    static constexpr auto counted = rows<kCounted>;
    static constexpr auto between = rows<kBetween>;
    static constexpr auto element = rows<kElement>;
    static constexpr const char* tooMany = kSupport.tooMany;
    static constexpr const char* readTooMany = kSupport.readTooMany;
    static constexpr U16 countAt = kSupport.countAt;
    static constexpr U16 list = kSupport.list;
    static constexpr U16 stride = kSupport.stride;
    static constexpr U16 tail = kSupport.tail;
};

#if !BCI_OPTIMIZE_SPEED
// Null for no identity.
[[gnu::noinline]] const Support* supportOf(S16 identity)
{
    for (const Support& support : kSupports)
    {
        if (support.identity == identity)
        {
            return &support;
        }
    }
    return nullptr;
}
#endif

// Calls one of two functions: `known` with the support of an identity, or `unknown` if there is none. Returns what
// that returns.
template <typename Known, typename Unknown>
bool withSupport(S16 identity, Known known, Unknown unknown)
{
#if BCI_OPTIMIZE_SPEED
    switch (identity)
    {
    case kSupports[0].identity:
        return known(ConstantSupport<0>());
    case kSupports[1].identity:
        return known(ConstantSupport<1>());
    case kSupports[2].identity:
        return known(ConstantSupport<2>());
    case kSupports[3].identity:
        return known(ConstantSupport<3>());
    case kSupports[4].identity:
        return known(ConstantSupport<4>());
    default:
        return unknown();
    }
#else
    const Support* const support = supportOf(identity);
    return support != nullptr ? known(*support) : unknown();
#endif
}

// What binary has in the place of list elements that are not there.
alignas(U32) constexpr char kNothing[8] = {};

// One capability within a message.
template <typename Byte>
class Capability
{
public:
    Capability(Byte* message, unsigned int index) : m_begin(message + kCapabilities + index * kCapabilitySize) {}

    Byte* begin() const
    {
        return m_begin;
    }

    Byte* content() const
    {
        return m_begin + offsetof(VornBcBoardCapabilityS, capability);
    }

    S16 identity() const
    {
        S16 identity;
        std::memcpy(&identity, m_begin, sizeof identity);
        return identity;
    }

    // What the list's count says.
    template <typename S>
    unsigned int count(const S& support) const
    {
        U16 count = 0;
        if (support.bound != 0)
        {
            std::memcpy(&count, content() + support.countAt, sizeof count);
        }
        return count;
    }

    // How many elements there are.
    template <typename S>
    unsigned int elements(const S& support) const
    {
        return std::min<unsigned int>(count(support), support.bound);
    }

private:
    Byte* m_begin;
};

// The checks of the XML form, which not every list has.
bool exceeds(const char* line, unsigned int count, unsigned int bound)
{
    if (line == nullptr || count <= bound)
    {
        return false;
    }
    syslog(LOG_INFO, line, static_cast<int>(count), static_cast<int>(bound));
    return true;
}

// Logs an identity that is none. Returns false.
bool isInvalid(int priority, unsigned int line, S16 identity)
{
    return bci::reject(priority, kSource, line, "The boardCapabilityIdentiy %d is invalid",
                       static_cast<unsigned int>(identity));
}

void putZerosExactly(ostream_binary& stream, unsigned int count)
{
    for (; count != 0; --count)
    {
        stream << U8{0};
    }
}

void skipExactly(istream_binary& stream, unsigned int count)
{
    U8 nothing;
    for (; count != 0; --count)
    {
        stream >> nothing;
    }
}

// For tools.
constexpr List list(const Support& support)
{
    return {.count = &support.counted.rows.back(),
            .bound = support.bound,
            .offset = support.list,
            .stride = support.stride,
            .element = {support.element.rows},
            .wholeInBinary = true,
            .delimiterWhenEmpty = false};
}
constexpr List kEthTermHosts = list(kSupports[2]);
constexpr List kEthLinks = list(kSupports[3]);
constexpr List kSensors = list(kSupports[4]);
constexpr Part kEthTermFurther[] = {&kEthTermHosts};
constexpr Part kEthHwIfFurther[] = {&kEthLinks};
constexpr Part kClimateFurther[] = {&kSensors};
constexpr Case kContents[] = {
    {1, "boardLoading", {kLoadingRows}},
    {3, "none", {}},
    {4, "boardEthTerm", {kEthTermRows, kEthTermFurther}},
    {5, "boardEthHwIf", {kEthHwIfRows, kEthHwIfFurther}},
    {6, "boardClimate", {kClimateRows, kClimateFurther}},
};
constexpr Choice kContent = {.selector = &kCapabilityRows[0],
                             .offset = offsetof(VornBcBoardCapabilityS, capability),
                             .size = sizeof(VornBcCapabilityUnionU),
                             .cases = kContents};
constexpr Part kCapabilityFurther[] = {&kContent};
constexpr List kList = {.count = &kConfirmCounted.rows.back(),
                        .bound = kMaxCapabilities,
                        .offset = kCapabilities,
                        .stride = kCapabilitySize,
                        .element = {kCapabilityRows, kCapabilityFurther},
                        .wholeInBinary = false,
                        .delimiterWhenEmpty = true};
constexpr Part kConfirmFurther[] = {&kList};

} // namespace

const bci::codec::Shape bci::kCapabilityCfmShape = {
    "BciCapabilityCfmMsg", "VornBcGetCapabilitiesCfmS", kSize, {kConfirmRows, kConfirmFurther}, kSource};

BciCapabilityCfmMsg::BciCapabilityCfmMsg(SIGSELECT sigNo)
    : BciMessageBase(nullptr, kSize, sigNo),
      m_bciCapabilityCfmMsg(static_cast<VornBcGetCapabilitiesCfmS*>(std::malloc(kSize)))
{
    m_bciMessagePtr = reinterpret_cast<char*>(m_bciCapabilityCfmMsg);
    BCI_WRITES_THROUGH_STREAM;
}

BciCapabilityCfmMsg::~BciCapabilityCfmMsg()
{
    std::free(m_bciCapabilityCfmMsg);
}

BCI_DEFINE_HEAP_FACTORY(BciCapabilityCfmMsg)
BCI_DEFINE_ACCESSORS(BciCapabilityCfmMsg, *m_bciCapabilityCfmMsg)

unsigned int BciCapabilityCfmMsg::getMaxBinaryBufferSize()
{
    return kCapabilities + m_bciCapabilityCfmMsg->numberOfBoardCapabilities * kCapabilitySize;
}

unsigned int BciCapabilityCfmMsg::getMaxTextBufferSize()
{
    // Follows from nothing: two full capabilities take up to 568 characters more than the header.
    return BciMessageBase::getMaxTextBufferSize() + 297;
}

// Which operation checks which count differs from one to the other. Where a count is not checked, the
// elements end at their bound.

bool BciCapabilityCfmMsg::serializeBciMsgToText(ostream_text& stream) const
{
    TextWriter out(stream);
    writeText(rows<kConfirm>, m_bciMessagePtr, out);
    const unsigned int capabilities = m_bciCapabilityCfmMsg->numberOfBoardCapabilities;
    if (capabilities > kMaxCapabilities)
    {
        return bci::reject(LOG_ERR, kSource, 55, "numBoardCapabilities %d > %d", capabilities, kMaxCapabilities);
    }
    if (capabilities == 0)
    {
        // An empty list ends in one delimiter more; the reader leaves it unread.
        out.through([this](ostream_text& at) { at << getDelim(); });
    }
    for (unsigned int i = 0; i < capabilities; ++i)
    {
        const Capability<const char> capability(m_bciMessagePtr, i);
        writeText(rows<kCapability>, capability.begin(), out);
        const auto known = [&](const auto& support)
        {
            writeText(support.counted, capability.content(), out);
            writeText(support.between, capability.content(), out);
            writeText(support.element, capability.content() + support.list, out, capability.elements(support));
            return true;
        };
        if (!withSupport(capability.identity(), known,
                         [&] { return isInvalid(LOG_ERR, 152, capability.identity()); }))
        {
            return false;
        }
    }
    return !stream.fail();
}

// Every capability takes 88 bytes, zeros where there is nothing.
bool BciCapabilityCfmMsg::serializeBciMsgToBinary(ostream_binary& stream) const
{
    BinaryWriter out(stream);
    writeBinary(rows<kConfirm>, m_bciMessagePtr, out);
    const unsigned int capabilities = m_bciCapabilityCfmMsg->numberOfBoardCapabilities;
    if (capabilities > kMaxCapabilities)
    {
        return bci::reject(LOG_ERR, kSource, 176, "numBoardCapabilities %d > %d", capabilities, kMaxCapabilities);
    }
    for (unsigned int i = 0; i < capabilities; ++i)
    {
        const Capability<const char> capability(m_bciMessagePtr, i);
        writeBinary(rows<kCapability>, capability.begin(), out);
        const auto known = [&](const auto& support)
        {
            writeBinary(support.counted, capability.content(), out);
            writeBinary(support.between, capability.content(), out);
            const unsigned int elements = capability.elements(support);
            writeBinary(support.element, capability.content() + support.list, out, elements);
            const unsigned int absent = support.bound - elements;
            if (!putZeros(out, absent * support.stride + support.tail))
            {
                for (unsigned int j = 0; j < absent; ++j)
                {
                    writeBinary(support.element, kNothing, out);
                }
                out.through([&support](ostream_binary& at) { putZerosExactly(at, support.tail); });
            }
            return true;
        };
        if (!withSupport(capability.identity(), known,
                         [&] { return isInvalid(LOG_ERR, 325, capability.identity()); }))
        {
            return false;
        }
    }
    return !stream.fail();
}

bool BciCapabilityCfmMsg::serializeBciMsgToXml(ostream_text& stream) const
{
    TextWriter out(stream);
    writeXml(rows<kConfirm>, m_bciMessagePtr, out);
    const unsigned int capabilities = m_bciCapabilityCfmMsg->numberOfBoardCapabilities;
    if (capabilities > kMaxCapabilities)
    {
        return bci::reject(LOG_INFO, kSource, 359, "%d exceed the maximum number of boardCapabilities. ",
                           capabilities);
    }
    for (unsigned int i = 0; i < capabilities; ++i)
    {
        const Capability<const char> capability(m_bciMessagePtr, i);
        const Subscripts subscripts = {i, 0};
        writeXml(rows<kCapability>, capability.begin(), out, &subscripts);
        const auto known = [&](const auto& support)
        {
            writeXml(support.counted, capability.content(), out);
            if (exceeds(support.tooMany, capability.count(support), support.bound))
            {
                return false;
            }
            writeXml(support.between, capability.content(), out);
            writeXml(support.element, capability.content() + support.list, out, &subscripts,
                     capability.elements(support));
            return true;
        };
        const auto unknown = [&]
        {
            return bci::reject(LOG_INFO, kSource, 563, "The boardCapabilityIdentity %d (%d) is invalid", i,
                               static_cast<unsigned int>(capability.identity()));
        };
        if (!withSupport(capability.identity(), known, unknown))
        {
            return false;
        }
    }
    return !stream.fail();
}

bool BciCapabilityCfmMsg::deserializeBciMsgFromText(istream_text& stream)
{
    TextReader in(stream);
    std::memset(m_bciMessagePtr, 0, m_bciMessageSize);
    readText(rows<kConfirm>, m_bciMessagePtr, in);
    const unsigned int capabilities = m_bciCapabilityCfmMsg->numberOfBoardCapabilities;
    if (capabilities > kMaxCapabilities)
    {
        return bci::reject(LOG_ERR, kSource, 595, "numCapabilities %d > %d", capabilities, kMaxCapabilities);
    }
    for (unsigned int i = 0; i < capabilities; ++i)
    {
        const Capability<char> capability(m_bciMessagePtr, i);
        readText(rows<kCapability>, capability.begin(), in);
        const auto known = [&](const auto& support)
        {
            readText(support.counted, capability.content(), in);
            readText(support.between, capability.content(), in);
            readText(support.element, capability.content() + support.list, in, capability.elements(support));
            return true;
        };
        if (!withSupport(capability.identity(), known,
                         [&] { return isInvalid(LOG_ERR, 687, capability.identity()); }))
        {
            return false;
        }
    }
    return !stream.fail();
}

// The count is not checked: the only check comes before it is read, sees the cleared structure, and so is
// left out.
bool BciCapabilityCfmMsg::deserializeBciMsgFromBinary(istream_binary& stream)
{
    BinaryReader in(stream);
    std::memset(m_bciMessagePtr, 0, m_bciMessageSize);
    readBinary(rows<kConfirm>, m_bciMessagePtr, in);
    const unsigned int capabilities = m_bciCapabilityCfmMsg->numberOfBoardCapabilities;
    for (unsigned int i = 0; i < std::min(capabilities, kMaxCapabilities); ++i)
    {
        const Capability<char> capability(m_bciMessagePtr, i);
        readBinary(rows<kCapability>, capability.begin(), in);
        const auto known = [&](const auto& support)
        {
            readBinary(support.counted, capability.content(), in);
            readBinary(support.between, capability.content(), in);
            readBinary(support.element, capability.content() + support.list, in, support.bound);
            if (!skip(in, support.tail))
            {
                in.through([&support](istream_binary& at) { skipExactly(at, support.tail); });
            }
            return true;
        };
        if (!withSupport(capability.identity(), known,
                         [&] { return isInvalid(LOG_ERR, 837, capability.identity()); }))
        {
            return false;
        }
    }
    return !stream.fail();
}

bool BciCapabilityCfmMsg::deserializeBciMsgFromXml(istream_text& stream)
{
    Elements elements(stream);
    if (!readXml(rows<kConfirmCounted>, m_bciMessagePtr, elements))
    {
        return false;
    }
    const unsigned int capabilities = m_bciCapabilityCfmMsg->numberOfBoardCapabilities;
    if (exceeds("[src/bciCapabilityMsg:886] %d > %d", capabilities, kMaxCapabilities) ||
        !readXml(rows<kConfirmPadding>, m_bciMessagePtr, elements))
    {
        return false;
    }
    S16 previous = 0; // no identity
    for (unsigned int i = 0; i < capabilities; ++i)
    {
        const Capability<char> capability(m_bciMessagePtr, i);
        const Subscripts subscripts = {i, 0};
        if (!readXml(rows<kCapability>, capability.begin(), elements, &subscripts))
        {
            return false;
        }
        const S16 identity = capability.identity();
        if (identity == kWithoutContent)
        {
            syslog(LOG_INFO, "[src/bciCapabilityMsg:1118] cap %d nothing to do", kWithoutContent);
            continue;
        }
        elements.repeat(identity == previous);
        previous = identity;
        const auto known = [&](const auto& support)
        {
            if (!readXml(support.counted, capability.content(), elements) ||
                exceeds(support.readTooMany, capability.count(support), support.bound) ||
                !readXml(support.between, capability.content(), elements))
            {
                return false;
            }
            elements.repeat(false);
            return readXml(support.element, capability.content() + support.list, elements, &subscripts,
                           capability.elements(support));
        };
        const auto unknown = [&]
        {
            return bci::reject(LOG_INFO, kSource, 1122, "The boardCapabilityIdentity %d (%d) is invalid", i,
                               static_cast<unsigned int>(identity));
        };
        if (!withSupport(identity, known, unknown))
        {
            return false;
        }
    }
    return true;
}
