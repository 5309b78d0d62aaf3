// What the loops of the engine run over: rows, once or for each element of a list, as a table that is read or as
// constants that the compiler unrolls.
#ifndef BCI_CODEC_ROWS_H
#define BCI_CODEC_ROWS_H

#include "field.h"
#include "optimize.h"

#include <cstddef>
#include <utility>

namespace bci::codec
{

// Of a list, elements follow one another without gaps.
class TableRows
{
public:
    explicit TableRows(const Fields& fields, unsigned int count = 1) : m_fields(fields), m_count(count) {}

    const Fields& fields() const
    {
        return m_fields;
    }

    unsigned int count() const
    {
        return m_count;
    }

    // Calls a function with each field, the structure or list element that its offset counts from, and the
    // index of the element.
    template <typename Byte, typename Function>
    void forEach(Byte* structure, Function function) const
    {
        for (unsigned int i = 0; i < m_count; ++i)
        {
            for (const Field& field : m_fields.rows)
            {
                function(field, structure, i);
            }
            structure += m_fields.binarySize;
        }
    }

private:
    const Fields& m_fields;
    unsigned int m_count;
};

// A row whose values the compiler knows, to be used like a Field.
template <const Fields& table, std::size_t index>
struct ConstantField
{
    static constexpr const Field& row = table.rows[index];
    static constexpr U16 offset = row.offset;
    static constexpr U16 size = row.size;
    static constexpr Kind kind = row.kind;
    static constexpr Oddity oddity = row.oddity;
    static constexpr const char* tag = row.tag;
};

template <const Fields& table>
class ConstantRows
{
public:
    explicit ConstantRows(unsigned int count) : m_count(count) {}

    static constexpr const Fields& fields()
    {
        return table;
    }

    unsigned int count() const
    {
        return m_count;
    }

    template <typename Byte, typename Function>
    BCI_INLINE void forEach(Byte* structure, Function function) const
    {
        for (unsigned int i = 0; i < m_count; ++i)
        {
            [&]<std::size_t... index>(std::index_sequence<index...>) __attribute__((always_inline))
            {
                (function(ConstantField<table, index>(), structure, i), ...);
            }
            (std::make_index_sequence<table.rows.size()>());
            structure += table.binarySize;
        }
    }

private:
    unsigned int m_count;
};

} // namespace bci::codec

#endif
