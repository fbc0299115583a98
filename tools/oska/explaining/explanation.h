#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// What `oska explain` answers, the same for people and for programs. `at`, and each name that ends in `_at`,
/// is in milliseconds since the run began, as in the events of a replay; strengths are dBm.
namespace oska::tool {

struct HeardReading {
    std::int64_t at = 0;
    std::int64_t mobile_time = 0;
    std::string name;  ///< as heard
    double strength = 0;
    bool qualifies = false;
    std::optional<double> short_by;  ///< dB below the threshold
};

/// What would have been enough for a detection that did not come.
struct Enough {
    std::int64_t more_readings = 0;     ///< at or above the threshold, within the window
    std::optional<double> stronger_by;  ///< dB by which as many of the weak readings missed the threshold
    std::optional<double> threshold;    ///< that the readings as they were would have met
};

/// One ward at one instant: after the sample that came at `at`.
struct WardCase {
    std::int64_t id = 0;
    std::string name;
    std::int64_t level_id = 0;
    double threshold = 0;
    std::optional<std::int64_t> at;  ///< nullopt: no sample yet, or never heard
    std::optional<std::int64_t> mobile_time;
    std::int64_t heard = 0;              ///< readings in the window
    std::int64_t qualifying = 0;         ///< of these at or above the threshold
    std::optional<std::int64_t> needed;  ///< Dapo: how many must be
    std::optional<double> strongest;
    std::string verdict;  ///< for programs: see the two explainers
    std::string why;      ///< for people
    std::optional<Enough> enough;
    std::optional<std::vector<HeardReading>> readings;  ///< where one ward was asked for
};

/// A change of the ward that Pelio reports.
struct PelioChange {
    std::int64_t at = 0;
    std::optional<std::string> from;
    std::string to;
    std::int64_t level_id = 0;
    double strength = 0;
    std::int64_t held_back_for = 0;  ///< milliseconds
    std::string why;
};

struct PelioWinner {
    std::int64_t id = 0;
    std::string name;
    double strength = 0;
    std::int64_t at = 0;  ///< of its reading
    std::string rule;     ///< "only", "strength", "threshold", "id" or "order"
    std::optional<std::string> runner_up;
    std::optional<double> runner_up_strength;
};

struct PelioReported {
    std::int64_t id = 0;
    std::string name;
    std::int64_t level_id = 0;
    std::int64_t since = 0;
};

/// Pelio's position at one instant, and why.
struct PelioDecision {
    bool running = false;
    std::optional<std::int64_t> at;               ///< of the sample that it rests on
    std::optional<PelioWinner> winner;            ///< nullopt: no reading qualified, and nothing was reported
    std::optional<PelioReported> reported;        ///< kept in mind also while nothing qualifies
    std::optional<std::int64_t> held_back_until;  ///< the winner is another and has to wait
};

/// A time during which Dapo had a selection.
struct DapoShowing {
    std::int64_t at = 0;
    std::optional<std::int64_t> until;  ///< nullopt: the recording ended first
    std::vector<std::string> wards;
};

/// The Dapo view at one instant.
struct DapoState {
    bool running = false;
    bool visible = false;
    std::vector<std::string> selected;
    std::optional<std::int64_t> last_detection;
    std::optional<std::int64_t> held_until;
};

struct NearName {
    std::string name;
    std::string difference;  ///< for people
};

struct NoSuchWard {
    std::string name;
    std::int64_t heard = 0;  ///< readings of that name in the recording
    std::vector<NearName> nearest;
};

/// A name that was heard and that no ward has.
struct UnknownName {
    std::string name;
    std::int64_t readings = 0;
    std::optional<NearName> close;  ///< a ward's name that may have been meant
};

struct Explanation {
    std::string service;
    std::optional<std::int64_t> begin;     ///< mobile time; none: the recording is empty
    std::optional<std::int64_t> asked_at;  ///< the instant that was asked for
    std::optional<std::int64_t> asked_mobile_time;
    std::optional<NoSuchWard> no_such_ward;
    std::optional<PelioDecision> decision;
    std::optional<DapoState> state;
    std::optional<std::vector<PelioChange>> changes;
    std::optional<std::vector<DapoShowing>> showings;
    std::vector<WardCase> wards;
    std::optional<std::int64_t> never_heard;  ///< wards of the bundle
    std::vector<UnknownName> unknown_names;
    std::int64_t more_unknown_readings = 0;  ///< of names beyond those that are kept
};

/// One line of JSON.
[[nodiscard]] std::string explanationAsJson(const Explanation& explanation);

/// Tables, in lines.
[[nodiscard]] std::string explanationAsText(const Explanation& explanation);

/// The strength as people write it: -60.5, without a binary fraction's tail.
[[nodiscard]] std::string decibels(double value);

/// `value` without a binary fraction's tail, and finite.
[[nodiscard]] double roundedDecibels(double value);

}  // namespace oska::tool
