#pragma once

#include <httplib.h>

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace oska::tool {

/// The threads that requests are answered on. The library's own end the process when one of them cannot be
/// started, or when memory runs out while it writes a reply.
class RequestThreads final : public httplib::TaskQueue {
public:
    /// As many as can be started, at most `wanted`. Throws std::system_error when there is not even one.
    explicit RequestThreads(std::size_t wanted);
    /// Waits for what is being answered, as shutdown() does.
    ~RequestThreads() override;
    RequestThreads(const RequestThreads&) = delete;
    RequestThreads& operator=(const RequestThreads&) = delete;

    /// What `task` throws is written to standard error and ends nothing but the task.
    void enqueue(std::function<void()> task) override;
    void shutdown() override;

private:
    void work();
    [[nodiscard]] std::function<void()> next();

    std::mutex mutex_;
    std::condition_variable hasChanged_;
    std::deque<std::function<void()>> tasks_;  // guarded by mutex_, as the next
    bool isShutDown_ = false;
    std::vector<std::thread> threads_;
};

}  // namespace oska::tool
