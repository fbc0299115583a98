#include "oska/foundation/signal_source.h"

#include <algorithm>

namespace oska {
namespace {

bool isIdCharacter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '-';
}

}  // namespace

bool isValidServiceId(std::string_view id) {
    return !id.empty() && std::all_of(id.begin(), id.end(), isIdCharacter);
}

bool checkBLEAuthorized(const platform::BluetoothAuthorization& bluetooth, const Log& log) {
    switch (bluetooth.authorization()) {
        case platform::BluetoothAuthorizationState::notDetermined:
        case platform::BluetoothAuthorizationState::allowedAlways:
            return true;
        case platform::BluetoothAuthorizationState::restricted:
        case platform::BluetoothAuthorizationState::denied:
            log.error("checkBLEAuthorized", "bluetooth authorization denied or restricted");
            return false;
    }
    log.warn("checkBLEAuthorized", "unknown bluetooth authorization state");
    return false;
}

std::shared_ptr<platform::RFDGenerator> createGenerator(const platform::RFDGeneratorFactory& make,
                                                        const Log& log, std::string_view id) {
    auto generator = make();
    if (!generator) log.error("startGenerator", "failed because rfdGenerator is nil", {{"id", id}});
    return generator;
}

bool startGenerator(platform::RFDGenerator& generator, const Log& log, GeneratorStart start) {
    if (const auto availability = generator.checkIsAvailableRfd(); !availability.available) {
        log.error("startGenerator", "RFD unavailable", {{"id", start.id}, {"msg", availability.message}});
        return false;
    }
    if (start.scanMode) generator.setScanMode(*start.scanMode);
    generator.setDelegate(std::move(start.delegate));
    generator.setPressureProvider([weak = std::move(start.pressure)] {
        const auto pressure = weak.lock();
        return pressure ? pressure->load() : 0.0F;
    });
    const auto& replayer = platform::TovanReplayer::shared();
    if (replayer.replayMode()) {
        generator.generateReplayRfd();
    } else {
        generator.generateRfd({.rfdIntervalMillis = 0.5, .minRssiThreshold = -100, .maxRssiThreshold = -40});
    }
    log.info("startGenerator", "success", {{"id", start.id}, {"replayMode", replayer.replayMode()}});
    return true;
}

void stopGenerator(const std::shared_ptr<platform::RFDGenerator>& generator, const Log& log,
                   std::string_view operation) {
    if (!generator) return log.warn(operation, "skipped because rfdGenerator is nil");
    generator->stopRfdGeneration();
    generator->setDelegate({});
}

void logGeneratorError(const Log& log, int code, std::string_view msg) {
    log.error("onRfdError", "code = " + std::to_string(code) + ", msg = " + std::string(msg));
}

void logInvalidId(const Log& log, std::string_view id) {
    log.error("initialize", "invalid ID", {{"ID", id}});
}

}  // namespace oska
