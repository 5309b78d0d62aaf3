// Inputs as streams of bytes: files and pipes, plain and compressed, and the window that slides over them.

#include "bytes.h"
#include "catalogue.h"
#include "containers.h"
#include "input.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

namespace
{

using namespace bci::tool;

std::string unhex(const std::string& digits)
{
    return decodeHex(digits).value();
}

// A file that is gone when the test is over.
class TemporaryFile
{
public:
    explicit TemporaryFile(const std::string& content) : m_name(testing::TempDir() + "bytesTestXXXXXX")
    {
        const int descriptor = mkstemp(m_name.data());
        EXPECT_EQ(write(descriptor, content.data(), content.size()), static_cast<ssize_t>(content.size()));
        close(descriptor);
    }

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    ~TemporaryFile()
    {
        unlink(m_name.c_str());
    }

    const std::string& name() const
    {
        return m_name;
    }

private:
    std::string m_name;
};

// Everything that comes, and behind it in brackets the trouble that ends it, without the name.
std::string drained(ByteStream& stream, const std::string& name, std::size_t most)
{
    std::string content;
    std::vector<char> buffer(most);
    try
    {
        while (const std::size_t length = stream.read(buffer.data(), most))
        {
            EXPECT_LE(length, most);
            content.append(buffer.data(), length);
        }
    }
    catch (const Trouble& trouble)
    {
        const std::string what = trouble.what();
        EXPECT_EQ(what.substr(0, name.size()), name);
        content += "[" + what.substr(std::min(name.size(), what.size())) + "]";
    }
    return content;
}

// What an input of these bytes comes to, whatever the size of the pieces it is read in.
std::string contentOf(const std::string& bytes)
{
    const TemporaryFile file(bytes);
    std::vector<std::string> contents;
    for (const std::size_t most : {std::size_t{1}, std::size_t{7}, std::size_t{1} << 17})
    {
        try
        {
            contents.push_back(drained(*openInput(file.name()), file.name(), most));
        }
        catch (const Trouble& trouble)
        {
            contents.push_back("[at once" + std::string(trouble.what()).substr(file.name().size()) + "]");
        }
    }
    EXPECT_EQ(contents[0], contents[1]);
    EXPECT_EQ(contents[0], contents[2]);
    return contents[0];
}

std::string troubleOpening(const std::string& name)
{
    try
    {
        openInput(name);
    }
    catch (const Trouble& trouble)
    {
        return trouble.what();
    }
    return "none";
}

TEST(OpenInput, NamesTheFileThatIsNotThere)
{
    EXPECT_EQ(troubleOpening("/nowhere/log.txt"), "/nowhere/log.txt: No such file or directory");
    EXPECT_EQ(troubleOpening("/nowhere/\n"), "/nowhere/\\x0A: No such file or directory");
}

TEST(OpenInput, ReadsNoDirectory)
{
    EXPECT_EQ(troubleOpening("/"), "/: Is a directory");
}

TEST(OpenInput, DeliversPlainBytesAsTheyAre)
{
    EXPECT_EQ(contentOf(""), "");
    EXPECT_EQ(contentOf("23430145:1:2:3:\n"), "23430145:1:2:3:\n");
    const std::string zeros(100000, '\0');
    EXPECT_EQ(contentOf(zeros), zeros);
}

TEST(OpenInput, DeliversWhatOnlyBeginsLikeCompressedData)
{
    for (const char* const digits : {"1f", "1f8b", "1f8b07", "28", "28b52f", "28b52ffe", "50", "502a4d",
                                     "5f2a4d19", "78", "789d3332", "78bb0000", "384f3a31"})
    {
        EXPECT_EQ(contentOf(unhex(digits)), unhex(digits)) << digits;
    }
}

TEST(OpenInput, TakesNoSignalForCompressed)
{
    for (const bci::Signal& signal : bci::signals())
    {
        std::string word;
        for (const int shift : {24, 16, 8, 0})
        {
            word.push_back(static_cast<char>(signal.number >> shift));
        }
        const std::string reversed(word.rbegin(), word.rend());
        const std::string rest(300, '\0');
        for (const std::string& bytes : {word + rest, reversed + rest, word, reversed, encodeHex(word),
                                         encodeHex(reversed), std::to_string(signal.number) + ":1:2:"})
        {
            EXPECT_EQ(contentOf(bytes), bytes) << signal.name;
        }
    }
}

TEST(OpenInput, ReadsStandardInput)
{
    const TemporaryFile file("23430145:1:2:3:\n");
    const int saved = dup(STDIN_FILENO);
    std::FILE* const opened = std::fopen(file.name().c_str(), "rb");
    ASSERT_NE(opened, nullptr);
    dup2(fileno(opened), STDIN_FILENO);
    std::fclose(opened);
    EXPECT_EQ(drained(*openInput("-"), "<stdin>", 100), "23430145:1:2:3:\n");
    // It stays open.
    EXPECT_EQ(drained(*openInput("-"), "<stdin>", 100), "");
    dup2(saved, STDIN_FILENO);
    close(saved);
}

// A pipe that a test writes to.
struct Pipe
{
    Pipe()
    {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        readEnd = ends[0];
        writeEnd = ends[1];
    }

    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    ~Pipe()
    {
        close(readEnd);
        close(writeEnd);
    }

