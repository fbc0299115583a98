#include "oska/json/json.h"
#include "oska/text/one_line.h"
#include "tools/oska/explaining/explanation.h"

namespace oska::tool {

template <class Visit>
void fields(Visit& f, HeardReading& reading) {
    f("at", reading.at);
    f("mobile_time", reading.mobile_time);
    f("name", reading.name);
    f("strength", reading.strength);
    f("qualifies", reading.qualifies);
    f("short_by", reading.short_by);
}

template <class Visit>
void fields(Visit& f, Enough& enough) {
    f("more_readings", enough.more_readings);
    f("stronger_by", enough.stronger_by);
    f("threshold", enough.threshold);
}

template <class Visit>
void fields(Visit& f, WardCase& ward) {
    f("id", ward.id);
    f("name", ward.name);
    f("level_id", ward.level_id);
    f("threshold", ward.threshold);
    f("at", ward.at);
    f("mobile_time", ward.mobile_time);
    f("heard", ward.heard);
    f("qualifying", ward.qualifying);
    f("needed", ward.needed);
    f("strongest", ward.strongest);
    f("verdict", ward.verdict);
    f("why", ward.why);
    f("enough", ward.enough);
    f("readings", ward.readings);
}

template <class Visit>
void fields(Visit& f, PelioChange& change) {
    f("at", change.at);
    f("from", change.from);
    f("to", change.to);
    f("level_id", change.level_id);
    f("strength", change.strength);
    f("held_back_for", change.held_back_for);
    f("why", change.why);
}

template <class Visit>
void fields(Visit& f, PelioWinner& winner) {
    f("id", winner.id);
    f("name", winner.name);
    f("strength", winner.strength);
    f("at", winner.at);
    f("rule", winner.rule);
    f("runner_up", winner.runner_up);
    f("runner_up_strength", winner.runner_up_strength);
}

template <class Visit>
void fields(Visit& f, PelioReported& reported) {
    f("id", reported.id);
    f("name", reported.name);
    f("level_id", reported.level_id);
    f("since", reported.since);
}

template <class Visit>
void fields(Visit& f, PelioDecision& decision) {
    f("running", decision.running);
    f("at", decision.at);
    f("winner", decision.winner);
    f("reported", decision.reported);
    f("held_back_until", decision.held_back_until);
}

template <class Visit>
void fields(Visit& f, DapoShowing& showing) {
    f("at", showing.at);
    f("until", showing.until);
    f("wards", showing.wards);
}

template <class Visit>
void fields(Visit& f, DapoState& state) {
    f("running", state.running);
    f("visible", state.visible);
    f("selected", state.selected);
    f("last_detection", state.last_detection);
    f("held_until", state.held_until);
}

template <class Visit>
void fields(Visit& f, NearName& near) {
    f("name", near.name);
    f("difference", near.difference);
}

template <class Visit>
void fields(Visit& f, NoSuchWard& ward) {
    f("name", ward.name);
    f("heard", ward.heard);
    f("nearest", ward.nearest);
}

template <class Visit>
void fields(Visit& f, UnknownName& name) {
    f("name", name.name);
    f("readings", name.readings);
    f("close", name.close);
}

template <class Visit>
void fields(Visit& f, Explanation& explanation) {
    f("service", explanation.service);
    f("begin", explanation.begin);
    f("asked_at", explanation.asked_at);
    f("asked_mobile_time", explanation.asked_mobile_time);
    f("no_such_ward", explanation.no_such_ward);
    f("decision", explanation.decision);
    f("state", explanation.state);
    f("changes", explanation.changes);
    f("showings", explanation.showings);
    f("wards", explanation.wards);
    f("never_heard", explanation.never_heard);
    f("unknown_names", explanation.unknown_names);
    f("more_unknown_readings", explanation.more_unknown_readings);
}

// Its numbers are finite: recordings and bundles bring no others, and differences are cut off.
std::string explanationAsJson(const Explanation& explanation) {
    return text::onOneLine(*json::encode(explanation, json::Slashes::plain)) + '\n';
}

}  // namespace oska::tool
