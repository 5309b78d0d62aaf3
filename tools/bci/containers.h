// What renderings travel in: hex and base64 digits, dumps, lines of a trace, captures.
#ifndef BCI_TOOL_CONTAINERS_H
#define BCI_TOOL_CONTAINERS_H

#include "bytes.h"
#include "input.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace bci::tool
{

// Hex digits, in either case, pairs of them apart by nothing or white space; an optional "0x" in front. Null for
// anything else, an empty text too.
std::optional<std::string> decodeHex(std::string_view digits);

// Lower case, nothing between.
std::string encodeHex(std::string_view bytes);

// Base64 of either alphabet, with padding or without, also on several lines. Null for anything else: both
// alphabets at once, a wrong length, bits left over that are not zero, an empty text.
std::optional<std::string> decodeBase64(std::string_view digits);

// What xxd, hexdump -C, hexdump, hexdump -x or od -t x1 (with or without -A x, -A d, -v, -w, z; "*" for repeated
// lines) print; od -x and -t x2, x4 and x8 too, as words of a little-endian host. Returns whether the beginning of
// an input, of at least 256 bytes unless it is shorter, is such a dump: its first line says so, with offset 0, and
// no plain hex line does. The lines of od -A n -t x1 have no offset; there it takes two of them with one blank in
// front, as one alone means the same as hex.
bool isDump(std::string_view beginning);

// The bytes that a dump stands for, which has to outlive the stream returned. Lines that are none, offsets that do
// not follow from the lines before, and "*" that stand for more than 16 MiB in all, end it with Trouble
// "name:line: ..." once all before has been read.
// The text beside the digits counts for nothing but its length.
std::unique_ptr<ByteStream> openDump(ByteStream& dump, const std::string& inputName);

// "2026-11-20T12:00:00.250Z rx text 3233...": a time in ISO 8601 (date and time of day, up to nine digits of a
// fraction, "Z", a zone like "+01:00" or nothing), a direction (any word), a form ("text", "binary" or "xml") and
// the rendering as hex. A time or direction that is not known is a "-".
struct TraceLine
{
    std::string_view time;      // as it stands in the line, empty if it is not known
    std::string_view direction; // likewise
    Form form;
    std::string bytes;
};

// Null if the line is none, at the first place that does not fit.
std::optional<TraceLine> parseTrace(std::string_view line);

// Without an end of line. Times and directions that are not known are given as ""; a time that is no ISO 8601 is
// not known, and what keeps a direction from being one word becomes "_".
std::string formatTrace(std::string_view time, std::string_view direction, Form form, std::string_view bytes);

// Captures in the classic pcap format, of either byte order, with times in micro- or nanoseconds.
inline constexpr std::size_t kPcapFileHeader = 24;   // bytes
inline constexpr std::size_t kPcapPacketHeader = 16; // bytes
inline constexpr unsigned int kPcapLinkType = 147;

struct PcapFormat
{
    bool reversed;    // against the host's byte order
    bool nanoseconds; // else microseconds
    unsigned int linkType;
};

// Null unless the bytes begin with the header of such a file, version 2.4.
std::optional<PcapFormat> parsePcapHeader(std::string_view bytes);

struct PcapPacket
{
    std::string time;   // "2026-11-20T12:00:00.250000Z"
    std::size_t length; // captured bytes, which follow the header
    std::size_t lengthOnTheWire;
};

// Any 16 bytes are a header; a length that cannot be is the caller's to see.
PcapPacket parsePacketHeader(const PcapFormat& format, std::string_view bytes);

// A file's header for link type 147, and a packet with its header; both big-endian with nanoseconds. A time
// without a zone is in UTC; one that is no ISO 8601, or outside of what the format has (1970 to 2106), counts as
// the beginning of 1970.
std::string pcapHeader();
std::string pcapPacket(std::string_view time, std::string_view bytes);

} // namespace bci::tool

#endif
