#include "picture.h"

#include <fmt/format.h>

#include <algorithm>

namespace bci::tool
{

namespace
{

using Kind = Piece::Kind;

// In pixels.
constexpr double kLeft = 96; // of the first byte
constexpr double kByteWidth = 144;
constexpr double kRight = kLeft + 4 * kByteWidth;
constexpr double kRowHeight = 38;
constexpr double kGap = 8;
constexpr double kCharacter = 8.2; // width of one in a wide font, on average
constexpr double kLane = 24;       // of a bracket, without its text

constexpr unsigned int kBytesPerRow = 4;
constexpr unsigned int kMostRows = 4; // of a field that is drawn in full

std::string escaped(const std::string& text)
{
    std::string result;
    for (const char ch : text)
    {
        switch (ch)
        {
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '&':
            result += "&amp;";
            break;
        default:
            result += ch;
        }
    }
    return result;
}

// Draws downwards. Within a list element all offsets have a plus sign.
class Picture
{
public:
    void draw(const std::vector<Piece>& pieces, const char* sign)
    {
        for (const Piece& piece : pieces)
        {
            switch (piece.kind)
            {
            case Kind::field:
                cell(piece.offset, piece.size, piece.name, typeName(*piece.field), sign,
                     piece.name.find("adding") != std::string::npos);
                break;
            case Kind::entries:
                cell(piece.offset, piece.size, "{" + piece.name + ", a zero} × " + piece.counterName,
                     typeName(*piece.field), sign);
                break;
            case Kind::block:
                cell(piece.offset, kBytesPerRow * (kMostRows + 1), piece.name,
                     fmt::format("U8 × {} (≤ {})", piece.counterName, piece.bound), sign, false, true);
                break;
            case Kind::list:
                list(piece, sign);
                break;
            case Kind::choice:
                choice(piece, sign);
                break;
            case Kind::limit:
                break;
            }
        }
        endRow();
    }

    void heading(const std::string& title, const std::vector<std::string>& lines)
    {
        m_y = 30;
        text(16, m_y, title, "font-size=\"18\" font-weight=\"bold\"");
        for (const std::string& line : lines)
        {
            m_y += 18;
            text(16, m_y, line, kSmall);
        }
        m_y += 26;
        text(kLeft - 12, m_y, "offset", kOffset);
        for (unsigned int i = 0; i < kBytesPerRow; ++i)
        {
            text(kLeft + (i + 0.5) * kByteWidth, m_y, fmt::format("+{}", i), kCentred);
        }
        m_y += 8;
    }

    std::string finish() const
    {
        const double width = m_width + 16;
        const double height = m_y + 16;
        return fmt::format(
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<svg xmlns=\"http://www.w3.org/2000/svg\" version=\"1.1\" width=\"{0:g}\" height=\"{1:g}\" "
            "viewBox=\"0 0 {0:g} {1:g}\" font-family=\"sans-serif\" fill=\"black\">\n"
            "<rect width=\"{0:g}\" height=\"{1:g}\" fill=\"white\"/>\n{2}</svg>\n",
            width, height, m_svg);
    }

private:
    static constexpr const char* kSmall = "font-size=\"13\"";
    static constexpr const char* kCentred = "font-size=\"12\" fill=\"#444\" text-anchor=\"middle\"";
    static constexpr const char* kOffset = "font-size=\"12\" fill=\"#444\" text-anchor=\"end\"";

    void text(double x, double y, const std::string& what, const char* how)
    {
        m_svg += fmt::format("<text x=\"{:g}\" y=\"{:g}\" {}>{}</text>\n", x, y, how, escaped(what));
    }

    void line(double x1, double y1, double x2, double y2, const char* how = "")
    {
        m_svg += fmt::format("<line x1=\"{:g}\" y1=\"{:g}\" x2=\"{:g}\" y2=\"{:g}\" stroke=\"black\"{}/>\n", x1,
                             y1, x2, y2, how);
    }

