#include "bciMessage.h"

#include <algorithm>

void insertArraySubscripts(std::string& text, unsigned short firstFromEnd, unsigned short secondFromEnd,
                           const char* first, const char* second)
{
    const auto insert = [&text](std::size_t fromEnd, const char* subscript)
    { text.insert(text.size() - std::min(fromEnd, text.size()), subscript); };
    insert(firstFromEnd, first);
    insert(secondFromEnd, second);
}
