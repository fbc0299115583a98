#pragma once

#include "oska/platform/clock.h"

namespace oska::native {

/// The system's wall clock (`std::chrono::system_clock`, UTC), to the nanosecond where the system has it.
/// It jumps when the user or the network sets the time.
/// Threads: any.
class SystemWallClock final : public platform::WallClock {
public:
    /// The time at the moment of the call. Never fails.
    [[nodiscard]] platform::WallTime now() const override;
};

}  // namespace oska::native