    std::string name() const
    {
        return "/dev/fd/" + std::to_string(readEnd);
    }

    void put(const std::string& bytes) const
    {
        EXPECT_EQ(write(writeEnd, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }

    int readEnd = -1;
    int writeEnd = -1;
};

std::string readOnce(ByteStream& stream)
{
    std::vector<char> buffer(1000);
    return {buffer.data(), stream.read(buffer.data(), buffer.size())};
}

// The pipe stays open meanwhile: waiting for more would be waiting for ever.
TEST(OpenInput, DeliversWhatAPipeHasNow)
{
    const Pipe pipe;
    pipe.put("2");
    const auto stream = openInput(pipe.name());
    EXPECT_EQ(readOnce(*stream), "2");
    pipe.put("3430145:");
    EXPECT_EQ(readOnce(*stream), "3430145:");
}

// Of "23430145:1:2:3:\n".
constexpr const char* kGzip = "1f8b08000000000002033332363136303431b532b432b232b6e2020021f5bdaf10000000";
constexpr const char* kZlib = "789c3332363136303431b532b432b232b6e202001b58031f";
constexpr const char* kZlibSmallWindow = "18d33332363136303431b532b432b232b6e202001b58031f";
constexpr const char* kZstd = "28b52ffd201081000032333433303134353a313a323a333a0a";
// Of "23430144:1:2:\n".
constexpr const char* kOtherGzip = "1f8b08000000000002033332363136303431b132b432b2e202009779a0cf0e000000";
constexpr const char* kOtherZstd = "28b52ffd240e71000032333433303134343a313a323a0ab4c39480"; // with a checksum

#if BCI_WITH_ZLIB

TEST(OpenInput, UnpacksGzip)
{
    EXPECT_EQ(contentOf(unhex(kGzip)), "23430145:1:2:3:\n");
    // With a name, a comment and an extra field in the header.
    EXPECT_EQ(
        contentOf(unhex("1f8b081c00000000020302007878") + std::string("log\0why\0", 8) + unhex(kGzip).substr(10)),
        "23430145:1:2:3:\n");
}

TEST(OpenInput, UnpacksZlib)
{
    EXPECT_EQ(contentOf(unhex(kZlib)), "23430145:1:2:3:\n");
    EXPECT_EQ(contentOf(unhex(kZlibSmallWindow)), "23430145:1:2:3:\n");
    EXPECT_EQ(contentOf(unhex(kZlib) + unhex(kZlibSmallWindow)), "23430145:1:2:3:\n23430145:1:2:3:\n");
}

TEST(OpenInput, TakesNothingForZlibThatNothingComesOutOf)
{
    for (const char* const digits : {"789c", "789cff", "789c06000000", "780107", "18d30700"})
    {
        EXPECT_EQ(contentOf(unhex(digits)), unhex(digits)) << digits;
    }
}

TEST(OpenInput, UnpacksMemberAfterMember)
{
    EXPECT_EQ(contentOf(unhex(kGzip) + unhex(kOtherGzip)), "23430145:1:2:3:\n23430144:1:2:\n");
    std::string packed;
    std::string plain;
    for (int i = 0; i != 5000; ++i)
    {
        packed += unhex(kGzip);
        plain += "23430145:1:2:3:\n";
    }
    EXPECT_EQ(contentOf(packed), plain);
}

TEST(OpenInput, PassesOverZerosBehindTheLastMember)
{
    EXPECT_EQ(contentOf(unhex(kGzip) + std::string(70000, '\0')), "23430145:1:2:3:\n");
    EXPECT_EQ(contentOf(unhex(kGzip) + std::string(3, '\0') + unhex(kGzip)),
              "23430145:1:2:3:\n[: something else follows the compressed data at byte 39]");
}

TEST(OpenInput, TellsWhatFollowsTheLastMember)
{
    EXPECT_EQ(contentOf(unhex(kGzip) + "23430145:"),
              "23430145:1:2:3:\n[: something else follows the compressed data at byte 36]");
}

TEST(OpenInput, DeliversWhatCameOutBeforeTheDataIsCut)
{
    const std::string packed = unhex(kGzip);
    EXPECT_EQ(contentOf(packed.substr(0, 35)), "23430145:1:2:3:\n[: the compressed data is cut at byte 35]");
    EXPECT_EQ(contentOf(packed.substr(0, 18)), "2343014[: the compressed data is cut at byte 18]");
    EXPECT_EQ(contentOf(packed.substr(0, 5)), "[: the compressed data is cut at byte 5]");
    EXPECT_EQ(contentOf(unhex(kZlib).substr(0, 10)), "2343014[: the compressed data is cut at byte 10]");
    EXPECT_EQ(contentOf(packed + packed.substr(0, 1)),
              "23430145:1:2:3:\n[: the compressed data is cut at byte 37]");
}

TEST(OpenInput, DeliversWhatCameOutBeforeTheDamage)
{
    std::string packed = unhex(kGzip);
    packed[28] = '\x7F';
    EXPECT_EQ(contentOf(packed),
              "23430145:1:2:3:\n[: the compressed data is damaged at byte 32 (incorrect data check)]");
    // Nothing else begins with these three bytes, so this is no input of another kind.
    packed[10] = '\x07';
    EXPECT_EQ(contentOf(packed), "[: the compressed data is damaged at byte 11 (invalid block type)]");
    packed = unhex(kZlib);
    packed[23] = '\0';
    EXPECT_EQ(contentOf(packed + "x"),
              "23430145:1:2:3:\n[: the compressed data is damaged at byte 24 (incorrect data check)]");
}

TEST(OpenInput, DeliversWhatACompressedPipeHasNow)
{
    const Pipe pipe;
    pipe.put(unhex(kGzip).substr(0, 18));
    const auto stream = openInput(pipe.name());
    EXPECT_EQ(readOnce(*stream), "2343014");
    pipe.put(unhex(kGzip).substr(18));
    EXPECT_EQ(readOnce(*stream), "5:1:2:3:\n");
}

#else

TEST(OpenInput, TellsThatItCannotUnpackGzipAndZlib)
{
    EXPECT_EQ(contentOf(unhex(kGzip)), "[at once: compressed with gzip, which this build cannot read]");
    EXPECT_EQ(contentOf(unhex(kOtherGzip)), "[at once: compressed with gzip, which this build cannot read]");
    EXPECT_EQ(contentOf(unhex(kZlib)), "[at once: compressed with zlib, which this build cannot read]");
    EXPECT_EQ(contentOf(unhex(kZlibSmallWindow)), unhex(kZlibSmallWindow)); // not sure to be one
}

#endif

#if BCI_WITH_ZSTD

TEST(OpenInput, UnpacksZstd)
{
    EXPECT_EQ(contentOf(unhex(kZstd)), "23430145:1:2:3:\n");
    // One block that is really compressed.
    EXPECT_EQ(contentOf(unhex(
                  "28b52ffd2430050100c032333433303134353a303a323a333a0a31323a323a333a0a0200a00b53cc25ef785c39")),
              "23430145:0:2:3:\n23430145:1:2:3:\n23430145:2:2:3:\n");
}

TEST(OpenInput, UnpacksFrameAfterFrame)
{
    EXPECT_EQ(contentOf(unhex(kZstd) + unhex(kOtherZstd)), "23430145:1:2:3:\n23430144:1:2:\n");
    // Skippable frames before and behind.
    EXPECT_EQ(contentOf(unhex("502a4d1803000000616263") + unhex(kZstd) + unhex("5f2a4d1800000000")),
              "23430145:1:2:3:\n");
    EXPECT_EQ(contentOf(unhex(kZstd) + std::string(10, '\0')), "23430145:1:2:3:\n");
    std::string packed;
    std::string plain;
    for (int i = 0; i != 5000; ++i)
    {
        packed += unhex(kOtherZstd);
        plain += "23430144:1:2:\n";
    }
    EXPECT_EQ(contentOf(packed), plain);
}

TEST(OpenInput, DeliversTheBlocksBeforeTheFrameIsCutOrDamaged)
{
    const std::string packed = unhex(kOtherZstd);
    EXPECT_EQ(contentOf(packed.substr(0, packed.size() - 1)),
              "23430144:1:2:\n[: the compressed data is cut at byte 26]");
    std::string damaged = packed;
    damaged.back() = '\0';
    EXPECT_EQ(contentOf(damaged), "23430144:1:2:\n[: the compressed data is damaged at byte 24 "
                                  "(Restored data doesn't match checksum)]");
    // Two blocks, the second of a type that there is not.
    EXPECT_EQ(contentOf(unhex("28b52ffd2020800000") + "23430145:1:2:3:\n" + unhex("870000")),
              "23430145:1:2:3:\n[: the compressed data is damaged at byte 25 (Data corruption detected)]");
    EXPECT_EQ(contentOf(unhex(kZstd) + "("), "23430145:1:2:3:\n[: the compressed data is cut at byte 26]");
    EXPECT_EQ(contentOf(unhex(kZstd) + "2343"),
              "23430145:1:2:3:\n[: something else follows the compressed data at byte 25]");
}

#else

TEST(OpenInput, TellsThatItCannotUnpackZstd)
{
    EXPECT_EQ(contentOf(unhex(kZstd)), "[at once: compressed with zstd, which this build cannot read]");
    EXPECT_EQ(contentOf(unhex(kOtherZstd)), "[at once: compressed with zstd, which this build cannot read]");
}

#endif

// Gives these pieces, one a call, then the trouble if there is any.
class Pieces : public ByteStream
{
public:
    explicit Pieces(std::deque<std::string> pieces, std::string trouble = "")
        : m_pieces(std::move(pieces)), m_trouble(std::move(trouble))
    {
    }

    std::size_t read(char* to, std::size_t most) override
    {
        ++calls;
        if (m_pieces.empty())
        {
            if (!m_trouble.empty())
            {
                throw Trouble(m_trouble);
            }
            return 0;
        }
        const std::size_t length = m_pieces.front().copy(to, most);
        m_pieces.front().erase(0, length);
        if (m_pieces.front().empty())
        {
            m_pieces.pop_front();
        }
        return length;
    }

    int calls = 0;

private:
    std::deque<std::string> m_pieces;
    std::string m_trouble;
};

TEST(Window, WaitsForNoMoreThanItIsAskedFor)
{
    Pieces pieces({"ab", "cd", "ef"});
    Window window(pieces, 100);
    EXPECT_EQ(window.ahead(0), "");
    EXPECT_EQ(pieces.calls, 0);
    EXPECT_EQ(window.ahead(1), "ab");
    EXPECT_EQ(window.ahead(2), "ab");
    EXPECT_EQ(pieces.calls, 1);
    EXPECT_EQ(window.ahead(3), "abcd");
    EXPECT_EQ(pieces.calls, 2);
    EXPECT_FALSE(window.isLast());
}

TEST(Window, TellsThatNothingFollows)
{
    Pieces pieces({"ab", "cd"});
    Window window(pieces, 100);
    EXPECT_EQ(window.ahead(4), "abcd");
    EXPECT_FALSE(window.isLast());
    EXPECT_EQ(window.ahead(5), "abcd");
    EXPECT_TRUE(window.isLast());
    window.consume(4);
    EXPECT_EQ(window.ahead(1), "");
    EXPECT_TRUE(window.isLast());
}

TEST(Window, CountsWhatIsConsumed)
{
    Pieces pieces({"abcdef"});
    Window window(pieces, 100);
    EXPECT_EQ(window.offset(), 0U);
    EXPECT_EQ(window.ahead(1), "abcdef");
    window.consume(2);
    EXPECT_EQ(window.ahead(1), "cdef");
    window.consume(4);
    EXPECT_EQ(window.offset(), 6U);
}

TEST(Window, SlidesOverMoreThanItHolds)
{
    std::string all;
    for (int i = 0; i != 1000; ++i)
    {
        all += std::to_string(i);
    }
    Pieces pieces({all});
    Window window(pieces, 16);
    std::string seen;
    for (std::size_t step = 1; !window.ahead(8).empty(); step = step % 7 + 1)
    {
        const std::string_view ahead = window.ahead(8);
        EXPECT_TRUE(ahead.size() >= 8 || window.isLast());
        EXPECT_LE(ahead.size(), 16U);
        const std::size_t count = std::min(step, ahead.size());
        seen += ahead.substr(0, count);
        window.consume(count);
    }
    EXPECT_EQ(seen, all);
    EXPECT_EQ(window.offset(), all.size());
}

TEST(Window, ShowsEverythingBeforeItThrowsTrouble)
{
    Pieces pieces({"ab", "cd"}, "gone");
    Window window(pieces, 100);
    EXPECT_EQ(window.ahead(10), "abcd");
    EXPECT_TRUE(window.isLast());
    window.consume(3);
    EXPECT_EQ(window.ahead(10), "d");
    window.consume(1);
    EXPECT_THROW(window.ahead(1), Trouble);
    EXPECT_THROW(window.ahead(1), Trouble);

    Pieces nothing({}, "gone");
    Window empty(nothing, 100);
    EXPECT_THROW(empty.ahead(1), Trouble);
}

TEST(WindowStream, ReadsOnWhereTheWindowIs)
{
    Pieces pieces({"abcd", "ef"}, "gone");
    Window window(pieces, 100);
    EXPECT_EQ(window.ahead(1), "abcd");
    window.consume(1);
    WindowStream stream(window);
    EXPECT_EQ(drained(stream, "", 2), "bcdef[gone]");
    EXPECT_EQ(window.offset(), 6U);
}

} // namespace
