#pragma once

#include <atomic>

namespace oska::native {

/// Wakes a thread that waits in `poll`. Threads: `wake` on any, the rest on the one that waits.
class WakePipe {
public:
    WakePipe();
    ~WakePipe();
    WakePipe(const WakePipe&) = delete;
    WakePipe& operator=(const WakePipe&) = delete;

    void wake();

    /// Readable once `wake` was called.
    [[nodiscard]] int descriptor() const { return readEnd_; }

    /// To be called before looking for what the wakers left.
    void reset();

private:
    int readEnd_ = -1;
    int writeEnd_ = -1;
    std::atomic<bool> isAwake_{false};
};

}  // namespace oska::native
