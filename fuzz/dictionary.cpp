// Prints a dictionary for the fuzzers: the signals' numbers in all forms, and the elements' tags.

#include "catalogue.h"
#include "codec/schema.h"

#include <cstdio>
#include <set>
#include <string>
#include <string_view>
#include <variant>

namespace
{

void collect(const bci::codec::Group& group, std::set<std::string_view>& tags)
{
    for (const bci::codec::Field& field : group.rows)
    {
        tags.insert(field.tag);
    }
    for (const bci::codec::Part& part : group.further)
    {
        if (const auto* rows = std::get_if<std::span<const bci::codec::Field>>(&part))
        {
            collect({*rows}, tags);
        }
        else if (const auto* list = std::get_if<const bci::codec::List*>(&part))
        {
            collect((*list)->element, tags);
        }
        else if (const auto* choice = std::get_if<const bci::codec::Choice*>(&part))
        {
            for (const bci::codec::Case& one : (*choice)->cases)
            {
                collect(one.content, tags);
            }
        }
        else if (const auto* entries = std::get_if<const bci::codec::LogEntries*>(&part))
        {
            tags.insert((*entries)->array->tag);
        }
        else if (const auto* block = std::get_if<const bci::codec::Block*>(&part))
        {
            tags.insert((*block)->bytes->tag);
        }
    }
}

} // namespace

int main()
{
    std::set<std::string_view> tags;
    for (const bci::Signal& signal : bci::signals())
    {
        const auto number = static_cast<unsigned int>(signal.number);
        std::printf("\"%u:\"\n\"<sigNo>%u</sigNo>\"\n", number, number);
        std::printf("\"\\x%02X\\x%02X\\x%02X\\x%02X\"\n", number >> 24, number >> 16 & 0xFF, number >> 8 & 0xFF,
                    number & 0xFF);
        std::printf("\"\\\"%s\\\"\"\n", signal.name);
        collect(signal.shape->content, tags);
    }
    for (const std::string_view tag : tags)
    {
        const auto length = static_cast<int>(tag.size());
        std::printf("\"<%.*s>\"\n\"</%.*s>\"\n\"\\\"%.*s\\\":\"\n", length, tag.data(), length, tag.data(), length,
                    tag.data());
    }
    // The writers' layout, numbers at the bounds of their types, and what else has a meaning somewhere.
    for (const char* other : {"\\x0A\\x09  ",
                              "\\x0A\\x09</",
                              "255",
                              "256",
                              "65535",
                              "65536",
                              "32767",
                              "32768",
                              "-32768",
                              "2147483647",
                              "2147483648",
                              "-2147483648",
                              "-2147483647",
                              "4294967295",
                              "4294967296",
                              "18446744073709551615",
                              "\\xFF\\xFF\\xFF\\xFF",
                              "\\x80\\x00\\x00\\x00",
                              "\\xD4\\xC3\\xB2\\xA1",
                              "\\xA1\\xB2\\xC3\\xD4",
                              "00000000: ",
                              "00000000  ",
                              "0000000 ",
                              "\\x0A*\\x0A",
                              "0x",
                              "2026-11-20T12:00:00Z",
                              " rx text ",
                              " tx binary ",
                              " - xml ",
                              "\\\"fields\\\":{",
                              "\\\"name\\\":",
                              "\\\"signal\\\":",
                              "\\\"form\\\":\\\"binary\\\"",
                              "\\\"original\\\":",
                              "_0",
                              "_0_1",
                              "\\xEF\\xBB\\xBF"})
    {
        std::printf("\"%s\"\n", other);
    }
}
