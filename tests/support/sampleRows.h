// Tables for tests of the engine: every kind of field and every oddity, and a list whose elements carry indexes.
#ifndef TESTS_SAMPLE_ROWS_H
#define TESTS_SAMPLE_ROWS_H

#include "codec/codec.h"
#include "codec/constants.h"

#include <cstddef>

struct SampleS
{
    U32 word;
    S32 signedWord;
    U16 half;
    S16 signedHalf;
    U8 byte;
    U8 name[5];
    U16 bare;
    U16 foreign;
    U8 skipped[3];
};

inline constexpr bci::codec::Field kSampleRows[] = {
    BCI_FIELD(SampleS, word, "word", 10),
    BCI_FIELD(SampleS, signedWord, "signedWord", 17, bci::codec::Oddity::doubledWord),
    BCI_FIELD(SampleS, half, "half", 24),
    BCI_FIELD(SampleS, signedHalf, "signedHalf", 31),
    BCI_FIELD(SampleS, byte, "byte", 38),
    BCI_FIELD(SampleS, name, "name", 45),
    BCI_FIELD(SampleS, bare, "bare", 52, bci::codec::Oddity::bareOpening),
    BCI_FIELD(SampleS, foreign, "foreign\0other", 59, bci::codec::Oddity::foreignClosing),
    BCI_FIELD(SampleS, skipped, "skipped", 66, bci::codec::Oddity::notReadFromXml),
};
inline constexpr bci::codec::Fields kSample = {"sampleMsg", kSampleRows};

static_assert(bci::codec::binarySize(kSampleRows) == 4 + 4 + 2 + 2 + 1 + 5 + 2 + 2 + 3);
static_assert(bci::codec::maxTextSize(kSampleRows) == 11 + 12 + 6 + 7 + 4 + 20 + 6 + 6 + 12);

// Elements of a list, 12 bytes each and without gaps. The first tag is shorter than a word of the machine, the
// others are longer.
inline constexpr bci::codec::Field kListRows[] = {
    {0, 2, bci::codec::Kind::u16, bci::codec::Oddity::none, 100, "n__"},
    {2, 4, bci::codec::Kind::s32, bci::codec::Oddity::none, 107, "signedNumber__"},
    {6, 6, bci::codec::Kind::text, bci::codec::Oddity::none, 114, "textOfElement__"},
};
inline constexpr bci::codec::Fields kList = {"sampleMsg", kListRows};

// Rows as a table that is read, and as constants.
struct AsTable
{
    static constexpr const char* kName = "Table";
};

struct AsConstants
{
    static constexpr const char* kName = "Constants";
};

template <typename Way, const bci::codec::Fields& table>
inline constexpr bci::codec::Constant<table> rowsFor = {};
template <const bci::codec::Fields& table>
inline constexpr const bci::codec::Fields& rowsFor<AsTable, table> = table;

#endif
