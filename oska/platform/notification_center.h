#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace oska::platform {

/// An event of the application that any part of it may observe.
enum class Notification {
    /// The application is about to be on the screen again. A running Dapo view delivers its selection then,
    /// at once or with its next output, also when it has not changed.
    willEnterForeground,
};

/// One registration. Destroying it ends it without waiting. When that happens on the thread of a post, the
/// observer is not called afterwards. When it happens on another thread, a running post may have chosen the
/// observer already: it may then be running, or even start, after the destructor has returned, once per such
/// post. What the observer uses must live that long: capture a `std::weak_ptr`, or end the registration on
/// the thread that posts.
class Observation {
public:
    virtual ~Observation() = default;
};

/// Where the application's events are posted and observed. Calls observers at once, on the thread of the
/// post, in the order in which they registered.
///
/// Threads: any. No lock is held while an observer runs, so it may register, end and post. An observer that
/// registers during a post is not called for that post.
class NotificationCenter {
public:
    /// Called for each post of the notification it was registered for. It must not throw.
    using Observer = std::function<void()>;

    /// The application's own center, never destroyed. The adapter posts to it; where no adapter does, the
    /// host must.
    static NotificationCenter& shared();

    /// Registers `observer` for as long as the returned handle lives.
    [[nodiscard]] std::unique_ptr<Observation> addObserver(Notification notification, Observer observer);

    /// Calls the observers of `notification` and returns after the last of them has returned.
    void post(Notification notification);

private:
    struct Entry;
    class Registration;

    [[nodiscard]] std::vector<std::shared_ptr<Entry>> entriesFor(Notification notification);

    std::mutex mutex_;
    std::vector<std::weak_ptr<Entry>> entries_;  // ended ones are removed at the next registration
};

}  // namespace oska::platform
