#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "adapters/virtual/fixed_token.h"
#include "adapters/virtual/replay_generator.h"
#include "oska/foundation/logger.h"
#include "oska/foundation/network_constants.h"
#include "oska/platform/platform.h"
#include "oska/platform/quenlo_common.h"
#include "tools/oska/cli/common_options.h"
#include "tools/oska/cli/complaint.h"
#include "tools/oska/cli/interruption.h"
#include "tools/oska/cli/option_values.h"
#include "tools/oska/cli/wording.h"
#include "tools/oska/commands/commands.h"
#include "tools/oska/hosts/events.h"
#include "tools/oska/hosts/live_loop.h"
#include "tools/oska/hosts/load_witness.h"
#include "tools/oska/hosts/pending_requests.h"
#include "tools/oska/hosts/service_options.h"
#include "tools/oska/recording/recording.h"

namespace oska::tool {
namespace {

constexpr auto ABOUT = "Run a service for real, against a real server.";

constexpr auto MORE =
    R"(Runs the real service in real time, HTTP and TLS included, and prints what a host hears as events, one JSON object a
line, among the kit's own lines.

Without --recording: initialises, prints the outcome and exits. With it: starts once the initialisation has reported,
whatever it reported, feeds the recording at its own pace, waits for --tail seconds, stops, and exits when all requests
have ended. A line stamped earlier than one before it is handled at once. See `oska replay --help` for recordings.

When a bundle cannot be loaded, standard error says why.

Ctrl-C stops the service in order; what it has to upload then is still uploaded.

Examples: oska serve site &
          oska run pelio --sector 12
          oska run pelio --base-url https://10.0.0.2:8443 --token secret --sector 12 --recording walk.jsonl --speed 20)";

struct Options {
    ServiceOptions service{.service = {}, .id = "oska"};
    std::optional<std::string> baseUrl;
    bool forceUpdate = false;
    std::string token = "oska";
    bool noToken = false;
    std::optional<std::string> recording;
    double speed = 1;
    double tailSeconds = 0;
    bool quiet = false;
};

/// The time since it was made. It does not follow changes of the system's clock.
class Stopwatch final : public platform::WallClock {
public:
    [[nodiscard]] platform::WallTime now() const override {
        return platform::WallTime{} + (LiveLoop::Clock::now() - begin_);
    }

private:
    const LiveLoop::Clock::time_point begin_ = LiveLoop::Clock::now();
};

/// No provider means that no user is signed in.
std::shared_ptr<platform::QuenloAuthManager> tokens(const Options& options) {
    return options.noToken ? nullptr : std::make_shared<virtual_world::FixedToken>(options.token);
}

/// A number of seconds may be as large as a double can hold; a loop waits for a year at most.
LiveLoop::Clock::duration span(double seconds) {
    constexpr double LONGEST = 31'536'000;
    return std::chrono::duration_cast<LiveLoop::Clock::duration>(
        std::chrono::duration<double>(std::min(seconds, LONGEST)));
}

/// When the lines of a recording are due: at their own distance from the first, divided by the speed.
class Pace {
public:
    explicit Pace(double speed) : speed_(speed) {}

    [[nodiscard]] LiveLoop::Clock::time_point due(std::int64_t mobileTime) {
        if (!std::exchange(hasBegun_, true)) {
            first_ = mobileTime;
            begin_ = LiveLoop::Clock::now();
        }
        const double seconds = platform::secondsBetween({first_, 0}, {mobileTime, 0});
        return begin_ + span(std::max(seconds, 0.0) / speed_);
    }

private:
    const double speed_;
    bool hasBegun_ = false;
    std::int64_t first_ = 0;
    LiveLoop::Clock::time_point begin_;
};

class LiveRun {
public:
    explicit LiveRun(const Options& options)
        : options_(options),
          witness_(options.service.kind(), options.service.sectorId),
          loop_({.auth = tokens(options), .makeRFDGenerator = source_.factory()}),
          events_(std::make_shared<Stopwatch>()) {
        auto platform = loop_.platform();
        platform.http = requests_.countIn(witness_.watch(platform.http), platform.mainQueue);
        platform::install(std::move(platform));
        if (options.recording) {
            recording_.emplace(*options.recording, options.service.kind(),
                               [this](int file) { return loop_.runUntilReadable(file); });
        }
        host_ = makeHost(options.service, events_);
        host_->onLoadEnd([this](bool success) { noteLoadEnd(success); });
    }

    ExitStatus run() {
        if (hasBadInput()) return complainOfInput();
        const bool isPlayed = initialize() && play();
        if (host_->firstStart()) host_->stop();
        const bool isWhole = isPlayed && loop_.runUntil([this] { return isQuiet(); });
        if (!isWhole) loop_.finish([this] { return requests_.uploads() == 0; });
        return isWhole ? outcome() : ExitStatus::interrupted;
    }

private:
    // The steps. Each returns false if the program was interrupted.

    bool initialize() {
        host_->initialize(options_.forceUpdate);
        if (!loop_.runUntil([this] { return host_->firstInitialization() || isQuiet(); })) return false;
        if (!host_->firstInitialization())
            complain("oska: the service refuses the id " + inQuotes(options_.service.id));
        return true;
    }

