#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "oska/json/json.h"
#include "tests/tools/oska/commands/oska_program.h"
#include "tools/oska/cli/text_table.h"
#include "tools/oska/explaining/dapo_explainer.h"
#include "tools/oska/explaining/near_names.h"
#include "tools/oska/explaining/pelio_explainer.h"

namespace oska::tool_tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using tool::Explanation;
using tool::Question;

using Strengths = platform::ReceivedForce::Strengths;

constexpr std::int64_t BEGIN = 1700000000000;

DapoBundle dapoSite() {
    DapoLevel level{.id = 5, .name = "1F"};
    level.wards = {{.id = 1, .name = "Lobby-A", .x = 1, .y = 1, .rssi = -60},
                   {.id = 2, .name = "gate 2", .x = 1, .y = 1, .rssi = -70}};
    return {.id = 7, .name = "s", .buildings = {{.id = 1, .name = "b", .levels = {level}}}};
}

PelioBundle pelioSite() {
    PelioLevel level{.id = 5, .name = "1F"};
    level.wards = {{.id = 3, .name = "a", .rssi = -80},
                   {.id = 2, .name = "b", .rssi = -80},
                   {.id = 1, .name = "c", .rssi = -70},
                   {.id = 3, .name = "d", .rssi = -80}};
    return {.id = 7, .name = "s", .buildings = {{.id = 1, .name = "b", .levels = {level}}}};
}

/// A recording under construction; times are milliseconds since its beginning.
class WalkScript {
public:
    WalkScript& hear(std::int64_t at, Strengths strengths) {
        lines_.push_back({BEGIN + at, platform::ReceivedForce{BEGIN + at, std::move(strengths)}});
        return *this;
    }

    WalkScript& act(std::int64_t at, tool::ActionKind kind) {
        auto& line = lines_.emplace_back();
        line.mobileTime = BEGIN + at;
        line.what = tool::Action{.kind = kind};
        return *this;
    }

    [[nodiscard]] Explanation explain(tool::Explainer&& explainer) const {
        for (const auto& line : lines_) explainer.take(line);
        return explainer.finish();
    }

    [[nodiscard]] Explanation dapo(Question question = {}) const {
        return explain(tool::DapoExplainer(dapoSite(), std::move(question)));
    }

    [[nodiscard]] Explanation pelio(Question question = {}) const {
        return explain(tool::PelioExplainer(pelioSite(), std::move(question)));
    }

private:
    std::vector<tool::RecordedLine> lines_;
};

/// Samples a second apart that name Lobby-A at these strengths.
WalkScript lobby(const std::vector<double>& strengths) {
    WalkScript walk;
    std::int64_t at = 0;
    for (const double strength : strengths) walk.hear(1000 * at++, {{"lobby-a", strength}});
    return walk;
}

TEST(ExplainDapo, SaysWhatWouldHaveBeenEnough) {
    const struct {
        std::vector<double> strengths;
        std::string verdict;
        std::string why;
    } cases[] = {
        {{-60, -60, -60, -60, -60, -60}, "detected", "detected: 6 readings at -60 dBm or above, 6 needed"},
        {{-60, -60, -60, -60, -60},
         "too_few",
         "5 of 6: 1 more reading at -60 dBm or above needed within 10 s"},
        {{-60, -60.1, -60, -60, -60, -60},
         "too_weak",
         "5 of 6: a reading was 0.1 dB too weak; a threshold of -61 dBm would do"},
        {{-62.5, -60, -60, -60, -64, -60, -70},
         "too_weak",
         "4 of 6: readings were up to 4 dB too weak; a threshold of -64 dBm would do"},
    };
    for (const auto& [strengths, verdict, why] : cases) {
        const auto answer = lobby(strengths).dapo();
        ASSERT_EQ(answer.wards.size(), 1U);
        EXPECT_EQ(answer.wards[0].name, "Lobby-A");
        EXPECT_EQ(answer.wards[0].verdict, verdict);
        EXPECT_EQ(answer.wards[0].why, why);
        EXPECT_EQ(answer.never_heard, 1);
        EXPECT_EQ(answer.showings->size(), verdict == "detected" ? 1U : 0U);
    }
}

TEST(ExplainDapo, LooksAtAnInstantAndAtTheHoldThatRunsThen) {
    auto walk = lobby({-60, -60, -60, -60, -60, -60, -75});
    walk.hear(12000, {});
    const auto at = [&](std::int64_t instant) { return walk.dapo({.ward = "LOBBY-a ", .at = instant}); };

    const auto before = at(4999);
    EXPECT_EQ(before.wards[0].verdict, "too_few");
    EXPECT_EQ(before.wards[0].at, 4000);
    EXPECT_FALSE(before.state->visible);
    EXPECT_EQ(before.wards[0].readings->size(), 5U);

    const auto held = walk.dapo({.ward = "lobby-a", .at = BEGIN + 10999});
    EXPECT_EQ(held.asked_at, 10999);
    EXPECT_EQ(held.wards[0].verdict, "detected") << "the last sample still finds the six";
    EXPECT_EQ(held.state->held_until, 11000);
    EXPECT_THAT(held.state->selected, ElementsAre("Lobby-A"));

    const auto over = at(11000);
    EXPECT_FALSE(over.state->visible);
    EXPECT_THAT(over.state->selected, IsEmpty());
    EXPECT_EQ(walk.dapo().showings->at(0).until, 11000);
}

