// The walk over a shape of its own, which has every kind of part, and the shapes of all messages.

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
#include "catalogue.h"
#include "codec/walk.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <iterator>
#include <map>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace bci::codec;

struct PointS
{
    U16 x;
    U16 y;
};

struct LineS
{
    U16 kind;
    U16 points;
    PointS point[3];
};

struct DrawingS
{
    U16 lines;
    U16 limited;
    LineS line[2];
    U16 texts;
    U8 text[8];
    U16 length;
    U8 bytes[6];
};

constexpr Field kPointRows[] = {BCI_FIELD(PointS, x, "x__", 1), BCI_FIELD(PointS, y, "y__", 2)};
constexpr Field kLineRows[] = {
    makeField<S16>(offsetof(LineS, kind), "kind_", 3),
    BCI_FIELD(LineS, points, "points", 4),
};
constexpr List kPoints = {&kLineRows[1], 3, offsetof(LineS, point), sizeof(PointS), {kPointRows}, true, false};
constexpr Part kLineFurther[] = {&kPoints};
constexpr Case kCases[] = {{-1, "none", {}}, {7, "point", {kPointRows}}};
constexpr Choice kChoice = {&kLineRows[0], offsetof(LineS, point), sizeof(PointS), kCases};
constexpr Part kChoiceFurther[] = {&kChoice};

constexpr Field kDrawingRows[] = {
    BCI_FIELD(DrawingS, lines, "lines", 5),   BCI_FIELD(DrawingS, limited, "limited", 6),
    BCI_FIELD(DrawingS, texts, "texts", 7),   BCI_FIELD(DrawingS, text, "text_", 8),
    BCI_FIELD(DrawingS, length, "length", 9), BCI_FIELD(DrawingS, bytes, "bytes", 10),
};
constexpr Limit kLimit = {&kDrawingRows[1], 5};
constexpr List kLines = {
    &kDrawingRows[0], 2, offsetof(DrawingS, line), sizeof(LineS), {kLineRows, kLineFurther}, false, true};
constexpr LogEntries kEntries = {&kDrawingRows[2], &kDrawingRows[3]};
constexpr Block kBlock = {&kDrawingRows[4], 6, &kDrawingRows[5]};
constexpr Part kDrawingFurther[] = {&kLimit,
                                    &kLines,
                                    std::span<const Field>(kDrawingRows).subspan(2, 1),
                                    &kEntries,
                                    std::span<const Field>(kDrawingRows).subspan(4, 1),
                                    &kBlock};
constexpr Shape kDrawing = {
    "Drawing", "DrawingS", sizeof(DrawingS), {std::span<const Field>(kDrawingRows).first(2), kDrawingFurther}, ""};

DrawingS drawing()
{
    DrawingS structure = {};
    structure.lines = 2;
    structure.limited = 4;
    structure.line[0] = {10, 1, {{11, 12}, {}, {}}};
    structure.line[1] = {20, 2, {{21, 22}, {23, 24}, {}}};
    structure.texts = 2;
    std::memcpy(structure.text, "ab\0c\0\0\0", 8);
    structure.length = 3;
    std::memcpy(structure.bytes, "x\0y", 3);
    return structure;
}

std::string named(const Shape& shape, void* structure)
{
    std::string text;
    for (const Leaf& leaf : leaves(shape, static_cast<char*>(structure)))
    {
        const std::string characters(leaf.base + leaf.field.offset, leaf.field.size);
        text += leaf.name + "=" +
                (leaf.field.kind != Kind::text ? std::to_string(loadNumber(leaf.field, leaf.base))
                 : leaf.raw                    ? "[" + characters + "]"
                                               : characters.substr(0, characters.find('\0'))) +
                " ";
    }
    return text;
}

TEST(Schema, LeadsThroughAMessageInWireOrder)
{
    DrawingS structure = drawing();
    EXPECT_EQ(named(kDrawing, &structure),
              "lines=2 limited=4 kind_0=10 points=1 x_0_0=11 y_0_0=12 kind_1=20 points=2 x_1_0=21 y_1_0=22 "
              "x_1_1=23 y_1_1=24 texts=2 text_0=ab text_1=c length=3 bytes=[x" +
                  std::string(1, '\0') + "y] ");
}

