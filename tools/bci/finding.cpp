#include "finding.h"

#include <algorithm>
#include <array>

namespace bci::tool
{

namespace
{

constexpr Severity kDamage = Severity::damage;
constexpr Severity kNote = Severity::note;

constexpr std::array kCodes = {
    CodeInfo{Code::unknownRecord, "unknown-record", kDamage, "No signal in any form begins here",
             "Neither the first word nor the digits in front of a ':' nor an element <sigNo> is the number of a "
             "signal. Usual causes are other lines in a log, a beginning that is missing, and an input that is no "
             "log of signals.",
             "makes no message of it"},
    CodeInfo{
        Code::unknownSignal, "unknown-signal", kDamage, "The signal number is none of the interface",
        "The form is recognisable, but its number is not one of the interface. 'bci list' shows those that are.",
        "makes no message of it"},
    CodeInfo{Code::badEncoding, "bad-encoding", kDamage, "What carries the record cannot be read",
             "A row of NDJSON, or another carrier of renderings, is not as it has to be.", "never sees it"},
    CodeInfo{
        Code::cutShort, "cut-short", kDamage, "The record ends before all of its fields",
        "The input, or the line, ends within a field or in front of one. Usual causes are a buffer that was too "
        "short for the rendering, which the library reports as success, and a line that was cut.",
        "takes what is there: a number that is not all there keeps its old value or becomes 0, a text ends "
        "early; the result is success"},
    CodeInfo{Code::notANumber, "not-a-number", kDamage, "There is no decimal number where one has to be",
             "A number is digits, with a '-' in front if the field is signed. A usual cause is a ':' in a text in "
             "front: the fields behind it are then one place off.",
             "stores 0, or takes what digits there are; the result is success"},
    CodeInfo{Code::outOfRange, "out-of-range", kDamage, "The number does not fit its field",
             "The number is smaller or greater than the field's type can hold.",
             "keeps the old value, stores 0 or cuts the number to the field's bits, as form and type have it; the "
             "result is success"},
    CodeInfo{Code::tooLong, "too-long", kDamage, "The text does not fit its array",
             "One byte of the array is for the zero that ends the text.",
             "cuts the text; from text it takes the next character for the delimiter and misreads what follows"},
    CodeInfo{Code::zeroInText, "zero-in-text", kDamage, "A zero byte stands within a text",
             "In text and XML a value ends before its first zero.", "ends the text, or the document, there"},
    CodeInfo{Code::countAboveBound, "count-above-bound", kDamage, "A count or length is above its bound",
             "The message has no room for so many elements or bytes. Which operation of the library checks which "
             "count differs from message to message.",
             "refuses the message, or reads as many as there is room for"},
    CodeInfo{Code::unknownChoice, "unknown-choice", kDamage, "The identity selects nothing",
             "What follows depends on this number, and it is none of those that are known.",
             "refuses the message"},
    CodeInfo{Code::missingElement, "missing-element", kDamage, "An element is missing",
             "XML is read by looking up every element by its name; this one is not there.",
             "logs the element and stops: this field and those behind it keep their old values; the result is "
             "failure"},
    CodeInfo{Code::unclosedElement, "unclosed-element", kDamage, "An element is not closed",
             "The closing tag of this name is missing behind the opening one.", "takes the element for missing"},
    CodeInfo{Code::entryNotEnded, "entry-not-ended", kDamage, "No zero byte ends a log entry",
             "Log entries stand one behind the other in one array, each with a zero behind it.",
             "takes all that is left of the array for the entry"},
    CodeInfo{Code::blockLength, "block-length", kDamage, "The block is not as long as it is said to be",
             "A block has as many bytes as the field in front of it says, whatever they are.",
             "takes a block that ends elsewhere, and misreads what follows"},
    CodeInfo{
        Code::extraInput, "extra-input", kDamage, "Something follows the last field",
        "Behind the last field there may be the zeros of a larger buffer, in text and XML white space, and the "
        "next record.",
        "does not look at it"},
    CodeInfo{Code::libraryRefuses, "library-refuses", kNote, "The library does not read this record",
             "Every field is as it has to be, and still the library's result is failure.", "answers failure"},
    CodeInfo{
        Code::libraryDiffers, "library-differs", kNote, "The library reads another value",
        "The rendering holds the value, and the library's reader does not find it. The list of oddities tells "
        "where that is to be expected.",
        "stores the other value; the result is success"},
    CodeInfo{Code::numberLayout, "number-layout", kNote, "A number has zeros in front",
             "The value is clear. The writers put no zeros in front of numbers, and no '-' in front of 0.",
             "reads it so, and writes it without"},
    CodeInfo{
        Code::listDelimiter, "list-delimiter", kNote, "The ':' in the place of an empty list is missing",
        "The writers put one ':' in the place of a list without elements, which the readers do not expect. This "
        "is the form that the readers read.",
        "reads it as it was meant; what its own writers write for it, it misreads"},
    CodeInfo{Code::elementLayout, "element-layout", kNote, "Elements are laid out or ordered in another way",
             "The library finds elements by their names, whatever the order and the white space around values.",
             "reads it so, and writes it in its own layout"},
    CodeInfo{Code::repeatedElement, "repeated-element", kDamage, "An element is there once more",
             "The first element of a name is found; whatever another one of it holds is lost.",
             "takes the first and passes this one over"},
    CodeInfo{Code::unknownElement, "unknown-element", kNote, "An element belongs to no field",
             "The signal has no field of this name.", "passes it over"},
    CodeInfo{
        Code::unusedBytes, "unused-bytes", kNote, "Bytes that hold no value are not zero",
        "Behind the end of a text, the last element of a list or the member of a union, the binary form carries "
        "bytes that mean nothing. Old content of a buffer shows there.",
        "reads and writes them as they are"},
};

constexpr bool areInOrder()
{
    for (std::size_t i = 0; i < kCodes.size(); ++i)
    {
        if (kCodes[i].code != static_cast<Code>(i))
        {
            return false;
        }
    }
    return true;
}
static_assert(areInOrder());

} // namespace

std::span<const CodeInfo> codes()
{
    return kCodes;
}

const CodeInfo& info(Code code)
{
    return kCodes.at(static_cast<std::size_t>(code));
}

const CodeInfo* findCode(std::string_view name)
{
    const auto* const found =
        std::find_if(kCodes.begin(), kCodes.end(), [name](const CodeInfo& one) { return name == one.name; });
    return found != kCodes.end() ? found : nullptr;
}

} // namespace bci::tool
