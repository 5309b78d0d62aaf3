#include "bciCapabilityMsg.h"
#include "bciMsgRegistration.h"
#include "logCapture.h"
#include "messageKit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

constexpr std::size_t kSize = 192; // of the block that a message owns

// A number of a message. The structure has the numbers in the order and at the widths of the binary form.
struct Number
{
    std::string name; // of its element, '#' for the index of the capability; none for zeros of the binary form
    int line;         // logged when the element is missing
    std::size_t width;
    long long value;
};

using Numbers = std::vector<Number>;

template <typename T>
void append(std::vector<T>& to, const std::vector<T>& more)
{
    to.insert(to.end(), more.begin(), more.end());
}

struct Capability
{
    S16 identity;
    U16 length;
    Numbers numbers;
};

using List = std::vector<Capability>;

const Number kZero{"", 0, 1, 0};

// An identity that selects nothing: all that a codec gets to see of it.
Capability invalid(S16 identity)
{
    return {identity, 17, {}};
}

Capability loading(U16 length, const std::vector<long long>& values)
{
    Capability capability{1,
                          length,
                          {{"loadable", 923, 2, values[0]},
                           {"flash", 930, 2, values[1]},
                           {"fileSystemAccess", 937, 2, values[2]},
                           {"loadingSupportPadding0", 944, 2, values[3]},
                           {"blockSize", 951, 4, values[4]}}};
    append(capability.numbers, Numbers(72, kZero));
    return capability;
}

using Rows = std::vector<std::vector<long long>>;

// Appends the elements of an array and zeros for those that are not there.
void appendRows(Capability& capability, const Numbers& columns, std::size_t bound, const Rows& rows)
{
    for (std::size_t j = 0; j < bound; ++j)
    {
        for (std::size_t column = 0; column < columns.size(); ++column)
        {
            Number number = columns[column];
            number.name = j < rows.size() ? number.name + "_#_" + std::to_string(j) : "";
            number.value = j < rows.size() ? rows[j][column] : 0;
            capability.numbers.push_back(number);
        }
    }
}

Capability termination(U16 stated, const Rows& hosts)
{
    Capability capability{
        4, 0, {{"numOfEthTermHosts", 960, 2, stated}, {"ethTermSupportPadding0", 967, 2, 40000}}};
    appendRows(capability, {{"snid", 980, 2, 0}, {"termRole", 989, 2, 0}}, 4, hosts);
    append(capability.numbers, Numbers(64, kZero));
    return capability;
}

Capability interface(U16 stated, const Rows& links)
{
    Capability capability{5, 84, {{"localSwitchPortNr", 999, 2, 65535}, {"numOfEthLinks", 1006, 2, stated}}};
    appendRows(
        capability,
        {{"portNr", 1019, 4, 0}, {"snid", 1028, 2, 0}, {"bandWidth", 1037, 1, 0}, {"direction", 1046, 1, 0}}, 10,
        links);
    return capability;
}

Capability climate(U16 stated, const Rows& sensors)
{
    Capability capability{
        6, 1, {{"numOfHotspotTempSensors", 1056, 2, stated}, {"climateControlPadding0", 1069, 2, 65535}}};
    appendRows(capability,
               {{"setPoint", 1082, 2, 0},
                {"coolingGain", 1091, 2, 0},
                {"timeConstant", 1100, 2, 0},
                {"padding0", 1109, 2, 0}},
               10, sensors);
    return capability;
}

// Some elements, among them the numbers at the ends of their ranges that survive in all forms.
const Capability kLoading = loading(12, {32767, -32768, -1, 65535, -2147483647});
const Capability kNothing = {3, 65535, Numbers(84, kZero)};
const Capability kTermination = termination(2, {{65535, -32768}, {0, 32767}});
const Capability kInterface = interface(2, {{2147483647, 65535, 255, 0}, {0, 1, 2, 255}});
const Capability kClimate = climate(1, {{-32768, 32767, 65535, 9}});

// Full arrays; the number of elements is stated as wanted.

Capability hosts(U16 stated)
{
    return termination(stated, {{101, -1}, {102, -2}, {103, -3}, {104, -4}});
}

Capability links(U16 stated)
{
    Rows rows;
    for (int j = 0; j < 10; ++j)
    {
        rows.push_back({70000 + j, 201 + j, 31 + j, 41 + j});
    }
    return interface(stated, rows);
}

Capability sensors(U16 stated)
{
    Rows rows;
    for (int j = 0; j < 10; ++j)
    {
        rows.push_back({-1 - j, 51 + j, 60001 + j, 71 + j});
    }
    return climate(stated, rows);
}

// Numbers of elements that the arrays cannot hold, in both places of a list.
std::vector<List> overstated(const std::vector<Capability>& capabilities)
{
    std::vector<List> all;
    for (const Capability& capability : capabilities)
    {
        all.push_back({capability, kLoading});
        all.push_back({kLoading, capability});
    }
    return all;
}

