#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "oska/foundation/log_message.h"
#include "oska/foundation/service_codes.h"
#include "oska/platform/quenlo_common.h"

namespace oska {

/// The life that both services share: starts and stops a signal generator, any number of times.
///
/// A generator may call back inside each of its operations, and may run the main thread's loop there. So a
/// service may be stopped, and started again, in the middle of a start or of a stop. Starts and stops are
/// therefore numbered. A start during which the service was stopped ends its own generator and changes
/// nothing else; a stop during which the service was started again does the same. Until a stop has ended, the
/// service counts as started. A second stop in the middle of the first one takes the delegate from the
/// generator, ends the run, and leaves the rest to the first.
///
/// Threads: any. No lock is held while the generator or the log is called. Lifetime: keeps a generator as
/// long as one of its operations runs; its destructor stops the generator that is left. Its owner must
/// outlive each call. Errors: each failure is logged with the service's tag; a generator that throws counts
/// as failed. No delegate of a host is called.
class GeneratorRun {
public:
    /// What differs between the services.
    struct Settings {
        Log log;
        std::string_view stopOperation;  ///< the name in the line that is logged without a generator to stop
        /// Whether a generator that could not be started is stopped at once; otherwise it is kept until the
        /// next stop or start.
        bool stopsFailedGenerator = false;
    };

    /// The arguments of one start.
    struct Start {
        std::string id = {};                              ///< of the service; only logged
        std::optional<platform::ScanMode> scanMode = {};  ///< nullopt: the generator's default
        std::weak_ptr<platform::RFDGeneratorDelegate> delegate = {};
        std::weak_ptr<const std::atomic<float>> pressure = {};  ///< read by the generator; expired: 0
    };

    /// The right to start, valid until the next stop.
    struct Claim {
        std::uint64_t stops;
    };

    /// The outcome of one start.
    struct Outcome {
        std::optional<ServiceErrorCode> failure;  ///< nullopt: the start succeeded
        bool isOvertaken = false;                 ///< the service was stopped meanwhile; no generator is left
    };

    explicit GeneratorRun(Settings settings) : settings_(settings) {}
    ~GeneratorRun();
    GeneratorRun(const GeneratorRun&) = delete;
    GeneratorRun& operator=(const GeneratorRun&) = delete;

    /// Nullopt when the service counts as started: from an earlier claim to the end of a stop, or to the end
    /// of a start that failed.
    [[nodiscard]] std::optional<Claim> claim();

    /// Checks Bluetooth, makes a generator, configures it and starts it: live with `platform::LIVE_SCAN`, or
    /// from recorded data while the process is in replay mode. Must be called after each claim. A start that
    /// is overtaken before it could fail counts as successful.
    Outcome start(Claim claim, const Start& start);

    /// Stops the generator, then takes its delegate away, then releases it.
    void stop();

    /// Whether a start has succeeded and no stop has ended since.
    [[nodiscard]] bool isRunning() const;
    /// Whether the service is neither started nor being started.
    [[nodiscard]] bool isIdle() const;

private:
    enum class State { idle, starting, running };

    [[nodiscard]] std::shared_ptr<platform::RFDGenerator> make(Claim claim, const std::string& id);
    [[nodiscard]] bool run(platform::RFDGenerator& generator, Claim claim, const Start& start) const;
    [[nodiscard]] bool configureAndStart(platform::RFDGenerator& generator, Claim claim,
                                         const Start& start) const;
    [[nodiscard]] bool isOvertaken(Claim claim) const;
    [[nodiscard]] bool settle(Claim claim, bool isRunning);
    void end(platform::RFDGenerator* generator) const;

    const Settings settings_;

    mutable std::mutex mutex_;  // guards all below
    std::uint64_t starts_ = 0;
    std::uint64_t stops_ = 0;
    State state_ = State::idle;
    std::shared_ptr<platform::RFDGenerator> rfdGenerator_;
    bool isStopping_ = false;  // whether a stop of rfdGenerator_ is under way
};

}  // namespace oska
