#include "oska/platform/notification_center.h"

#include <atomic>
#include <utility>

namespace oska::platform {

struct NotificationCenter::Entry {
    Notification notification;
    Observer observer;
    std::atomic<bool> isEnded{false};
};

class NotificationCenter::Registration : public Observation {
public:
    explicit Registration(std::shared_ptr<Entry> entry) : entry_(std::move(entry)) {}
    ~Registration() override { entry_->isEnded.store(true); }

private:
    std::shared_ptr<Entry> entry_;
};

NotificationCenter& NotificationCenter::shared() {
    static auto* center = new NotificationCenter;
    return *center;
}

std::unique_ptr<Observation> NotificationCenter::addObserver(Notification notification, Observer observer) {
    auto entry = std::make_shared<Entry>();
    entry->notification = notification;
    entry->observer = std::move(observer);
    {
        const std::lock_guard lock(mutex_);
        std::erase_if(entries_, [](const auto& known) { return known.expired(); });
        entries_.push_back(entry);
    }
    return std::make_unique<Registration>(std::move(entry));
}

void NotificationCenter::post(Notification notification) {
    for (const auto& entry : entriesFor(notification)) {
        if (!entry->isEnded.load()) entry->observer();
    }
}

std::vector<std::shared_ptr<NotificationCenter::Entry>> NotificationCenter::entriesFor(
    Notification notification) {
    std::vector<std::shared_ptr<Entry>> found;
    const std::lock_guard lock(mutex_);
    for (const auto& known : entries_) {
        auto entry = known.lock();
        if (entry && entry->notification == notification) found.push_back(std::move(entry));
    }
    return found;
}

}  // namespace oska::platform