// None, each one and each two of the capabilities, all bounds reached, and what else is wanted.
std::vector<List> lists(std::vector<List> all = {})
{
    append<List>(all, {{}, {hosts(4), links(10)}, {links(10), sensors(10)}, {sensors(10), hosts(4)}});
    for (const Capability& first : {kLoading, kNothing, kTermination, kInterface, kClimate})
    {
        all.push_back({first});
        for (const Capability& second : {kLoading, kNothing, kTermination, kInterface, kClimate})
        {
            all.push_back({first, second});
        }
    }
    return all;
}

// Lists that end in an identity that selects nothing, for a count of two.
std::vector<List> rejected()
{
    std::vector<List> all;
    for (const int identity : {0, 2, 7, -1, 32767, -32768})
    {
        all.push_back({invalid(static_cast<S16>(identity))});
        all.push_back({kClimate, invalid(static_cast<S16>(identity))});
    }
    return all;
}

// A message with the capabilities of a list. With a count above that of the list, the list is what a codec
// that stops early gets to see.
Numbers message(const List& list, std::size_t count)
{
    Numbers all = {{"sigNo", 858, 4, 23429128},
                   {"clientRef", 865, 4, 1},
                   {"serverRef", 872, 4, -2},
                   {"numberOfBoardCapabilities", 879, 2, static_cast<long long>(count)},
                   {"padding0", 892, 2, 7}};
    for (std::size_t i = 0; i < list.size(); ++i)
    {
        const std::size_t begin = all.size();
        append<Number>(all, {{"boardCapabilityIdentity_#", 905, 2, list[i].identity},
                             {"boardCapabilityLength_#", 914, 2, list[i].length}});
        append(all, list[i].numbers);
        for (std::size_t j = begin; j < all.size(); ++j)
        {
            std::replace(all[j].name.begin(), all[j].name.end(), '#', i == 0 ? '0' : '1');
        }
    }
    return all;
}

Numbers message(const List& list)
{
    return message(list, list.size());
}

// The numbers in front of one.
Numbers before(const Numbers& numbers, const std::string& name)
{
    const auto is = [&name](const Number& number) { return number.name == name; };
    return {numbers.begin(), std::find_if(numbers.begin(), numbers.end(), is)};
}

std::string textForm(const Numbers& numbers)
{
    std::string text;
    for (const Number& number : numbers)
    {
        text += number.name.empty() ? "" : std::to_string(number.value) + ":";
    }
    return text;
}

// The binary form, number by number: one that does not fit, or of which not all is there, is left out.
std::vector<std::string> binaryFields(const Numbers& numbers)
{
    std::vector<std::string> fields;
    for (const Number& number : numbers)
    {
        const std::string word = be32(static_cast<unsigned long>(number.value));
        fields.push_back(number.name == "sigNo" ? firstWord(static_cast<SIGSELECT>(number.value))
                                                : word.substr(4 - number.width));
    }
    return fields;
}

std::string binaryForm(const Numbers& numbers)
{
    std::string binary;
    for (const std::string& field : binaryFields(numbers))
    {
        binary += field;
    }
    return binary;
}

std::string xmlForm(const Numbers& numbers)
{
    std::string xml;
    for (const Number& number : numbers)
    {
        xml += number.name.empty() ? "" : element(number.name, std::to_string(number.value));
    }
    return xml;
}

// The block of a message: `fill` wherever no number is.
std::string blockOf(const Numbers& numbers, char fill)
{
    std::string block;
    for (const Number& number : numbers)
    {
        block += number.name.empty() ? std::string(number.width, fill)
                 : number.width == 1 ? inMemory(static_cast<U8>(number.value))
                 : number.width == 2 ? inMemory(static_cast<U16>(number.value))
                                     : inMemory(static_cast<U32>(number.value));
    }
    return block + std::string(kSize - block.size(), fill);
}

std::unique_ptr<BciCapabilityCfmMsg> holding(const Numbers& numbers)
{
    return ::holding<BciCapabilityCfmMsg>(blockOf(numbers, kFill));
}

// Reads into a block full of kFill, which is `block` then.
void expectRead(Reader reader, const std::string& data, const Read& outcome, const std::string& block,
                const Log& log = {})
{
    expectReadings<BciCapabilityCfmMsg>(reader, kSize, {{data, outcome, block, log}});
}

Log error(const std::string& format, const std::vector<std::string>& arguments)
{
    return {{3, format, arguments}};
}

Log info(const std::string& format, const std::vector<std::string>& arguments)
{
    return {{6, format, arguments}};
}

} // namespace

// Structures and class

TEST(CapabilityCfm, StructuresOfListAndCapabilityHaveTheLayoutOfTheSignal)
{
    expectSignal<VornBcGetCapabilitiesCfmS>(104);
    expectField<U16>(&VornBcGetCapabilitiesCfmS::numberOfBoardCapabilities, 12);
    expectField<U16>(&VornBcGetCapabilitiesCfmS::padding0, 14);
    expectField<VornBcBoardCapabilityS[1]>(&VornBcGetCapabilitiesCfmS::boardCapabilities, 16);
    EXPECT_EQ(sizeof(VornBcBoardCapabilityS), 88U);
    expectField<VornBcCapabilityUnionChoiceE>(&VornBcBoardCapabilityS::boardCapabilityIdentity, 0);
    expectField<U16>(&VornBcBoardCapabilityS::boardCapabilityLength, 2);
    expectField<VornBcCapabilityUnionU>(&VornBcBoardCapabilityS::capability, 4);
    EXPECT_EQ(sizeof(VornBcCapabilityUnionU), 84U);
    expectField<VornBcLoadingSupportS>(&VornBcCapabilityUnionU::boardLoading, 0);
    expectField<VornBcEthTermSupportS>(&VornBcCapabilityUnionU::boardEthTerm, 0);
    expectField<VornBcEthHwIfSupportS>(&VornBcCapabilityUnionU::boardEthHwIf, 0);
    expectField<VornBcClimateControlSupportS>(&VornBcCapabilityUnionU::boardClimate, 0);
    EXPECT_TRUE((std::is_same_v<VornBcCapabilityUnionChoiceE, S16>));
}