TEST(Schema, StopsAtTheBounds)
{
    DrawingS structure = drawing();
    structure.line[0].points = 65535;
    structure.lines = 3;
    structure.texts = 60000;
    structure.length = 7;
    std::memcpy(structure.bytes, "123456", 6);
    EXPECT_EQ(
        named(kDrawing, &structure),
        "lines=3 limited=4 kind_0=10 points=65535 x_0_0=11 y_0_0=12 x_0_1=0 y_0_1=0 x_0_2=0 y_0_2=0 kind_1=20 "
        "points=2 x_1_0=21 y_1_0=22 x_1_1=23 y_1_1=24 texts=60000 text_0=ab text_1=c text_2= text_3= text_4= "
        "length=7 bytes=[123456] ");
}

TEST(Schema, EndsATextWithoutTerminatorWithItsArray)
{
    DrawingS structure = drawing();
    std::memcpy(structure.text, "ab\0cdefg", 8);
    structure.texts = 5;
    EXPECT_NE(named(kDrawing, &structure).find("text_0=ab text_1=cdefg length"), std::string::npos);
}

TEST(Schema, NamesElementsOfAnOuterListWithZeroAsTheSecondIndex)
{
    constexpr Shape shape = {"Line", "LineS", sizeof(LineS), {kLineRows, kLineFurther}, ""};
    LineS structure = {7, 2, {{1, 2}, {3, 4}, {}}};

    EXPECT_EQ(named(shape, &structure), "kind_=7 points=2 x_0_0=1 y_0_0=2 x_1_0=3 y_1_0=4 ");
}

TEST(Schema, ChoosesByTheSelector)
{
    constexpr Shape shape = {"Line", "LineS", sizeof(LineS), {kLineRows, kChoiceFurther}, ""};
    LineS structure = {7, 0, {{1, 2}, {}, {}}};
    EXPECT_EQ(named(shape, &structure), "kind_=7 points=0 x__=1 y__=2 ");
    structure.kind = 65535;
    EXPECT_EQ(named(shape, &structure), "kind_=-1 points=0 ");
    structure.kind = 8;
    EXPECT_EQ(named(shape, &structure), "kind_=8 points=0 ");
}

// What walk() tells on the way.
class Events : public Visitor
{
public:
    void field(const Field& field, char* /*base*/, const Subscripts* /*subscripts*/) override
    {
        m_text += std::string(field.tag) + " ";
    }
    void entry(const Field& entry, char* /*base*/, const Subscripts& subscripts) override
    {
        m_text += std::string(entry.tag) + std::to_string(subscripts.first) + "," +
                  std::to_string(subscripts.second) + "/" + std::to_string(entry.offset) + "+" +
                  std::to_string(entry.size) + " ";
    }
    void block(const Field& block, char* /*base*/) override
    {
        m_text += std::string(block.tag) + "+" + std::to_string(block.size) + " ";
    }
    void beginList(const List& /*list*/, std::int64_t count, char* /*base*/) override
    {
        m_text += "list(" + std::to_string(count) + " ";
    }
    void endList(const List& /*list*/, std::int64_t count, char* /*base*/) override
    {
        m_text += std::to_string(count) + ") ";
    }
    void beginEntries(const LogEntries& /*entries*/, std::int64_t count, char* /*base*/) override
    {
        m_text += "entries(" + std::to_string(count) + " ";
    }
    void endEntries(const LogEntries& /*entries*/, std::int64_t count, std::int64_t written,
                    char* /*base*/) override
    {
        m_text += std::to_string(written) + " of " + std::to_string(count) + ") ";
    }
    void beginBlock(const Block& /*block*/, std::int64_t length, char* /*base*/) override
    {
        m_text += "block " + std::to_string(length) + " ";
    }
    void limit(const Limit& limit, char* base) override
    {
        m_text += "limit " + std::to_string(loadNumber(*limit.field, base)) + " ";
    }

    std::string m_text;
};

TEST(Schema, TellsCountsAsTheyStand)
{
    DrawingS structure = drawing();
    structure.limited = 9;
    structure.lines = 0;
    structure.texts = 3;
    std::memcpy(structure.text, "abcde\0f", 8);
    structure.length = 99;
    Events events;
    walk(kDrawing, reinterpret_cast<char*>(&structure), events);
    const auto at = std::to_string(offsetof(DrawingS, text));
    const auto behind = std::to_string(offsetof(DrawingS, text) + 6);
    EXPECT_EQ(events.m_text, "lines limited limit 9 list(0 0) texts entries(3 text_0,0/" + at + "+8 text_1,0/" +
                                 behind + "+2 2 of 3) length block 99 bytes+6 ");
}

