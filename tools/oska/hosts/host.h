#pragma once

#include <functional>
#include <optional>
#include <utility>

#include "oska/foundation/service_codes.h"
#include "tools/oska/recording/recording_line.h"

namespace oska::tool {

/// An application with one service, as a command runs it: it does what the recording's host did, and prints
/// what the service reports as events.
///
/// Threads: the main thread. Lifetime: destroying it destroys the service, which stops it.
class Host {
public:
    virtual ~Host() = default;

    virtual void initialize(bool forceUpdate) = 0;
    virtual void start() = 0;
    virtual void stop() = 0;

    /// Any action of a recording for this service, the three above included.
    void perform(const Action& action) {
        switch (action.kind) {
            case ActionKind::start:
                return start();
            case ActionKind::stop:
                return stop();
            case ActionKind::initialize:
                return initialize(action.forceUpdate);
            default:
                return performOwn(action);
        }
    }

    /// Whether no ward is selected and only a sample can change that: ticks of the service's own timer do
    /// nothing then and may be skipped.
    [[nodiscard]] virtual bool isIdle() const { return true; }

    /// Whether the first initialisation succeeded; nullopt until it has reported.
    [[nodiscard]] std::optional<bool> firstInitialization() const { return firstInitialization_; }

    /// `tell` is called each time a load has ended, after the event for it, with whether it brought a bundle.
    void onLoadEnd(std::function<void(bool success)> tell) { tellLoadEnd_ = std::move(tell); }

    /// Whether the first start succeeded; nullopt until it has reported.
    [[nodiscard]] std::optional<bool> firstStart() const { return firstStart_; }

protected:
    /// After a refused id nothing was loaded, so `onLoadEnd` is not called.
    void noteInitialization(bool success, std::optional<ServiceInitErrorCode> code) {
        note(firstInitialization_, success);
        if (tellLoadEnd_ && code != ServiceInitErrorCode::INVALID_ID) tellLoadEnd_(success);
    }
    void noteStart(bool success) { note(firstStart_, success); }

private:
    /// An action that only this service knows. By default there is none.
    virtual void performOwn(const Action&) {}

    static void note(std::optional<bool>& first, bool success) { first = first.value_or(success); }

    std::function<void(bool success)> tellLoadEnd_;
    std::optional<bool> firstInitialization_;
    std::optional<bool> firstStart_;
};

}  // namespace oska::tool
