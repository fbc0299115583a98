#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/oska/commands/oska_program.h"
#include "tools/oska/cli/text_table.h"
#include "tools/oska/explaining/dapo_explainer.h"
#include "tools/oska/explaining/pelio_explainer.h"

namespace oska::tool_tests {
namespace {

using testing::Contains;
using testing::Field;
using testing::HasSubstr;
using tool::ActionKind;
using tool::Explanation;
using tool::Question;

using Strengths = platform::ReceivedForce::Strengths;
using Walk = std::vector<tool::RecordedLine>;

constexpr std::int64_t BEGIN = 1700000000000;

// Times are milliseconds since the beginning of the walk.
tool::RecordedLine hear(std::int64_t at, Strengths strengths) {
    return {BEGIN + at, platform::ReceivedForce{BEGIN + at, std::move(strengths)}};
}

tool::RecordedLine act(std::int64_t at, ActionKind kind) {
    return {BEGIN + at, tool::Action{.kind = kind, .seconds = {}}};
}

Explanation explain(tool::Explainer&& explainer, const Walk& walk) {
    for (const auto& line : walk) explainer.take(line);
    return explainer.finish();
}

Explanation dapo(const Walk& walk, Question question = {}) {
    DapoLevel level{.id = 5, .name = "1F"};
    level.wards = {{.id = 1, .name = "Lobby-A", .rssi = -60}, {.id = 2, .name = "gate 2", .rssi = -70}};
    const DapoBundle site{.buildings = {{.levels = {level}}}};
    return explain(tool::DapoExplainer(site, std::move(question)), walk);
}

Explanation pelio(const Walk& walk, Question question = {}) {
    PelioLevel level{.id = 5, .name = "1F"};
    level.wards = {{.id = 3, .name = "a", .rssi = -80},
                   {.id = 2, .name = "b", .rssi = -80},
                   {.id = 1, .name = "c", .rssi = -70},
                   {.id = 3, .name = "d", .rssi = -80}};
    const PelioBundle site{.buildings = {{.levels = {level}}}};
    return explain(tool::PelioExplainer(site, std::move(question)), walk);
}

TEST(ExplainDapo, SaysWhatWouldHaveBeenEnough) {
    const std::pair<std::vector<double>, std::string> cases[]{
        {{-60, -60, -60, -60, -60, -60}, "detected: 6 readings at -60 dBm or above, 6 needed"},
        {{-60, -60, -60, -60, -60}, "5 of 6: 1 more reading at -60 dBm or above needed within 10 s"},
        {{-60, -60.1, -60, -60, -60, -60},
         "5 of 6: a reading was 0.1 dB too weak; a threshold of -61 dBm would do"},
        {{-62.5, -60, -60, -60, -64, -60, -70},
         "4 of 6: readings were up to 4 dB too weak; a threshold of -64 dBm would do"}};
    for (const auto& [strengths, why] : cases) {
        Walk walk;
        for (const double strength : strengths) walk.push_back(hear(0, {{"lobby-a", strength}}));
        EXPECT_EQ(dapo(walk).wards.at(0).why, why);
        EXPECT_EQ(dapo(walk).never_heard, 1);
    }
}

TEST(ExplainDapo, KnowsTheViewAtAnyInstant) {
    Walk walk;
    for (const int at : {0, 5000, 6000, 7000, 8000, 9000}) walk.push_back(hear(at, {{"lobby-a", -60}}));
    walk.push_back(hear(10001, {}));  // the first of the six has left the window
    walk.insert(walk.end(), {act(16000, ActionKind::stop), hear(16500, {{"lobby-a", -60}}),
                             act(17000, ActionKind::start)});
    for (int at = 17500; at < 23500; at += 1000) walk.push_back(hear(at, {{"lobby-a", -61}}));
    using State = std::tuple<std::string, std::size_t, std::int64_t, std::optional<std::int64_t>, bool>;
    const std::pair<std::int64_t, State> cases[]{{8999, {"too_few", 5, 5, std::nullopt, true}},
                                                 {9000, {"detected", 6, 6, 14000, true}},
                                                 {13999, {"held", 5, 5, 14000, true}},
                                                 {14000, {"too_few", 5, 5, std::nullopt, true}},
                                                 {16500, {"not_heard", 0, 0, std::nullopt, false}},
                                                 {17500, {"too_few", 1, 0, std::nullopt, true}},
                                                 {22500, {"too_weak", 6, 0, std::nullopt, true}}};
    for (const auto& [at, expected] : cases) {
        const auto answer = dapo(walk, {.ward = "LOBBY-a ", .at = at});
        const auto& ward = answer.wards.at(0);
        const auto& state = *answer.state;
        EXPECT_EQ(
            State(ward.verdict, ward.readings->size(), ward.qualifying, state.held_until, state.running),
            expected);
        EXPECT_EQ(state.visible, state.held_until.has_value());
        EXPECT_EQ(state.selected.size(), state.visible ? 1U : 0U);
    }
    EXPECT_EQ(dapo(walk).showings->at(0).until, 14000);
}

TEST(Explain, AnswersANameThatNoWardHasWithTheNearest) {
    const Walk walk(6, hear(0, {{"lobby-a\t", -50}, {" Gate 2\n", -60}, {"gate  2", -40}, {"gato 3", -40}}));
    EXPECT_EQ(dapo(walk, {.ward = "loby-a"}).no_such_ward->nearest.at(0).difference, "1 letter differs");
    const auto tab = dapo(walk, {.ward = "lobby-a\t"});
    EXPECT_EQ(tab.no_such_ward->heard, 6);
    EXPECT_EQ(tab.no_such_ward->nearest.at(0).name, "Lobby-A");
    EXPECT_EQ(tab.no_such_ward->nearest.at(0).difference, "without a tab at its end, which is not trimmed");
    EXPECT_TRUE(tab.wards.empty());
    EXPECT_EQ(dapo(walk, {.ward = "Lobby-A"}).unknown_names.at(0).name, "lobby-a\t");

    const auto all = dapo(walk);
    EXPECT_EQ(all.wards.at(0).verdict, "detected") << "blanks and line breaks at the ends do not count";
    EXPECT_EQ(all.unknown_names.at(0).close->difference, "without a blank inside, which counts");
    EXPECT_FALSE(all.unknown_names.at(1).close) << "two letters of six are too many";
}

TEST(ExplainPelio, NamesTheRuleThatDecides) {
    const std::tuple<Strengths, std::string, std::string> cases[]{
        {{{"a", -60}, {"b", -80.1}}, "only", "0.1 dB too weak"},
        {{{"a", -60}, {"b", -61.5}}, "strength", R"(beaten: 1.5 dB weaker than "a")"},
        {{{"a", -60}, {"c", -60}}, "threshold", R"(beaten: "c" is as strong, with the higher threshold)"},
        {{{"a", -60}, {"b", -60}},
         "id",
         R"(beaten: "b" is as strong, with the same threshold and the smaller id)"},
        {{{"d", -60}, {"a", -60}}, "order", R"(beaten: "a" is alike in all, heard first)"}};
    for (const auto& [strengths, rule, why] : cases) {
        const auto answer = pelio({hear(0, strengths)}, {.at = 0});
        EXPECT_EQ(answer.decision->winner->rule, rule);
        EXPECT_THAT(answer.wards, Contains(Field(&tool::WardCase::why, why)));
    }
    EXPECT_FALSE(pelio({hear(0, {{"b", -80.1}})}, {.at = 0}).decision->winner);
}

TEST(ExplainPelio, SaysWhatHoldsAChangeBack) {
    const Walk walk{hear(0, {{"a", -70}}),    hear(1000, {{"b", -60}}),    hear(4999, {{"b", -60}}),
                    hear(5000, {{"b", -61}}), act(5500, ActionKind::stop), act(5600, ActionKind::start),
                    hear(5700, {{"c", -50}})};
    const auto held = pelio(walk, {.at = 4999});
    EXPECT_EQ(held.decision->held_back_until, 5000);
    EXPECT_EQ(held.decision->reported->name, "a");
    EXPECT_EQ(held.wards[0].verdict, "held_back");
    EXPECT_EQ(held.wards[0].why, R"(-60 dBm, the strongest reading; next "a" with -70 dBm; )"
                                 "but a change must wait until 5000 ms");
    EXPECT_EQ(held.wards[1].why, "reported: a change must wait until 5000 ms");
    EXPECT_FALSE(pelio(walk, {.at = 5000}).decision->held_back_until);

    const auto changes = *pelio(walk).changes;
    EXPECT_EQ(std::tuple(changes.at(1).at, changes[1].to, changes[1].held_back_for),
              std::tuple(5000, "b", 4000));
    EXPECT_EQ(std::tuple(changes.at(2).at, changes[2].to), std::tuple(5700, "c")) << "a stop ends the hold";
}

TEST(TextTable, AlignsWhatTakesTwoPlacesToo) {
    tool::TextTable table({{"A"}, {"B", tool::TextTable::Align::right}, {"C"}});
    table.add({"한글", "1", "x"});
    table.add({"abcde", "22", "e\u0301 "});
    EXPECT_EQ(table.text(), "A       B  C\n한글    1  x\nabcde  22  e\u0301\n");
}

TEST(Explain, PrintsTablesAndJson) {
    const Folder folder;
    const auto ward = R"({"id":1,"name":"door","x":1,"y":1,"rssi":-60,"contents":[]})";
    const auto bundle = folder.file("b.json", bundleDocument(levelDocument(5, ward)));
    const auto explain = [&](const std::vector<std::string>& how, const std::string& recording) {
        std::vector<std::string> arguments{"explain", "--bundle", bundle, "--recording", "-"};
        arguments.insert(arguments.begin() + 1, how.begin(), how.end());
        return runOska(arguments, recording);
    };
    const auto walk = R"({"mobile_time":1000,"rfs":{"Door":-59.5,"do\nor":-70}})";
    EXPECT_EQ(explain({"pelio", "--ward", "DOOR"}, walk).out, R"(Positions reported
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
        explain({"dapo", "--json", "--at", "1500"}, walk).out,
        R"({"service":"dapo","begin":1000,"asked_at":500,"asked_mobile_time":1500,"state":{"running":true,)"
        R"("visible":false,"selected":[]},"wards":[{"id":1,"name":"door","level_id":5,"threshold":-60,"at":0,)"
        R"("mobile_time":1000,"heard":1,"qualifying":1,"needed":6,"strongest":-59.5,"verdict":"too_few",)"
        R"("why":"1 of 6: 5 more readings at -60 dBm or above needed within 10 s","enough":{"more_readings":5}}],)"
        R"("unknown_names":[{"name":"do\nor","readings":1,"close":{"name":"door","difference":)"
        R"("without a line feed inside, which counts"}}],"more_unknown_readings":0})"
        "\n");
    EXPECT_THAT(explain({"dapo", "--at", "0"}, "").out, HasSubstr("No ward was heard."));
    const auto refused = explain({"dapo"}, "{}");
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.out + refused.err, "-:1: \"mobile_time\" is missing\n");
}

}  // namespace
}  // namespace oska::tool_tests