// Wants to know of so many events and no more.
class FirstEvents
{
public:
    explicit FirstEvents(std::size_t most) : m_most(most) {}

    bool isOver() const
    {
        return m_events.size() == m_most;
    }

    void field(const Field& field, char* /*base*/, const Subscripts* /*subscripts*/)
    {
        m_events.push_back(field.tag);
    }
    void entry(const Field& /*entry*/, char* /*base*/, const Subscripts& /*subscripts*/)
    {
        m_events.push_back("entry");
    }
    void block(const Field& /*block*/, char* /*base*/)
    {
        m_events.push_back("block");
    }
    void beginList(const List& /*list*/, std::int64_t /*count*/, char* /*base*/)
    {
        m_events.push_back("list(");
    }
    void endList(const List& /*list*/, std::int64_t /*count*/, char* /*base*/)
    {
        m_events.push_back(")list");
    }
    void beginChoice(const Choice& /*choice*/, const Case* chosen, char* /*base*/)
    {
        m_events.push_back(chosen != nullptr ? chosen->member : "none");
    }
    void endChoice(const Choice& /*choice*/, char* /*base*/)
    {
        m_events.push_back(")choice");
    }
    void beginEntries(const LogEntries& /*entries*/, std::int64_t /*count*/, char* /*base*/)
    {
        m_events.push_back("entries(");
    }
    void endEntries(const LogEntries& /*entries*/, std::int64_t /*count*/, std::int64_t /*written*/,
                    char* /*base*/)
    {
        m_events.push_back(")entries");
    }
    void beginBlock(const Block& /*block*/, std::int64_t /*length*/, char* /*base*/)
    {
        m_events.push_back("block(");
    }
    void limit(const Limit& /*limit*/, char* /*base*/)
    {
        m_events.push_back("limit");
    }

    std::vector<std::string> m_events;

private:
    std::size_t m_most;
};

// Whether a visitor that is over after any number of these events is told no more of them.
void expectFirstEvents(const Shape& shape, void* structure, const std::vector<std::string>& events)
{
    for (std::size_t most = 1; most <= events.size() + 1; ++most)
    {
        FirstEvents visitor(most);
        Walker<FirstEvents>(static_cast<char*>(structure), visitor, nullptr).walk(shape.content);
        const std::size_t told = most <= events.size() ? most : events.size();
        EXPECT_EQ(visitor.m_events,
                  std::vector<std::string>(events.begin(), events.begin() + std::ptrdiff_t(told)))
            << most;
    }
}

TEST(Walk, TellsNothingMoreOnceItsVisitorIsOver)
{
    DrawingS structure = drawing();

    expectFirstEvents(kDrawing, &structure,
                      {"lines", "limited", "limit",    "list(", "kind_", "points",   "list(",  "x__",    "y__",
                       ")list", "kind_",   "points",   "list(", "x__",   "y__",      "x__",    "y__",    ")list",
                       ")list", "texts",   "entries(", "entry", "entry", ")entries", "length", "block(", "block"});
}

TEST(Walk, TellsNothingMoreOfAChoiceOnceItsVisitorIsOver)
{
    constexpr Shape shape = {"Line", "LineS", sizeof(LineS), {kLineRows, kChoiceFurther}, ""};
    LineS structure = {7, 0, {{1, 2}, {}, {}}};

    expectFirstEvents(shape, &structure, {"kind_", "points", "point", "x__", "y__", ")choice"});
}

TEST(Walk, TellsAChoiceOfNone)
{
    constexpr Shape shape = {"Line", "LineS", sizeof(LineS), {kLineRows, kChoiceFurther}, ""};
    LineS structure = {8, 0, {{1, 2}, {}, {}}};

    expectFirstEvents(shape, &structure, {"kind_", "points", "none", ")choice"});
}