    void fill(double x, double y, double width, double height, const char* colour)
    {
        m_svg += fmt::format("<rect x=\"{:g}\" y=\"{:g}\" width=\"{:g}\" height=\"{:g}\" fill=\"{}\"/>\n", x, y,
                             width, height, colour);
    }

    // In the middle of a box, no wider than it.
    void label(double x, double y, double width, const std::string& name, const std::string& type)
    {
        const double most = (width - 10) / static_cast<double>(std::max<std::size_t>(name.size(), 1));
        const double size = std::min(14.0, 14.0 * most / kCharacter);
        text(x + width / 2, y - 3, name, fmt::format("font-size=\"{:.3g}\" text-anchor=\"middle\"", size).c_str());
        text(x + width / 2, y + 13, type, kCentred);
    }

    void beginRow(unsigned int offset, const std::string& sign)
    {
        endRow();
        m_row = offset / kBytesPerRow;
        m_inRow = true;
        text(kLeft - 12, m_y + kRowHeight / 2 + 4, sign + std::to_string(offset), kOffset);
    }

    void endRow()
    {
        m_y += m_inRow ? kRowHeight : 0;
        m_inRow = false;
    }

    // Some bytes as one box that goes on from row to row; of very many, the first and last rows. Where its size
    // is not known, its last row has no offset.
    void cell(unsigned int offset, unsigned int size, const std::string& name, const std::string& type,
              const std::string& sign, bool isGrey = false, bool isOpen = false)
    {
        const unsigned int first = offset / kBytesPerRow;
        const unsigned int last = (offset + size - 1) / kBytesPerRow;
        if (!m_inRow || m_row != first)
        {
            beginRow(offset, sign);
        }
        const bool isCut = last - first + 1 > kMostRows;
        const unsigned int rows = isCut ? kMostRows - 1 : last - first + 1;
        const double from = kLeft + offset % kBytesPerRow * kByteWidth;
        const double to = kLeft + ((offset + size - 1) % kBytesPerRow + 1) * kByteWidth;
        const double top = m_y;
        for (unsigned int i = 0; i < rows; ++i)
        {
            const bool isGap = isCut && i == 1;
            const double left = i == 0 ? from : kLeft;
            const double right = i + 1 == rows ? to : kRight;
            if (i != 0)
            {
                endRow();
                m_row = i + 1 == rows ? last : first + i;
                m_inRow = true;
                const std::string number = isOpen ? "" : sign + std::to_string(m_row * kBytesPerRow);
                text(kLeft - 12, m_y + kRowHeight / 2 + 4, isGap ? "⋮" : number, kOffset);
            }
            if (isGrey)
            {
                fill(left, m_y, right - left, kRowHeight, "#eeeeee");
            }
            const char* const dashed = isGap ? " stroke-dasharray=\"2 5\"" : "";
            line(left, m_y, left, m_y + kRowHeight, dashed);
            line(right, m_y, right, m_y + kRowHeight, dashed);
        }
        // Its upper and lower edges, which have a step each where it begins or ends within a row.
        line(from, top, rows == 1 ? to : kRight, top);
        line(rows == 1 ? from : kLeft, m_y + kRowHeight, to, m_y + kRowHeight);
        if (rows > 1)
        {
            line(kLeft, top + kRowHeight, from, top + kRowHeight);
            line(to, m_y, kRight, m_y);
        }

        double x = from;
        double width = to - from;
        double middle = top + kRowHeight / 2;
        if (rows == 2)
        {
            // In the wider of its two parts.
            const bool isUpper = kRight - from >= to - kLeft;
            x = isUpper ? from : kLeft;
            width = isUpper ? kRight - from : to - kLeft;
            middle += isUpper ? 0 : kRowHeight;
        }
        else if (rows > 2)
        {
            x = kLeft;
            width = kRight - kLeft;
            const unsigned int firstWhole = from > kLeft ? 1 : 0;
            const unsigned int behindWhole = rows - (to < kRight ? 1 : 0);
            middle = top + kRowHeight * (firstWhole + behindWhole) / 2;
        }
        label(x, middle, width, name, type);
    }