TEST(ExplainDapo, KnowsASelectionThatIsHeldWithoutADetection) {
    WalkScript walk;
    for (const int at : {0, 5000, 6000, 7000, 8000, 9000}) walk.hear(at, {{"lobby-a", -60}});
    walk.hear(10001, {});  // the first of the six has left the window
    const auto held = walk.dapo({.ward = "lobby-a", .at = 10001});
    EXPECT_EQ(held.wards[0].verdict, "held");
    EXPECT_EQ(held.wards[0].qualifying, 5);
    EXPECT_EQ(held.state->held_until, 14000);
}

TEST(ExplainDapo, ForgetsWithTheServiceThatStops) {
    auto walk = lobby({-60, -60, -60, -60, -60});
    walk.act(4500, tool::ActionKind::stop).hear(5000, {{"lobby-a", -60}});
    walk.act(5500, tool::ActionKind::start).hear(6000, {{"lobby-a", -60}});
    EXPECT_FALSE(walk.dapo({.at = 5000}).state->running);
    EXPECT_EQ(walk.dapo({.ward = "lobby-a", .at = 6000}).wards[0].heard, 1);
}

TEST(Explain, AnswersANameThatNoWardHasWithTheNearest) {
    WalkScript walk;
    for (int i = 0; i < 6; ++i)
        walk.hear(1000 * i, {{"lobby-a\t", -50}, {" Gate 2\n", -60}, {"gate  2", -40}});

    const auto typo = walk.dapo({.ward = "loby-a"});
    ASSERT_TRUE(typo.no_such_ward);
    EXPECT_EQ(typo.no_such_ward->nearest.front().name, "Lobby-A");
    EXPECT_EQ(typo.no_such_ward->nearest.front().difference, "1 letter differs");
    EXPECT_THAT(typo.wards, IsEmpty());

    const auto tab = walk.dapo({.ward = "lobby-a\t"});
    EXPECT_EQ(tab.no_such_ward->heard, 6);
    EXPECT_EQ(tab.no_such_ward->nearest.front().difference, "without a tab at its end, which is not trimmed");

    const auto ward = walk.dapo({.ward = "Lobby-A"});
    EXPECT_EQ(ward.wards[0].verdict, "not_heard");
    ASSERT_EQ(ward.unknown_names.size(), 1U);
    EXPECT_EQ(ward.unknown_names[0].name, "lobby-a\t");

    const auto all = walk.dapo();
    ASSERT_EQ(all.wards.size(), 1U);
    EXPECT_EQ(all.wards[0].verdict, "detected") << "blanks and line breaks at the ends do not count";
    ASSERT_EQ(all.unknown_names.size(), 2U);
    EXPECT_EQ(all.unknown_names[0].close->difference, "without a blank inside, which counts");
}

TEST(ExplainPelio, NamesTheRuleThatDecides) {
    const struct {
        Strengths strengths;
        std::string winner;
        std::string rule;
        std::optional<std::string> next;
    } cases[] = {{{{"a", -60}, {"b", -80.1}}, "a", "only", std::nullopt},
                 {{{"a", -60}, {"b", -60.5}, {"c", -65}}, "a", "strength", "b"},
                 {{{"a", -60}, {"b", -60}, {"c", -60}}, "c", "threshold", "b"},
                 {{{"a", -60}, {"b", -60}}, "b", "id", "a"},
                 {{{"d", -60}, {"a", -60}}, "a", "order", "d"}};
    for (const auto& [strengths, winner, rule, next] : cases) {
        const auto decision = *WalkScript().hear(0, strengths).pelio({.at = 0}).decision;
        ASSERT_TRUE(decision.winner);
        EXPECT_EQ(decision.winner->name, winner);
        EXPECT_EQ(decision.winner->rule, rule);
        EXPECT_EQ(decision.winner->runner_up, next);
        EXPECT_EQ(decision.reported->name, winner);
    }
    const auto weak = WalkScript().hear(0, {{"b", -80.1}}).pelio({.at = 0});
    EXPECT_FALSE(weak.decision->winner || weak.decision->reported);
    EXPECT_EQ(weak.wards[0].why, "0.1 dB too weak");
    const auto beaten = WalkScript().hear(0, {{"a", -60}, {"b", -60}, {"c", -61.5}}).pelio({.at = 0});
    EXPECT_EQ(beaten.wards[0].why, R"(beaten: "b" is as strong, with the same threshold and the smaller id)");
    EXPECT_EQ(beaten.wards[2].why, R"(beaten: 1.5 dB weaker than "b")");
}

