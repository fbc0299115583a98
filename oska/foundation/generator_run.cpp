#include "oska/foundation/generator_run.h"

#include <utility>

#include "oska/foundation/signal_source.h"
#include "oska/platform/platform.h"

namespace oska {
namespace {

void configure(platform::RFDGenerator& generator, const GeneratorRun::Start& start) {
    if (start.scanMode) generator.setScanMode(*start.scanMode);
    generator.setDelegate(start.delegate);
    generator.setPressureProvider([weak = start.pressure] {
        const auto pressure = weak.lock();
        return pressure ? pressure->load() : 0.0F;
    });
}

// Returns false when the generator threw.
bool letGo(platform::RFDGenerator& generator) {
    try {
        generator.setDelegate({});
        return true;
    } catch (...) {
        return false;
    }
}

// Returns false when the generator threw. Its delegate is removed in any case, if it lets us.
bool halt(platform::RFDGenerator& generator) {
    bool isQuiet = true;
    try {
        generator.stopRfdGeneration();
    } catch (...) {
        isQuiet = false;
    }
    return letGo(generator) && isQuiet;
}

/// Null when there is no factory, or when it makes none or throws.
std::shared_ptr<platform::RFDGenerator> made(const platform::RFDGeneratorFactory& make) {
    try {
        return make ? make() : nullptr;
    } catch (...) {
        return nullptr;
    }
}

}  // namespace

GeneratorRun::~GeneratorRun() {
    if (rfdGenerator_) end(rfdGenerator_.get());
}

// ---- start

std::optional<GeneratorRun::Claim> GeneratorRun::claim() {
    const std::lock_guard lock(mutex_);
    if (state_ != State::idle) return std::nullopt;
    state_ = State::starting;
    isStopping_ = false;
    ++starts_;
    return Claim{stops_};
}

GeneratorRun::Outcome GeneratorRun::start(Claim claim, const Start& start) {
    if (!checkBLEAuthorized(*platform::current().bluetooth, settings_.log)) {
        return {ServiceErrorCode::BLE_NOT_AUTHORIZED, !settle(claim, false)};
    }
    const auto generator = make(claim, start.id);
    const bool isRunning = generator && run(*generator, claim, start);
    if (!isRunning && settings_.stopsFailedGenerator) end(generator.get());
    const bool isOvertaken = !settle(claim, isRunning);
    if (isRunning && isOvertaken) end(generator.get());
    return {isRunning ? std::nullopt : std::optional(ServiceErrorCode::GENERATOR_FAIL), isOvertaken};
}

std::shared_ptr<platform::RFDGenerator> GeneratorRun::make(Claim claim, const std::string& id) {
    auto generator = made(platform::current().makeRFDGenerator);
    if (!generator) {
        settings_.log.error("startGenerator", "failed because rfdGenerator is nil", {{"id", id}});
    }
    std::shared_ptr<platform::RFDGenerator> previous;  // destroyed outside the lock
    const std::lock_guard lock(mutex_);
    if (claim.stops == stops_) previous = std::exchange(rfdGenerator_, generator);
    return generator;
}

// A generator that throws counts as one that does not start.
bool GeneratorRun::run(platform::RFDGenerator& generator, Claim claim, const Start& start) const {
    try {
        return isOvertaken(claim) || configureAndStart(generator, claim, start);
    } catch (...) {
        settings_.log.error("startGenerator", "the generator threw an exception", {{"id", start.id}});
        halt(generator);
        return false;
    }
}

// An overtaken start does not touch the generator any more: it could begin to send to a stopped service.
bool GeneratorRun::configureAndStart(platform::RFDGenerator& generator, Claim claim,
                                     const Start& start) const {
    if (const auto availability = generator.checkIsAvailableRfd(); !availability.available) {
        settings_.log.error("startGenerator", "RFD unavailable",
                            {{"id", start.id}, {"msg", availability.message}});
        return false;
    }
    if (isOvertaken(claim)) return true;
    configure(generator, start);
    const auto& replayer = platform::TovanReplayer::shared();
    if (replayer.replayMode()) {
        generator.generateReplayRfd();
    } else {
        generator.generateRfd(platform::LIVE_SCAN);
    }
    settings_.log.info("startGenerator", "success",
                       {{"id", start.id}, {"replayMode", replayer.replayMode()}});
    return true;
}

bool GeneratorRun::isOvertaken(Claim claim) const {
    const std::lock_guard lock(mutex_);
    return claim.stops != stops_;
}

bool GeneratorRun::settle(Claim claim, bool isRunning) {
    std::shared_ptr<platform::RFDGenerator> failed;  // destroyed outside the lock
    const std::lock_guard lock(mutex_);
    if (claim.stops != stops_) return false;
    state_ = isRunning ? State::running : State::idle;
    if (!isRunning && settings_.stopsFailedGenerator) failed = std::exchange(rfdGenerator_, nullptr);
    return true;
}

// ---- stop

void GeneratorRun::stop() {
    std::shared_ptr<platform::RFDGenerator> generator;
    std::uint64_t starts = 0;
    bool isFirst = false;
    {
        const std::lock_guard lock(mutex_);
        ++stops_;
        starts = starts_;
        generator = rfdGenerator_;
        isFirst = !std::exchange(isStopping_, generator != nullptr);
    }
    if (isFirst) {
        end(generator.get());
    } else {
        letGo(*generator);  // whether it could is said by the first stop
    }
    const std::lock_guard lock(mutex_);
    if (starts != starts_) return;
    state_ = State::idle;
    isStopping_ = false;
    rfdGenerator_ = nullptr;  // `generator` is destroyed outside the lock
}

void GeneratorRun::end(platform::RFDGenerator* generator) const {
    if (!generator) {
        return settings_.log.warn(settings_.stopOperation, "skipped because rfdGenerator is nil");
    }
    if (!halt(*generator)) settings_.log.error(settings_.stopOperation, "the generator threw an exception");
}

// ---- state

bool GeneratorRun::isRunning() const {
    const std::lock_guard lock(mutex_);
    return state_ == State::running;
}

bool GeneratorRun::isIdle() const {
    const std::lock_guard lock(mutex_);
    return state_ == State::idle;
}

}  // namespace oska
