#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "oska/platform/quenlo_common.h"

namespace oska::virtual_world {

/// A snapshot of what a service has done to its generator.
struct GeneratorRecord {
    /// Started, and neither stopped nor destroyed since.
    bool isRunning = false;
    /// Whether the delegate that was set still lives.
    bool hasDelegate = false;
    /// Nullopt: never set.
    std::optional<platform::ScanMode> scanMode = {};
    /// Of the last start. Nullopt: not started, or last started with `generateReplayRfd`.
    std::optional<platform::RfdOptions> options = {};
    /// Calls of `generateRfd` and `generateReplayRfd`.
    std::size_t starts = 0;
    /// Calls of `stopRfdGeneration`; destroying the generator does not count.
    std::size_t stops = 0;
    /// Empty once the generator was destroyed.
    std::function<float()> pressureProvider = {};
};

/// Signal generators that send what the program hands in here. Each sample, error or time goes to the
/// delegate of every generator that runs at that moment, in the order in which the generators were made.
/// Samples are sent unchanged, without regard to the strength limits that the service asked for.
///
/// Threads: any. `send...` calls the delegates synchronously on the caller's thread, with no lock held that
/// the generators' operations wait for. Calls on several threads run one after the other. A call from inside
/// a delegate's callback is a programming error.
/// Lifetime: generators may outlive the source, and then send nothing more.
class ReplaySource {
public:
    /// A source whose generators are available, with none made yet.
    ReplaySource();
    ~ReplaySource();
    ReplaySource(const ReplaySource&) = delete;
    ReplaySource& operator=(const ReplaySource&) = delete;

    /// Makes the generators of this source. It returns null after `setSupply(false)`, and when the source was
    /// destroyed.
    [[nodiscard]] platform::RFDGeneratorFactory factory() const;

    /// Calls `onRfdResult`. Returns whether a delegate was called: false when no generator with a living
    /// delegate runs.
    bool send(const platform::ReceivedForce& sample);
    /// Calls `onRfdError`; returns like `send`.
    bool sendError(int code, const std::string& message);
    /// Calls `onRfdEmptyMillis` with `time` unchanged; returns like `send`.
    bool sendEmptyMillis(double time);

    /// What `checkIsAvailableRfd` of all generators returns from now on; available at the beginning.
    void setAvailability(platform::RfdAvailability availability);

    /// Whether the factory makes generators; if not, it returns null. True at the beginning.
    void setSupply(bool hasGenerators);

    /// How many generators were made so far.
    [[nodiscard]] std::size_t made() const;

    /// The state of the generator that was made last, even when it was destroyed. Nullopt: none was made.
    [[nodiscard]] std::optional<GeneratorRecord> last() const;

private:
    const std::shared_ptr<class ReplayHub> hub_;
};

}  // namespace oska::virtual_world