    void list(const Piece& piece, const char* sign)
    {
        endRow();
        const std::string index = *sign == '\0' ? "i" : "j";
        m_y += kGap;
        text(kLeft, m_y + 14,
             fmt::format("element {} at {}{} + {} {}{}", index, sign, piece.offset, piece.stride, index,
                         piece.isWhole ? fmt::format("; always {} bytes, zeros from the count on", piece.size)
                                       : ""),
             kSmall);
        m_y += 22;
        const double top = m_y;
        const double outside = m_lane;
        m_lane = kRight;
        draw(piece.content, "+");
        // Its bracket stands right of all that its content has there.
        const double x = m_lane + 12;
        const double middle = (top + m_y) / 2;
        const std::string count = fmt::format("× {}", piece.counterName);
        const std::string bound = fmt::format("(≤ {})", piece.bound);
        line(x, top, x + 8, top);
        line(x + 8, top, x + 8, m_y);
        line(x, m_y, x + 8, m_y);
        text(x + 16, middle - 2, count, kSmall);
        text(x + 16, middle + 14, bound, kSmall);
        m_lane = std::max(outside, x + kLane + kCharacter * static_cast<double>(count.size()));
        m_width = std::max(m_width, m_lane);
        m_y += kGap;
    }

    void choice(const Piece& piece, const char* sign)
    {
        endRow();
        m_y += kGap;
        text(kLeft, m_y + 14,
             fmt::format("one of these, by {}; always {} bytes, to {}{}", piece.counterName, piece.size, sign,
                         piece.offset + piece.size - 1),
             kSmall);
        m_y += 22;
        for (const Alternative& alternative : piece.alternatives)
        {
            const double top = m_y;
            m_y += kGap / 2;
            text(kLeft, m_y + 16, fmt::format("{}: {}", alternative.value, alternative.member),
                 "font-size=\"13\" font-weight=\"bold\"");
            m_y += 26;
            draw(alternative.content, sign);
            if (alternative.size != piece.size)
            {
                cell(piece.offset + alternative.size, piece.size - alternative.size, "zeros",
                     fmt::format("U8[{}]", piece.size - alternative.size), sign, true);
                endRow();
            }
            m_y += kGap;
            m_svg += fmt::format("<rect x=\"{:g}\" y=\"{:g}\" width=\"{:g}\" height=\"{:g}\" fill=\"none\" "
                                 "stroke=\"#888\" stroke-dasharray=\"6 3\"/>\n",
                                 kLeft - 84, top, kRight - kLeft + 92, m_y - top);
            m_y += kGap;
        }
    }

    std::string m_svg;
    double m_y = 0;
    double m_lane = kRight; // where the next bracket may stand
    double m_width = kRight;
    unsigned int m_row = 0; // whose bytes are drawn at m_y, if any
    bool m_inRow = false;
};

} // namespace

std::string picture(const std::vector<const Signal*>& signals, const Layout& layout)
{
    constexpr std::size_t kMostNames = 3;
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < std::min(signals.size(), kMostNames); ++i)
    {
        lines.push_back(fmt::format("{}  0x{:X}  {}", signals[i]->number, signals[i]->number, signals[i]->name));
    }
    if (signals.size() > kMostNames)
    {
        lines.push_back(fmt::format("and {} more", signals.size() - kMostNames));
    }
    lines.push_back(layout.leastBinary == layout.mostBinary
                        ? fmt::format("binary form, {} bytes", layout.mostBinary)
                        : fmt::format("binary form, {} to {} bytes", layout.leastBinary, layout.mostBinary));
    Picture picture;
    picture.heading(signals.front()->shape->className, lines);
    picture.draw(layout.pieces, "");
    return picture.finish();
}

} // namespace bci::tool
