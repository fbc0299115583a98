#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "oska/foundation/logger.h"
#include "oska/platform/quenlo_common.h"
#include "oska/resources/bundle.h"
#include "tools/oska/cli/common_options.h"
#include "tools/oska/cli/complaint.h"
#include "tools/oska/cli/input_file.h"
#include "tools/oska/cli/interruption.h"
#include "tools/oska/cli/option_values.h"
#include "tools/oska/cli/output_file.h"
#include "tools/oska/cli/progress.h"
#include "tools/oska/cli/wording.h"
#include "tools/oska/commands/commands.h"
#include "tools/oska/drawing/walk_drawing.h"
#include "tools/oska/drawing/walk_trace.h"
#include "tools/oska/hosts/events.h"
#include "tools/oska/hosts/service_options.h"
#include "tools/oska/hosts/virtual_site.h"
#include "tools/oska/recording/recording.h"
#include "tools/oska/site/site.h"

namespace oska::tool {
namespace {

constexpr auto ABOUT = "Replay a recorded walk: what would a host have heard?";

constexpr auto MORE =
    R"(Runs the real service in virtual time, as fast as the machine can, and prints what a host hears as events, one
JSON object a line. The bundle comes from a server in memory. The same input gives the same output, byte for byte.

The clock starts at the first line's mobile_time; the service is initialised and started then. A line stamped earlier
than the clock is handled at once, with its own mobile_time. After the last line the clock goes on for --tail seconds,
and the service is stopped. An empty recording is a service that is initialised, started and stopped at time 0.

A recording is JSON Lines: samples and what the host did, in the order in which they happened.
  {"mobile_time": 1700000000500, "rfs": {"lobby-a": -61.5, "gate 2": -80}}
  {"mobile_time": 1700000001000, "action": "stop"}
Both services know the actions start, stop and initialize ("forceUpdate": true or false); Dapo knows tap, foreground,
setVisibility ("isVisible"), setSelectionInterval ("seconds") and setUnchangedDeliveryInterval ("seconds", a number or
null), too. Blank lines are skipped, and keys that a
line does not need are ignored. A line with both rfs and action is an error, and so is an action of another service.
An error ends the run: it names file and line, and all events before it have been printed.

A bundle that does not decode is the service's business: its initialisation fails, as it would on a phone, and standard
error says where the fault lies. Nothing runs if neither the bundle nor --sector names a sector.

--svg draws the walk, one panel a level: the wards, Pelio's positions in their order, the wards that Dapo detected. The
events are printed all the same.

Example: oska replay pelio --bundle site.json --recording walk.jsonl --log)";

struct Options {
    ServiceOptions service{.service = {}, .id = "replay"};
    std::string bundle;
    std::string recording;
    double tailSeconds = 6;
    std::optional<std::int64_t> sector;
    std::string svg;  ///< empty: no drawing
    bool log = false;
};

/// The sector of a bundle. It can be read from bundles with faults elsewhere.
struct SectorOfBundle {
    std::int64_t id = 0;
};

template <class Visit>
void fields(Visit& f, SectorOfBundle& bundle) {
    f("id", bundle.id);
}

std::chrono::nanoseconds span(double seconds) {
    // Three centuries are the most that 64 bits of nanoseconds hold.
    constexpr auto LONGEST = 9.2e9;
    return std::chrono::nanoseconds(static_cast<std::int64_t>(std::min(seconds, LONGEST) * 1e9));
}

using OnEvent = std::function<void(std::string_view line)>;

/// The service and its world from the first line on.
class VirtualRun {
public:
    /// `onEvent` is handed every event line, unless it is empty.
    VirtualRun(const ServiceOptions& options, std::string bundle, std::int64_t begin, const OnEvent& onEvent)
        : site_(std::move(bundle), {begin, 0}), events_(site_.clock()), host_(makeHost(options, events_)) {
        events_.listen(onEvent);
        site_.onUpload([this](const auto& batch) { printUpload(batch); });
        host_->initialize(false);
        site_.time().runDue();
        if (!host_->firstInitialization())
            complain("oska: the service refuses the id " + inQuotes(options.id));
        host_->start();
        site_.time().runDue();
    }

    void handle(const RecordedLine& line) {
        advanceTo({line.mobileTime, 0});
        if (Interruption::requested()) return;
        if (const auto* const sample = std::get_if<platform::ReceivedForce>(&line.what)) {
            site_.source().send(*sample);
        } else {
            host_->perform(std::get<Action>(line.what));
        }
        site_.time().runDue();
    }

    void end(std::chrono::nanoseconds tail) {
        advanceTo(site_.time().now() + tail);
        host_->stop();
        site_.time().runDue();
    }

    [[nodiscard]] bool beganWell() const {
        return host_->firstInitialization().value_or(false) && host_->firstStart().value_or(false);
    }

private:
    /// Skips ticks that do nothing, so that a pause of years takes no longer than one of seconds.
    void advanceTo(platform::WallTime target) {
        site_.time().advanceTo(target, [this] { return host_->isIdle(); });
    }

    void printUpload(const std::vector<platform::ReceivedForce>& batch) const {
        if (batch.empty()) return;  // the kit sends none
        events_.print("upload", "samples", static_cast<std::int64_t>(batch.size()), "first",
                      batch.front().mobile_time, "last", batch.back().mobile_time);
    }

