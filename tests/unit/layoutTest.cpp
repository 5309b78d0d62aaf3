// What the tools work out about sizes, against what the library writes.

#include "layout.h"
#include "bciMessage.h"
#include "bciMsgRegistration.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <memory>

namespace
{

using bci::codec::Field;
using bci::codec::Kind;
using bci::tool::Alternative;
using bci::tool::layoutOf;
using bci::tool::Piece;

// Fills a structure with the longest numbers and texts, but for some numbers.
class Longest : public bci::codec::Visitor
{
public:
    explicit Longest(const std::map<const Field*, int>& given) : m_given(given) {}

    void field(const Field& field, char* base, const bci::codec::Subscripts* /*subscripts*/) override
    {
        const auto given = m_given.find(&field);
        if (given != m_given.end())
        {
            storeNumber(field, given->second, base);
        }
        else if (field.kind == Kind::text)
        {
            std::memset(base + field.offset, 'x', field.size);
        }
        else if (field.kind == Kind::s16)
        {
            storeNumber(field, std::numeric_limits<S16>::min(), base);
        }
        else if (field.kind == Kind::s32)
        {
            storeNumber(field, std::numeric_limits<S32>::min(), base);
        }
        else
        {
            storeNumber(field, -1, base);
        }
    }
    void entry(const Field& entry, char* base, const bci::codec::Subscripts& /*subscripts*/) override
    {
        field(entry, base, nullptr);
    }
    void block(const Field& block, char* base) override
    {
        field(block, base, nullptr);
    }

private:
    const std::map<const Field*, int>& m_given;
};

// Counts at their bounds (or all 0), and one alternative of each choice.
void give(const std::vector<Piece>& pieces, bool full, std::size_t alternative, std::map<const Field*, int>& given)
{
    for (const Piece& piece : pieces)
    {
        if (piece.kind == Piece::Kind::list || piece.kind == Piece::Kind::block)
        {
            given[piece.counter] = full ? static_cast<int>(piece.bound) : 0;
            give(piece.content, full, alternative, given);
        }
        else if (piece.kind == Piece::Kind::limit)
        {
            given[piece.field] = static_cast<int>(piece.bound);
        }
        else if (piece.kind == Piece::Kind::choice)
        {
            const Alternative& one = piece.alternatives[std::min(alternative, piece.alternatives.size() - 1)];
            given[piece.counter] = one.value;
            give(one.content, full, alternative, given);
        }
    }
}

struct Lengths
{
    unsigned int text;
    unsigned int binary;
};

Lengths written(const bci::Signal& signal, bool full, std::size_t alternative)
{
    BciMsgRegistry::registerSupportedMsgClasses();
    BciMessageBase* created = nullptr;
    EXPECT_TRUE(BciMessageBase::instantiateBciMsg(signal.number, created));
    const std::unique_ptr<BciMessageBase> message(created);
    std::memset(message->getMsg(), 0, signal.shape->structureSize);
    std::map<const Field*, int> given;
    give(layoutOf(*signal.shape).pieces, full, alternative, given);
    Longest visitor(given);
    walk(*signal.shape, message->getMsg(), visitor);
    std::vector<char> buffer(20000);
    Lengths lengths = {20000, 20000};
    EXPECT_TRUE(message->serializeToText(buffer.data(), lengths.text)) << signal.name;
    EXPECT_TRUE(message->serializeToBinary(buffer.data(), lengths.binary)) << signal.name;
    return lengths;
}

// Compares offsets in the binary form with those in the wire structure; both count from the same place.
class Offsets
{
public:
    explicit Offsets(const std::vector<Piece>& pieces, unsigned int base = 0)
        : m_piece(pieces.data()), m_end(m_piece + pieces.size()), m_base(base)
    {
    }

    void expectSame(const bci::codec::Group& group)
    {
        (*this)(group.rows);
        for (const bci::codec::Part& part : group.further)
        {
            std::visit(*this, part);
        }
        EXPECT_EQ(m_piece, m_end);
    }

    void operator()(std::span<const Field> rows)
    {
        for (const Field& field : rows)
        {
            expectNext(field.offset);
        }
    }
    void operator()(const bci::codec::List* list)
    {
        EXPECT_EQ(m_piece->stride, list->stride);
        Offsets(m_piece->content).expectSame(list->element);
        expectNext(list->offset);
    }
    void operator()(const bci::codec::Choice* choice)
    {
        for (std::size_t i = 0; i < choice->cases.size(); ++i)
        {
            Offsets(m_piece->alternatives[i].content, m_base + choice->offset)
                .expectSame(choice->cases[i].content);
        }
        expectNext(choice->offset);
    }
    void operator()(const bci::codec::LogEntries* entries)
    {
        expectNext(entries->array->offset);
    }
    void operator()(const bci::codec::Block* block)
    {
        expectNext(block->bytes->offset);
    }
    void operator()(const bci::codec::Limit* /*limit*/)
    {
        ++m_piece;
    }

private:
    void expectNext(unsigned int offset)
    {
        EXPECT_EQ(m_piece->offset, m_base + offset) << m_piece->name;
        ++m_piece;
    }

    const Piece* m_piece;
    const Piece* m_end;
    unsigned int m_base;
};

constexpr std::size_t kAlternatives = 5;

TEST(Layout, MostIsWhatTheLibraryWritesAtMost)
{
    for (const bci::Signal& signal : bci::signals())
    {
        Lengths most = {0, 0};
        for (std::size_t i = 0; i < kAlternatives; ++i)
        {
            const Lengths lengths = written(signal, true, i);
            most = {std::max(most.text, lengths.text), std::max(most.binary, lengths.binary)};
        }
        EXPECT_EQ(layoutOf(*signal.shape).mostText, most.text) << signal.name;
        EXPECT_EQ(layoutOf(*signal.shape).mostBinary, most.binary) << signal.name;
    }
}

TEST(Layout, LeastBinaryIsWhatTheLibraryWritesWithoutElements)
{
    for (const bci::Signal& signal : bci::signals())
    {
        EXPECT_EQ(layoutOf(*signal.shape).leastBinary, written(signal, false, 0).binary) << signal.name;
    }
}

TEST(Layout, OffsetsAreThoseOfTheWireStructure)
{
    for (const bci::Signal& signal : bci::signals())
    {
        SCOPED_TRACE(signal.name);
        Offsets(layoutOf(*signal.shape).pieces).expectSame(signal.shape->content);
    }
}

TEST(Layout, NamesHaveLettersInThePlaceOfIndexes)
{
    const Piece capabilities = layoutOf(bci::kCapabilityCfmShape).pieces.back();
    EXPECT_EQ(capabilities.counterName, "numberOfBoardCapabilities");
    EXPECT_EQ(capabilities.content.front().name, "boardCapabilityIdentity_i");
    const Alternative& hosts = capabilities.content.back().alternatives[2];
    EXPECT_EQ(hosts.content.front().name, "numOfEthTermHosts[i]");
    EXPECT_EQ(hosts.content.front().element, "numOfEthTermHosts");
    EXPECT_EQ(hosts.content.back().content.front().name, "snid_i_j");
}

} // namespace