TEST(CapabilityCfm, StructuresOfTheMembersHaveTheLayoutOfTheSignal)
{
    EXPECT_EQ(sizeof(VornBcLoadingSupportS), 12U);
    expectField<VornConstHwuGeneralE>(&VornBcLoadingSupportS::loadable, 0);
    expectField<VornConstHwuGeneralE>(&VornBcLoadingSupportS::flash, 2);
    expectField<VornConstHwuGeneralE>(&VornBcLoadingSupportS::fileSystemAccess, 4);
    expectField<U16>(&VornBcLoadingSupportS::padding0, 6);
    expectField<S32>(&VornBcLoadingSupportS::blockSize, 8);
    EXPECT_TRUE((std::is_same_v<VornConstHwuGeneralE, S16>));
    EXPECT_EQ(sizeof(VornBcEthTermSupportS), 20U);
    expectField<U16>(&VornBcEthTermSupportS::numOfEthTermHosts, 0);
    expectField<U16>(&VornBcEthTermSupportS::padding0, 2);
    expectField<VornBcEthTermHostParamsS[4]>(&VornBcEthTermSupportS::ethTermHostParam, 4);
    EXPECT_EQ(sizeof(VornBcEthTermHostParamsS), 4U);
    expectField<U16>(&VornBcEthTermHostParamsS::snid, 0);
    expectField<VornBcEthTermRoleE>(&VornBcEthTermHostParamsS::termRole, 2);
    EXPECT_TRUE((std::is_same_v<VornBcEthTermRoleE, S16>));
    EXPECT_EQ(sizeof(VornBcEthHwIfSupportS), 84U);
    expectField<U16>(&VornBcEthHwIfSupportS::localSwitchPortNr, 0);
    expectField<U16>(&VornBcEthHwIfSupportS::numOfEthLinks, 2);
    expectField<VornBcEthLinkParamS[10]>(&VornBcEthHwIfSupportS::ethLinkParam, 4);
    EXPECT_EQ(sizeof(VornBcEthLinkParamS), 8U);
    expectField<U32>(&VornBcEthLinkParamS::portNr, 0);
    expectField<U16>(&VornBcEthLinkParamS::snid, 4);
    expectField<U8>(&VornBcEthLinkParamS::bandWidth, 6);
    expectField<U8>(&VornBcEthLinkParamS::direction, 7);
    EXPECT_EQ(sizeof(VornBcClimateControlSupportS), 84U);
    expectField<U16>(&VornBcClimateControlSupportS::numOfHotspotTempSensors, 0);
    expectField<U16>(&VornBcClimateControlSupportS::padding0, 2);
    expectField<VornBcHotspotParamListS[10]>(&VornBcClimateControlSupportS::hotspotParamList, 4);
    EXPECT_EQ(sizeof(VornBcHotspotParamListS), 8U);
    expectField<S16>(&VornBcHotspotParamListS::setPoint, 0);
    expectField<S16>(&VornBcHotspotParamListS::coolingGain, 2);
    expectField<U16>(&VornBcHotspotParamListS::timeConstant, 4);
    expectField<U16>(&VornBcHotspotParamListS::padding0, 6);
}

TEST(CapabilityCfm, SignalNumberHasAName)
{
    EXPECT_EQ(BCI_GET_CAPABILITIES_CFM, 0x1658008U);
    EXPECT_EQ(BCI_GET_CAPABILITIES_CFM, 23429128U);
}

TEST(CapabilityCfm, EveryMessageOwnsABlockOf192Bytes)
{
    const auto one = filled<BciCapabilityCfmMsg>(kSize);
    const auto other = filled<BciCapabilityCfmMsg>(kSize);
    const char* const block = one->getMsg();

    expectSetMsgCopies(*one, kSize);

    EXPECT_EQ(one->getMsg(), block);
    EXPECT_EQ(block, reinterpret_cast<const char*>(one->m_bciCapabilityCfmMsg));
    EXPECT_NE(other->getMsg(), block);
    EXPECT_EQ(structureOf(*other, kSize), std::string(kSize, kFill));
    EXPECT_TRUE(
        (std::is_same_v<decltype(BciCapabilityCfmMsg::m_bciCapabilityCfmMsg), VornBcGetCapabilitiesCfmS*>));
}

TEST(CapabilityCfm, ConstructorLeavesItsBlockAsItWas)
{
    const FilledHeap heap;

    const auto capabilities = heap.make<BciCapabilityCfmMsg>(23429128, kSize);

    EXPECT_EQ(structureOf(*capabilities, kSize), std::string(kSize, heap.fill()));
    EXPECT_NE(capabilities->getSigNo(), 23429128U);
}