TEST(Catalogue, HasTheShapeOfTheClassThatIsRegistered)
{
    const std::map<std::string, BciMsgFactory> factories = {
        {"BciAuditCfm", BciAuditCfm::instantiateBciMsg},
        {"BciCapabilityCfmMsg", BciCapabilityCfmMsg::instantiateBciMsg},
        {"BciConnEstRej", BciConnEstRej::instantiateBciMsg},
        {"BciConnEstReq", BciConnEstReq::instantiateBciMsg},
        {"BciFaultCeaseIndication", BciFaultCeaseIndication::instantiateBciMsg},
        {"BciFaultIndication", BciFaultIndication::instantiateBciMsg},
        {"BciGenericMsg", BciGenericMsg::instantiateBciMsg},
        {"BciGenericRejMsg", BciGenericRejMsg::instantiateBciMsg},
        {"BciGetHwPidCfmMsg", BciGetHwPidCfmMsg::instantiateBciMsg},
        {"BciGetVisualIndicationCfm", BciGetVisualIndicationCfm::instantiateBciMsg},
        {"BciHwLogGetCfmMsg", BciHwLogGetCfmMsg::instantiateBciMsg},
        {"BciHwLogGetReqMsg", BciHwLogGetReqMsg::instantiateBciMsg},
        {"BciHwLogSetReqMsg", BciHwLogSetReqMsg::instantiateBciMsg},
        {"BciLoadLmcAck", BciLoadLmcAck::instantiateBciMsg},
        {"BciLoadLmcData", BciLoadLmcData::instantiateBciMsg},
        {"BciLoadLmcEndCfm", BciLoadLmcEndCfm::instantiateBciMsg},
        {"BciLoadLmcInitCfm", BciLoadLmcInitCfm::instantiateBciMsg},
        {"BciLoadLmcInitReq", BciLoadLmcInitReq::instantiateBciMsg},
        {"BciLoadLmcReq", BciLoadLmcReq::instantiateBciMsg},
        {"BciMaintStateInd", BciMaintStateInd::instantiateBciMsg},
        {"BciRestartBoardFwdMsg", BciRestartBoardFwdMsg::instantiateBciMsg},
        {"BciSelectLmcReq", BciSelectLmcReq::instantiateBciMsg},
        {"BciSelectMmiReq", BciSelectMmiReq::instantiateBciMsg},
        {"BciSetMaintStateReq", BciSetMaintStateReq::instantiateBciMsg},
        {"BciSetUtcTimeReq", BciSetUtcTimeReq::instantiateBciMsg},
        {"BciSetVisualIndicationReq", BciSetVisualIndicationReq::instantiateBciMsg},
        {"BciTempMeasStartReq", BciTempMeasStartReq::instantiateBciMsg},
    };
    BciMsgRegistry::registerSupportedMsgClasses();
    std::map<std::string, int> uses;
    for (const bci::Signal& signal : bci::signals())
    {
        SCOPED_TRACE(signal.name);
        EXPECT_EQ(BciMessageBase::s_bciRegistrationMap.at(signal.number), factories.at(signal.shape->className));
        EXPECT_EQ(bci::findSignal(signal.number), &signal);
        ++uses[signal.shape->className];
    }
    EXPECT_EQ(bci::signals().size(), 66U);
    EXPECT_EQ(uses.size(), 27U);
    EXPECT_EQ(uses["BciGenericMsg"], 23);
    EXPECT_EQ(uses["BciGenericRejMsg"], 18);
    EXPECT_EQ(bci::findSignal(0x165801C), nullptr);
}

#define NAMED(name)                                                                                               \
    {                                                                                                             \
        name, #name                                                                                               \
    }

