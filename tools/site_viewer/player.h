#pragma once

#include <QTimer>
#include <chrono>
#include <cstddef>
#include <functional>

#include "adapters/virtual/replay_generator.h"
#include "tools/site_viewer/walk.h"
#include "tools/site_viewer/walk_time.h"

namespace viewer {

/// What follows a player. Called on the main thread, outside the services' jobs.
class PlayerListener {
public:
    virtual ~PlayerListener() = default;
    /// The walk starts over: what was heard of it is void.
    virtual void onRewound() = 0;
    /// `sample` was handed to the services, and they have done with it what they do at once.
    virtual void onSamplePlayed(const oska::platform::ReceivedForce& sample) = 0;
    /// Position, pace or whether it plays has changed; once for many samples.
    virtual void onPlayerChanged() = 0;
};

/// Plays a walk into the services that listen to a source, in the walk's own time: every sample finds the
/// clock at its own instant, whatever the pace, and a seek hands over all samples on its way.
///
/// Threads: the main thread, never from inside a job of `time`. Lifetime: the arguments outlive the player.
class Player {
public:
    using Position = std::chrono::nanoseconds;

    Player(const Walk& walk, WalkTime& time, oska::virtual_world::ReplaySource& source);

    void setListener(PlayerListener* listener) { listener_ = listener; }

    /// At the end of the walk it starts over.
    void play();
    void pause();
    [[nodiscard]] bool isPlaying() const { return frames_.isActive(); }

    /// Walk seconds in a second; above zero.
    void setPace(double pace);
    [[nodiscard]] double pace() const { return pace_; }

    /// To that position or the nearest one in the walk. Going back is starting over.
    void seek(Position to);
    /// In a callback of a service: of what it tells.
    [[nodiscard]] Position position() const { return oska::platform::spanBetween(begin_, time_.now()); }
    [[nodiscard]] Position duration() const { return walk_.duration(); }

private:
    void rewind();
    void playUntil(Position target);
    void showFrame();

    const Walk& walk_;
    WalkTime& time_;
    oska::virtual_world::ReplaySource& source_;
    PlayerListener* listener_ = nullptr;
    oska::platform::WallTime begin_;  // of the walk, on `time_`
    std::size_t next_ = 0;            // sample
    double pace_ = 1;
    QTimer frames_;
    std::chrono::steady_clock::time_point lastFrame_;
};

}  // namespace viewer
