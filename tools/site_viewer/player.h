#pragma once

#include <QTimer>
#include <chrono>
#include <cstddef>
#include <functional>

#include "adapters/virtual/replay_generator.h"
#include "tools/site_viewer/played_walk.h"
#include "tools/site_viewer/walk_time.h"

namespace viewer {

/// Receives what a player does. Called on the main thread, outside the services' jobs.
class PlayerListener {
public:
    virtual ~PlayerListener() = default;
    /// The walk starts again from its beginning; all samples so far no longer count.
    virtual void onRewound() = 0;
    /// The services have received `sample` and have run the jobs that are due.
    virtual void onSamplePlayed(const oska::platform::ReceivedForce& sample) = 0;
    /// The position, the pace or `isPlaying` has changed. Comes once for several samples.
    virtual void onPlayerChanged() = 0;
};

/// Plays a walk: sends its samples through `source` to the services, in the time of the walk. The clock shows
/// a sample's own time when the sample is sent, at any pace. A seek sends all samples up to the new position.
///
/// Threads: the main thread, never from inside a job of `time`. Lifetime: the arguments outlive the player.
class Player {
public:
    using Position = std::chrono::nanoseconds;

    Player(const PlayedWalk& walk, WalkTime& time, oska::virtual_world::ReplaySource& source);

    void setListener(PlayerListener* listener) { listener_ = listener; }

    /// Plays on; at the end of the walk, from its beginning.
    void play();
    void pause();
    [[nodiscard]] bool isPlaying() const { return frames_.isActive(); }

    /// Seconds of the walk per second; greater than zero.
    void setPace(double pace);
    [[nodiscard]] double pace() const { return pace_; }

    /// Moves to `to`, or to the nearest end of the walk. To move back, the walk is played again from its
    /// beginning.
    void seek(Position to);
    /// The time since the beginning of the walk; in a callback of a service, the time of the event.
    [[nodiscard]] Position position() const { return oska::platform::spanBetween(begin_, time_.now()); }
    [[nodiscard]] Position duration() const { return walk_.duration(); }

private:
    void rewind();
    void playUntil(Position target);
    void showFrame();

    const PlayedWalk& walk_;
    WalkTime& time_;
    oska::virtual_world::ReplaySource& source_;
    PlayerListener* listener_ = nullptr;
    oska::platform::WallTime begin_;  // when the walk began, on `time_`
    std::size_t next_ = 0;            // index of the next sample
    double pace_ = 1;
    QTimer frames_;
    std::chrono::steady_clock::time_point lastFrame_;
};

}  // namespace viewer