TEST(Catalogue, CallsTheNumbersByTheirConstantsInTheOrderOfRegistration)
{
    const struct
    {
        SIGSELECT number;
        std::string name;
    } rows[] = {
        NAMED(BCI_CONN_EST_REQ),
        NAMED(BCI_CONN_EST_CFM),
        NAMED(BCI_CONN_EST_REJ),
        NAMED(BCI_RESTART_BOARD_FWD),
        NAMED(BCI_SET_VISUAL_INDICATION_REQ),
        NAMED(BCI_SET_VISUAL_INDICATION_CFM),
        NAMED(BCI_SET_VISUAL_INDICATION_REJ),
        NAMED(BCI_GET_CAPABILITIES_REQ),
        NAMED(BCI_GET_CAPABILITIES_CFM),
        NAMED(BCI_GET_CAPABILITIES_REJ),
        NAMED(BCI_BASIC_0A_REQ),
        NAMED(BCI_BASIC_0B_CFM),
        NAMED(BCI_BASIC_0C_REJ),
        NAMED(BCI_FAULT_IND),
        NAMED(BCI_FAULT_CEASE_IND),
        NAMED(BCI_GET_VISUAL_INDICATION_REQ),
        NAMED(BCI_GET_VISUAL_INDICATION_CFM),
        NAMED(BCI_GET_VISUAL_INDICATION_REJ),
        NAMED(BCI_SELECT_MMI_REQ),
        NAMED(BCI_SELECT_MMI_CFM),
        NAMED(BCI_SELECT_MMI_REJ),
        NAMED(BCI_BASIC_15_REQ),
        NAMED(BCI_BASIC_16_CFM),
        NAMED(BCI_BASIC_17_REJ),
        NAMED(BCI_MAINT_STATE_IND),
        NAMED(BCI_SET_MAINT_STATE_REQ),
        NAMED(BCI_SET_MAINT_STATE_CFM),
        NAMED(BCI_SET_MAINT_STATE_REJ),
        NAMED(BCI_AUDIT_REQ),
        NAMED(BCI_AUDIT_CFM),
        NAMED(BCI_AUDIT_REJ),
        NAMED(BCI_STATE_03_REQ),
        NAMED(BCI_STATE_04_CFM),
        NAMED(BCI_STATE_05_REJ),
        NAMED(BCI_STATE_06_REQ),
        NAMED(BCI_STATE_07_CFM),
        NAMED(BCI_STATE_08_REJ),
        NAMED(BCI_TEMP_MEAS_START_REQ),
        NAMED(BCI_TEMP_MEAS_START_CFM),
        NAMED(BCI_TEMP_MEAS_START_REJ),
        NAMED(BCI_LOAD_LMC_REQ),
        NAMED(BCI_LOAD_LMC_CFM),
        NAMED(BCI_LOAD_LMC_REJ),
        NAMED(BCI_LOAD_LMC_INIT_REQ),
        NAMED(BCI_LOAD_LMC_INIT_CFM),
        NAMED(BCI_LOAD_LMC_INIT_REJ),
        NAMED(BCI_LOAD_LMC_DATA),
        NAMED(BCI_LOAD_LMC_ACK),
        NAMED(BCI_LOAD_LMC_END_REQ),
        NAMED(BCI_LOAD_LMC_END_CFM),
        NAMED(BCI_LOAD_LMC_END_REJ),
        NAMED(BCI_SELECT_LMC_REQ),
        NAMED(BCI_SELECT_LMC_CFM),
        NAMED(BCI_SELECT_LMC_REJ),
        NAMED(BCI_HW_LOG_SET_REQ),
        NAMED(BCI_HW_LOG_SET_CFM),
        NAMED(BCI_HW_LOG_SET_REJ),
        NAMED(BCI_HW_LOG_GET_REQ),
        NAMED(BCI_HW_LOG_GET_CFM),
        NAMED(BCI_HW_LOG_GET_REJ),
        NAMED(BCI_GET_HW_PID_REQ),
        NAMED(BCI_GET_HW_PID_CFM),
        NAMED(BCI_GET_HW_PID_REJ),
        NAMED(BCI_SET_UTC_TIME_REQ),
        NAMED(BCI_SET_UTC_TIME_CFM),
        NAMED(BCI_SET_UTC_TIME_REJ),
    };

    const std::span<const bci::Signal> signals = bci::signals();

    ASSERT_EQ(signals.size(), std::size(rows));
    for (std::size_t i = 0; i < signals.size(); ++i)
    {
        EXPECT_EQ(signals[i].number, rows[i].number);
        EXPECT_EQ(signals[i].name, rows[i].name);
    }
}

#undef NAMED

#define SHAPED(Class, Structure)                                                                                  \
    {                                                                                                             \
#Class,                                                                                                   \
        {                                                                                                         \
#Structure, sizeof(Structure)                                                                         \
        }                                                                                                         \
    }

