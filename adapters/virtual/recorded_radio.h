#pragma once

#include <memory>
#include <string>

#include "oska/platform/quenlo_common.h"

namespace oska::virtual_world {

/// A recorded walk in place of a radio, for trials on a machine without one. The walk is a file of JSON
/// Lines. Each sample has its `mobile_time` (milliseconds) and its `rfs` (ward names and strengths in dBm),
/// as in an upload or in the output of `oska simulate`.
///
///     oska::virtual_world::RecordedRadio radio("walk.jsonl");
///     oska::native::NativePlatform native({.makeRFDGenerator = radio.factory()});
///
/// The walk begins when the first generator is made and is played once, at its own pace, even while no
/// generator runs. Every running generator sends it. A sample with an earlier time than the one before it
/// follows at once. Lines that are blank or have no `rfs` are skipped.
///
/// Threads: any; samples arrive on the main queue of the installed platform.
/// Lifetime: the whole file is read by the constructor. Generators may outlive the radio, and then send
/// nothing more.
/// Errors: if the file cannot be played, no generator is available, and its message says why in one line
/// (`walk.jsonl:17: ...`). A service then fails to start with GENERATOR_FAIL and logs the line.
class RecordedRadio {
public:
    /// `path` names the recording (JSON Lines); it is read when the first generator starts.
    explicit RecordedRadio(const std::string& path);
    ~RecordedRadio();
    RecordedRadio(const RecordedRadio&) = delete;
    RecordedRadio& operator=(const RecordedRadio&) = delete;

    /// Makes the generators. It returns null once the radio was destroyed.
    [[nodiscard]] platform::RFDGeneratorFactory factory() const;

private:
    const std::shared_ptr<class RecordedWalk> walk_;
};

}  // namespace oska::virtual_world
