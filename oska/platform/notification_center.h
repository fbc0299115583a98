#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace oska::platform {

/// What the application's surroundings tell all who listen.
enum class Notification {
    willEnterForeground,  ///< the application is about to be on the screen again
};

/// One registration. Destroying it ends it and waits for nothing. On the thread of a post, the observer is
/// not called after that. On another thread, a post under way may have decided on the call already: the
/// observer may then be running or even start after the destructor has returned, once per such post. What it
/// uses must live that long: capture a `std::weak_ptr`, or end the registration on the thread that posts.
class Observation {
public:
    virtual ~Observation() = default;
};

/// Tells observers at once, on the thread of the post.
///
/// Threads: any. Observers may register, end and post inside a call: one that comes during a post is not
/// called for it. They are called in the order in which they registered, while no lock is held.
class NotificationCenter {
public:
    using Observer = std::function<void()>;

    /// The application's. Adapters, or a host without one that does, post to it.
    static NotificationCenter& shared();

    [[nodiscard]] std::unique_ptr<Observation> addObserver(Notification notification, Observer observer);

    /// Returns after the last observer has returned.
    void post(Notification notification);

private:
    struct Entry;
    class Registration;

    [[nodiscard]] std::vector<std::shared_ptr<Entry>> entriesFor(Notification notification);

    std::mutex mutex_;
    std::vector<std::weak_ptr<Entry>> entries_;  // gone ones leave at the next registration
};

}  // namespace oska::platform
