// Runs a harness over files, without a fuzzer: main [--trace] FILE|DIRECTORY...
// With --trace, prints what came out of each, to be compared with what another host prints.

#include "harness.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace bci::fuzz
{
const Trace& runTwice(std::string_view bytes);
}

int main(int argc, char** argv)
{
    namespace fs = std::filesystem;
    bool isTraced = false;
    std::vector<fs::path> files;
    for (const std::string& argument : std::vector<std::string>(argv + 1, argv + argc))
    {
        if (argument == "--trace")
        {
            isTraced = true;
        }
        else if (fs::is_directory(argument))
        {
            std::copy(fs::directory_iterator(argument), fs::directory_iterator(), std::back_inserter(files));
        }
        else
        {
            files.emplace_back(argument);
        }
    }
    std::sort(files.begin(), files.end());
    for (const fs::path& file : files)
    {
        std::ifstream in(file, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        if (!in)
        {
            std::fprintf(stderr, "cannot read %s\n", file.c_str());
            return 1;
        }
        std::fprintf(stderr, "%s\n", file.c_str()); // the last one is the one that fails
        const bci::fuzz::Trace& trace = bci::fuzz::runTwice(bytes);
        if (isTraced)
        {
            std::printf("%s\n%s", file.c_str(), trace.text().c_str());
        }
    }
    std::fprintf(stderr, "%zu inputs\n", files.size());
    return files.empty() ? 1 : 0;
}