    VirtualSite site_;
    Events events_;
    std::shared_ptr<Host> host_;
};

class Replay {
public:
    Replay(const Options& options, std::int64_t sector, std::string bundle, OnEvent onEvent)
        : service_(options.service),
          onEvent_(std::move(onEvent)),
          tail_(span(options.tailSeconds)),
          bundle_(std::move(bundle)),
          recording_(options.recording, service_.kind(), [this](int file) { return awaitInput(file); }) {
        service_.sectorId = sector;
    }

    ExitStatus run() {
        while (!Interruption::requested()) {
            const auto line = recording_.next();
            if (!line) break;
            if (!run_) begin(line->mobileTime);
            run_->handle(*line);
        }
        return end();
    }

private:
    void begin(std::int64_t mobileTime) { run_.emplace(service_, std::move(bundle_), mobileTime, onEvent_); }

    bool awaitInput(int file) {
        std::fflush(stdout);
        const auto& lines = recording_.lines();
        progress_.update(lines.bytesRead(), lines.size());
        return Interruption::waitForInput(file);
    }

    ExitStatus end() {
        if (recording_.ending() == LineReader::Ending::failed) {
            complain(recording_.problem());
            return ExitStatus::badInput;
        }
        if (recording_.ending() != LineReader::Ending::end) {
            if (run_) run_->end({});
            return ExitStatus::interrupted;
        }
        if (!run_) begin(0);
        run_->end(tail_);
        if (Interruption::requested()) return ExitStatus::interrupted;
        return run_->beganWell() ? ExitStatus::done : ExitStatus::serviceFailed;
    }

    ServiceOptions service_;
    OnEvent onEvent_;
    std::chrono::nanoseconds tail_;
    std::string bundle_;  // until the run begins
    Progress progress_;
    Recording recording_;
    std::optional<VirtualRun> run_;
};

/// The sector to load. A bundle that does not decode is loaded all the same if its sector is known.
template <class Bundle>
std::optional<std::int64_t> chooseSector(const Options& options, const std::string& bundle) {
    const auto decoded = json::decode<Bundle>(bundle);
    if (!decoded) complain(faultLine(options.bundle, decoded.error()));
    if (options.sector) return options.sector;
    if (decoded) return decoded->id;
    const auto sectorOfBundle = json::decode<SectorOfBundle>(bundle);
    return sectorOfBundle ? std::optional(sectorOfBundle->id) : std::nullopt;
}

/// A bundle that does not decode is not drawn; the run reports it.
ExitStatus replayAndDraw(const Options& options, std::int64_t sector, std::string bundle) {
    const auto kind = options.service.kind();
    const auto site = parseSite(options.bundle, bundle, kind);
    if (!site) return Replay(options, sector, std::move(bundle), nullptr).run();
    WalkTracer tracer(*site);
    const auto status =
        Replay(options, sector, std::move(bundle), [&](std::string_view line) { tracer.note(line); }).run();
    if (status == ExitStatus::badInput) return status;
    const auto problem = writeOutput(options.svg, drawWalk(*site, tracer.trace(), kind));
    if (!problem) return status;
    complain(*problem);
    return ExitStatus::badInput;
}

ExitStatus replay(const Options& options) {
    Interruption::listen();
    auto bundle = readInput(options.bundle);
    if (!bundle) return complainOf(bundle.error());
    const bool isDapo = options.service.kind() == OskaService::dapo;
    const auto sector =
        isDapo ? chooseSector<DapoBundle>(options, *bundle) : chooseSector<PelioBundle>(options, *bundle);
    if (!sector) return ExitStatus::badInput;
    if (!options.svg.empty()) return replayAndDraw(options, *sector, *std::move(bundle));
    return Replay(options, *sector, *std::move(bundle), nullptr).run();
}

void addOptions(CLI::App& command, Options& options) {
    addServiceOptions(command, options.service);
    addBundle(command, options.bundle);
    addRecording(command, options.recording);
    command
        .add_option("--tail", options.tailSeconds,
                    "Seconds for which the clock goes on after the last line (6).\n  --tail 12.5")
        ->check(seconds())
        ->type_name("SECONDS");
    command.add_option("--sector", options.sector, "The sector to load (the bundle's id).\n  --sector 12")
        ->transform(decimalInteger())
        ->type_name("N");
    command
        .add_option("--id", options.service.id,
                    "The service id: ASCII letters, digits, _ and - (replay).\n  --id corner-shop")
        ->type_name("ID");
    command
        .add_option("--svg", options.svg,
                    "Draw the walk into this file, in place of what it held.\n  --svg walk.svg")
        ->type_name("FILE");
    command.add_flag("--log", options.log, "Print the kit's log lines, too, where they fall.\n  --log");
}

}  // namespace

void addReplay(CLI::App& program, ExitStatus& status) {
    auto* const command = program.add_subcommand("replay", ABOUT);
    const auto options = std::make_shared<Options>();
    command->footer(MORE);
    addOptions(*command, *options);
    command->callback([command, options, &status] {
        refuseSharedInput(*command, "--bundle", "--recording");
        refuseForeignOptions(*command, options->service);
        if (options->svg == "-")
            throw CLI::ValidationError("--svg needs a file: events go to standard output");
        refuseOutputOverInput(*command, "--svg", {"--bundle", "--recording"});
        OskaLogger::setDebugOption(options->log);
        platform::TovanReplayer::shared().setReplayMode(true);
        status = replay(*options);
    });
}

}  // namespace oska::tool
