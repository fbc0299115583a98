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

/// A service's signal generator from start to stop, over and over.
///
/// A generator may call back inside any operation of its own, and may run the main thread's loop in one. So
/// a service may be stopped, and started again, in the middle of a start or of a stop. Starts and stops are
/// numbered for that: a start that a stop has overtaken ends its own generator and changes nothing else, and
/// so does a stop that a start has overtaken. While a stop is under way the service still counts as
/// started; a second stop then takes the delegate away, ends the run, and leaves the rest to the first.
///
/// Threads: any. No lock is held while the generator or the log is called. Lifetime: keeps a generator for as
/// long as a call of it runs. Destroying it stops the generator that is left. Its owner must outlive each
/// call. Errors: each failure is logged with the service's own tag; no delegate of a host is called.
class GeneratorRun {
public:
    /// In what the services differ.
    struct Settings {
        Log log;
        std::string_view stopOperation;  ///< logs, when there is no generator to stop
        /// Whether a generator that could not be started is stopped at once; else it is kept until the next
        /// stop or start.
        bool stopsFailedGenerator = false;
    };

    struct Start {
        std::string id;
        std::optional<platform::ScanMode> scanMode = {};  ///< none: the generator's default
        std::weak_ptr<platform::RFDGeneratorDelegate> delegate;
        std::weak_ptr<const std::atomic<float>> pressure;  ///< of the service; told as 0 when that is gone
    };

    /// The right to start, until the next stop.
    struct Claim {
        std::uint64_t stops;
    };

    struct Outcome {
        std::optional<ServiceErrorCode> failure;
        bool isOvertaken = false;  ///< stopped meanwhile; nothing of this start is left
    };

    explicit GeneratorRun(Settings settings) : settings_(settings) {}
    ~GeneratorRun();
    GeneratorRun(const GeneratorRun&) = delete;
    GeneratorRun& operator=(const GeneratorRun&) = delete;

    /// None when started already: from an earlier claim to the end of a stop or of a start that failed.
    [[nodiscard]] std::optional<Claim> claim();

    /// Checks Bluetooth, makes a generator, configures and starts it: live with
    /// `platform::LIVE_SCAN`, or from recorded data while the process is in replay mode. Must follow each
    /// claim. A start that is overtaken before it could fail counts as successful.
    Outcome start(Claim claim, const Start& start);

    /// Stops the generator, then takes its delegate away, then lets go of it.
    void stop();

    /// A start has succeeded, and no stop has ended since.
    [[nodiscard]] bool isRunning() const;
    /// Neither started nor about to be.
    [[nodiscard]] bool isIdle() const;

private:
    enum class State { IDLE, STARTING, RUNNING };

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
    State state_ = State::IDLE;
    std::shared_ptr<platform::RFDGenerator> rfdGenerator_;
    bool isStopping_ = false;  // rfdGenerator_, that is
};

}  // namespace oska
