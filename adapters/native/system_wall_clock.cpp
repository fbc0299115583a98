#include "adapters/native/system_wall_clock.h"

#include <chrono>

namespace oska::native {

platform::WallTime SystemWallClock::now() const {
    using namespace std::chrono;
    const auto sinceEpoch = system_clock::now().time_since_epoch();
    const auto whole = floor<milliseconds>(sinceEpoch);
    return {whole.count(), static_cast<std::int32_t>(nanoseconds(sinceEpoch - whole).count())};
}

}  // namespace oska::native