TEST(CapabilityCfm, AccessorsAnswerFromTheBlock)
{
    const auto capabilities =
        holding({{"sigNo", 0, 4, 4294967295}, {"clientRef", 0, 4, kLowest}, {"serverRef", 0, 4, 2147483647}});

    EXPECT_EQ(capabilities->getSigNo(), 4294967295U);
    EXPECT_EQ(capabilities->getAddressInfo().clientRef, kLowest);
    EXPECT_EQ(capabilities->getAddressInfo().serverRef, 2147483647);
    EXPECT_EQ(capabilities->getDelim(), ':');
}

TEST(CapabilityCfm, BinarySizeFollowsTheCountAndTextSizeDoesNot)
{
    const struct
    {
        std::size_t count;
        unsigned int binarySize;
    } rows[] = {{0, 16}, {1, 104}, {2, 192}, {3, 280}, {65535, 5767096}};
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.count);
        const auto capabilities = holding(message({}, row.count));
        EXPECT_EQ(capabilities->getMaxBinaryBufferSize(), row.binarySize);
        EXPECT_EQ(capabilities->getMaxTextBufferSize(), 332U);
    }
}

TEST(CapabilityCfm, ExtremeNumbersAreWritten)
{
    Numbers numbers = message({loading(12, {0, 1, -2, 3, kLowest}), interface(1, {{4294967295, 4, 5, 6}})});
    numbers[0].value = 4294967295;
    numbers[1].value = kLowest;
    numbers[2].value = 2147483647;
    const auto capabilities = holding(numbers);

    EXPECT_EQ(writeText(*capabilities), (Written{true,
                                                 "4294967295:-2147483648:2147483647:2:7:1:12:0:1:-2:3:-2147483648:"
                                                 "5:84:65535:1:4294967295:4:5:6:",
                                                 0}));
    EXPECT_EQ(writeBinary(*capabilities),
              (Written{true,
                       firstWord(4294967295U) + bytes({0x80, 0, 0, 0, 0x7F, 0xFF, 0xFF, 0xFF, 0, 2, 0, 7, 0, 1}) +
                           bytes({0, 12, 0, 0, 0, 1, 0xFF, 0xFE, 0, 3, 0x80, 0, 0, 0}) + zeros(72) +
                           bytes({0, 5, 0, 84, 0xFF, 0xFF, 0, 1, 0xFF, 0xFF, 0xFF, 0xFF, 0, 4, 5, 6}) + zeros(72),
                       0}));
    EXPECT_EQ(writeXml(*capabilities), (Written{true, xmlForm(numbers), 0}));
}

TEST(CapabilityCfm, WritersRejectACountAboveTwoOnceTheHeaderIsWritten)
{
    for (const std::size_t count : {3U, 65535U})
    {
        const std::string number = std::to_string(count);
        const Numbers header = message({}, count);
        const auto capabilities = holding(message({kLoading, kClimate}, count));
        EXPECT_EQ(writeText(*capabilities), (Written{false, textForm(header), 0}));
        EXPECT_EQ(takeLog(), error("[src/bciCapabilityMsg:55] numBoardCapabilities %d > %d", {number, "2"}));
        EXPECT_EQ(writeBinary(*capabilities), (Written{false, binaryForm(header), 0}));
        EXPECT_EQ(takeLog(), error("[src/bciCapabilityMsg:176] numBoardCapabilities %d > %d", {number, "2"}));
        EXPECT_EQ(writeXml(*capabilities), (Written{false, xmlForm(header), 0}));
        EXPECT_EQ(takeLog(), info("[src/bciCapabilityMsg:359] %d exceed the maximum number of boardCapabilities. ",
                                  {number}));
    }
}

TEST(CapabilityCfm, WritersRejectAnIdentityThatSelectsNothing)
{
    for (const List& list : rejected())
    {
        const Numbers numbers = message(list, 2);
        const std::string index = std::to_string(list.size() - 1);
        const std::string identity = std::to_string(list.back().identity);
        SCOPED_TRACE(textForm(numbers));
        const auto capabilities = holding(numbers);
        EXPECT_EQ(writeText(*capabilities), (Written{false, textForm(numbers), 0}));
        EXPECT_EQ(takeLog(),
                  error("[src/bciCapabilityMsg:152] The boardCapabilityIdentiy %d is invalid", {identity}));
        EXPECT_EQ(writeBinary(*capabilities), (Written{false, binaryForm(numbers), 0}));
        EXPECT_EQ(takeLog(),
                  error("[src/bciCapabilityMsg:325] The boardCapabilityIdentiy %d is invalid", {identity}));
        EXPECT_EQ(writeXml(*capabilities), (Written{false, xmlForm(numbers), 0}));
        EXPECT_EQ(takeLog(), info("[src/bciCapabilityMsg:563] The boardCapabilityIdentity %d (%d) is invalid",
                                  {index, identity}));
    }
}

