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

    /// When the sample was taken, in milliseconds of the phone's clock. The services compare these times with
    /// each other only, never with the wall clock, so they need not agree with it: a recording keeps its own
    /// stamps. A live generator stamps with the wall clock, because uploads carry the times as they are.
    /// Times should not go back.
    std::int64_t mobile_time = 0;

    /// The readings; empty when nothing was heard. A generator must hand over finite strengths only. JSON has
    /// no other numbers, so a single infinity or NaN makes the upload of its whole batch fail, up to ten
    /// seconds of samples; the log says so.
    Strengths rfs = {};
};

/// The sample's JSON form: its two fields, by these keys.
template <class Visit>
void fields(Visit& f, ReceivedForce& sample) {
    f("mobile_time", sample.mobile_time);
    f("rfs", sample.rfs);
}

/// Which radio signals a generator puts into its samples.
enum class ScanMode {
    DEFAULT_SCAN,    ///< what the generator hears by itself; the Dapo service leaves it at that
    ONLY_WARD_SCAN,  ///< wards only, the short-range beacons; the Pelio service asks for it
};

/// How the user of the navigation service moves.
enum class UserMode {
    PEDESTRIAN,  ///< on foot
    VEHICLE,     ///< in a vehicle
};

class RFDGenerator;

/// Receiver of a generator's callbacks. Threads: those that the generator chooses, one callback of a
/// generator at a time.
class RFDGeneratorDelegate {
public:
    virtual ~RFDGeneratorDelegate() = default;

    /// One sample for each tick of the generator, also when nothing was heard.
    virtual void onRfdResult(RFDGenerator& generator, ReceivedForce receivedForce) = 0;

    /// Generation has met a fault; it goes on unless it is stopped. `code` is the generator's own, `msg` is
    /// for people. The services log both and do nothing else.
    virtual void onRfdError(RFDGenerator& generator, int code, const std::string& msg) = 0;

    /// Comes with a sample that heard nothing: `time` is the milliseconds since the last reading, or since
    /// the start when there was none. The services keep the value and do not use it; a generator may leave it
    /// out.
    virtual void onRfdEmptyMillis(RFDGenerator& generator, double time) = 0;
};

/// Whether a generator can run now.
struct RfdAvailability {
    bool available = false;    ///< false: the service does not start
    std::string message = {};  ///< why not, for people; a service logs it
};

/// How a live scan is to run.
struct RfdOptions {
    /// The time between two samples, as the maker's generator takes it: the services hand over 0.5 as it
    /// stands. Only that generator defines the unit; the name says milliseconds, the value suits seconds. A
    /// generator of another make should send a sample each half second.
    double rfdIntervalMillis = 0.5;

    /// The strength limits in dBm. The generator applies them, the services do not: a reading outside them is
    /// left out of its sample. Both ends count as inside.
    int minRssiThreshold = -100;
    int maxRssiThreshold = -40;  ///< see above
};

/// What both services ask a generator for when they start a live scan. The only place of these limits.
inline constexpr RfdOptions LIVE_SCAN{};

/// A source of samples, idle when created. It holds its delegate weakly. The services set scan mode (Pelio
/// only), delegate and pressure provider in this order before they start generation.
///
/// Threads: operations on any thread, also inside a callback of its own. Callbacks may come before the call
/// that starts generation has returned, on its thread or another. The pressure provider may be called on the
/// generator's thread. Lifetime: after `stopRfdGeneration` has returned, no callback starts; one that runs on
/// another thread at that moment may still end. A stop does not wait for it, so that a delegate may lock what
/// its callbacks lock. Destroying a generator stops it; the last reference may go inside one of its
/// callbacks.
class RFDGenerator {
public:
    virtual ~RFDGenerator() = default;

    /// Whether generation can start now, and if not, why.
    [[nodiscard]] virtual RfdAvailability checkIsAvailableRfd() = 0;
    /// Chooses what the next generation listens to; DEFAULT_SCAN until it is called.
    virtual void setScanMode(ScanMode scanMode) = 0;
    /// Sets the receiver of callbacks; an empty reference takes it away.
    virtual void setDelegate(std::weak_ptr<RFDGeneratorDelegate> delegate) = 0;
    /// Sets where a generator that wants the air pressure reads it. The services always provide 0.
    virtual void setPressureProvider(std::function<float()> provider) = 0;
    /// Starts a live scan.
    virtual void generateRfd(const RfdOptions& options) = 0;
    /// Starts generation from recorded data: as recorded, without the strength limits of a live scan.
    virtual void generateReplayRfd() = 0;
    /// Ends generation; does nothing when none runs. See the class for callbacks under way.
    virtual void stopRfdGeneration() = 0;
};

/// Makes generators. A service that gets null, or an exception, does not start. Threads: any.
using RFDGeneratorFactory = std::function<std::shared_ptr<RFDGenerator>()>;

/// The process-wide replayer: whether generators work from recorded data. Threads: any.
class TovanReplayer {
public:
    /// The instance of the process.
    static TovanReplayer& shared();
    /// Read at each start of a service; false until a host sets it.
    [[nodiscard]] bool replayMode() const { return replayMode_.load(); }
    /// Takes effect with the next start of a service.
    void setReplayMode(bool on) { replayMode_.store(on); }

private:
    std::atomic<bool> replayMode_{false};
};

}  // namespace oska::platform
