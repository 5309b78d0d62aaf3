// A message of every class, in the text form: no field is zero, texts have some length, lists have entries. All
// three forms carry it.
#ifndef TESTS_CONTENTS_H
#define TESTS_CONTENTS_H

struct Content
{
    const char* className;
    const char* text;
};

inline constexpr Content kContents[] = {
    {"BciAuditCfm", "23430145:1:2:3:"},
    {"BciCapabilityCfmMsg",
     "23429128:1:2:2:3:"
     "5:84:11:10:70001:201:100:1:70002:202:100:2:70003:203:100:1:70004:204:100:2:70005:205:100:1:"
     "70006:206:10:2:70007:207:10:1:70008:208:10:2:70009:209:10:1:70010:210:10:2:"
     "6:84:10:13:-250:50:60001:14:-251:51:60002:15:-252:52:60003:16:-253:53:60004:17:-254:54:60005:18:"
     "255:55:60006:19:256:56:60007:20:257:57:60008:21:258:58:60009:22:259:59:60010:23:"},
    {"BciConnEstRej", "23429122:1:2:3:4:5:6:another client is connected to this board:7:"},
    {"BciConnEstReq", "23429120:1:2:3:"},
    {"BciFaultCeaseIndication", "23429134:1:-2:100:4:11:1012:60013:14:3:"},
    {"BciFaultIndication",
     "23429133:1:-2:100:7:fan 3 stopped, fans 1 and 2 run at full speed:8:4:9:11:1012:60013:14:3:"},
    {"BciGenericMsg", "23430144:1:2:"},
    {"BciGenericRejMsg", "23429126:1:2:4:5:the lamp of the indicator is broken:6:"},
    {"BciGetHwPidCfmMsg", "23429633:1:2:20240131:1:2:BOARD UNIT 3:3:4:PN-4711/A 0815:5:6:B07:7:8:SN0001234567:"},
    {"BciGetVisualIndicationCfm", "23429136:1:2:1:2:3:4:"},
    {"BciHwLogGetCfmMsg", "23433742:1:2:1:fan 3 replaced by the service technician:"},
    {"BciHwLogGetReqMsg", "23433741:1:2:9:"},
    {"BciHwLogSetReqMsg",
     "23433738:1:2:20240131 0930:7:9:4:board started:fan 3 replaced by the service technician:temperature 41:"
     "restart requested by the operator, reason 17:"},
    {"BciLoadLmcAck", "23431175:1:2:4660:"},
    {"BciLoadLmcData", "23431174:1:2:258:3:256:"
                       "The quick brown fox jumps over the lazy dog, 0123456789 ABCDEFGH"
                       "abcdefghijklmnopqrstuvwxyz ABCDEFGHIJKLMNOPQRSTUVWXYZ 0123456789"
                       "The quick brown fox jumps over the lazy dog, 9876543210 HGFEDCBA"
                       "zyxwvutsrqponmlkjihgfedcba ZYXWVUTSRQPONMLKJIHGFEDCBA 9876543210"
                       ":"},
    {"BciLoadLmcEndCfm", "23431177:1:2:4660:"},
    {"BciLoadLmcInitCfm", "23431172:1:2:4660:"},
    {"BciLoadLmcInitReq", "23431171:1:2:board_software_R8A13 basic:"},
    {"BciLoadLmcReq", "23431168:1:2:board_software_R8A13:/c/loadmodules/board /d/loadmodules/board /d/spare:"},
    {"BciMaintStateInd", "23429144:1:2:3:"},
    {"BciRestartBoardFwdMsg", "23429123:1:2:watchdog of the traffic process expired at 0x8004711:"},
    {"BciSelectLmcReq", "23431179:1:2:board_software_R8A13:"},
    {"BciSelectMmiReq", "23429138:1:2:3:"},
    {"BciSetMaintStateReq", "23429145:1:2:3:"},
    {"BciSetUtcTimeReq", "23434496:1:2:1706693400:"},
    {"BciSetVisualIndicationReq", "23429124:1:2:3:"},
    {"BciTempMeasStartReq", "23433472:1:2:60:"},
};

#endif
