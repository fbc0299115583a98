#pragma once

#include <string_view>

#include "oska/foundation/log_message.h"
#include "oska/platform/main_queue.h"

namespace oska {

/// Runs `work` on the main thread and returns after it: at once when called there, else by waiting. Returns
/// false and logs an error under `operation` when the main queue has stopped and `work` did not run.
bool runOnMain(platform::MainQueue& queue, const Log& log, std::string_view operation,
               const platform::Task& work);

/// Runs `work` at once when called on the main thread, else posts it there and returns.
void sendToMain(platform::MainQueue& queue, platform::Task work);

}  // namespace oska
