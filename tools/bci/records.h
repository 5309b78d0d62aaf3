// Finds the records of an input, one after another, and reads them.
//
// A registered signal number is recognisable in every form, so each record is recognised by its own beginning. A
// record that does not read cleanly ends, at the latest, where the next one is recognisable.
#ifndef BCI_TOOL_RECORDS_H
#define BCI_TOOL_RECORDS_H

#include "bytes.h"
#include "containers.h"
#include "reading.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace bci::tool
{

// How inputs are packed. `automatic` means to look.
enum class Packing
{
    automatic,
    text,
    binary,
    xml,
    hex,
    base64,
    dump,
    ndjson,
    trace,
    pcap
};

// How a record came.
enum class Carrier
{
    plain,  // the rendering as it is
    hex,    // hex digits of it
    base64, // likewise
    row,    // a row of NDJSON
    packet  // of a capture
};

// A record and where it was found.
struct Item
{
    Rendering rendering; // with all bytes that belong to the record; may have more until its end is known
    bool hasForm = true; // false: no form was recognised
    Carrier carrier = Carrier::plain;
    std::string_view input;     // name, to be shown
    std::uint64_t record = 0;   // from 1
    std::uint64_t packet = 0;   // of a capture, from 1
    std::uint64_t offset = 0;   // in the input, in bytes, what it was packed in taken off
    std::uint64_t line = 0;     // from 1; 0 if the input has no lines
    std::size_t column = 1;     // of the rendering's first byte, or its first digit, in bytes
    std::size_t skipped = 0;    // bytes that what carried it holds in front of the rendering
    std::string_view digits;    // those of the rendering, if it came as such
    std::string_view time = {}; // empty if not known
    std::string_view direction = {};
};

// Line and column, both from 1, of a place in a rendering; zeros if its input has no lines.
struct LineColumn
{
    std::uint64_t line;
    std::uint64_t column;
};

LineColumn lineAndColumn(const Item& item, std::size_t position);

// "log.txt:3:14", or "log.bin: offset 12", or "log.pcap: packet 3, offset 12".
std::string placeOf(const Item& item, std::size_t position);

// What a rendering is by its beginning: true with the form, and the signal if it is known. False if it is none.
bool recognise(std::string_view bytes, Rendering& rendering);

// Makes the rendering of a row, as encode does. Returns what is wrong with the row, empty if nothing.
std::string readRow(std::string_view row, std::string& bytes, Rendering& rendering);

// Bytes of an input that are looked at together. No record is longer, and neither is what a row shows of what is
// none.
inline constexpr std::size_t kReach = std::size_t{1} << 16;

// Feeds a sink, which has the functions of a Reader's and
//   void begin(const Item&);                a record begins; again for the same one if it turns out to be shorter
//   void cancel();                          the record that has begun begins once more, later
//   void end(const Item&, const Reading&);  with all of its bytes
template <typename Sink>
class RecordReader
{
public:
    RecordReader(std::string inputName, Packing packing, Sink& sink)
        : m_inputName(std::move(inputName)), m_packing(packing), m_sink(sink)
    {
    }

    // Where the first byte of the window is, if it is not the first of the input.
    void startAt(std::uint64_t offset, std::uint64_t line, std::size_t column)
    {
        m_baseOffset = offset;
        m_line = line;
        m_column = column;
    }

    // Of what comes next in its line.
    std::size_t column() const
    {
        return m_column;
    }

    // Reads an input to its end. Returns what it was taken for and why, for who wants to know.
    std::string readAll(ByteStream& stream)
    {
        Window window(stream);
        return readAll(window);
    }

    std::string readAll(Window& window)
    {
        if (hasBinaryBehind(window))
        {
            readBinary(window);
            return "binary, by a signal number that is not at its beginning";
        }
        const std::string_view ahead = beginningOf(window);
        switch (packingOf(ahead))
        {
        case Packing::dump:
        {
            WindowStream dump(window);
            const std::unique_ptr<ByteStream> bytes = openDump(dump, m_inputName);
            m_packing = Packing::automatic;
            return "a dump, by the offset in its first line; in it " + readAll(*bytes);
        }
        case Packing::pcap:
            readPackets(window, ahead);
            return "a capture, by its first word";
        case Packing::binary:
            readBinary(window);
            return "binary, by the signal number in its first word";
        default:
            readLines(window, std::numeric_limits<std::uint64_t>::max());
            return "lines, each recognised by its own beginning; the first is " + m_firstLine;
        }
    }

    // Whether an input, of which nothing has been read, is one for readLines().
    bool hasLines(Window& window) const
    {
        return packingOf(beginningOf(window)) == Packing::text && !hasBinaryBehind(window);
    }

    // What an input is by its beginning; `text` stands for lines of any kind.
    Packing packingOf(std::string_view ahead) const
    {
        const bool looks = m_packing == Packing::automatic;
        if (m_packing == Packing::pcap || (looks && (parsePcapHeader(ahead) || isPcapNg(ahead))))
        {
            return Packing::pcap;
        }
        if (m_packing == Packing::binary || (looks && beginsBinary(ahead.substr(behindZeros(ahead, 0)))))
        {
            return Packing::binary;
        }
        return m_packing == Packing::dump || (looks && isDump(ahead)) ? Packing::dump : Packing::text;
    }

    // Reads the lines of an input, and no record that begins at or behind an offset in the window.
    void readLines(Window& window, std::uint64_t until)
    {
        if (m_baseOffset + window.offset() == 0 && window.ahead(3).starts_with("\xEF\xBB\xBF"))
        {
            window.consume(3); // editors put it there
        }
        while (window.offset() < until)
        {
            // What is there may be enough; waiting for more would hold up a log that is being written.
            std::size_t used = 0;
            std::string_view ahead;
            for (std::size_t wanted = 1; used == 0; wanted = ahead.size() + 1)
            {
                if (window.buffered() < wanted && m_pause)
                {
                    m_pause();
                }
                ahead = window.ahead(wanted).substr(0, kReach);
                if (ahead.empty())
                {
                    return;
                }
                used = readNext(window, ahead, ahead.size() == kReach || ahead.size() < wanted);
            }
            const std::string_view taken = ahead.substr(0, used);
            m_line += static_cast<std::uint64_t>(std::count(taken.begin(), taken.end(), '\n'));
            window.consume(used);
        }
    }

    // Is called when there is nothing to read for now.
    void onPause(std::function<void()> pause)
    {
        m_pause = std::move(pause);
    }

    // Reads one line, which is one record whatever it holds.
    void readLine(std::string_view line, std::uint64_t offset, std::uint64_t number)
    {
        m_isOneEach = true;
        m_line = number;
        Item item = newItem(offset);
        if (line.ends_with('\r'))
        {
            line.remove_suffix(1);
        }
        const std::size_t blanks = std::min(line.find_first_not_of(" \t"), line.size());
        // The tab in front of an XML document belongs to it.
        const bool hasTab = blanks != 0 && line[blanks - 1] == '\t' && line.substr(blanks).starts_with('<');
        const std::string_view content = line.substr(blanks - (hasTab ? 1 : 0));
        item.column += line.size() - content.size();
        if (takes(Packing::text) && textSignal(content) != nullptr)
        {
            item.rendering = {content, Form::text, std::endian::big, textSignal(content)};
            readWhole(item);
            return;
        }
        if (takes(Packing::xml) && (content.starts_with('<') || content.starts_with("\t<")))
        {
            readXml(item, content);
            return;
        }
        readOtherLine(item, content, {});
    }

    // A line that no record can be taken from.
    void refuseLine(std::string_view line, std::uint64_t offset, std::uint64_t number, std::string expected,
                    std::string found)
    {
        m_line = number;
        Item item = newItem(offset);
        item.rendering.bytes = line.substr(0, kReach);
        item.hasForm = false;
        refuse(item, Code::badEncoding, 0, line.size(), std::move(expected), std::move(found));
    }

private:
    static constexpr std::size_t kLongestDumpBeginning = 256; // bytes that isDump() wants to see

    // What shows what an input is. It does not depend on how much of it has come by now.
    static std::string_view beginningOf(Window& window)
    {
        // The first record of a log that is being written may be all there is for now.
        const std::string_view ahead = window.ahead(1);
        return textSignal(ahead) != nullptr ? ahead
                                            : window.ahead(kLongestDumpBeginning).substr(0, kLongestDumpBeginning);
    }

    // Whether what begins neither as lines do nor in another way has a binary record further on.
    bool hasBinaryBehind(Window& window) const
    {
        const std::string_view beginning = beginningOf(window);
        if (m_packing != Packing::automatic || textSignal(beginning) != nullptr ||
            packingOf(beginning) != Packing::text || !hasControls(beginning))
        {
            return false;
        }
        const std::string_view ahead = window.ahead(kReach).substr(0, kReach);
        const std::size_t binary = nextBinary(ahead, 0);
        return binary < ahead.size() && binary < firstLine(ahead);
    }

    // What no line of text has.
    static bool hasControls(std::string_view bytes)
    {
        return std::any_of(bytes.begin(), bytes.end(),
                           [](char ch) { return static_cast<unsigned char>(ch) < ' ' && !isBlank(ch); });
    }

    // Where the first record in text or XML begins.
    static std::size_t firstLine(std::string_view bytes)
    {
        for (std::size_t at = 0; at < bytes.size(); at = lineEnd(bytes, at) + 1)
        {
            if (textSignal(bytes.substr(at)) != nullptr)
            {
                return std::min(at, bytes.find("<sigNo>"));
            }
        }
        return bytes.find("<sigNo>");
    }

    bool takes(Packing packing) const
    {
        return m_packing == Packing::automatic || m_packing == packing;
    }

    Item newItem(std::uint64_t offset)
    {
        Item item;
        item.input = m_inputName;
        item.record = ++m_record;
        item.offset = m_baseOffset + offset;
        item.line = m_line;
        return item;
    }

    static bool isBlank(char ch)
    {
        return ch == ' ' || ch == '\t' || ch == '\r' || ch == '\n' || ch == '\v' || ch == '\f' || ch == '\0';
    }

    static std::size_t blanksAt(std::string_view text, std::size_t from)
    {
        while (from < text.size() && isBlank(text[from]))
        {
            ++from;
        }
        return from;
    }

    static std::size_t lineEnd(std::string_view text, std::size_t from)
    {
        return std::min(text.find('\n', from), text.size());
    }

    // ---- one record

    // Nothing that can be read.
    void refuse(Item& item, Code code, std::size_t position, std::size_t length, std::string expected,
                std::string found)
    {
        m_sink.begin(item);
        m_sink.finding(
            Finding{code, position, length, "", std::move(expected), std::move(found), "makes no message of it"});
        Reading reading;
        reading.isDamaged = true;
        reading.rest = 0;
        m_sink.end(item, reading);
    }

    void refuse(Item& item)
    {
        const std::string_view bytes = item.rendering.bytes;
        if (item.hasForm && item.rendering.form == Form::text)
        {
            const std::size_t digits = std::min(bytes.find_first_not_of("0123456789"), bytes.size());
            refuse(item, Code::unknownSignal, 0, digits, "the number of a signal", quote(bytes.substr(0, digits)));
        }
        else if (item.hasForm && item.rendering.form == Form::xml)
        {
            const std::size_t tag = bytes.find("<sigNo>");
            const std::size_t at =
                tag == std::string_view::npos ? bytes.find('<') : bytes.find_first_not_of(" \t\r\n", tag + 7);
            refuse(item, Code::unknownSignal, std::min(at, bytes.size()), 1, "<sigNo> with the number of a signal",
                   tag == std::string_view::npos ? "no such element"
                                                 : quote(bytes.substr(std::min(at, bytes.size()), 12)));
        }
        else
        {
            refuse(item, Code::unknownRecord, 0, std::min<std::size_t>(bytes.size(), 4), "a signal in any form",
                   quote(bytes.substr(0, 20)));
        }
    }

    void tellExtra(const Item& item, Reading& reading, std::size_t from)
    {
        const std::string_view bytes = item.rendering.bytes;
        reading.isDamaged = true;
        reading.rest = from;
        m_sink.finding(Finding{Code::extraInput, from, bytes.size() - from, "", "nothing behind the last field",
                               quote(bytes.substr(from)), "does not look at it"});
    }

    // A rendering that is known to be one record, or, with `endsWithLine`, one with other lines behind it, which
    // are then taken off: of anything but XML, which would be the record's own. Returns whether they are there.
    bool readWhole(Item& item, bool endsWithLine = false)
    {
        if (item.rendering.signal == nullptr)
        {
            refuse(item);
            return false;
        }
        bool isFollowed = false;
        m_sink.begin(item);
        Reading reading = read(item.rendering, m_sink);
        if (reading.isComplete)
        {
            const std::size_t extra = item.rendering.form == Form::binary
                                          ? std::min(item.rendering.bytes.find_first_not_of('\0', reading.end),
                                                     item.rendering.bytes.size())
                                          : blanksAt(item.rendering.bytes, reading.end);
            if (extra < item.rendering.bytes.size())
            {
                isFollowed = endsWithLine && reading.end != 0 && item.rendering.bytes[extra] != '<' &&
                             item.rendering.bytes.find('\n', reading.end - 1) < extra;
                if (isFollowed)
                {
                    m_document.resize(reading.end);
                    item.rendering.bytes = m_document;
                    m_sink.begin(item);
                    reading = read(item.rendering, m_sink);
                }
                else
                {
                    tellExtra(item, reading, extra);
                }
            }
        }
        m_sink.end(item, reading);
        return isFollowed;
    }

    // ---- binary

    static bool beginsBinary(std::string_view bytes)
    {
        Rendering rendering;
        return recognise(bytes, rendering) && rendering.form == Form::binary;
    }

    // Where the next record of a binary input is recognisable, from a place on.
    static std::size_t nextBinary(std::string_view bytes, std::size_t from)
    {
        for (; from + sizeof(SIGSELECT) <= bytes.size(); ++from)
        {
            if (beginsBinary(bytes.substr(from, sizeof(SIGSELECT))))
            {
                return from;
            }
        }
        return bytes.size();
    }

    void readBinary(Window& window)
    {
        m_line = 0;
        while (true)
        {
            const std::string_view ahead = window.ahead(kReach).substr(0, kReach);
            if (ahead.empty())
            {
                return;
            }
            Item item = newItem(window.offset());
            Rendering& rendering = item.rendering;
            if (!beginsBinary(ahead))
            {
                const std::size_t next = nextBinary(ahead, 1);
                const std::size_t zeros = std::min(ahead.find_first_not_of('\0'), ahead.size());
                // The last bytes may be the beginning of a number.
                const std::size_t end = next == kReach ? kReach - sizeof(SIGSELECT) + 1 : next;
                if (zeros < end)
                {
                    rendering.bytes = ahead.substr(0, end);
                    item.hasForm = false;
                    refuse(item);
                }
                else
                {
                    --m_record;
                }
                window.consume(end);
                continue;
            }
            recognise(ahead, rendering);
            rendering.bytes = ahead;
            m_sink.begin(item);
            Reading reading = read(rendering, m_sink);
            std::size_t behind = behindZeros(ahead, reading.end);
            if (!reading.isComplete || (behind < ahead.size() && !beginsBinary(ahead.substr(behind))))
            {
                // Has it swallowed the next one?
                const std::size_t limit = reading.isComplete ? reading.end : ahead.size();
                const std::size_t next =
                    nextBinary(ahead.substr(0, std::min(limit + 3, ahead.size())), sizeof(SIGSELECT));
                if (next < limit)
                {
                    rendering.bytes = ahead.substr(0, next);
                    m_sink.begin(item);
                    reading = read(rendering, m_sink);
                    behind = next;
                    if (reading.isComplete && reading.end < next)
                    {
                        const std::size_t extra =
                            std::min(rendering.bytes.find_first_not_of('\0', reading.end), next);
                        if (extra < next)
                        {
                            tellExtra(item, reading, extra);
                        }
                    }
                }
                else
                {
                    behind = nextBinary(ahead, std::max(reading.end, sizeof(SIGSELECT)));
                    rendering.bytes = ahead.substr(0, behind);
                    if (reading.isComplete)
                    {
                        tellExtra(item, reading, behindZeros(ahead, reading.end));
                    }
                }
            }
            else
            {
                rendering.bytes = ahead.substr(0, reading.end);
            }
            m_sink.end(item, reading);
            window.consume(behind);
        }
    }

    // Behind the zeros of a buffer that was larger than its rendering; the number of a little-endian host may
    // begin with a zero.
    static std::size_t behindZeros(std::string_view bytes, std::size_t from)
    {
        while (from < bytes.size() && bytes[from] == '\0' && !beginsBinary(bytes.substr(from)))
        {
            ++from;
        }
        return from;
    }

    // ---- captures

    static bool isPcapNg(std::string_view bytes)
    {
        return bytes.starts_with("\x0A\x0D\x0D\x0A");
    }

    void readPackets(Window& window, std::string_view beginning)
    {
        const std::optional<PcapFormat> found = parsePcapHeader(beginning);
        if (!found)
        {
            throw Trouble(m_inputName + (isPcapNg(beginning) ? ": captures in the pcapng format cannot be read; "
                                                               "editcap -F pcap makes them such as can"
                                                             : ": this is no capture in the pcap format"));
        }
        const PcapFormat& format = *found;
        if (format.linkType != kPcapLinkType)
        {
            throw Trouble(m_inputName + ": a capture of link type " + std::to_string(format.linkType) + ", not " +
                          std::to_string(kPcapLinkType));
        }
        m_line = 0;
        window.consume(kPcapFileHeader);
        for (std::uint64_t number = 1;; ++number)
        {
            const std::string_view header = window.ahead(kPcapPacketHeader);
            if (header.size() < kPcapPacketHeader)
            {
                if (!header.empty())
                {
                    throw Trouble(m_inputName + ": the capture ends within the header of packet " +
                                  std::to_string(number));
                }
                return;
            }
            const PcapPacket packet = parsePacketHeader(format, header);
            if (packet.length > kReach)
            {
                throw Trouble(m_inputName + ": packet " + std::to_string(number) + " is said to have " +
                              std::to_string(packet.length) + " bytes; " + std::to_string(kReach) +
                              " are the most that are read");
            }
            window.consume(kPcapPacketHeader);
            const std::string_view ahead = window.ahead(packet.length);
            Item item = newItem(window.offset());
            item.carrier = Carrier::packet;
            item.packet = number;
            item.time = packet.time;
            readBytes(item, ahead.substr(0, packet.length));
            if (ahead.size() < packet.length)
            {
                throw Trouble(m_inputName + ": the capture ends within packet " + std::to_string(number));
            }
            window.consume(packet.length);
        }
    }

    // Renderings in any form, one behind the other.
    void readBytes(const Item& carrier, std::string_view bytes)
    {
        std::size_t at = 0;
        do
        {
            Item item = carrier;
            item.skipped = at;
            item.record = at == 0 ? carrier.record : ++m_record;
            at += readFirst(item, bytes.substr(at));
        } while (at < bytes.size());
    }

    // Reads the first of them. Returns where the next one begins, or the end.
    std::size_t readFirst(Item& item, std::string_view bytes)
    {
        item.hasForm = recognise(bytes, item.rendering);
        if (item.hasForm && item.rendering.form == Form::xml)
        {
            const std::size_t first = bytes.find("<sigNo>");
            std::size_t next = first == std::string_view::npos ? first : bytes.find("<sigNo>", first + 1);
            if (m_isOneEach || next == std::string_view::npos)
            {
                next = bytes.size();
            }
            else if (bytes[next - 1] == '\t')
            {
                --next;
            }
            readXml(item, bytes.substr(0, next));
            return next;
        }
        item.rendering.bytes = bytes;
        std::size_t next = bytes.size();
        if (item.rendering.signal != nullptr && item.hasForm && !m_isOneEach)
        {
            Trial trial;
            const Reading reading = read(item.rendering, trial);
            const bool isBinary = item.rendering.form == Form::binary;
            const std::size_t behind = isBinary ? behindZeros(bytes, reading.end) : blanksAt(bytes, reading.end);
            if (reading.isComplete && behind < bytes.size() && begins(bytes.substr(behind), isBinary))
            {
                next = behind;
                item.rendering.bytes = bytes.substr(0, reading.end);
            }
            else if (isBinary && (!reading.isComplete || behind < bytes.size()))
            {
                next = nextBinary(bytes, sizeof(SIGSELECT));
                item.rendering.bytes = bytes.substr(0, next);
            }
        }
        readWhole(item);
        return next;
    }

    static bool begins(std::string_view bytes, bool isBinary)
    {
        return isBinary ? beginsBinary(bytes) : textSignal(bytes) != nullptr;
    }

    // ---- lines

    // Reads what comes next, which is a record or blanks. Returns how many bytes it takes; 0 if that depends on
    // what follows, which it cannot once all that counts is there.
    std::size_t readNext(const Window& window, std::string_view ahead, bool isAll)
    {
        if (takes(Packing::text))
        {
            if (const Signal* const signal = textSignal(ahead))
            {
                return readText(window, ahead, *signal, isAll);
            }
        }
        const std::size_t blanks = blanksAt(ahead, 0);
        // The tab in front of an XML document belongs to it.
        const std::size_t start =
            blanks != 0 && blanks < ahead.size() && ahead[blanks] == '<' && ahead[blanks - 1] == '\t' ? blanks - 1
                                                                                                      : blanks;
        if (!isAll && blanks == ahead.size() && ahead.back() == '\t')
        {
            return 0;
        }
        if (start != 0)
        {
            const std::size_t newLine = ahead.substr(0, start).rfind('\n');
            m_column = newLine != std::string_view::npos ? start - newLine : m_column + start;
            return start;
        }
        if (takes(Packing::xml) && (ahead.starts_with('<') || ahead.starts_with("\t<")))
        {
            return isAll ? readXmlText(window, ahead) : 0;
        }
        const std::size_t end = lineEnd(ahead, 0);
        if (!isAll &&
            (end == ahead.size() || decodeHex(ahead.substr(0, end)) || decodeBase64(ahead.substr(0, end))))
        {
            return 0; // more lines of digits may follow
        }
        Item item = newItem(window.offset());
        item.column = m_column;
        m_column = end < ahead.size() ? 1 : m_column + end;
        std::string_view line = ahead.substr(0, end);
        if (line.ends_with('\r'))
        {
            line.remove_suffix(1);
        }
        std::size_t used = std::min(end + 1, ahead.size());
        const std::size_t more = readOtherLine(item, line, ahead.substr(used));
        return used + more;
    }

    void nameFirst(const char* what)
    {
        if (m_firstLine.empty())
        {
            m_firstLine = what;
        }
    }

    std::size_t readText(const Window& window, std::string_view ahead, const Signal& signal, bool isAll)
    {
        nameFirst("text, by the signal number in front of its first ':'");
        Item item = newItem(window.offset());
        item.column = m_column;
        item.rendering = {ahead, Form::text, std::endian::big, &signal};
        m_sink.begin(item);
        Reading reading = read(item.rendering, m_sink);
        if (reading.isComplete && reading.end < ahead.size() && ahead[reading.end] == '\n') [[likely]]
        {
            m_column = 1;
            item.rendering.bytes = ahead.substr(0, reading.end);
            m_sink.end(item, reading);
            return reading.end + 1;
        }
        if (!isAll)
        {
            --m_record;
            m_sink.cancel();
            return 0;
        }
        std::size_t used = 0;
        std::size_t extra = reading.end;
        bool isSeparate = endsWell(ahead, reading, extra, used);
        if (!isSeparate)
        {
            // Has it swallowed the next one?
            const std::size_t next = nextText(ahead, reading);
            if (next < ahead.size())
            {
                item.rendering.bytes = ahead.substr(0, next);
                m_sink.begin(item);
                reading = read(item.rendering, m_sink);
                isSeparate = endsWell(item.rendering.bytes, reading, extra, used);
            }
        }
        std::size_t end = reading.end;
        if (!isSeparate)
        {
            const std::string_view bytes = item.rendering.bytes;
            end = lineEnd(bytes, reading.isComplete ? extra : reading.end);
            used = std::min(end + 1, bytes.size());
            if (!reading.isComplete && used < bytes.size())
            {
                // The lines behind are not its own, so neither is what it lacks behind them.
                item.rendering.bytes = bytes.substr(0, used);
                m_sink.begin(item);
                reading = read(item.rendering, m_sink);
            }
            if (end > reading.end && bytes[end - 1] == '\r')
            {
                --end;
            }
        }
        item.rendering.bytes = ahead.substr(0, end);
        if (!isSeparate && reading.isComplete)
        {
            tellExtra(item, reading, extra);
        }
        m_sink.end(item, reading);
        const std::size_t newLine = ahead.substr(0, used).rfind('\n');
        m_column = newLine != std::string_view::npos ? used - newLine : m_column + used;
        return used;
    }

    // Whether a complete record is followed by the end of its line or another record; `extra` receives the place
    // of anything else, `used` what the record takes with what separates it from the next.
    bool endsWell(std::string_view bytes, const Reading& reading, std::size_t& extra, std::size_t& used) const
    {
        if (!reading.isComplete)
        {
            return false;
        }
        extra = reading.end;
        while (extra < bytes.size() && bytes[extra] != '\n' && isBlank(bytes[extra]))
        {
            ++extra;
        }
        used = std::min(extra + 1, bytes.size());
        if (extra == bytes.size() || bytes[extra] == '\n')
        {
            return true;
        }
        used = extra;
        return textSignal(bytes.substr(extra)) != nullptr;
    }

    // Where the next record begins within what an unclean record has read or broken off in: at the beginning of a
    // line, or behind a ':' of its last line if it reads cleanly from there.
    static std::size_t nextText(std::string_view bytes, const Reading& reading)
    {
        const std::size_t lastLine = lineEnd(bytes, reading.end);
        for (std::size_t at = 0; (at = bytes.find_first_of(":\n", at)) != std::string_view::npos;)
        {
            const bool isLine = bytes[at++] == '\n';
            if (isLine && reading.isComplete && at > reading.end)
            {
                break;
            }
            if (!isLine && at > lastLine)
            {
                continue;
            }
            if (const Signal* const signal = textSignal(bytes.substr(at)))
            {
                Trial trial;
                if (isLine ||
                    read(Rendering{bytes.substr(at), Form::text, std::endian::big, signal}, trial).isClean())
                {
                    return at;
                }
            }
        }
        return bytes.size();
    }

    std::size_t readXmlText(const Window& window, std::string_view ahead)
    {
        nameFirst("XML, by its first character");
        Item item = newItem(window.offset());
        item.column = m_column;
        const std::size_t first = ahead.find("<sigNo>");
        std::size_t end = first == std::string_view::npos ? ahead.size() : ahead.find("<sigNo>", first + 1);
        if (end == std::string_view::npos)
        {
            end = ahead.size();
        }
        else if (end < ahead.size() && ahead[end - 1] == '\t')
        {
            --end;
        }
        // Another form at the start of a line ends it, too, and so does a zero.
        end = std::min(end, ahead.find('\0'));
        const std::size_t whole = end;
        for (std::size_t at = 0; (at = ahead.substr(0, end).find('\n', at)) != std::string_view::npos;)
        {
            if (textSignal(ahead.substr(++at)) != nullptr || ahead.substr(at).starts_with('{'))
            {
                end = at;
                break;
            }
        }
        Rendering rendering;
        m_document.assign(ahead.substr(0, whole));
        recognise(m_document, rendering);
        if (rendering.signal == nullptr)
        {
            end = unknownXmlEnd(ahead.substr(0, end));
        }
        else if (end != whole)
        {
            // Unless it is within a value.
            Trial trial;
            const Reading reading = read(rendering, trial);
            end = reading.isClean() && reading.end > end ? whole : end;
        }
        if (readXml(item, ahead.substr(0, end), true))
        {
            end = item.rendering.bytes.size();
        }
        const std::size_t newLine = ahead.substr(0, end).rfind('\n');
        m_column = newLine != std::string_view::npos ? end - newLine : m_column + end;
        return end;
    }

    // Where something that begins like XML is over, for all that one can tell: in front of a line that begins with
    // other than a blank or an element.
    static std::size_t unknownXmlEnd(std::string_view bytes)
    {
        for (std::size_t at = 0; (at = bytes.find('\n', at)) != std::string_view::npos;)
        {
            ++at;
            if (at < bytes.size() && bytes[at] != '<' && !isBlank(bytes[at]))
            {
                return at;
            }
        }
        return bytes.size();
    }

    // Returns whether there are other lines behind it.
    bool readXml(Item& item, std::string_view bytes, bool endsWithLine = false)
    {
        m_document.assign(bytes);
        item.hasForm = true;
        recognise(m_document, item.rendering);
        item.rendering.form = Form::xml;
        item.rendering.bytes = m_document;
        // Blanks between this document and the next are nobody's.
        while (!item.rendering.bytes.empty() && isBlank(item.rendering.bytes.back()) &&
               !item.rendering.bytes.ends_with(">\n"))
        {
            item.rendering.bytes.remove_suffix(1);
        }
        return readWhole(item, endsWithLine);
    }

    // A line that is neither text nor XML. `following` are the lines behind it, of which those that go on with its
    // digits are its own. Returns how many bytes of them it takes.
    std::size_t readOtherLine(Item& item, std::string_view line, std::string_view following)
    {
        if (takes(Packing::ndjson) && line.starts_with('{'))
        {
            nameFirst("a row of NDJSON, by its '{'");
            readRowOf(item, line);
            return 0;
        }
        if (takes(Packing::trace))
        {
            if (std::optional<TraceLine> trace = parseTrace(line))
            {
                nameFirst("a line of a trace, by its time, direction and form");
                item.carrier = Carrier::hex;
                item.time = trace->time;
                item.direction = trace->direction;
                const std::size_t digits = line.find_last_of(" \t") + 1;
                item.digits = line.substr(digits);
                item.column += digits;
                m_decoded = std::move(trace->bytes);
                if (trace->form == Form::text && textSignal(m_decoded) == nullptr)
                {
                    item.rendering = {m_decoded, Form::text, std::endian::big, nullptr};
                    refuse(item); // as what it is said to be
                    return 0;
                }
                readBytes(item, m_decoded);
                return 0;
            }
        }
        if (takes(Packing::hex))
        {
            if (const std::optional<std::size_t> used = readDigits(item, line, following, Carrier::hex, decodeHex))
            {
                return *used;
            }
        }
        if (takes(Packing::base64))
        {
            if (const std::optional<std::size_t> used =
                    readDigits(item, line, following, Carrier::base64, decodeBase64))
            {
                return *used;
            }
        }
        nameFirst("none of a signal");
        item.rendering.bytes = line;
        item.hasForm = takes(Packing::text) && !line.empty() && codec::isDigit(line.front()) &&
                       line.find_first_not_of("0123456789") != std::string_view::npos &&
                       line[line.find_first_not_of("0123456789")] == ':';
        item.rendering.form = Form::text;
        item.rendering.signal = nullptr;
        refuse(item);
        return 0;
    }

    // Digits that stand for a signal, over as many lines as go on with them. Returns how many bytes of those
    // behind the first they take; null if they stand for none.
    template <typename Decode>
    std::optional<std::size_t> readDigits(Item& item, std::string_view line, std::string_view following,
                                          Carrier carrier, Decode decode)
    {
        std::optional<std::string> bytes = decode(line);
        Rendering rendering;
        if (!bytes || (m_packing == Packing::automatic && !recognise(*bytes, rendering)))
        {
            return std::nullopt;
        }
        nameFirst(carrier == Carrier::hex ? "hex, by the signal that its digits stand for"
                                          : "base64, by the signal that it stands for");
        std::size_t used = 0;
        while (used < following.size())
        {
            const std::size_t end = lineEnd(following, used);
            std::string_view next = following.substr(used, end - used);
            if (next.ends_with('\r'))
            {
                next.remove_suffix(1);
            }
            const std::optional<std::string> more = decode(next);
            if (!more || (recognise(*more, rendering) && rendering.signal != nullptr) ||
                bytes->size() + more->size() > kReach)
            {
                break;
            }
            *bytes += *more;
            used = std::min(end + 1, following.size());
        }
        item.carrier = carrier;
        item.digits = {line.data(),
                       used == 0 ? line.size() : static_cast<std::size_t>(following.data() + used - line.data())};
        m_decoded = std::move(*bytes);
        readBytes(item, m_decoded);
        return used;
    }

    void readRowOf(Item& item, std::string_view line)
    {
        item.carrier = Carrier::row;
        item.rendering.bytes = line;
        item.hasForm = false;
        std::string wrong = readRow(line, m_decoded, item.rendering);
        if (!wrong.empty())
        {
            item.rendering = {};
            item.rendering.bytes = line;
            refuse(item, Code::badEncoding, 0, line.size(), "a row of a signal", std::move(wrong));
            return;
        }
        item.hasForm = true;
        item.rendering.bytes = m_decoded;
        if (item.rendering.form == Form::xml)
        {
            m_document = m_decoded;
            item.rendering.bytes = m_document;
        }
        readWhole(item);
    }

    std::string m_inputName;
    Packing m_packing;
    Sink& m_sink;
    std::uint64_t m_baseOffset = 0;
    std::uint64_t m_record = 0;
    std::uint64_t m_line = 1;
    std::size_t m_column = 1;
    bool m_isOneEach = false; // a line is a record, whatever follows in it
    std::string m_firstLine;
    std::function<void()> m_pause;
    std::string m_decoded;
    std::string m_document; // with its zero behind it
};

} // namespace bci::tool

#endif
