#include "oska/foundation/main_thread.h"

#include <utility>

namespace oska {

bool runOnMain(platform::MainQueue& queue, const Log& log, std::string_view operation,
               const platform::Task& work) {
    if (queue.isMainThread()) {
        work();
        return true;
    }
    if (queue.sync(work)) return true;
    log.error(operation, "main queue has stopped");
    return false;
}

void sendToMain(platform::MainQueue& queue, platform::Task work) {
    if (queue.isMainThread()) return work();
    queue.async(std::move(work));
}

}  // namespace oska
