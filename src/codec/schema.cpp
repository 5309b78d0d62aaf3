#include "schema.h"

#include "walk.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace bci::codec
{

namespace
{

class Leaves : public Visitor
{
public:
    void field(const Field& field, char* base, const Subscripts* subscripts) override
    {
        m_leaves.push_back({ElementName(field.tag, subscripts).text(), field, base, false});
    }

    void entry(const Field& entry, char* base, const Subscripts& subscripts) override
    {
        field(entry, base, &subscripts);
    }

    void block(const Field& block, char* base) override
    {
        m_leaves.push_back({block.tag, block, base, true});
    }

    std::vector<Leaf> m_leaves;
};

} // namespace

void Visitor::beginList(const List& /*list*/, std::int64_t /*count*/, char* /*base*/) {}
void Visitor::endList(const List& /*list*/, std::int64_t /*count*/, char* /*base*/) {}
void Visitor::beginChoice(const Choice& /*choice*/, const Case* /*chosen*/, char* /*base*/) {}
void Visitor::endChoice(const Choice& /*choice*/, char* /*base*/) {}
void Visitor::beginEntries(const LogEntries& /*entries*/, std::int64_t /*count*/, char* /*base*/) {}
void Visitor::endEntries(const LogEntries& /*entries*/, std::int64_t /*count*/, std::int64_t /*written*/,
                         char* /*base*/)
{
}
void Visitor::beginBlock(const Block& /*block*/, std::int64_t /*length*/, char* /*base*/) {}
void Visitor::limit(const Limit& /*limit*/, char* /*base*/) {}

void walk(const Shape& shape, char* structure, Visitor& visitor)
{
    Walker<Visitor>(structure, visitor, nullptr).walk(shape.content);
}

std::vector<Leaf> leaves(const Shape& shape, char* structure)
{
    Leaves visitor;
    walk(shape, structure, visitor);
    return std::move(visitor.m_leaves);
}

} // namespace bci::codec
