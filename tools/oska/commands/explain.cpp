#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "oska/foundation/logger.h"
#include "oska/json/json.h"
#include "tools/oska/cli/common_options.h"
#include "tools/oska/cli/complaint.h"
#include "tools/oska/cli/input_file.h"
#include "tools/oska/cli/interruption.h"
#include "tools/oska/cli/option_values.h"
#include "tools/oska/cli/progress.h"
#include "tools/oska/cli/wording.h"
#include "tools/oska/commands/commands.h"
#include "tools/oska/explaining/dapo_explainer.h"
#include "tools/oska/explaining/explanation.h"
#include "tools/oska/explaining/pelio_explainer.h"
#include "tools/oska/recording/recording.h"

namespace oska::tool {
namespace {

constexpr auto ABOUT = "Explain a recorded walk: why did nothing show, and why there?";

constexpr auto MORE =
    R"(Runs the recording through the kit's own engine, as a replay would, and says what its decisions rest on.

Dapo: of each ward that was heard, at its best instant or at --at, how many readings the window of 10 seconds held,
how many of them met the threshold, 6 of which make a detection, and what would have been enough; and what was
selected when. Pelio: the readings that met their ward's threshold within 5 seconds, which one won and by which rule,
and what held a change back; and each change of the position. --ward lists the readings themselves.

A name that no ward has is answered with the nearest names that exist; names that were heard and that no ward has are
listed. Names are compared as the kit does it: blanks and line breaks at both ends do not count, nor do capitals. A tab
does count.

Times are milliseconds since the run began, as in a replay's events.

Exit status: 0 when there is an answer, whatever it says; 2 when the bundle or the recording is not valid.

Example: oska explain dapo --bundle site.json --recording walk.jsonl --ward lobby-a)";

struct Options {
    std::string service;
    std::string bundle;
    std::string recording;
    std::optional<std::string> ward;
    std::optional<std::int64_t> at;
    bool json = false;
};

void printAnswer(const Explanation& explanation, bool asJson) {
    const auto text = asJson ? explanationAsJson(explanation) : explanationAsText(explanation);
    std::fwrite(text.data(), 1, text.size(), stdout);
}

/// Reads a recording once and passes its lines to an explainer.
class RecordingPass {
public:
    RecordingPass(const Options& options, OskaService service)
        : recording_(options.recording, service, [this](int file) { return awaitInput(file); }) {}

    ExitStatus passTo(Explainer& explainer) {
        while (!Interruption::requested()) {
            const auto line = recording_.next();
            if (!line) break;
            explainer.take(*line);
        }
        if (recording_.ending() == LineReader::Ending::end) return ExitStatus::done;
        if (recording_.ending() != LineReader::Ending::failed) return ExitStatus::interrupted;
        complain(recording_.problem());
        return ExitStatus::badInput;
    }

private:
    bool awaitInput(int file) {
        progress_.update(recording_.lines().bytesRead(), recording_.lines().size());
        return Interruption::waitForInput(file);
    }

    Progress progress_;
    Recording recording_;
};

template <class Bundle, class ExplainerOfKind>
ExitStatus explain(const Options& options, OskaService service, const std::string& document) {
    const auto bundle = json::decode<Bundle>(document);
    if (!bundle) {
        complain(faultLine(options.bundle, bundle.error()));
        return ExitStatus::badInput;
    }
    ExplainerOfKind explainer(*bundle, Question{options.ward, options.at});
    const auto status = RecordingPass(options, service).passTo(explainer);
    if (status == ExitStatus::done) printAnswer(explainer.finish(), options.json);
    return status;
}

ExitStatus explain(const Options& options) {
    Interruption::listen();
    const auto document = readInput(options.bundle);
    if (!document) return complainOf(document.error());
    return options.service == rawValue(OskaService::dapo)
               ? explain<DapoBundle, DapoExplainer>(options, OskaService::dapo, *document)
               : explain<PelioBundle, PelioExplainer>(options, OskaService::pelio, *document);
}

void addOptions(CLI::App& command, Options& options) {
    addServiceName(command, options.service);
    addBundle(command, options.bundle);
    addRecording(command, options.recording);
    command
        .add_option("--ward", options.ward,
                    "This ward alone, with its readings (all that were heard).\n  --ward \"gate 2\"")
        ->type_name("NAME");
    command
        .add_option("--at", options.at,
                    "The instant to look at (each ward's best one): milliseconds since the run began, or a "
                    "mobile_time, which\n"
                    "is what is not below the first line's. Between two samples the decision is that of the "
                    "earlier one.\n"
                    "  --at 12500")
        ->transform(instant())
        ->type_name("MS");
    command.add_flag("--json", options.json, "Print the answer as one JSON object, for programs.\n  --json");
}

}  // namespace

void addExplain(CLI::App& program, ExitStatus& status) {
    auto* const command = program.add_subcommand("explain", ABOUT);
    const auto options = std::make_shared<Options>();
    command->footer(MORE);
    addOptions(*command, *options);
    command->callback([command, options, &status] {
        refuseSharedInput(*command, "--bundle", "--recording");
        OskaLogger::setDebugOption(false);  // the engines log; only the answer is to be printed
        status = explain(*options);
    });
}

}  // namespace oska::tool
