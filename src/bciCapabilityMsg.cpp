#include "bciCapabilityMsg.h"

#include "messageOperations.h"
#include "shapes.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <syslog.h>

using bci::codec::Case;
using bci::codec::Choice;
using bci::codec::Elements;
using bci::codec::Field;
using bci::codec::Fields;
using bci::codec::List;
using bci::codec::Part;
using bci::codec::Subscripts;
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

    constexpr unsigned int list() const // where it begins in the union, in bytes
    {
        return binarySize(counted.rows) + binarySize(between.rows);
    }

    constexpr unsigned int stride() const
    {
        return binarySize(element.rows);
    }

    constexpr unsigned int tail() const
    {
        return static_cast<unsigned int>(sizeof(VornBcCapabilityUnionU)) - list() - bound * stride();
    }
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

static_assert(kSupports[0].tail() == 72 && kSupports[1].tail() == 84 && kSupports[2].tail() == 64);
static_assert(kSupports[3].tail() == 0 && kSupports[4].tail() == 0);
static_assert(kSupports[2].stride() == sizeof(VornBcEthTermHostParamsS) &&
              kSupports[3].stride() == sizeof(VornBcEthLinkParamS) &&
              kSupports[4].stride() == sizeof(VornBcHotspotParamListS));

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

    Byte* element(const Support& support, unsigned int index) const
    {
        return content() + support.list() + index * support.stride();
    }

    S16 identity() const
    {
        S16 identity;
        std::memcpy(&identity, m_begin, sizeof identity);
        return identity;
    }

    // Null if the identity is none.
    const Support* support() const
    {
        const auto* const end = std::end(kSupports);
        const auto* const found = std::find_if(
            std::begin(kSupports), end, [this](const Support& support) { return support.identity == identity(); });
        return found != end ? found : nullptr;
    }

    // What the list's count says.
    unsigned int count(const Support& support) const
    {
        U16 count = 0;
        if (support.bound != 0)
        {
            std::memcpy(&count, content() + support.counted.rows.back().offset, sizeof count);
        }
        return count;
    }

    // How many elements there are.
    unsigned int elements(const Support& support) const
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

