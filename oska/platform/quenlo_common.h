#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "oska/text/text.h"

/// The signal generator of the maker's framework QuenloCommon, as far as the kit calls on it.
namespace oska::platform {

/// One received-signal sample.
struct ReceivedForce {
    static constexpr std::string_view TYPE_NAME = "ReceivedForce";

    /// From ward name, as broadcast, to received strength in dBm. Names equal under canonical equivalence are
    /// one name.
    using Strengths = std::map<std::string, double, text::CanonicalLess>;

    std::int64_t mobile_time = 0;  ///< milliseconds of the phone's clock

    /// A generator hands over finite strengths only. JSON has no other numbers, so a single infinity or NaN
    /// makes the upload of its whole batch fail, up to ten seconds of samples; the log says so.
    Strengths rfs;
};

template <class Visit>
void fields(Visit& f, ReceivedForce& sample) {
    f("mobile_time", sample.mobile_time);
    f("rfs", sample.rfs);
}

enum class ScanMode { DEFAULT_SCAN, ONLY_WARD_SCAN };

/// How the user of the navigation service moves.
enum class UserMode { PEDESTRIAN, VEHICLE };

class RFDGenerator;

/// Receiver of a generator's callbacks. Threads: whichever the generator chooses, one callback of it at a
/// time.
class RFDGeneratorDelegate {
public:
    virtual ~RFDGeneratorDelegate() = default;
    virtual void onRfdResult(RFDGenerator& generator, ReceivedForce receivedForce) = 0;
    virtual void onRfdError(RFDGenerator& generator, int code, const std::string& msg) = 0;
    virtual void onRfdEmptyMillis(RFDGenerator& generator, double time) = 0;
};

struct RfdAvailability {
    bool available = false;
    std::string message;  ///< why not
};

struct RfdOptions {
    double rfdIntervalMillis = 0.5;  ///< handed over as it stands; its unit is the framework's business
    int minRssiThreshold = -100;     ///< dBm
    int maxRssiThreshold = -40;      ///< dBm
};

/// What both services ask a generator for when they start a live scan.
inline constexpr RfdOptions LIVE_SCAN{};

/// A source of samples, idle when created. It holds its delegate weakly.
///
/// Threads: operations on any thread, inside a callback of its own, too. Callbacks may come before the call
/// that starts generation has returned, on its thread or another. The pressure provider may be called on the
/// generator's thread. Lifetime: after `stopRfdGeneration` has returned, no callback starts; one that runs on
/// another thread at that moment may still end. A stop does not wait for it, so that a delegate may lock what
/// its callbacks lock. Destroying a generator stops it; the last reference may go inside one of its
/// callbacks.
class RFDGenerator {
public:
    virtual ~RFDGenerator() = default;
    [[nodiscard]] virtual RfdAvailability checkIsAvailableRfd() = 0;
    virtual void setScanMode(ScanMode scanMode) = 0;
    virtual void setDelegate(std::weak_ptr<RFDGeneratorDelegate> delegate) = 0;
    virtual void setPressureProvider(std::function<float()> provider) = 0;
    virtual void generateRfd(const RfdOptions& options) = 0;
    /// Generation from recorded data: as recorded, without the strength limits of a live scan.
    virtual void generateReplayRfd() = 0;
    virtual void stopRfdGeneration() = 0;
};

/// Makes generators; null when none can be had.
using RFDGeneratorFactory = std::function<std::shared_ptr<RFDGenerator>()>;

/// The process-wide replayer: whether generators work from recorded data. Threads: any.
class TovanReplayer {
public:
    static TovanReplayer& shared();
    [[nodiscard]] bool replayMode() const { return replayMode_.load(); }
    void setReplayMode(bool on) { replayMode_.store(on); }

private:
    std::atomic<bool> replayMode_{false};
};

}  // namespace oska::platform
