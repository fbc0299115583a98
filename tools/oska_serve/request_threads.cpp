#include "tools/oska_serve/request_threads.h"

#include <cstdio>
#include <exception>
#include <new>
#include <system_error>
#include <utility>

namespace oska::tool {
namespace {

void run(const std::function<void()>& task) {
    try {
        task();
    } catch (const std::exception& thrown) {
        // Allocates no string: there may be no memory for one.
        std::fprintf(stderr, "a request was given up: %s\n", thrown.what());
    }
}

}  // namespace

RequestThreads::RequestThreads(std::size_t wanted) {
    threads_.reserve(wanted);
    try {
        while (threads_.size() < wanted) threads_.emplace_back([this] { work(); });
    } catch (const std::system_error&) {
        if (threads_.empty()) throw;  // otherwise requests wait for each other a little longer
    }
}

RequestThreads::~RequestThreads() { RequestThreads::shutdown(); }

void RequestThreads::enqueue(std::function<void()> task) {
    try {
        const std::lock_guard lock(mutex_);
        tasks_.push_back(task);
    } catch (const std::bad_alloc&) {
        return run(task);  // nobody else could hear of it
    }
    hasChanged_.notify_one();
}

void RequestThreads::shutdown() {
    {
        const std::lock_guard lock(mutex_);
        isShutDown_ = true;
    }
    hasChanged_.notify_all();
    for (auto& thread : threads_) {
        if (thread.joinable()) thread.join();
    }
}

void RequestThreads::work() {
    while (const auto task = next()) run(task);
}

/// Waits for the next task. Empty at the end.
std::function<void()> RequestThreads::next() {
    std::unique_lock lock(mutex_);
    hasChanged_.wait(lock, [this] { return !tasks_.empty() || isShutDown_; });
    if (tasks_.empty()) return {};
    auto task = std::move(tasks_.front());
    tasks_.pop_front();
    return task;
}

}  // namespace oska::tool
