#include "adapters/native/curl_network.h"

#include <csignal>
#include <new>
#include <system_error>
#include <utility>

namespace oska::native {
namespace {

/// Signals of the host belong to its own threads. SIGPIPE of a broken connection would end the process.
void blockSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

void cancel(const HttpTransfers& transfers) {
    for (const auto& transfer : transfers) transfer->cancel();
}

}  // namespace

CurlNetwork::~CurlNetwork() {
    if (!thread_.joinable()) return;
    // The thread itself may hold the last reference, and release it at its end.
    thread_.get_id() == std::this_thread::get_id() ? thread_.detach() : thread_.join();
}

void CurlNetwork::send(std::unique_ptr<HttpTransfer> transfer) {
    // The completion may run, and destroy the last session, before this returns.
    const auto self = shared_from_this();
    if (tryHandOver(transfer)) return wake();
    transfer->complete(outOfResources());
}

bool CurlNetwork::tryHandOver(std::unique_ptr<HttpTransfer>& transfer) {
    const std::lock_guard lock(mutex_);
    try {
        sent_.reserve(sent_.size() + 1);
        if (!isRunning_) startThread();
        isRunning_ = true;
        sent_.push_back(std::move(transfer));
        return true;
    } catch (const std::bad_alloc&) {
    } catch (const std::system_error&) {  // no thread
    }
    return false;
}

void CurlNetwork::startThread() {
    if (thread_.joinable()) thread_.join();  // the last one, which has ended
    thread_ = std::thread([self = shared_from_this()] { self->run(); });
}

void CurlNetwork::shutDown() {
    std::thread ending;
    {
        const std::lock_guard lock(mutex_);
        isShutDown_ = true;
        if (thread_.get_id() != std::this_thread::get_id()) ending.swap(thread_);
    }
    wake();
    if (ending.joinable()) ending.join();
}

void CurlNetwork::run() {
    blockSignals();
    do {
        try {
            serve();
        } catch (const std::bad_alloc&) {
            takeOrders();  // destroys what was sent since: it completes as out of resources
        }
    } while (!tryEnd());
}

void CurlNetwork::serve() {
    NetworkLoop loop(caFile_);
    for (;;) {
        auto [sent, isShutDown] = takeOrders();
        if (isShutDown) {
            loop.cancelAll();
            return cancel(sent);
        }
        loop.begin(std::move(sent));
        loop.turn(wakePipe_.descriptor());
    }
}

CurlNetwork::Orders CurlNetwork::takeOrders() {
    wakePipe_.reset();
    const std::lock_guard lock(mutex_);
    return {std::exchange(sent_, {}), isShutDown_};
}

bool CurlNetwork::tryEnd() {
    const std::lock_guard lock(mutex_);
    if (!sent_.empty()) return false;
    isRunning_ = false;
    return true;
}

}  // namespace oska::native
