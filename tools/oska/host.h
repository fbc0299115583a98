#pragma once

#include <optional>

#include "tools/oska/recording_line.h"

namespace oska::tool {

/// An application around one service, as a command drives it: does what the recording's host did, and prints
/// what it hears as events.
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

    /// No ward is selected, and only a sample can change that: a tick of the service's own timer does
    /// nothing.
    [[nodiscard]] virtual bool isIdle() const { return true; }

    /// Of the first initialisation; none until it has reported.
    [[nodiscard]] std::optional<bool> firstInitialization() const { return firstInitialization_; }

    /// Of the first start; none until it has reported.
    [[nodiscard]] std::optional<bool> firstStart() const { return firstStart_; }

protected:
    void noteInitialization(bool success) { note(firstInitialization_, success); }
    void noteStart(bool success) { note(firstStart_, success); }

private:
    /// An action that only this service knows; a recording that was read for another brings none.
    virtual void performOwn(const Action&) {}

    static void note(std::optional<bool>& first, bool success) { first = first.value_or(success); }

    std::optional<bool> firstInitialization_;
    std::optional<bool> firstStart_;
};

}  // namespace oska::tool
