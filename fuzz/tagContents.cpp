// Any element looked up in any document, held against a search that does nothing but search.

#include "harness.h"
#include "stream.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace bci::fuzz
{

namespace
{

// The content, as `contentOf` finds it, and the place behind the closing tag.
struct Found
{
    std::string_view content;
    std::size_t end;
};

std::optional<Found> find(std::string_view document, const std::string& tag)
{
    const std::string opening = "<" + tag + ">";
    const std::string closing = "</" + tag + ">";
    const std::size_t at = document.find(opening);
    const std::size_t begin = at + opening.size();
    const std::size_t end = at == std::string_view::npos ? at : document.find(closing, begin);
    if (tag.empty() || end == std::string_view::npos)
    {
        return std::nullopt;
    }
    std::string_view content = document.substr(begin, end - begin);
    constexpr std::string_view kBefore = "\n\t  ";
    constexpr std::string_view kBehind = "\n\t";
    if (content.size() >= kBefore.size() + kBehind.size() && content.starts_with(kBefore) &&
        content.ends_with(kBehind))
    {
        content = content.substr(kBefore.size(), content.size() - kBefore.size() - kBehind.size());
    }
    else
    {
        constexpr std::string_view kSpace = " \t\n\v\f\r";
        content.remove_prefix(std::min(content.find_first_not_of(kSpace), content.size()));
        content = content.substr(0, content.find_last_not_of(kSpace) + 1);
    }
    return Found{content, end + closing.size()};
}

// One call, `size` being the room for the content. The result has to be as expected.
template <typename Call>
void lookUp(std::string_view document, const std::optional<Found>& found, unsigned int size, Call call,
            Trace& trace)
{
    const Guarded content(size);
    int offset = -1;
    const bool result = call(content.data(), offset);
    expect(result == found.has_value(), "an element is found or not, otherwise than by a search");
    expect(static_cast<std::size_t>(offset) == (found ? found->end : document.size()), "another offset");
    const auto untouched = [&](std::size_t from) {
        return std::all_of(content.data() + from, content.data() + size,
                           [](char byte) { return byte == fillByte; });
    };
    trace.add("offset", offset);
    if (!found || size == 0)
    {
        expect(untouched(0), "there is no content, and something was written");
        return;
    }
    const std::string_view expected = found->content.substr(0, size - 1);
    expect(std::string_view(content.data(), expected.size()) == expected &&
               content.data()[expected.size()] == '\0',
           "another content");
    trace.add("content", expected);
}

} // namespace

void run(Input input, Trace& trace)
{
    const std::size_t tagLength = input.byte() % 40;
    const auto size = static_cast<unsigned int>(input.number(2)) % 600;
    const Guarded tag(input.take(tagLength), std::string_view("\0", 1));
    const Guarded document(input.rest(), std::string_view("\0", 1));
    const std::string_view searched = document.data(); // up to the first zero
    const std::optional<Found> found = find(searched, tag.data());
    lookUp(
        searched, found, size,
        [&](char* content, int& offset)
        { return getTagContents(document.data(), tag.data(), content, size, offset); },
        trace);
    lookUp(
        searched, found, 424,
        [&](char* content, int& offset) { return getTagContents(document.data(), tag.data(), content, offset); },
        trace);
}

} // namespace bci::fuzz
