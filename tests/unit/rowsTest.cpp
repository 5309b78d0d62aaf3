// Rows of NDJSON: one for each record, the same members in the same order.

#include "rows.h"
#include "records.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <string_view>

namespace
{

using namespace bci::tool;
using Json = nlohmann::ordered_json;

std::string rowsOf(std::string_view input, const std::string& name = "in", Packing packing = Packing::automatic)
{
    Buffer rows;
    MemoryStream stream(input);
    RowWriter writer(rows, [] {});
    RecordReader<RowWriter>(name, packing, writer).readAll(stream);
    return std::string(rows.text());
}

Json rowOf(std::string_view input)
{
    const std::string rows = rowsOf(input);
    EXPECT_EQ(rows.find('\n'), rows.size() - 1) << rows;
    return Json::parse(rows);
}

TEST(Rows, HaveEveryMemberInOrder)
{
    EXPECT_EQ(
        rowsOf("23430145:1:-2:3:\n"),
        R"({"schema":1,"input":"in","record":1,"offset":0,"line":1,"time":null,"direction":null,"form":"text",)"
        R"("firstWord":null,"signal":23430145,"name":"BCI_AUDIT_CFM","class":"BciAuditCfm",)"
        R"("numbers":{"sigNo":23430145,"clientRef":1,"serverRef":-2,"mainState":3},"texts":{},"bytes":{},)"
        R"("damages":[],"notes":[],"rest":null,"original":null})"
        "\n");
    EXPECT_EQ(
        rowsOf("nothing"),
        R"({"schema":1,"input":"in","record":1,"offset":0,"line":1,"time":null,"direction":null,"form":null,)"
        R"("firstWord":null,"signal":null,"name":null,"class":null,"numbers":{},"texts":{},"bytes":{},)"
        R"("damages":[{"code":"unknown-record","field":null,"position":0,"length":4,"line":1,"column":1,)"
        R"("expected":"a signal in any form","found":"'nothing'","library":null}],)"
        R"("notes":[],"rest":"6e6f7468696e67","original":null})"
        "\n");
}

TEST(Rows, SayWhatIsDamagedAndKeepWhatIsNot)
{
    const Json lost = rowOf("23430145:x:2:3:");
    EXPECT_EQ(lost["numbers"].dump(), R"({"sigNo":23430145,"clientRef":null,"serverRef":2,"mainState":3})");
    EXPECT_TRUE(lost["rest"].is_null());
    EXPECT_TRUE(lost["original"].is_null());
    EXPECT_EQ(lost["damages"][0]["field"], "clientRef");
    const Json cut = rowOf("23430145:1:2");
    EXPECT_EQ(cut["numbers"].dump(), R"({"sigNo":23430145,"clientRef":1})");
    EXPECT_EQ(cut["rest"], "32");
    EXPECT_EQ(cut["damages"][0]["code"], "cut-short");
    EXPECT_EQ(cut["damages"][0]["column"], 13);
}

TEST(Rows, HoldTheOriginalOfWhatTheLibraryWouldWriteOtherwise)
{
    const Json noted = rowOf("23430145:01:2:3:");
    EXPECT_EQ(noted["numbers"]["clientRef"], 1);
    EXPECT_TRUE(noted["damages"].empty());
    EXPECT_EQ(noted["notes"][0]["code"], "number-layout");
    EXPECT_EQ(noted["original"], "32333433303134353a30313a323a333a");
}

TEST(Rows, HoldTextsAsTheyAreAndBytesAsHex)
{
    const auto texts = [](const std::string& text)
    {
        const Json row = rowOf("23429126:1:2:3:4:" + text + ":5:");
        return row["texts"].dump() + row["bytes"].dump();
    };
    EXPECT_EQ(texts("plain"), R"({"errorDescription":"plain"}{})");
    EXPECT_EQ(texts(""), R"({"errorDescription":""}{})");
    EXPECT_EQ(texts("\"quoted\" \\ \t\n\x01\x7F"), R"({"errorDescription":"\"quoted\" \\ \t\n\u0001)"
                                                   "\x7F"
                                                   R"("}{})");
    EXPECT_EQ(texts("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"),
              "{\"errorDescription\":\"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\"}{}");
    EXPECT_EQ(texts("\xC3"), R"({}{"errorDescription":"c3"})");
    EXPECT_EQ(texts("a\xED\xA0\x80"), R"({}{"errorDescription":"61eda080"})") << "a surrogate";
    EXPECT_EQ(texts("\xC0\x80"), R"({}{"errorDescription":"c080"})") << "overlong";
    EXPECT_EQ(texts("\xF4\x90\x80\x80"), R"({}{"errorDescription":"f4908080"})") << "beyond the last character";
    const Json block = rowOf("23431174:1:2:3:0:2:a::");
    EXPECT_EQ(block["texts"].dump() + block["bytes"].dump(), R"({}{"lmBlock":"613a"})");
}

