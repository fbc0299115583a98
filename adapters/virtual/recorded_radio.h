#pragma once

#include <memory>
#include <string>

#include "oska/platform/quenlo_common.h"

namespace oska::virtual_world {

/// A recorded walk in place of a radio, for trials on a machine without one: a file of JSON Lines, each
/// sample with its `mobile_time` (milliseconds) and its `rfs` (from ward name to dBm), as an upload or `oska
/// simulate` leaves it.
///
///     oska::virtual_world::RecordedRadio radio("walk.jsonl");
///     oska::native::NativePlatform native({.makeRFDGenerator = radio.factory()});
///
/// The walk begins when the first generator is made, goes on at its own pace whether a generator runs or not,
/// and is played once; every generator that runs hears it. A sample stamped earlier than the one before it
/// follows at once. Lines that are blank or hold no `rfs` are skipped.
///
/// Threads: any; samples arrive on the main queue of the installed platform.
/// Lifetime: the file is read, whole, when the radio is made. Generators may outlive the radio; they are
/// never heard from again then. Errors: without a file that can be played no generator is available, and says
/// why in one line
/// (`walk.jsonl:17: ...`): a start then fails with GENERATOR_FAIL, and the line is in the log.
class RecordedRadio {
public:
    explicit RecordedRadio(const std::string& path);
    ~RecordedRadio();
    RecordedRadio(const RecordedRadio&) = delete;
    RecordedRadio& operator=(const RecordedRadio&) = delete;

    /// Null generators once the radio is gone.
    [[nodiscard]] platform::RFDGeneratorFactory factory() const;

private:
    const std::shared_ptr<class RecordedWalk> walk_;
};

}  // namespace oska::virtual_world