TEST(ExplainPelio, SaysWhatHoldsAChangeBack) {
    WalkScript walk;
    walk.hear(0, {{"a", -70}}).hear(1000, {{"b", -60}}).hear(4999, {{"b", -60}}).hear(5000, {{"b", -61}});
    const auto held = walk.pelio({.at = 4999});
    EXPECT_EQ(held.decision->winner->name, "b");
    EXPECT_EQ(held.decision->reported->name, "a");
    EXPECT_EQ(held.decision->held_back_until, 5000);
    EXPECT_EQ(held.wards[0].verdict, "held_back");
    EXPECT_EQ(held.wards[1].verdict, "reported");

    const auto after = walk.pelio();
    ASSERT_EQ(after.changes->size(), 2U);
    EXPECT_EQ(after.changes->at(1).at, 5000);
    EXPECT_EQ(after.changes->at(1).held_back_for, 4000);
    EXPECT_FALSE(walk.pelio({.at = 5000}).decision->held_back_until);

    walk.act(5500, tool::ActionKind::stop).act(5600, tool::ActionKind::start).hear(5700, {{"c", -50}});
    EXPECT_EQ(walk.pelio({.at = 5700}).decision->reported->name, "c") << "a stop ends the hold";
}

TEST(TextTable, AlignsWhatTakesTwoPlacesToo) {
    tool::TextTable table({{"A"}, {"B", tool::TextTable::Align::right}, {"C"}});
    table.add({"한글", "1", "x"});
    table.add({"abcde", "22", "e\u0301 "});
    EXPECT_EQ(table.text(), "A       B  C\n한글    1  x\nabcde  22  e\u0301\n");
}

const auto SITE =
    bundleDocument(levelDocument(5, R"({"id":1,"name":"door","x":1,"y":1,"rssi":-60,"contents":[]})"));

TEST(Explain, PrintsTablesAndJson) {
    const Folder folder;
    const auto bundle = folder.file("b.json", SITE);
    const auto walk = folder.file("w.jsonl", R"({"mobile_time":1000,"rfs":{"Door":-59.5,"do\nor":-70}})"
                                             "\n");
    const std::vector<std::string> files{"--bundle", bundle, "--recording", walk};
    const auto run = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), files.begin(), files.end());
        return runOska(arguments);
    };
    const auto text = run({"explain", "pelio", "--ward", "DOOR"});
    EXPECT_EQ(text.status, 0);
    EXPECT_EQ(text.out, R"(Positions reported
AT MS  WARD    LEVEL  HELD BACK MS  WHY
    0  "door"  5                 0  -59.5 dBm, the only one that meets its threshold

Wards, each at its best instant
WARD    LEVEL  AT MS  HEARD  QUALIFY   BEST  THRESHOLD  WHY
"door"  5          0      1        1  -59.5        -60  reported: -59.5 dBm, the only one that meets its threshold

Readings of "door" in the window
AT MS  HEARD AS    DBM
    0  "Door"    -59.5  qualifies

Names heard that no ward has, though one comes close
NAME      READINGS  CLOSEST
"do\nor"         1  "door"   without a line feed inside, which counts
)");
    EXPECT_EQ(
        run({"explain", "dapo", "--json", "--at", "1500"}).out,
        R"({"service":"dapo","begin":1000,"asked_at":500,"asked_mobile_time":1500,"state":{"running":true,)"
        R"("visible":false,"selected":[]},"wards":[{"id":1,"name":"door","level_id":5,"threshold":-60,"at":0,)"
        R"("mobile_time":1000,"heard":1,"qualifying":1,"needed":6,"strongest":-59.5,"verdict":"too_few",)"
        R"("why":"1 of 6: 5 more readings at -60 dBm or above needed within 10 s","enough":{"more_readings":5}}],)"
        R"("unknown_names":[{"name":"do\nor","readings":1,"close":{"name":"door","difference":)"
        R"("without a line feed inside, which counts"}}],"more_unknown_readings":0})"
        "\n");
}

TEST(Explain, RefusesWhatIsNoBundleAndNoRecording) {
    const Folder folder;
    const auto bundle = folder.file("b.json", SITE);
    const auto bad =
        folder.file("w.jsonl", "{\"mobile_time\":1,\"rfs\":{}}\n{\"mobile_time\":\"2\",\"rfs\":{}}\n");
    const auto ended = runOska({"explain", "dapo", "--bundle", bundle, "--recording", bad});
    EXPECT_EQ(ended.status, 2);
    EXPECT_EQ(ended.err, bad + ":2: \"mobile_time\" is not an integer\n");
    EXPECT_THAT(ended.out, IsEmpty());
    EXPECT_THAT(runOska({"explain", "dapo", "--bundle", bad, "--recording", bad}).err,
                HasSubstr("w.jsonl:1: "));
    const auto empty = runOska({"explain", "dapo", "--bundle", bundle, "--recording", "-", "--at", "0"});
    EXPECT_EQ(empty.status, 0);
    EXPECT_THAT(empty.out, HasSubstr("No ward was heard."));
}

}  // namespace
}  // namespace oska::tool_tests