TEST(Catalogue, NamesTheClassesAndTheirStructures)
{
    const std::map<std::string, std::pair<std::string, std::size_t>> expected = {
        SHAPED(BciAuditCfm, VornBcAuditCfmS),
        {"BciCapabilityCfmMsg", {"VornBcGetCapabilitiesCfmS", 192}},
        SHAPED(BciGenericMsg, GenericMsgS),
        SHAPED(BciGenericRejMsg, GenericRejMsgS),
        SHAPED(BciConnEstReq, VornBcConnEstablishReqS),
        SHAPED(BciConnEstRej, VornBcConnEstablishRejS),
        SHAPED(BciFaultIndication, VornBcFaultIndS),
        SHAPED(BciFaultCeaseIndication, VornBcFaultceaseIndS),
        SHAPED(BciGetHwPidCfmMsg, VornBcGetHwPidCfmS),
        SHAPED(BciHwLogGetReqMsg, VornBcHwLogGetReqS),
        SHAPED(BciHwLogSetReqMsg, VornBcHwLogSetReqS),
        SHAPED(BciHwLogGetCfmMsg, VornBcHwLogGetCfmS),
        SHAPED(BciLoadLmcInitReq, VornBcLoadLmcInitReqS),
        SHAPED(BciLoadLmcInitCfm, VornBcLoadLmcInitCfmS),
        SHAPED(BciLoadLmcReq, VornBcLoadLmcReqS),
        SHAPED(BciLoadLmcAck, VornBcLoadLmcAckS),
        SHAPED(BciLoadLmcEndCfm, VornBcLoadLmcEndCfmS),
        SHAPED(BciSelectLmcReq, VornBcSelectLmcReqS),
        {"BciLoadLmcData", {"VornBcLoadLmcDataS", 4120}},
        SHAPED(BciSetMaintStateReq, VornBcSetMaintStateReqS),
        SHAPED(BciMaintStateInd, VornBcMaintStateIndS),
        SHAPED(BciSelectMmiReq, VornBcSelectMmiReqS),
        SHAPED(BciRestartBoardFwdMsg, VornBcRestartBoardFwdS),
        SHAPED(BciTempMeasStartReq, VornBcTempMeasStartReqS),
        SHAPED(BciSetUtcTimeReq, VornBcSetUtcTimeReqS),
        SHAPED(BciSetVisualIndicationReq, VornBcSetVisualIndicationReqS),
        SHAPED(BciGetVisualIndicationCfm, VornBcGetVisualIndicationCfmS),
    };
    std::map<std::string, std::pair<std::string, std::size_t>> shapes;
    for (const bci::Signal& signal : bci::signals())
    {
        shapes[signal.shape->className] = {signal.shape->structureName, signal.shape->structureSize};
    }

    EXPECT_EQ(shapes, expected);
}

#undef SHAPED

TEST(Catalogue, NamesTheSourceOfTheLogLines)
{
    const std::map<std::string, std::string> expected = {
        {"BciAuditCfm", "bciAuditMsg"},
        {"BciCapabilityCfmMsg", "bciCapabilityMsg"},
        {"BciGenericMsg", "bciCommonMsg"},
        {"BciGenericRejMsg", "bciCommonMsg"},
        {"BciConnEstReq", "bciConnEstablishMsg"},
        {"BciConnEstRej", "bciConnEstablishMsg"},
        {"BciFaultIndication", "bciFaultMsg"},
        {"BciFaultCeaseIndication", "bciFaultMsg"},
        {"BciGetHwPidCfmMsg", "bciHwMsg"},
        {"BciHwLogGetReqMsg", "bciHwMsg"},
        {"BciHwLogSetReqMsg", "bciHwMsg"},
        {"BciHwLogGetCfmMsg", "bciHwMsg"},
        {"BciLoadLmcInitReq", "bciLoadLmcInitMsg"},
        {"BciLoadLmcInitCfm", "bciLoadLmcInitMsg"},
        {"BciLoadLmcReq", "bciLoadLmcMsg"},
        {"BciLoadLmcAck", "bciLoadLmcMsg"},
        {"BciLoadLmcEndCfm", "bciLoadLmcMsg"},
        {"BciSelectLmcReq", "bciLoadLmcMsg"},
        {"BciLoadLmcData", "bciLoadLmcMsg"},
        {"BciSetMaintStateReq", "bciMaintStateMsg"},
        {"BciMaintStateInd", "bciMaintStateMsg"},
        {"BciSelectMmiReq", "bciMmiMsg"},
        {"BciRestartBoardFwdMsg", "bciRestartBoardMsg"},
        {"BciTempMeasStartReq", "bciTempMeasMsg"},
        {"BciSetUtcTimeReq", "bciUtcTimeMsg"},
        {"BciSetVisualIndicationReq", "bciVisualIndicationMsg"},
        {"BciGetVisualIndicationCfm", "bciVisualIndicationMsg"},
    };
    std::map<std::string, std::string> sources;
    for (const bci::Signal& signal : bci::signals())
    {
        sources[signal.shape->className] = signal.shape->source;
    }

    EXPECT_EQ(sources, expected);
}