// For tools.
constexpr List list(const Support& support)
{
    return {.count = &support.counted.rows.back(),
            .bound = support.bound,
            .offset = static_cast<U16>(support.list()),
            .stride = static_cast<U16>(support.stride()),
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
    "BciCapabilityCfmMsg", "VornBcGetCapabilitiesCfmS", kSize, {kConfirmRows, kConfirmFurther}};

BciCapabilityCfmMsg::BciCapabilityCfmMsg(SIGSELECT sigNo)
    : BciMessageBase(nullptr, kSize, sigNo),
      m_bciCapabilityCfmMsg(static_cast<VornBcGetCapabilitiesCfmS*>(std::malloc(kSize)))
{
    m_bciMessagePtr = reinterpret_cast<char*>(m_bciCapabilityCfmMsg);
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
    writeText(kConfirm, m_bciMessagePtr, stream);
    const unsigned int capabilities = m_bciCapabilityCfmMsg->numberOfBoardCapabilities;
    if (capabilities > kMaxCapabilities)
    {
        syslog(LOG_ERR, "[src/bciCapabilityMsg:55] numBoardCapabilities %d > %d", static_cast<int>(capabilities),
               static_cast<int>(kMaxCapabilities));
        return false;
    }
    if (capabilities == 0)
    {
        stream << getDelim(); // an empty list ends in one delimiter more; the reader leaves it unread
    }
    for (unsigned int i = 0; i < capabilities; ++i)
    {
        const Capability<const char> capability(m_bciMessagePtr, i);
        writeText(kCapability, capability.begin(), stream);
        const Support* const support = capability.support();
        if (support == nullptr)
        {
            syslog(LOG_ERR, "[src/bciCapabilityMsg:152] The boardCapabilityIdentiy %d is invalid",
                   capability.identity());
            return false;
        }
        writeText(support->counted, capability.content(), stream);
        writeText(support->between, capability.content(), stream);
        for (unsigned int j = 0; j < capability.elements(*support); ++j)
        {
            writeText(support->element, capability.element(*support, j), stream);
        }
    }
    return !stream.fail();
}

// Every capability takes 88 bytes, zeros where there is nothing.
bool BciCapabilityCfmMsg::serializeBciMsgToBinary(ostream_binary& stream) const
{
    writeBinary(kConfirm, m_bciMessagePtr, stream);
    const unsigned int capabilities = m_bciCapabilityCfmMsg->numberOfBoardCapabilities;
    if (capabilities > kMaxCapabilities)
    {
        syslog(LOG_ERR, "[src/bciCapabilityMsg:176] numBoardCapabilities %d > %d", static_cast<int>(capabilities),
               static_cast<int>(kMaxCapabilities));
        return false;
    }
    for (unsigned int i = 0; i < capabilities; ++i)
    {
        const Capability<const char> capability(m_bciMessagePtr, i);
        writeBinary(kCapability, capability.begin(), stream);
        const Support* const support = capability.support();
        if (support == nullptr)
        {
            syslog(LOG_ERR, "[src/bciCapabilityMsg:325] The boardCapabilityIdentiy %d is invalid",
                   capability.identity());
            return false;
        }
        writeBinary(support->counted, capability.content(), stream);
        writeBinary(support->between, capability.content(), stream);
        for (unsigned int j = 0; j < support->bound; ++j)
        {
            const bool valid = j < capability.elements(*support);
            writeBinary(support->element, valid ? capability.element(*support, j) : kNothing, stream);
        }
        for (unsigned int left = support->tail(); left != 0; --left)
        {
            stream << U8{0};
        }
    }
    return !stream.fail();
}

bool BciCapabilityCfmMsg::serializeBciMsgToXml(ostream_text& stream) const
{
    writeXml(kConfirm, m_bciMessagePtr, stream);
    const unsigned int capabilities = m_bciCapabilityCfmMsg->numberOfBoardCapabilities;
    if (capabilities > kMaxCapabilities)
    {
        syslog(LOG_INFO, "[src/bciCapabilityMsg:359] %d exceed the maximum number of boardCapabilities. ",
               static_cast<int>(capabilities));
        return false;
    }
    for (unsigned int i = 0; i < capabilities; ++i)
    {
        const Capability<const char> capability(m_bciMessagePtr, i);
        Subscripts subscripts = {i, 0};
        writeXml(kCapability, capability.begin(), stream, &subscripts);
        const Support* const support = capability.support();
        if (support == nullptr)
        {
            syslog(LOG_INFO, "[src/bciCapabilityMsg:563] The boardCapabilityIdentity %d (%d) is invalid",
                   static_cast<int>(i), capability.identity());
            return false;
        }
        writeXml(support->counted, capability.content(), stream);
        if (exceeds(support->tooMany, capability.count(*support), support->bound))
        {
            return false;
        }
        writeXml(support->between, capability.content(), stream);
        for (unsigned int& j = subscripts.second; j < capability.elements(*support); ++j)
        {
            writeXml(support->element, capability.element(*support, j), stream, &subscripts);
        }
    }
    return !stream.fail();
}

bool BciCapabilityCfmMsg::deserializeBciMsgFromText(istream_text& stream)
{
    std::memset(m_bciMessagePtr, 0, kSize);
    readText(kConfirm, m_bciMessagePtr, stream);
    const unsigned int capabilities = m_bciCapabilityCfmMsg->numberOfBoardCapabilities;
    if (capabilities > kMaxCapabilities)
    {
        syslog(LOG_ERR, "[src/bciCapabilityMsg:595] numCapabilities %d > %d", static_cast<int>(capabilities),
               static_cast<int>(kMaxCapabilities));
        return false;
    }
    for (unsigned int i = 0; i < capabilities; ++i)
    {
        const Capability<char> capability(m_bciMessagePtr, i);
        readText(kCapability, capability.begin(), stream);
        const Support* const support = capability.support();
        if (support == nullptr)
        {
            syslog(LOG_ERR, "[src/bciCapabilityMsg:687] The boardCapabilityIdentiy %d is invalid",
                   capability.identity());
            return false;
        }
        readText(support->counted, capability.content(), stream);
        readText(support->between, capability.content(), stream);
        for (unsigned int j = 0; j < capability.elements(*support); ++j)
        {
            readText(support->element, capability.element(*support, j), stream);
        }
    }
    return !stream.fail();
}

// The count is not checked: the only check comes before it is read, sees the cleared structure, and so is
// left out.
bool BciCapabilityCfmMsg::deserializeBciMsgFromBinary(istream_binary& stream)
{
    std::memset(m_bciMessagePtr, 0, kSize);
    readBinary(kConfirm, m_bciMessagePtr, stream);
    const unsigned int capabilities = m_bciCapabilityCfmMsg->numberOfBoardCapabilities;
    for (unsigned int i = 0; i < std::min(capabilities, kMaxCapabilities); ++i)
    {
        const Capability<char> capability(m_bciMessagePtr, i);
        readBinary(kCapability, capability.begin(), stream);
        const Support* const support = capability.support();
        if (support == nullptr)
        {
            syslog(LOG_ERR, "[src/bciCapabilityMsg:837] The boardCapabilityIdentiy %d is invalid",
                   capability.identity());
            return false;
        }
        readBinary(support->counted, capability.content(), stream);
        readBinary(support->between, capability.content(), stream);
        for (unsigned int j = 0; j < support->bound; ++j)
        {
            readBinary(support->element, capability.element(*support, j), stream);
        }
        U8 nothing;
        for (unsigned int left = support->tail(); left != 0; --left)
        {
            stream >> nothing;
        }
    }
    return !stream.fail();
}

bool BciCapabilityCfmMsg::deserializeBciMsgFromXml(istream_text& stream)
{
    Elements elements(stream);
    if (!readXml(kConfirmCounted, m_bciMessagePtr, elements))
    {
        return false;
    }
    const unsigned int capabilities = m_bciCapabilityCfmMsg->numberOfBoardCapabilities;
    if (exceeds("[src/bciCapabilityMsg:886] %d > %d", capabilities, kMaxCapabilities) ||
        !readXml(kConfirmPadding, m_bciMessagePtr, elements))
    {
        return false;
    }
    const Support* previous = nullptr;
    for (unsigned int i = 0; i < capabilities; ++i)
    {
        const Capability<char> capability(m_bciMessagePtr, i);
        Subscripts subscripts = {i, 0};
        if (!readXml(kCapability, capability.begin(), elements, &subscripts))
        {
            return false;
        }
        const Support* const support = capability.support();
        if (support == nullptr)
        {
            syslog(LOG_INFO, "[src/bciCapabilityMsg:1122] The boardCapabilityIdentity %d (%d) is invalid",
                   static_cast<int>(i), capability.identity());
            return false;
        }
        if (support->identity == kWithoutContent)
        {
            syslog(LOG_INFO, "[src/bciCapabilityMsg:1118] cap %d nothing to do", kWithoutContent);
            continue;
        }
        elements.repeat(support == previous);
        previous = support;
        if (!readXml(support->counted, capability.content(), elements) ||
            exceeds(support->readTooMany, capability.count(*support), support->bound) ||
            !readXml(support->between, capability.content(), elements))
        {
            return false;
        }
        elements.repeat(false);
        for (unsigned int& j = subscripts.second; j < capability.elements(*support); ++j)
        {
            if (!readXml(support->element, capability.element(*support, j), elements, &subscripts))
            {
                return false;
            }
        }
    }
    return true;
}
