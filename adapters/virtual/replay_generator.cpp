#include "adapters/virtual/replay_generator.h"

#include <atomic>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "oska/platform/platform.h"

namespace oska::virtual_world {

using platform::ReceivedForce;
using platform::RfdAvailability;
using platform::RFDGenerator;
using platform::RFDGeneratorDelegate;
using platform::RfdOptions;

namespace {

/// A service gets a separate shared pointer (see `ReplayHub::make`). Its last copy stops the generator at
/// once; the generator itself lives on while a callback of it runs.
class ReplayGenerator final : public RFDGenerator {
public:
    explicit ReplayGenerator(std::weak_ptr<ReplayHub> hub) : hub_(std::move(hub)) {}

    [[nodiscard]] RfdAvailability checkIsAvailableRfd() override;

    void setScanMode(platform::ScanMode scanMode) override {
        const std::lock_guard lock(mutex_);
        record_.scanMode = scanMode;
    }

    void setDelegate(std::weak_ptr<RFDGeneratorDelegate> delegate) override {
        const std::lock_guard lock(mutex_);
        delegate_.swap(delegate);
    }

    void setPressureProvider(std::function<float()> provider) override {
        const std::lock_guard lock(mutex_);
        record_.pressureProvider.swap(provider);
    }

    void generateRfd(const RfdOptions& options) override { start(options); }
    void generateReplayRfd() override { start(std::nullopt); }

    void stopRfdGeneration() override {
        const std::lock_guard lock(mutex_);
        record_.isRunning = false;
        ++record_.stops;
    }

    void abandon() {
        std::function<float()> unwanted;
        const std::lock_guard lock(mutex_);
        record_.isRunning = false;
        record_.pressureProvider.swap(unwanted);
    }

    /// The delegate if the generator runs, else null.
    [[nodiscard]] std::shared_ptr<RFDGeneratorDelegate> listener() const {
        const std::lock_guard lock(mutex_);
        return record_.isRunning ? delegate_.lock() : nullptr;
    }

    [[nodiscard]] GeneratorRecord record() const {
        const std::lock_guard lock(mutex_);
        auto record = record_;
        record.hasDelegate = !delegate_.expired();
        return record;
    }

private:
    void start(std::optional<RfdOptions> options) {
        const std::lock_guard lock(mutex_);
        record_.isRunning = true;
        record_.options = options;
        ++record_.starts;
    }

    const std::weak_ptr<ReplayHub> hub_;
    mutable std::mutex mutex_;
    GeneratorRecord record_;
    std::weak_ptr<RFDGeneratorDelegate> delegate_;
};

}  // namespace

/// The generators that were made, and the delivery to their delegates.
class ReplayHub : public std::enable_shared_from_this<ReplayHub> {
public:
    std::shared_ptr<RFDGenerator> make() {
        auto generator = std::make_shared<ReplayGenerator>(weak_from_this());
        if (!add(generator)) return nullptr;
        auto* pointer = generator.get();
        return {pointer, [generator = std::move(generator)](RFDGenerator*) mutable {
                    std::exchange(generator, nullptr)->abandon();
                }};
    }

    /// Calls `call` for the delegate of each generator that still runs when it is its turn.
    template <class Call>
    bool deliver(Call call) {
        if (speaker_.load() == std::this_thread::get_id()) {
            platform::programmingError("a ReplaySource was told to send from inside a generator's callback");
        }
        const std::lock_guard turn(turns_);
        speaker_.store(std::this_thread::get_id());
        bool wasHeard = false;
        for (const auto& weak : generators()) {
            const auto generator = weak.lock();
            const auto listener = generator ? generator->listener() : nullptr;
            if (!listener) continue;
            call(*listener, *generator);
            wasHeard = true;
        }
        speaker_.store({});
        return wasHeard;
    }

    void setAvailability(RfdAvailability availability) {
        const std::lock_guard lock(mutex_);
        availability_ = std::move(availability);
    }

    RfdAvailability availability() const {
        const std::lock_guard lock(mutex_);
        return availability_;
    }

    void setSupply(bool hasGenerators) {
        const std::lock_guard lock(mutex_);
        hasGenerators_ = hasGenerators;
    }

    std::size_t made() const {
        const std::lock_guard lock(mutex_);
        return made_;
    }

    std::shared_ptr<const ReplayGenerator> last() const {
        const std::lock_guard lock(mutex_);
        return last_;
    }

private:
    bool add(const std::shared_ptr<ReplayGenerator>& generator) {
        auto gone = generator;  // swapped with `last_`: the old one is destroyed after the lock is released
        const std::lock_guard lock(mutex_);
        if (!hasGenerators_) return false;
        std::erase_if(generators_, [](const auto& other) { return other.expired(); });
        generators_.push_back(generator);
        last_.swap(gone);
        ++made_;
        return true;
    }

    std::vector<std::weak_ptr<ReplayGenerator>> generators() const {
        const std::lock_guard lock(mutex_);
        return generators_;
    }

    std::mutex turns_;  // held while delegates are called; only deliveries wait for it
    std::atomic<std::thread::id> speaker_{};

    mutable std::mutex mutex_;
    RfdAvailability availability_{true, {}};
    bool hasGenerators_ = true;
    std::size_t made_ = 0;
    std::vector<std::weak_ptr<ReplayGenerator>> generators_;
    std::shared_ptr<ReplayGenerator> last_;
};

namespace {

RfdAvailability ReplayGenerator::checkIsAvailableRfd() {
    const auto hub = hub_.lock();
    return hub ? hub->availability() : RfdAvailability{false, "the replayed recording is gone"};
}

}  // namespace

ReplaySource::ReplaySource() : hub_(std::make_shared<ReplayHub>()) {}

ReplaySource::~ReplaySource() = default;

platform::RFDGeneratorFactory ReplaySource::factory() const {
    return [weak = std::weak_ptr(hub_)]() -> std::shared_ptr<RFDGenerator> {
        const auto hub = weak.lock();
        return hub ? hub->make() : nullptr;
    };
}

bool ReplaySource::send(const ReceivedForce& sample) {
    return hub_->deliver([&](RFDGeneratorDelegate& delegate, RFDGenerator& generator) {
        delegate.onRfdResult(generator, sample);
    });
}

bool ReplaySource::sendError(int code, const std::string& message) {
    return hub_->deliver([&](RFDGeneratorDelegate& delegate, RFDGenerator& generator) {
        delegate.onRfdError(generator, code, message);
    });
}

bool ReplaySource::sendEmptyMillis(double time) {
    return hub_->deliver([&](RFDGeneratorDelegate& delegate, RFDGenerator& generator) {
        delegate.onRfdEmptyMillis(generator, time);
    });
}

void ReplaySource::setAvailability(RfdAvailability availability) {
    hub_->setAvailability(std::move(availability));
}

void ReplaySource::setSupply(bool hasGenerators) { hub_->setSupply(hasGenerators); }

std::size_t ReplaySource::made() const { return hub_->made(); }

std::optional<GeneratorRecord> ReplaySource::last() const {
    const auto generator = hub_->last();
    return generator ? std::optional(generator->record()) : std::nullopt;
}

}  // namespace oska::virtual_world