// The member of the union for each identity of a capability.
class Members : public Events
{
public:
    void beginChoice(const Choice& /*choice*/, const Case* chosen, char* /*base*/) override
    {
        m_members.push_back(chosen != nullptr ? chosen->member : "");
    }

    std::vector<std::string> m_members;
};

TEST(Catalogue, NamesTheMembersOfTheUnionOfCapabilities)
{
    std::vector<std::string> members;
    for (S16 identity = 1; identity <= 7; ++identity)
    {
        alignas(U32) char structure[192] = {};
        auto& confirm = reinterpret_cast<VornBcGetCapabilitiesCfmS&>(structure);
        confirm.numberOfBoardCapabilities = 1;
        std::memcpy(structure + 16, &identity, sizeof identity);
        Members visitor;
        walk(*bci::findSignal(BCI_GET_CAPABILITIES_CFM)->shape, structure, visitor);
        members.insert(members.end(), visitor.m_members.begin(), visitor.m_members.end());
    }

    EXPECT_EQ(members, (std::vector<std::string>{"boardLoading", "", "none", "boardEthTerm", "boardEthHwIf",
                                                 "boardClimate", ""}));
}

// How the lists of a message travel.
class Lists : public Events
{
public:
    void beginList(const List& list, std::int64_t /*count*/, char* /*base*/) override
    {
        m_lists.push_back(std::to_string(list.bound) + " from " + std::to_string(list.offset) + " by " +
                          std::to_string(list.stride) + (list.wholeInBinary ? ", whole in binary" : "") +
                          (list.delimiterWhenEmpty ? ", a delimiter when empty" : ""));
    }

    std::vector<std::string> m_lists;
};

std::vector<std::string> listsOf(SIGSELECT number, char* structure)
{
    Lists visitor;
    walk(*bci::findSignal(number)->shape, structure, visitor);
    return visitor.m_lists;
}

TEST(Catalogue, TellsHowTheListsOfFaultsTravel)
{
    alignas(U32) char structure[sizeof(VornBcFaultIndS)] = {};

    EXPECT_EQ(listsOf(BCI_FAULT_IND, structure),
              (std::vector<std::string>{"4 from 132 by 2, whole in binary, a delimiter when empty"}));
    EXPECT_EQ(listsOf(BCI_FAULT_CEASE_IND, structure),
              (std::vector<std::string>{"4 from 16 by 2, whole in binary, a delimiter when empty"}));
}

TEST(Catalogue, TellsHowTheListsOfCapabilitiesTravel)
{
    alignas(U32) char structure[192] = {};
    auto& confirm = reinterpret_cast<VornBcGetCapabilitiesCfmS&>(structure);
    confirm.numberOfBoardCapabilities = 2;
    const S16 ethTerm = 4;
    const S16 ethHwIf = 5;
    std::memcpy(structure + 16, &ethTerm, sizeof ethTerm);
    std::memcpy(structure + 104, &ethHwIf, sizeof ethHwIf);

    EXPECT_EQ(listsOf(BCI_GET_CAPABILITIES_CFM, structure),
              (std::vector<std::string>{"2 from 16 by 88, a delimiter when empty",
                                        "4 from 4 by 4, whole in binary", "10 from 4 by 8, whole in binary"}));

    const S16 climate = 6;
    std::memcpy(structure + 16, &climate, sizeof climate);
    confirm.numberOfBoardCapabilities = 1;
    EXPECT_EQ(
        listsOf(BCI_GET_CAPABILITIES_CFM, structure),
        (std::vector<std::string>{"2 from 16 by 88, a delimiter when empty", "10 from 4 by 8, whole in binary"}));
}

} // namespace
