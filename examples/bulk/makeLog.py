#!/usr/bin/env python3
"""Writes a log of text signals, one on a line, of all signals that "bci list" knows; the same each time.

usage: examples/bulk/makeLog.py [--lines N | --bytes N] [--trace] [--damage N] > FILE

clientRef counts the lines, so no two are the same.
"""

import argparse
import csv
import random
import re
import subprocess
import sys

# What follows clientRef and serverRef in each class. '#' stands for a number of up to 15 bits, '@' for one of up to
# 31 and '%' for one of up to 8.
CONTENTS = {
    "BciAuditCfm": ["1:", "2:", "3:", "4:"],
    "BciCapabilityCfmMsg": [
        "1:0:1:12:1:1:1:0:@:",
        "2:0:1:12:1:0:1:0:@:4:20:4:0:#:1:#:2:#:1:#:2:",
        "2:0:5:84:2:3:@:#:%:1:@:#:%:2:@:#:%:1:6:84:4:0:-#:#:#:0:#:#:#:0:-#:#:#:0:#:#:#:0:",
        "1:0:3:0:",
    ],
    "BciConnEstRej": ["#:0:#:0:another client is connected to this board:0:"],
    "BciConnEstReq": ["1:", "#:"],
    "BciFaultCeaseIndication": ["#:2:#:#:#:", "#:4:#:#:#:#:#:"],
    "BciFaultIndication": [
        "#:0:fan % stopped, the others run at full speed:0:4:0:#:#:#:#:#:",
        "#:0:temperature of sensor % is above its limit:0:1:0:#:#:",
        "#:0:no signal on port %, \"link down\":0:2:0:#:#:#:",
    ],
    "BciGenericMsg": [""],
    "BciGenericRejMsg": ["#:0:the lamp of the indicator is broken:0:", "#:0:not in state %:0:"],
    "BciGetHwPidCfmMsg": ["20240131:0:0:BOARD %:0:0:PN-#/%A:0:0:R7B:0:0:SN000#:"],
    "BciGetVisualIndicationCfm": ["0:1:0:0:", "#:#:#:#:"],
    "BciHwLogGetCfmMsg": ["1:fan % replaced by the service technician:"],
    "BciHwLogGetReqMsg": ["@:"],
    "BciHwLogSetReqMsg": [
        "20240131 0930:0:#:3:board started:fan % replaced by the service technician:temperature %:",
        "20240131 0930:0:#:1:restart requested by the operator, reason #:",
    ],
    "BciLoadLmcAck": ["#:"],
    "BciLoadLmcData": ["#:0:256:" + "The quick brown fox jumps over the lazy dog: 0123456789 ABCDEFGH" * 4 + ":"],
    "BciLoadLmcEndCfm": ["0:", "#:"],
    "BciLoadLmcInitCfm": ["0:", "#:"],
    "BciLoadLmcInitReq": ["board_software_R%A% basic:"],
    "BciLoadLmcReq": ["board_software_R%A%:/c/loadmodules/board /d/loadmodules/board /d/spare:"],
    "BciMaintStateInd": ["@:"],
    "BciRestartBoardFwdMsg": ["watchdog of the traffic process expired at 0x#:"],
    "BciSelectLmcReq": ["board_software_R%A%:"],
    "BciSelectMmiReq": ["@:"],
    "BciSetMaintStateReq": ["@:"],
    "BciSetUtcTimeReq": ["@:"],
    "BciSetVisualIndicationReq": ["#:", "1:"],
    "BciTempMeasStartReq": ["%:", "60:"],
}
# How many times as often as the others some signals are there.
OFTEN = {
    "BCI_AUDIT_REQ": 8, "BCI_AUDIT_CFM": 8, "BCI_FAULT_IND": 4, "BCI_FAULT_CEASE_IND": 4,
    "BCI_MAINT_STATE_IND": 4, "BCI_LOAD_LMC_DATA": 4, "BCI_LOAD_LMC_ACK": 4,
    "BCI_GET_VISUAL_INDICATION_CFM": 4, "BCI_SET_VISUAL_INDICATION_REQ": 4,
}
VARIANTS = 40  # of each signal
MARKS = {"#": 1 << 15, "@": 1 << 31, "%": 1 << 8}


def signals():
    listed = subprocess.run(["bci", "list", "--format", "csv"], stdout=subprocess.PIPE, text=True, check=True).stdout
    return [(row["number"], row["class"], row["name"]) for row in csv.DictReader(listed.splitlines())]


def pool(chance):
    """What lines are made of: signal numbers and what follows clientRef."""

    def number(mark):
        return str(int(chance() * MARKS[mark[0]]))

    lines = []
    for signal, class_name, name in signals():
        for variant in range(VARIANTS):
            contents = CONTENTS[class_name]
            content = re.sub("[#@%]", number, "#:" + contents[variant % len(contents)])
            lines += [(signal, content)] * OFTEN.get(name, 1)
    return lines


def damaged(line, chance):
    kind = int(chance() * 5)
    if kind == 0:
        return line[: int(chance() * len(line))]
    if kind == 1:
        place = 9 + int(chance() * (len(line) - 9))
        return line[:place] + "x" + line[place:]
    if kind == 2:
        return line.replace(":", ":99999999999:", 1)
    if kind == 3:
        return line + "5:"
    return "2" + line


def in_trace(line, index):
    seconds, milliseconds = divmod(index * 7, 1000)
    minutes, seconds = divmod(seconds, 60)
    hours, minutes = divmod(minutes, 60)
    days, hours = divmod(hours, 24)
    direction = "tx" if index % 3 == 0 else "rx"
    return (f"2026-11-{1 + days % 30:02}T{hours:02}:{minutes:02}:{seconds:02}.{milliseconds:03}Z {direction} text "
            + line.encode().hex())


def main():
    parser = argparse.ArgumentParser(description="Writes a log of text signals, the same each time.")
    amount = parser.add_mutually_exclusive_group()
    amount.add_argument("--lines", type=int, default=1000, help="how many lines (1000)")
    amount.add_argument("--bytes", type=int, help="lines until there are so many bytes")
    parser.add_argument("--trace", action="store_true", help="write lines of a trace, 7 ms apart")
    parser.add_argument("--damage", type=int, default=0, metavar="N", help="damage about one of N lines")
    arguments = parser.parse_args()

    chance = random.Random(1).random
    choices = pool(chance)
    lines = []
    index = size = 0
    while size < arguments.bytes if arguments.bytes is not None else index < arguments.lines:
        index += 1
        signal, content = choices[int(chance() * len(choices))]
        line = f"{signal}:{index}:{content}"
        if arguments.damage and chance() * arguments.damage < 1:
            line = damaged(line, chance)
        if arguments.trace:
            line = in_trace(line, index)
        size += len(line) + 1
        lines.append(line)
        if len(lines) == 10000:
            sys.stdout.write("\n".join(lines) + "\n")
            lines.clear()
    sys.stdout.write("".join(line + "\n" for line in lines))


if __name__ == "__main__":
    main()
