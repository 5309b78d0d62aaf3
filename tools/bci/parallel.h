// Reads the lines of one input on several threads, with the results in the order of the input.
#ifndef BCI_TOOL_PARALLEL_H
#define BCI_TOOL_PARALLEL_H

#include "records.h"

#include <algorithm>
#include <exception>
#include <future>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bci::tool
{

// An input is cut into pieces where a line begins with the number of a signal, or, where there is none, at the end
// of any line. That is where a record begins, but for one that holds such a line in its text or block, or goes on
// over lines: then the piece in front ends behind that place, and the next one is read once more from there. So
// the records are those that one thread would find.
//
// `Job` is made for each piece, of `kPiece` bytes, and has a sink:
//   Job(); Sink& sink(); void clear();
template <typename Job, std::size_t kPiece = std::size_t{1} << 22>
class ParallelReader
{
public:
    ParallelReader(std::string inputName, Packing packing, unsigned int jobs)
        : m_inputName(std::move(inputName)), m_packing(packing), m_pieces(jobs)
    {
    }

    // Calls a function with each job in order, once its piece is read.
    template <typename Take>
    void readLines(Window& window, Take take)
    {
        std::uint64_t begin = window.offset(); // of the next record
        std::uint64_t line = 1;
        while (true)
        {
            std::size_t used = 0;
            std::size_t count = 0;
            // Each piece needs to see what lies behind it, as far as a reader looks.
            for (; count < m_pieces.size(); ++count)
            {
                Piece& piece = m_pieces[count];
                piece.bytes.clear();
                if (count != 0)
                {
                    const Piece& before = m_pieces[count - 1];
                    piece.bytes = before.bytes.substr(before.size);
                }
                fill(window, piece.bytes);
                if (piece.bytes.empty())
                {
                    break;
                }
                piece.size = cut(piece.bytes);
                piece.begin = begin + used;
                piece.line = line;
                line += static_cast<std::uint64_t>(std::count(
                    piece.bytes.begin(), piece.bytes.begin() + static_cast<std::ptrdiff_t>(piece.size), '\n'));
                used += piece.size;
            }
            if (count == 0)
            {
                break;
            }
            m_left = m_pieces[count - 1].bytes.substr(m_pieces[count - 1].size);
            std::vector<std::future<void>> running;
            for (std::size_t i = 0; i < count; ++i)
            {
                running.push_back(std::async(std::launch::async, [this, i] { read(m_pieces[i], 0, 1); }));
            }
            for (std::size_t i = 0; i < count; ++i)
            {
                running[i].wait();
            }
            for (std::size_t i = 0; i < count; ++i)
            {
                running[i].get();
                if (m_overhang != 0 || m_column != 1)
                {
                    read(m_pieces[i], m_overhang, m_column);
                }
                take(m_pieces[i].job);
                m_overhang = m_pieces[i].end - m_pieces[i].size;
                m_column = m_pieces[i].column;
            }
            begin += used;
        }
        if (m_trouble != nullptr)
        {
            std::rethrow_exception(m_trouble);
        }
    }

private:
    struct Piece
    {
        std::string bytes;
        std::size_t size = 0; // without what lies behind
        std::uint64_t begin = 0;
        std::uint64_t line = 1;
        std::size_t end = 0;    // behind the last record
        std::size_t column = 1; // there
        Job job;
    };

    void fill(Window& window, std::string& bytes)
    {
        bytes.insert(0, m_left);
        m_left.clear();
        try
        {
            fillFrom(window, bytes);
        }
        catch (const Trouble&)
        {
            m_trouble = std::current_exception(); // for when all before it is read
        }
    }

    void fillFrom(Window& window, std::string& bytes)
    {
        while (bytes.size() < kPiece + kReach && m_trouble == nullptr)
        {
            const std::string_view ahead = window.ahead(1).substr(0, kPiece + kReach - bytes.size());
            if (ahead.empty())
            {
                return;
            }
            bytes += ahead;
            window.consume(ahead.size());
        }
    }

    static std::size_t cut(std::string_view bytes)
    {
        if (bytes.size() < kPiece + kReach)
        {
            return bytes.size(); // the last piece
        }
        for (std::size_t at = kPiece; (at = bytes.substr(0, at).rfind('\n')) != std::string_view::npos && at != 0;)
        {
            if (textSignal(bytes.substr(at + 1)) != nullptr)
            {
                return at + 1;
            }
        }
        const std::size_t newLine = bytes.substr(0, kPiece).rfind('\n');
        return newLine != std::string_view::npos ? newLine + 1 : kPiece;
    }

    void read(Piece& piece, std::size_t from, std::size_t column)
    {
        piece.job.clear();
        const std::string_view skipped = std::string_view(piece.bytes).substr(0, from);
        MemoryStream stream(std::string_view(piece.bytes).substr(from));
        Window window(stream);
        RecordReader reader(m_inputName, m_packing, piece.job.sink());
        reader.startAt(piece.begin + from,
                       piece.line + static_cast<std::uint64_t>(std::count(skipped.begin(), skipped.end(), '\n')),
                       column);
        if (from < piece.size)
        {
            reader.readLines(window, piece.size - from);
        }
        piece.end = from + static_cast<std::size_t>(window.offset());
        piece.column = reader.column();
    }

    std::string m_inputName;
    Packing m_packing;
    std::vector<Piece> m_pieces;
    std::string m_left;         // read, and part of no piece yet
    std::size_t m_overhang = 0; // bytes of the next piece that the one before has read
    std::size_t m_column = 1;   // where it has stopped
    std::exception_ptr m_trouble;
};

} // namespace bci::tool

#endif