TEST(CapabilityCfm, ReadersRejectAnIdentityThatSelectsNothing)
{
    for (const List& list : rejected())
    {
        const Numbers numbers = message(list, 2);
        const std::string text = textForm(numbers);
        const std::string binary = binaryForm(numbers);
        const std::string index = std::to_string(list.size() - 1);
        const std::string identity = std::to_string(list.back().identity);
        SCOPED_TRACE(text);
        expectRead(readText, text + "1:12:", {false, 0, sizeOf(text)}, blockOf(numbers, '\0'),
                   error("[src/bciCapabilityMsg:687] The boardCapabilityIdentiy %d is invalid", {identity}));
        expectRead(readBinary, binary + std::string(172, '\1'), {false, 0, sizeOf(binary)}, blockOf(numbers, '\0'),
                   error("[src/bciCapabilityMsg:837] The boardCapabilityIdentiy %d is invalid", {identity}));
        expectRead(
            readXml, xmlForm(numbers), {false, 0, 0}, blockOf(numbers, kFill),
            info("[src/bciCapabilityMsg:1122] The boardCapabilityIdentity %d (%d) is invalid", {index, identity}));
    }
}

TEST(CapabilityCfm, BinaryFormThatIsRejectedMakesNoMessage)
{
    const std::map<SIGSELECT, BciMsgFactory> saved = BciMessageBase::s_bciRegistrationMap;
    BciMessageBase::s_bciRegistrationMap = {{BCI_GET_CAPABILITIES_CFM, &BciCapabilityCfmMsg::instantiateBciMsg}};
    std::string binary = binaryForm(message({kNothing}));
    BciMessageBase* created = nullptr;
    unsigned int length = 16;

    EXPECT_FALSE(BciMessageBase::instantiateBciMsgFromBinary(binary.data(), length, created));

    EXPECT_EQ(created, nullptr);
    EXPECT_EQ(length, 16U);
    EXPECT_EQ(takeLog(), error("[src/bciCapabilityMsg:837] The boardCapabilityIdentiy %d is invalid", {"0"}));
    BciMessageBase::s_bciRegistrationMap = saved;
}

// Text form. A number of elements above what the array holds is carried, and the elements that there are with
// it.

const std::vector<Capability> kOverstated = {hosts(5),     hosts(65535), links(11),
                                             links(65535), sensors(11),  sensors(65535)};

TEST(CapabilityCfmText, WritesEveryListOrItsBeginning)
{
    for (const List& list : lists(overstated(kOverstated)))
    {
        const std::string text = textForm(message(list)) + (list.empty() ? ":" : "");
        SCOPED_TRACE(text);
        expectBeginnings(writeText, *holding(message(list)), text);
    }
}

TEST(CapabilityCfmText, ReadsEveryListIntoAClearedBlock)
{
    for (const List& list : lists(overstated(kOverstated)))
    {
        const std::string text = textForm(message(list));
        expectRead(readText, text, {true, 1, sizeOf(text)}, blockOf(message(list), '\0'));
        expectRead(readText, text + ":9:", {true, 0, sizeOf(text)}, blockOf(message(list), '\0'));
    }
}

TEST(CapabilityCfmText, EmptyListEndsInTwoDelimitersOfWhichTheLastStaysUnread)
{
    const auto capabilities = holding(message({}));

    EXPECT_EQ(writeText(*capabilities), (Written{true, "23429128:1:-2:0:7::", 0}));
    EXPECT_EQ(readText(*capabilities, "23429128:1:-2:0:7::"), (Read{true, 0, 18}));
}

