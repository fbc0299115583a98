#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "oska/json/json.h"
#include "tools/oska/cli/common_options.h"
#include "tools/oska/cli/complaint.h"
#include "tools/oska/cli/input_file.h"
#include "tools/oska/cli/interruption.h"
#include "tools/oska/cli/option_values.h"
#include "tools/oska/cli/wording.h"
#include "tools/oska/commands/commands.h"
#include "tools/oska/simulating/planned_walk.h"
#include "tools/oska/simulating/radio_model.h"
#include "tools/oska/simulating/route.h"
#include "tools/oska/site/bundle_service.h"
#include "tools/oska/site/site.h"

namespace oska::tool {
namespace {

constexpr auto ABOUT = "Write a recording of a walk through a site: what a phone would hear on its way";

constexpr auto MORE =
    R"(The recording goes to standard output, one sample a line, as a replay reads it. Beside what was heard each sample
says where the phone was, under "truth", in bundle units of its level; replays ignore it. Bundle, route, seed and
interval alone decide every byte, on every machine. The bundle may be of either kind; both of one site give the same walk
where their wards have the same names and places. Wards without coordinates are not heard.

A route is a JSON document:

  {
    "start_time": 1700000000000,     mobile_time of the first sample, ms (that)
    "units_per_metre": 100,          bundle units in a metre (100: they are centimetres)
    "floor_height": 3.5,             metres between the levels of a building (3.5)
    "speed": 1.2,                    metres a second (1.2)
    "buildings": [                   where buildings stand on common ground; without it the first is out of
      {"id": 2, "x": 4500, "y": 0,   earshot of the others. x and y: where the building's own origin lies, bundle
       "height": 0}],                units; height: of its first level, metres (0)
    "radio": {...},                  see below
    "waypoints": [                   the way, straight from each point to the next
      {"level_id": 11, "x": 300, "y": 900},
      {"x": 1500, "y": 900, "speed": 0.8, "pause": 10},
      {"level_id": 12, "x": 1500, "y": 900, "seconds": 15}
    ]
  }

A waypoint has x and y, in bundle units of its level. level_id is that of the waypoint before when left out;
building_id is needed only where two buildings share a level id. "speed" (metres a second) or "seconds" is how the way
there is walked; a change of level needs "seconds". "pause" is how many seconds are spent there. Unknown keys are
errors.

"radio" may have: strength_at_1m (-59 dBm), exponent (2.4; 2 in free space), shadowing (3 dB) that changes over
shadowing_length (4 m), fading (2 dB) from one reading to the next, floor_loss (16 dB) for each floor and wall_loss
(12 dB) for the outer walls in between, missed (0.08), the share of readings that are missed though strong enough.
Readings are heard from -100 dBm on and cut off at -40 dBm, as in a live scan.

Example: oska simulate --bundle site.json --route morning.json --seed 7 > walk.jsonl)";

constexpr std::int64_t DEFAULT_START_TIME = 1700000000000;  // milliseconds: in November 2023

struct Options {
    std::string bundle;
    std::string route;
    std::int64_t seed = 1;
    std::int64_t intervalMilliseconds = 500;
};

/// Where the phone really was.
struct Truth {
    std::int64_t building_id = 0;
    std::int64_t level_id = 0;
    double x = 0;  ///< bundle units, whole
    double y = 0;
};

template <class Visit>
void fields(Visit& f, Truth& truth) {
    f("building_id", truth.building_id);
    f("level_id", truth.level_id);
    f("x", truth.x);
    f("y", truth.y);
}

struct SimulatedSample {
    std::int64_t mobile_time = 0;
    platform::ReceivedForce::Strengths rfs;
    Truth truth;
};

template <class Visit>
void fields(Visit& f, SimulatedSample& sample) {
    f("mobile_time", sample.mobile_time);
    f("rfs", sample.rfs);
    f("truth", sample.truth);
}

Truth truthOf(const Position& phone, const Site& site, const GroundPlan& ground) {
    const auto& level = site.levels[phone.level];
    // The sum turns a negative zero into a plain one.
    return {level.buildingId, level.id, std::round(ground.xOnLevel(phone.level, phone.point)) + 0.0,
            std::round(ground.yOnLevel(phone.level, phone.point)) + 0.0};
}

void printSample(const SimulatedSample& sample) {
    const auto line = *json::encode(sample, json::Slashes::plain) + '\n';
    std::fwrite(line.data(), 1, line.size(), stdout);
}

void nameUnplaced(const Site& site, const std::string& file) {
    for (const auto& ward : site.wards) {
        if (!ward.x || !ward.y) {
            complain(file + ": the ward " + inQuotes(ward.name) + " has no coordinates and is not heard");
        }
    }
}

ExitStatus simulate(const Options& options, const Site& site, const Route& route) {
    const GroundPlan ground(site, route);
    auto walk = PlannedWalk::plan(route, site, ground);
    if (!walk) {
        complain(options.route + ": " + walk.error());
        return ExitStatus::badInput;
    }
    nameUnplaced(site, options.bundle);
    const RadioModel radio(site, ground, route, static_cast<std::uint64_t>(options.seed));
    auto way = *std::move(walk);
    std::uint64_t number = 0;
    for (std::int64_t time = 0; time <= way.milliseconds(); time += options.intervalMilliseconds) {
        if (Interruption::requested()) return ExitStatus::interrupted;
        const auto phone = way.at(time);
        printSample({route.start_time.value_or(DEFAULT_START_TIME) + time, radio.hear(phone, number++),
                     truthOf(phone, site, ground)});
    }
    return ExitStatus::done;
}

ExitStatus simulate(const Options& options) {
    const auto document = readInput(options.bundle);
    const auto routeDocument = readInput(options.route);
    for (const auto* const input : {&document, &routeDocument}) {
        if (!*input) return complainOf(input->error());
    }
    const auto site = parseSite(options.bundle, *document, serviceOfBundle(*document));
    const auto route = parseRoute(options.route, *routeDocument);
    if (!site) complain(site.error());
    if (!route) complain(route.error());
    return site && route ? simulate(options, *site, *route) : ExitStatus::badInput;
}

}  // namespace

void addSimulate(CLI::App& program, ExitStatus& status) {
    auto* const command = program.add_subcommand("simulate", ABOUT);
    const auto options = std::make_shared<Options>();
    command->footer(MORE);
    addBundle(*command, options->bundle);
    command
        ->add_option("--route", options->route,
                     "The way, see below; - is standard input.\n  --route morning.json")
        ->required()
        ->type_name("FILE");
    command
        ->add_option("--seed", options->seed,
                     "Another number, another walk of the same route (1).\n  --seed 7")
        ->transform(decimalInteger())
        ->type_name("N");
    command
        ->add_option("--interval-ms", options->intervalMilliseconds,
                     "Milliseconds from one sample to the next, 1 to 3600000 (500).\n  --interval-ms 1000")
        ->transform(decimalInteger())
        ->check(CLI::Range(std::int64_t{1}, std::int64_t{3600000}).description(""))
        ->type_name("MS");
    command->callback([command, options, &status] {
        refuseSharedInput(*command, "--bundle", "--route");
        Interruption::listen();
        status = simulate(*options);
    });
}

}  // namespace oska::tool