// Types never change: a number may be null, a text is there or not.
TEST(Rows, HaveNullForTextsThatAreMissing)
{
    const Json row = rowOf("<sigNo>23429126</sigNo><clientRef>1</clientRef><serverRef>2</serverRef><errorCode>3"
                           "</errorCode><rejectCausePadding1>5</rejectCausePadding1>");
    EXPECT_EQ(row["texts"].dump(), R"({"errorDescription":null})");
    EXPECT_EQ(row["numbers"].dump(), R"({"sigNo":23429126,"clientRef":1,"serverRef":2,"errorCode":3,)"
                                     R"("rejectCausePadding0":null,"rejectCausePadding1":5})");
}

// What one record has left in the room for its structure is nothing for the next.
TEST(Rows, DoNotDependOnTheRecordBefore)
{
    const std::string lacking = "<sigNo>23433738</sigNo><clientRef>1</clientRef><serverRef>2</serverRef>"
                                "<dateTime>t</dateTime><padding0>0</padding0><logId>1</logId><length>2</length>"
                                "<hwLogData_1>second</hwLogData_1>";
    const std::string before = "23433738:1:2:t:0:1:1:" + std::string(423, 'x') + ":\n";
    const std::string rows = rowsOf(before + lacking);
    const Json alone = rowOf(lacking);
    const Json behind = Json::parse(rows.substr(rows.find('\n') + 1));
    EXPECT_EQ(behind["texts"], alone["texts"]);
    EXPECT_EQ(behind["damages"].size(), alone["damages"].size());
    EXPECT_EQ(alone["texts"]["hwLogData_1"], "second");
}

TEST(Rows, NameElementsOfListsApart)
{
    const Json row = rowOf("23429128:1:2:2:7:1:0:1:2:3:4:5:4:0:1:10:20:30:");
    EXPECT_EQ(row["numbers"].dump(),
              R"({"sigNo":23429128,"clientRef":1,"serverRef":2,"numberOfBoardCapabilities":2,"padding0":7,)"
              R"("boardCapabilityIdentity_0":1,"boardCapabilityLength_0":0,"loadable[0]":1,"flash[0]":2,)"
              R"("fileSystemAccess[0]":3,"loadingSupportPadding0[0]":4,"blockSize[0]":5,)"
              R"("boardCapabilityIdentity_1":4,"boardCapabilityLength_1":0,"numOfEthTermHosts[1]":1,)"
              R"("ethTermSupportPadding0[1]":10,"snid_1_0":20,"termRole_1_0":30})");
}

TEST(Rows, HoldTimeDirectionAndPlace)
{
    const std::string rows = rowsOf("\n2026-11-20T12:00:00Z rx binary 0184650100000001000000020003\n");
    const Json row = Json::parse(rows);
    EXPECT_EQ(row["time"], "2026-11-20T12:00:00Z");
    EXPECT_EQ(row["direction"], "rx");
    EXPECT_EQ(row["line"], 2);
    EXPECT_EQ(row["offset"], 1);
    EXPECT_EQ(row["firstWord"], "little");
}

TEST(Rows, AreValidWhateverTheNameOfTheInput)
{
    EXPECT_EQ(Json::parse(rowsOf("23430144:1:2:", "a\"b\\\n\xFF"))["input"], "a\"b\\\n\xEF\xBF\xBD");
}

TEST(Rows, StandOneForEachRecord)
{
    const std::string rows = rowsOf("23430144:1:2:\n23430144:1:2\n23430144:1:2:\n");
    std::string numbers;
    std::size_t at = 0;
    for (std::size_t end = 0; (end = rows.find('\n', at)) != std::string::npos; at = end + 1)
    {
        numbers += Json::parse(rows.substr(at, end - at))["record"].dump() + " ";
    }
    EXPECT_EQ(numbers, "1 2 3 ");
}

} // namespace