// Whatever is not read is zero: a capability that is not reached has the identity 0.
TEST(CapabilityCfmText, ReadsAsFarAsAShortDamagedOrRejectedTextGoes)
{
    const Log none;
    const Log zero = error("[src/bciCapabilityMsg:687] The boardCapabilityIdentiy %d is invalid", {"0"});
    const Log above = error("[src/bciCapabilityMsg:595] numCapabilities %d > %d", {"3", "2"});
    const Log farAbove = error("[src/bciCapabilityMsg:595] numCapabilities %d > %d", {"65535", "2"});
    const struct
    {
        std::string text;
        Read expected;
        Log log;
        std::size_t header;     // how much of the common header is read
        std::vector<U16> words; // what is read behind it
    } rows[] = {
        {"", {true, 3, 0}, none, 0, {}},
        {"?:1:-2:1:7:1:12:", {true, 2, 0}, none, 0, {}},
        {"23429128:1:?:1:7:1:12:", {true, 2, 11}, none, 8, {}},
        {"23429128:1:-2147483648:1:7:1:12:", {true, 2, 22}, none, 8, {}},
        {"23429128:1:-2:1", {true, 3, 15}, none, 12, {}},
        {"23429128:1:-2:65536:7:1:12:", {true, 2, 19}, none, 12, {}},
        {"23429128:1:-2:1:", {false, 3, 16}, zero, 12, {1}},
        {"23429128:1:-2:3:?", {false, 2, 16}, above, 12, {3}},
        {"23429128:1:-2:3:", {false, 3, 16}, above, 12, {3}},
        {"23429128:1:-2:3:7:1:12:2:3:4:5:6:", {false, 0, 18}, above, 12, {3, 7}},
        {"23429128:1:-2:65535:7:", {false, 1, 22}, farAbove, 12, {65535, 7}},
        {"23429128:1:-2:1:7", {false, 3, 17}, zero, 12, {1}},
        {"23429128:1:-2:1:7:", {false, 3, 18}, zero, 12, {1, 7}},
        {"23429128:1:-2:1:7:4", {false, 3, 19}, zero, 12, {1, 7}},
        {"23429128:1:-2:1:7:?:", {false, 2, 18}, zero, 12, {1, 7}},
        {"23429128:1:-2:1:7:32768:20:", {false, 2, 23}, zero, 12, {1, 7}},
        {"23429128:1:-2:1:7:4:", {true, 3, 20}, none, 12, {1, 7, 4}},
        {"23429128:1:-2:1:7:4:65536:2:", {true, 2, 25}, none, 12, {1, 7, 4}},
        // Only the low 16 bits of a number far below the range are taken.
        {"23429128:1:-2:1:7:-65532:2:2:8:9:-1:1", {true, 3, 37}, none, 12, {1, 7, 4, 2, 2, 8, 9, 65535}},
        {"23429128:1:-2:1:7:5:0:8:2:4294967295:6:256:7:",
         {true, 2, 42},
         none,
         12,
         {1, 7, 5, 0, 8, 2, 65535, 65535, 6}},
        {"23429128:1:-2:1:7:6:1:1:8:-40000:32768:3:4:", {true, 2, 38}, none, 12, {1, 7, 6, 1, 1, 8, 25536}},
        {"23429128:1:-2:2:7:3:0:", {false, 3, 22}, zero, 12, {2, 7, 3}},
    };
    for (const auto& row : rows)
    {
        std::string block = hostHeader(23429128, 1, -2).substr(0, row.header);
        for (const U16 word : row.words)
        {
            block += host16(word);
        }
        expectRead(readText, row.text, row.expected, block + zeros(kSize - block.size()), row.log);
    }
}

TEST(CapabilityCfmText, AnyCharacterPassesAsADelimiter)
{
    expectRead(readText, "23429128;1 -2\n1|7<1/12_32767z-32768?-1~65535%-2147483647\t9", {true, 0, 57},
               blockOf(message({kLoading}), '\0'));
}

// Binary form

TEST(CapabilityCfmBinary, WritesAndReadsEveryList)
{
    for (const List& list : lists(overstated(kOverstated)))
    {
        const std::string binary = binaryForm(message(list));
        SCOPED_TRACE(textForm(message(list)));
        const auto sender = holding(message(list));
        EXPECT_EQ(binary.size(), 16 + 88 * list.size());
        EXPECT_EQ(writeBinary(*sender, sizeOf(binary)), (Written{true, binary, 1}));
        EXPECT_EQ(writeBinary(*sender), (Written{true, binary, 0}));
        expectRead(readBinary, binary, {true, 1, sizeOf(binary)}, blockOf(message(list), '\0'));
        expectRead(readBinary, binary + "#", {true, 0, sizeOf(binary)}, blockOf(message(list), '\0'));
    }
}

// The zeros of elements that are not there are as wide as the elements' numbers, those behind the elements a
// byte each: one byte that is left takes none of the former.
TEST(CapabilityCfmBinary, ShortBufferTakesTheNumbersThatFitAndTheResultIsTrue)
{
    for (const List& list : lists())
    {
        SCOPED_TRACE(textForm(message(list)));
        const std::vector<std::string> fields = binaryFields(message(list));
        const auto capabilities = holding(message(list));
        for (unsigned int size = 0; size < 16 + 88 * list.size(); ++size)
        {
            std::string fitting;
            for (const std::string& field : fields)
            {
                fitting += fitting.size() + field.size() <= size ? field : "";
            }
            EXPECT_EQ(writeBinary(*capabilities, size), (Written{true, fitting, fitting.size() == size ? 3U : 2U}))
                << size;
        }
    }
}

// A capability that is not reached has the identity 0.
TEST(CapabilityCfmBinary, ReadsAsFarAsAShortFormGoes)
{
    for (const List& list : lists())
    {
        const std::vector<std::string> fields = binaryFields(message(list));
        const std::string binary = binaryForm(message(list));
        const std::string block = blockOf(message(list), '\0');
        const std::string text = textForm(message(list));
        for (std::size_t size = 0; size < binary.size(); ++size)
        {
            SCOPED_TRACE(testing::Message() << text << " cut to " << size);
            std::size_t whole = 0;
            for (auto field = fields.begin(); whole + field->size() <= size; ++field)
            {
                whole += field->size();
            }
            const bool result = whole < 14 || list.empty() || whole >= 18 + 88 * (list.size() - 1);
            const unsigned int status = size == 0 ? 3 : whole == size ? 1 : 2;
            expectRead(readBinary, binary.substr(0, size), {result, status, static_cast<unsigned int>(whole)},
                       block.substr(0, whole) + zeros(kSize - whole),
                       result
                           ? Log{}
                           : error("[src/bciCapabilityMsg:837] The boardCapabilityIdentiy %d is invalid", {"0"}));
        }
    }
}

