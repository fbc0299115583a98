#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "oska/platform/quenlo_common.h"

namespace oska::virtual_world {

/// What a generator was told, and whether it runs.
struct GeneratorRecord {
    bool isRunning = false;
    bool hasDelegate = false;
    std::optional<platform::ScanMode> scanMode;   ///< none: never set
    std::optional<platform::RfdOptions> options;  ///< none: not started, or last started from recorded data
    std::size_t starts = 0;
    std::size_t stops = 0;                    ///< destruction is none
    std::function<float()> pressureProvider;  ///< while the generator exists
};

/// Signal generators that say what they are given here: each sample, error or time goes to the delegate of
/// every generator that runs at that moment, in the order of their making. Samples go out as they are,
/// whatever limits a live scan was asked for.
///
/// Threads: any. `send...` calls the delegates synchronously on its own thread and holds nothing that the
/// generators' operations wait for; calls on several threads take turns. Calling it from inside a callback is
/// a programming error.
/// Lifetime: generators may outlive the source; they are never heard from again then.
class ReplaySource {
public:
    ReplaySource();
    ~ReplaySource();
    ReplaySource(const ReplaySource&) = delete;
    ReplaySource& operator=(const ReplaySource&) = delete;

    /// Makes the generators of this source; null while `setSupply(false)`, or when the source is gone.
    [[nodiscard]] platform::RFDGeneratorFactory factory() const;

    /// Each answers whether anyone heard it: no generator runs, or its delegate is gone, then it goes
    /// nowhere.
    bool send(const platform::ReceivedForce& sample);
    bool sendError(int code, const std::string& message);
    bool sendEmptyMillis(double time);

    /// What all generators answer to `checkIsAvailableRfd`; available until set.
    void setAvailability(platform::RfdAvailability availability);

    /// Whether there are generators to be had.
    void setSupply(bool hasGenerators);

    /// How many generators were made.
    [[nodiscard]] std::size_t made() const;

    /// The generator that was made last, be it gone or not.
    [[nodiscard]] std::optional<GeneratorRecord> last() const;

private:
    const std::shared_ptr<class ReplayHub> hub_;
};

}  // namespace oska::virtual_world
