#include "tools/site_viewer/player.h"

#include <algorithm>
#include <utility>

namespace viewer {

using Clock = std::chrono::steady_clock;

namespace {

constexpr std::chrono::milliseconds FRAME(40);
// After a longer frame, for example when the machine slept, the walk goes on by this only.
constexpr std::chrono::milliseconds LONGEST_FRAME(250);

}  // namespace

Player::Player(const PlayedWalk& walk, WalkTime& time, oska::virtual_world::ReplaySource& source)
    : walk_(walk), time_(time), source_(source), begin_(time.now()) {
    frames_.setInterval(FRAME);
    QObject::connect(&frames_, &QTimer::timeout, &frames_, [this] { showFrame(); });
}

void Player::play() {
    if (position() >= duration()) seek(Position::zero());
    lastFrame_ = Clock::now();
    frames_.start();
    if (listener_) listener_->onPlayerChanged();
}

void Player::pause() {
    frames_.stop();
    if (listener_) listener_->onPlayerChanged();
}

void Player::setPace(double pace) {
    pace_ = pace;
    if (listener_) listener_->onPlayerChanged();
}

void Player::seek(Position to) {
    const auto target = std::clamp(to, Position::zero(), duration());
    if (target < position()) rewind();
    playUntil(target);
}

void Player::rewind() {
    begin_ = time_.now();
    next_ = 0;
    if (listener_) listener_->onRewound();
}

void Player::playUntil(Position target) {
    while (next_ < walk_.samples.size() && walk_.samples[next_].due <= target) {
        const auto& [due, sample] = walk_.samples[next_++];
        time_.advanceTo(begin_ + due);
        source_.send(sample);
        time_.runDue();
        if (listener_) listener_->onSamplePlayed(sample);
    }
    time_.advanceTo(begin_ + target);
    if (listener_) listener_->onPlayerChanged();
}

void Player::showFrame() {
    const auto now = Clock::now();
    const auto elapsed = std::min<Clock::duration>(now - std::exchange(lastFrame_, now), LONGEST_FRAME);
    const auto step = std::chrono::duration_cast<Position>(elapsed * pace_);
    const auto target = std::min(position() + step, duration());
    if (target == duration()) frames_.stop();
    playUntil(target);
}

}  // namespace viewer
