#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "oska/json/json.h"
#include "oska/pelio/pelio_ward_selection.h"
#include "tools/oska/cli/text_table.h"
#include "tools/oska/cli/wording.h"
#include "tools/oska/explaining/explanation.h"

namespace oska::tool {
namespace {

using Align = TextTable::Align;

std::string quotedList(const std::vector<std::string>& names) {
    std::string list;
    for (const auto& name : names) list += (list.empty() ? "" : ", ") + inQuotes(name);
    return list;
}

std::string milliseconds(const std::optional<std::int64_t>& at) { return at ? std::to_string(*at) : "-"; }

std::string section(const std::string& title, const std::string& body) {
    return body.empty() ? "" : title + "\n" + body + "\n";
}

std::string momentText(const Explanation& explanation) {
    if (!explanation.asked_at) return "";
    return "At " + std::to_string(*explanation.asked_at) + " ms (mobile_time " +
           std::to_string(*explanation.asked_mobile_time) + ")\n\n";
}

std::string noSuchWardText(const NoSuchWard& ward) {
    auto text = "No ward of the bundle has the name " + inQuotes(ward.name) + ".\n";
    if (ward.heard > 0) {
        text += "It was heard all the same: " + std::to_string(ward.heard) + " times in the recording.\n";
    }
    if (ward.nearest.empty()) return text + "The bundle has no wards.\n\n";
    TextTable table({{"NEAREST NAMES"}, {""}});
    for (const auto& near : ward.nearest) table.add({inQuotes(near.name), near.difference});
    return text + "\n" + table.text() + "\n";
}

std::string winnerText(const PelioWinner& winner) {
    auto text = "Winner:    " + inQuotes(winner.name) + ", " + decibels(winner.strength) + " dBm at " +
                std::to_string(winner.at) + " ms: ";
    if (winner.rule == "only") return text + "the only ward whose threshold a reading meets";
    const auto next = inQuotes(*winner.runner_up);
    if (winner.rule == "strength") {
        return text + "the strongest reading, " + decibels(winner.strength - *winner.runner_up_strength) +
               " dB above that of " + next;
    }
    text += "as strong as " + next + ", ";
    if (winner.rule == "threshold") return text + "with the higher threshold";
    return text +
           (winner.rule == "id" ? "with the same threshold and the smaller id" : "alike in all, heard first");
}

std::string decisionText(const PelioDecision& decision) {
    std::string text;
    if (!decision.running) text += "Service:   stopped; what was heard before is forgotten\n";
    if (decision.at) text += "Sample:    the last one came at " + std::to_string(*decision.at) + " ms\n";
    text += decision.winner ? winnerText(*decision.winner) + "\n"
                            : "Winner:    none: no reading of the last " +
                                  std::to_string(PelioWardSelection::RFD_BUFFER_TIME_WINDOW) +
                                  " s meets its ward's threshold\n";
    if (decision.reported) {
        const auto& reported = *decision.reported;
        text += decision.winner ? "Reported:  " : "Kept:      ";
        text += inQuotes(reported.name) + " on level " + std::to_string(reported.level_id) + ", since " +
                std::to_string(reported.since) + " ms";
        text += decision.winner ? "\n" : ", but not reported while nothing qualifies\n";
    }
    if (decision.held_back_until) {
        text += "Held back: a change comes " +
                std::to_string(PelioWardSelection::RESULT_CHANGE_MIN_INTERVAL) +
                " s after the one before, with the first sample from " +
                std::to_string(*decision.held_back_until) + " ms on\n";
    }
    return text + "\n";
}

std::string stateText(const DapoState& state) {
    std::string text = "View:      " + std::string(state.visible ? "visible" : "hidden") +
                       (state.running ? "" : "; the service is stopped") + "\n";
    text += "Selected:  " + (state.selected.empty() ? "nothing" : quotedList(state.selected)) + "\n";
    if (state.last_detection) {
        text += "Detected:  last with the sample at " + std::to_string(*state.last_detection) + " ms\n";
    }
    if (state.held_until) text += "Held:      until " + std::to_string(*state.held_until) + " ms\n";
    return text + "\n";
}

std::string changesText(const std::vector<PelioChange>& changes) {
    if (changes.empty()) return "No position was reported.\n\n";
    TextTable table({{"AT MS", Align::right}, {"WARD"}, {"LEVEL"}, {"HELD BACK MS", Align::right}, {"WHY"}});
    for (const auto& change : changes) {
        table.add({std::to_string(change.at), inQuotes(change.to), std::to_string(change.level_id),
                   std::to_string(change.held_back_for), change.why});
    }
    return section("Positions reported", table.text());
}

std::string showingsText(const std::vector<DapoShowing>& showings) {
    if (showings.empty()) return "Nothing was selected.\n\n";
    TextTable table({{"AT MS", Align::right}, {"UNTIL MS", Align::right}, {"WARDS"}});
    for (const auto& showing : showings) {
        table.add({std::to_string(showing.at), milliseconds(showing.until), quotedList(showing.wards)});
    }
    return section("What was selected", table.text());
}

std::string wardsText(const Explanation& explanation) {
    if (explanation.wards.empty()) return explanation.no_such_ward ? "" : "No ward was heard.\n\n";
    TextTable table({{"WARD"},
                     {"LEVEL"},
                     {"AT MS", Align::right},
                     {"HEARD", Align::right},
                     {"QUALIFY", Align::right},
                     {"BEST", Align::right},
                     {"THRESHOLD", Align::right},
                     {"WHY"}});
    for (const auto& ward : explanation.wards) {
        table.add({inQuotes(ward.name), std::to_string(ward.level_id), milliseconds(ward.at),
                   std::to_string(ward.heard), std::to_string(ward.qualifying),
                   ward.strongest ? decibels(*ward.strongest) : "-", decibels(ward.threshold), ward.why});
    }
    return section(explanation.asked_at ? "Wards" : "Wards, each at its best instant", table.text());
}

std::string readingsText(const WardCase& ward) {
    if (!ward.readings || ward.readings->empty()) return "";
    TextTable table({{"AT MS", Align::right}, {"HEARD AS"}, {"DBM", Align::right}, {""}});
    for (const auto& reading : *ward.readings) {
        table.add({std::to_string(reading.at), inQuotes(reading.name), decibels(reading.strength),
                   reading.qualifies  ? "qualifies"
                   : reading.short_by ? decibels(*reading.short_by) + " dB too weak"
                                      : "does not count"});
    }
    return section("Readings of " + inQuotes(ward.name) + " in the window", table.text());
}

std::string unknownText(const Explanation& explanation) {
    TextTable close({{"NAME"}, {"READINGS", Align::right}, {"CLOSEST"}, {""}});
    std::vector<std::string> others;
    for (const auto& unknown : explanation.unknown_names) {
        if (unknown.close) {
            close.add({inQuotes(unknown.name), std::to_string(unknown.readings),
                       inQuotes(unknown.close->name), unknown.close->difference});
        } else {
            others.push_back(unknown.name);
        }
    }
    std::string text;
    if (!close.isEmpty())
        text += section("Names heard that no ward has, though one comes close", close.text());
    if (!others.empty()) {
        constexpr std::size_t MOST = 12;
        const auto left = others.size() - std::min(others.size(), MOST);
        others.resize(std::min(others.size(), MOST));
        text += "Other names heard that no ward has: " + quotedList(others) +
                (left > 0 ? " and " + std::to_string(left) + " more" : "") + "\n\n";
    }
    return text;
}

}  // namespace

double roundedDecibels(double value) {
    constexpr double STEPS = 1e6;
    constexpr double LARGEST = std::numeric_limits<double>::max();
    if (std::abs(value) < 1e9) value = std::round(value * STEPS) / STEPS;
    return std::clamp(value, -LARGEST, LARGEST);
}

std::string decibels(double value) {
    std::string text;
    static_cast<void>(json::appendReal(text, roundedDecibels(value)));
    return text;
}

std::string explanationAsText(const Explanation& explanation) {
    std::string text = momentText(explanation);
    if (explanation.no_such_ward) text += noSuchWardText(*explanation.no_such_ward);
    if (!explanation.no_such_ward) {
        if (explanation.decision) text += decisionText(*explanation.decision);
        if (explanation.state) text += stateText(*explanation.state);
        if (explanation.changes) text += changesText(*explanation.changes);
        if (explanation.showings) text += showingsText(*explanation.showings);
        text += wardsText(explanation);
    }
    for (const auto& ward : explanation.wards) text += readingsText(ward);
    if (explanation.never_heard.value_or(0) > 0) {
        text += "Never heard: " + std::to_string(*explanation.never_heard) + " of the bundle's wards\n\n";
    }
    text += unknownText(explanation);
    text.erase(text.find_last_not_of('\n') + 1);
    return text + '\n';
}

}  // namespace oska::tool
