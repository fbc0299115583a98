#include "oska/foundation/batch_sender.h"

#include <string>
#include <utility>

#include "oska/foundation/log_message.h"
#include "oska/foundation/sample_window.h"
#include "oska/platform/quenlo_tovan.h"

namespace oska {
namespace {

constexpr Log LOG{"DapoBatchSender"};

}  // namespace

DapoBatchSender& DapoBatchSender::shared() {
    static auto* sender = new DapoBatchSender(OskaNetworkManager::shared());
    return *sender;
}

DapoBatchSender::DapoBatchSender(std::shared_ptr<OskaNetworkManager> network)
    : network_(std::move(network)) {}

void DapoBatchSender::inputReceivedForce(const platform::ReceivedForce& rfd) {
    if (rfd.rfs.empty()) return;
    inputReceivedForceArray_.push_back(rfd);
    const auto first = inputReceivedForceArray_.front().mobile_time;
    if (hasElapsed(RFD_BATCH_INTERVAL_MS, first, rfd.mobile_time)) flush();
}

void DapoBatchSender::reset() { inputReceivedForceArray_.clear(); }

void DapoBatchSender::flush() {
    if (!inputReceivedForceArray_.empty()) postRFD(std::exchange(inputReceivedForceArray_, {}));
}

void DapoBatchSender::postRFD(std::vector<platform::ReceivedForce> batch) {
    network_->postReceivedForces(
        platform::TovanNetworkConstants::getRecRfdURL(), std::move(batch),
        [](int statusCode, const std::string& message, const std::vector<platform::ReceivedForce>&) {
            if (platform::isSuccess(statusCode)) return;
            LOG.write(OskaLogLevel::ERROR, "(postRFD) " + std::to_string(statusCode) + ", " + message);
        });
}

}  // namespace oska
