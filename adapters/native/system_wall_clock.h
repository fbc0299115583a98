#pragma once

#include "oska/platform/clock.h"

namespace oska::native {

/// The system's clock. Threads: any.
class SystemWallClock final : public platform::WallClock {
public:
    [[nodiscard]] platform::WallTime now() const override;
};

}  // namespace oska::native