// All elements are read whatever their number is; what stands behind a member is not.
TEST(CapabilityCfmBinary, ReadsTheWholeMemberAndDiscardsWhatFollowsIt)
{
    const struct
    {
        S16 identity;
        std::size_t size;
    } rows[] = {{1, 12}, {3, 0}, {4, 20}, {5, 84}, {6, 84}};
    for (const auto& row : rows)
    {
        for (const char start : {'\0', '\x33'}) // no element, and more than there are
        {
            SCOPED_TRACE(testing::Message() << row.identity << (start == 0 ? " without" : " with") << " elements");
            const Numbers head = message({{row.identity, 5, {}}});
            const std::string content = std::string(4, start) + std::string(80, '\x33');
            expectRead(readBinary, binaryForm(head) + content, {true, 1, 104},
                       blockOf(head, '\0').substr(0, 20) + content.substr(0, row.size) +
                           zeros(kSize - 20 - row.size));
        }
    }
}

// The reader looks at the count when the block is cleared: it rejects neither what the message held nor what
// the form holds.
TEST(CapabilityCfmBinary, ReaderKeepsACountAboveTwoAndReadsTwo)
{
    for (const std::size_t count : {3U, 65535U})
    {
        const Numbers numbers = message({sensors(10), hosts(4)}, count);
        const std::string before = blockOf(message({}, count), kFill);
        const std::string after = blockOf(numbers, '\0');
        const auto capabilities = holding(numbers);
        expectReading(*capabilities, readBinary, before, {binaryForm(numbers), {true, 1, 192}, after});
        expectReading(*capabilities, readBinary, after,
                      {binaryForm(numbers) + bytes({0, 1}) + zeros(86), {true, 0, 192}, after});
    }
}

// XML form

TEST(CapabilityCfmXml, WritesEveryListOrItsBeginning)
{
    for (const List& list : lists())
    {
        const std::string xml = xmlForm(message(list));
        SCOPED_TRACE(textForm(message(list)));
        expectBeginnings(writeXml, *holding(message(list)), xml, 7);
    }
}

// Hosts and links above their bounds are read as far as the arrays go. What no element names is left alone.
TEST(CapabilityCfmXml, ReadsEveryListAndKeepsTheRest)
{
    for (const List& list : lists(overstated({hosts(5), hosts(65535), links(11), links(65535)})))
    {
        SCOPED_TRACE(textForm(message(list)));
        Log log;
        for (const Capability& capability : list)
        {
            if (capability.identity == 3)
            {
                log.push_back({6, "[src/bciCapabilityMsg:1118] cap %d nothing to do", {"3"}});
            }
        }
        expectRead(readXml, xmlForm(message(list)), {true, 0, 0}, blockOf(message(list), kFill), log);
    }
}

TEST(CapabilityCfmXml, OrderAndLayoutOfTheElementsDoNotMatter)
{
    Numbers numbers = message({kInterface, kTermination});
    std::reverse(numbers.begin(), numbers.end());
    std::string xml = element("snid_1_10", "9") + element("snid_1", "9") + "<capabilities>" + xmlForm(numbers) +
                      "</capabilities>" + xmlForm(message({kLoading, kLoading}));
    std::replace(xml.begin(), xml.end(), '\t', ' ');
    expectRead(readXml, xml, {true, 0, 0}, blockOf(message({kInterface, kTermination}), kFill));
}

TEST(CapabilityCfmXml, StateOfTheStreamDoesNotMatter)
{
    expectRead(readXmlOffAFailedStream, xmlForm(message({kLoading})), {true, 2, 20},
               blockOf(message({kLoading}), kFill));

    const auto untouched = filled<BciCapabilityCfmMsg>(kSize);
    commonStream::istream_text detached;
    EXPECT_FALSE(untouched->deserializeBciMsgFromXml(detached));
    EXPECT_EQ(structureOf(*untouched, kSize), std::string(kSize, kFill));
    EXPECT_EQ(takeLog(), info("[src/bciCapabilityMsg:858] tag %s not found", {"sigNo"}));
}

// The elements are looked up in the order of the structure: what is in front of a missing one is stored.
TEST(CapabilityCfmXml, StopsAtTheFirstMissingElement)
{
    for (const List& list : {List{kLoading, hosts(4)}, List{links(10), sensors(10)}})
    {
        std::vector<Missing> elements;
        std::size_t offset = 0;
        for (const Number& number : message(list))
        {
            if (!number.name.empty())
            {
                elements.push_back({number.name,
                                    "[src/bciCapabilityMsg:" + std::to_string(number.line) + "] tag %s not found",
                                    offset});
            }
            offset += number.width;
        }
        expectEachMissingElementStopsTheReader<BciCapabilityCfmMsg>(xmlForm(message(list)),
                                                                    blockOf(message(list), kFill), elements);
    }
}

// Counts are checked as stored, in their low 16 bits, before any other element is looked for.
TEST(CapabilityCfmXml, ReaderRejectsACountAboveTwo)
{
    const struct
    {
        const char* content;
        std::size_t count;
    } rows[] = {{"3", 3}, {"65535", 65535}, {"-1", 65535}, {"65539", 3}, {"99999999999", 65535}};
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.content);
        expectRead(readXml,
                   headerElements("23429128", "1", "-2") + element("numberOfBoardCapabilities", row.content),
                   {false, 0, 0}, blockOf(before(message({}, row.count), "padding0"), kFill),
                   info("[src/bciCapabilityMsg:886] %d > %d", {std::to_string(row.count), "2"}));
    }
}