    bool play() {
        if (!recording_) return true;
        host_->start();
        if (!feed()) return false;
        if (hasBadInput()) complainOfInput();
        // The jobs that the last sample has put on the queue are run before the stop.
        return loop_.runUntil(LiveLoop::Clock::now() + span(hasBadInput() ? 0 : options_.tailSeconds));
    }

    bool feed() {
        Pace pace(options_.speed);
        while (const auto line = recording_->next()) {
            if (!loop_.runUntil(pace.due(line->mobileTime))) return false;
            handle(*line);
        }
        return recording_->ending() != LineReader::Ending::interrupted;
    }

    void handle(const RecordedLine& line) {
        if (const auto* const sample = std::get_if<platform::ReceivedForce>(&line.what)) {
            source_.send(*sample);
        } else {
            host_->perform(std::get<Action>(line.what));
        }
    }

    /// Nothing of what the service has begun is under way.
    [[nodiscard]] bool isQuiet() const { return requests_.count() == 0 && !loop_.isBusy(); }

    void noteLoadEnd(bool success) {
        if (!success) {
            complain("oska: cannot load sector " + std::to_string(options_.service.sectorId) + ": " +
                     witness_.reason());
        }
        witness_.forget();
    }

    [[nodiscard]] bool hasBadInput() const {
        return recording_ && recording_->ending() == LineReader::Ending::failed;
    }

    ExitStatus complainOfInput() const {
        complain(recording_->problem());
        return ExitStatus::badInput;
    }

    [[nodiscard]] ExitStatus outcome() const {
        if (hasBadInput()) return ExitStatus::badInput;
        const bool isInitialized = host_->firstInitialization().value_or(false);
        const bool isStarted = !recording_ || host_->firstStart().value_or(false);
        return isInitialized && isStarted ? ExitStatus::done : ExitStatus::serviceFailed;
    }

    const Options& options_;
    virtual_world::ReplaySource source_;
    PendingRequests requests_;
    LoadWitness witness_;
    LiveLoop loop_;
    Events events_;
    std::optional<Recording> recording_;
    std::shared_ptr<Host> host_;  // goes first: what ends with the platform is not reported any more
};

void addOptions(CLI::App& command, Options& options) {
    addServiceOptions(command, options.service);
    command
        .add_option("--base-url", options.baseUrl,
                    "The on-premise server (http://localhost:5050, where `oska serve` listens). Of the host "
                    "named here\n"
                    "any certificate is accepted.\n  --base-url https://10.0.0.2:8443")
        ->type_name("URL");
    command
        .add_option("--id", options.service.id,
                    "The service id: ASCII letters, digits, _ and - (oska).\n  --id corner-shop")
        ->type_name("ID");
    command.add_option("--sector", options.service.sectorId, "The sector to load.\n  --sector 12")
        ->required()
        ->transform(decimalInteger())
        ->type_name("N");
    command
        .add_option("--region", options.service.region,
                    "Pelio: KOREA or CANADA (KOREA); anything else counts as Korea.\n  --region CANADA")
        ->type_name("NAME");
    command.add_flag("--force-update", options.forceUpdate,
                     "Download the bundle even when its version is unchanged.\n  --force-update");
    auto* const token =
        command
            .add_option("--token", options.token, "What the token provider answers (oska).\n  --token secret")
            ->type_name("TEXT");
    command
        .add_flag("--no-token", options.noToken,
                  "There is no token, as when no user is signed in, and nothing can be loaded.\n  --no-token")
        ->excludes(token);
}

void addRecordingOptions(CLI::App& command, Options& options) {
    addRecording(command, options.recording);
    command
        .add_option("--speed", options.speed, "How many times faster than it was recorded (1).\n  --speed 20")
        ->check(factor())
        ->type_name("X");
    command
        .add_option("--tail", options.tailSeconds,
                    "Seconds for which the service runs on after the last line (0).\n  --tail 12.5")
        ->check(seconds())
        ->type_name("SECONDS");
    command.add_flag("--quiet", options.quiet, "Switch the kit's log off.\n  --quiet");
}

ExitStatus run(const Options& options) {
    // Each line is written at once, for programs that read the output while this one runs.
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    Interruption::listen();
    OskaLogger::setDebugOption(!options.quiet);
    if (options.baseUrl) OskaOnPremiseNetworkConstants::setBaseURL(*options.baseUrl);
    platform::TovanReplayer::shared().setReplayMode(options.recording.has_value());
    return LiveRun(options).run();
}

}  // namespace

void addRun(CLI::App& program, ExitStatus& status) {
    auto* const command = program.add_subcommand("run", ABOUT);
    const auto options = std::make_shared<Options>();
    command->footer(MORE);
    addOptions(*command, *options);
    addRecordingOptions(*command, *options);
    command->callback([command, options, &status] {
        refuseForeignOptions(*command, options->service);
        options->service.baseUrl = options->baseUrl.value_or("");
        status = run(*options);
    });
}

}  // namespace oska::tool
