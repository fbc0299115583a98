#include "oska/platform/platform.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace oska::platform {
namespace {

std::atomic<const Platform*> installed{nullptr};

bool isComplete(const Platform& platform) {
    return platform.mainQueue && platform.clock && platform.http && platform.bluetooth && platform.auth &&
           platform.makeRFDGenerator;
}

}  // namespace

void install(Platform platform) {
    if (!isComplete(platform)) programmingError("platform::install was given a platform with a part missing");
    const Platform* none = nullptr;
    // Never freed: the kit's shared instances use it until the process ends.
    if (!installed.compare_exchange_strong(none, new Platform(std::move(platform)))) {
        programmingError("platform::install was called twice");
    }
}

const Platform& current() {
    const auto* platform = installed.load();
    if (!platform) programmingError("no platform is installed: call platform::install first thing in main");
    return *platform;
}

void programmingError(std::string_view text) {
    const auto line = "QuenloOska: " + std::string(text) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::abort();
}

}  // namespace oska::platform
