#include "commandIo.h"

#include "output.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace bci::tool
{

namespace
{

struct PackingName
{
    Packing packing;
    const char* name;
};

constexpr std::array kPackings = {
    PackingName{Packing::automatic, "auto"}, PackingName{Packing::text, "text"},
    PackingName{Packing::binary, "binary"},  PackingName{Packing::xml, "xml"},
    PackingName{Packing::hex, "hex"},        PackingName{Packing::base64, "base64"},
    PackingName{Packing::dump, "dump"},      PackingName{Packing::ndjson, "ndjson"},
    PackingName{Packing::trace, "trace"},    PackingName{Packing::pcap, "pcap"},
};

// "12.3 MB"
std::string amount(double bytes)
{
    constexpr std::array kUnits = {"B", "kB", "MB", "GB", "TB"};
    std::size_t unit = 0;
    while (bytes >= 1000 && unit + 1 < kUnits.size())
    {
        bytes /= 1000;
        ++unit;
    }
    std::array<char, 32> text;
    std::snprintf(text.data(), text.size(), unit == 0 ? "%.0f %s" : "%.1f %s", bytes, kUnits.at(unit));
    return text.data();
}

} // namespace

void Output::flush()
{
    std::size_t written = 0;
    while (written < m_text.size())
    {
        const ssize_t count = ::write(STDOUT_FILENO, m_text.text().data() + written, m_text.size() - written);
        if (count < 0)
        {
            if (errno == EINTR)
            {
                continue;
            }
            const std::string reason = std::strerror(errno);
            m_text.cutTo(0);
            throw Trouble("cannot write to standard output: " + reason);
        }
        written += static_cast<std::size_t>(count);
    }
    m_text.cutTo(0);
}

Colours::Colours(int fileDescriptor)
{
    const char* const refused = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    m_isOn = (refused == nullptr || *refused == '\0') && ::isatty(fileDescriptor) == 1 &&
             (terminal == nullptr || std::strcmp(terminal, "dumb") != 0);
}

std::string Colours::with(const char* code, std::string_view text) const
{
    return m_isOn ? std::string("\x1B[") + code + "m" + std::string(text) + "\x1B[0m" : std::string(text);
}

std::string Colours::bold(std::string_view text) const
{
    return with("1", text);
}

std::string Colours::red(std::string_view text) const
{
    return with("1;31", text);
}

std::string Colours::yellow(std::string_view text) const
{
    return with("1;33", text);
}

std::string Colours::cyan(std::string_view text) const
{
    return with("36", text);
}

void say(std::string_view message)
{
    const std::string line = "bci: " + std::string(message) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void say(const Item& item, const Finding& finding)
{
    say(placeOf(item, finding.position) + ": " + message(finding));
}

Progress::Progress(std::uint64_t totalBytes) : m_isOn(::isatty(STDERR_FILENO) == 1), m_total(totalBytes) {}

Progress::~Progress()
{
    hide();
}

void Progress::add(std::uint64_t bytes)
{
    m_done += bytes;
    if (!m_isOn || m_done < m_nextLook)
    {
        return;
    }
    constexpr std::uint64_t kBetweenLooks = 1 << 20;
    m_nextLook = m_done + kBetweenLooks;
    const auto now = std::chrono::steady_clock::now();
    if (now - m_begin > std::chrono::seconds(2) && now - m_shown > std::chrono::milliseconds(200))
    {
        show(now);
    }
}

void Progress::show(std::chrono::steady_clock::time_point now)
{
    const double seconds = std::chrono::duration<double>(now - m_begin).count();
    const double rate = static_cast<double>(m_done) / seconds;
    std::string line = amount(static_cast<double>(m_done)) + ", " + amount(rate) + "/s";
    if (m_total > m_done)
    {
        const long left = std::lround(static_cast<double>(m_total - m_done) / rate);
        std::array<char, 40> time;
        std::snprintf(time.data(), time.size(), ", %ld:%02ld left", left / 60, left % 60);
        line += " (" + std::to_string(m_done * 100 / m_total) + " %)" + time.data();
    }
    std::fprintf(stderr, "\r%s\x1B[K", line.c_str());
    m_isShown = true;
    m_shown = now;
}

void Progress::hide()
{
    if (m_isShown)
    {
        std::fputs("\r\x1B[K", stderr);
        m_isShown = false;
    }
}

const std::vector<std::string>& packingNames()
{
    static const std::vector<std::string> names = []
    {
        std::vector<std::string> result;
        result.reserve(kPackings.size());
        for (const PackingName& one : kPackings)
        {
            result.emplace_back(one.name);
        }
        return result;
    }();
    return names;
}

Packing packingOf(const std::string& name)
{
    const auto* const found =
        std::find_if(kPackings.begin(), kPackings.end(), [&](const PackingName& one) { return one.name == name; });
    return found != kPackings.end() ? found->packing : Packing::automatic;
}

void Inputs::addTo(CLI::App& verb)
{
    verb.add_option("FILE", files, "Inputs, also compressed; - is standard input")->capture_default_str();
    verb.add_option("--from", from, "What the inputs are; auto looks at each record")
        ->capture_default_str()
        ->check(CLI::IsMember(packingNames()));
    verb.add_flag("-v,--verbose", verbose, "Say what each input was taken for, and why");
}

CLI::Option* addJobs(CLI::App& verb, unsigned int& jobs, const char* help)
{
    return verb.add_option("--jobs", jobs, help)
        ->type_name("N")
        ->capture_default_str()
        ->check(CLI::Range(1, 1024));
}

Packing Inputs::packing() const
{
    return packingOf(from);
}

CountedInput::CountedInput(const std::string& fileName, Progress& progress)
    : m_stream(openInput(fileName)), m_progress(progress)
{
}

std::size_t CountedInput::read(char* to, std::size_t most)
{
    const std::size_t count = m_stream->read(to, most);
    m_progress.add(count);
    return count;
}

std::uint64_t sizeOf(const std::vector<std::string>& files)
{
    std::uint64_t total = 0;
    for (const std::string& file : files)
    {
        struct stat status = {};
        const int result = file == "-" ? ::fstat(STDIN_FILENO, &status) : ::stat(file.c_str(), &status);
        if (result != 0 || !S_ISREG(status.st_mode))
        {
            return 0;
        }
        total += static_cast<std::uint64_t>(status.st_size);
    }
    return total;
}

} // namespace bci::tool