TEST(CapabilityCfmXml, ReaderRejectsMoreThanTenSensors)
{
    const struct
    {
        const char* content;
        U16 count;
    } rows[] = {{"11", 11}, {"65535", 65535}, {"-1", 65535}, {"65547", 11}};
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.content);
        const Numbers numbers = message({kLoading, sensors(row.count)});
        expectRead(readXml,
                   xmlForm(before(numbers, "numOfHotspotTempSensors")) +
                       element("numOfHotspotTempSensors", row.content),
                   {false, 0, 0}, blockOf(before(numbers, "climateControlPadding0"), kFill),
                   info("[src/bciCapabilityMsg:1063] numOfHotspotTempSensors %d > %d",
                        {std::to_string(row.count), "10"}));
    }
}

TEST(CapabilityCfmXml, WriterRejectsElementsThatTheArrayCannotHold)
{
    const struct
    {
        Capability (*make)(U16);
        int bound;
        const char* format;
        const char* next; // the number that is not written any more
    } rows[] = {
        {hosts, 4, "[src/bciCapabilityMsg:417] numEthTermHosts %d > %d", "ethTermSupportPadding0"},
        {links, 10, "[src/bciCapabilityMsg:460] numEthLinks %d > %d", "portNr_#_0"},
        {sensors, 10, "[src/bciCapabilityMsg:510] numHotSpotTempSensors %d > %d", "climateControlPadding0"},
    };
    for (const auto& row : rows)
    {
        for (const int stated : {row.bound + 1, 65535})
        {
            for (const List& list : overstated({row.make(static_cast<U16>(stated))}))
            {
                SCOPED_TRACE(textForm(message(list)));
                std::string next = row.next;
                std::replace(next.begin(), next.end(), '#', list[0].identity == 1 ? '1' : '0');
                EXPECT_EQ(writeXml(*holding(message(list))),
                          (Written{false, xmlForm(before(message(list), next)), 0}));
                EXPECT_EQ(takeLog(), info(row.format, {std::to_string(stated), std::to_string(row.bound)}));
            }
        }
    }
}

// The names of numbers that stand once in a capability have no index.
TEST(CapabilityCfmXml, SecondCapabilityOfAnIdentityReceivesTheFirstOnesNumbers)
{
    const Capability second = loading(34, {1, 2, 3, 4, 5});
    EXPECT_EQ(writeXml(*holding(message({kLoading, second}))),
              (Written{true, xmlForm(message({kLoading, second})), 0}));
    expectRead(readXml, xmlForm(message({kLoading, second})), {true, 0, 0},
               blockOf(message({kLoading, loading(34, {32767, -32768, -1, 65535, -2147483647})}), kFill));

    // Four hosts, of which the first capability's number lets two through.
    const std::string two = blockOf(message({kTermination, termination(2, {{101, -1}, {102, -2}})}), kFill);
    expectRead(readXml, xmlForm(message({kTermination, hosts(4)})), {true, 0, 0}, two);

    // Two hosts, where the first capability's number wants four.
    const auto capabilities = holding<BciCapabilityCfmMsg>(two);
    EXPECT_EQ(readXml(*capabilities, xmlForm(message({hosts(4), kTermination}))), (Read{false, 0, 0}));
    EXPECT_EQ(takeLog(), info("[src/bciCapabilityMsg:980] tag %s not found", {"snid_1_2"}));
}

TEST(CapabilityCfmXml, NumbersAreTruncatedToTheirFields)
{
    const struct
    {
        const char* name;
        std::string content;
        long long value;
    } rows[] = {
        {"sigNo", "4294967295", 2147483647},
        {"clientRef", "-2147483649", kLowest},
        {"serverRef", "none", 0},
        {"numberOfBoardCapabilities", "65538", 2},
        {"padding0", "-1", 65535},
        {"boardCapabilityIdentity_0", "65537", 1},
        {"boardCapabilityLength_0", "1e3", 1},
        {"loadable", "40000", -25536},
        {"flash", "-40000", 25536},
        {"fileSystemAccess", "", 0},
        {"loadingSupportPadding0", " +12 ", 12},
        {"blockSize", "4000000000", 2147483647},
        {"boardCapabilityIdentity_1", "-65531", 5},
        {"localSwitchPortNr", "100000", 34464},
        {"numOfEthLinks", "-65534", 2},
        {"portNr_1_0", "-1", 4294967295},
        {"snid_1_0", "-2", 65534},
        {"bandWidth_1_0", "-1", 255},
        {"direction_1_0", std::string(500, '0') + "300", 44},
    };
    Numbers numbers = message({kLoading, kInterface});
    std::string xml;
    for (const auto& row : rows)
    {
        xml += element(row.name, row.content);
        for (Number& number : numbers)
        {
            number.value = number.name == row.name ? row.value : number.value;
        }
    }

    expectRead(readXml, xml + xmlForm(message({kLoading, kInterface})), {true, 0, 0}, blockOf(numbers, kFill));
}
