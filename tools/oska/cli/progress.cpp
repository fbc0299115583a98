#include "tools/oska/cli/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>

namespace oska::tool {
namespace {

constexpr std::uint64_t WIDTH = 40;  // short, because the line that overwrites it must be longer

}  // namespace

Progress::Progress()
    : isTerminal_(isatty(STDERR_FILENO) != 0), nextUpdate_(Clock::now() + std::chrono::seconds(1)) {}

Progress::~Progress() {
    if (isShown_) std::fputs("\033[K", stderr);
}

void Progress::update(std::uint64_t done, std::optional<std::uint64_t> total) {
    if (!isTerminal_ || !total || *total == 0 || Clock::now() < nextUpdate_) return;
    nextUpdate_ = Clock::now() + std::chrono::milliseconds(100);
    isShown_ = true;
    const auto share = static_cast<double>(std::min(done, *total)) / static_cast<double>(*total);
    const auto filled = static_cast<std::size_t>(share * WIDTH);
    const auto bar = std::string(filled, '#') + std::string(WIDTH - filled, '.');
    std::fprintf(stderr, "[%s] %3.0f %%\r", bar.c_str(), share * 100);
}

}  // namespace oska::tool
