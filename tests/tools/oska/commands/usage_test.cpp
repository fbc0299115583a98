#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <new>
#include <stdexcept>
#include <thread>

#include "tests/fakes/site_server.h"
#include "tests/tools/oska/commands/oska_program.h"
#include "tools/oska/cli/memory_guard.h"

namespace oska::tool_tests {
namespace {

TEST(Usage, HelpHasAnExampleAndTheVersionIsPrinted) {
    for (const auto* asked : {"--help", "replay --help", "check --help", "run --bogus --help"})
        EXPECT_THAT(runOska(words(asked)).out, testing::ContainsRegex("Examples?: oska ")) << asked;
    EXPECT_EQ(runOska({"--version"}).out, "oska " OSKA_VERSION "\n");
}

TEST(Usage, AMistakeIsNamedOnStandardError) {
    const std::pair<std::string, std::string> complaints[] = {
        {"", ""},
        {"--bogus", "Not expected: --bogus\n"},
        {"repaly", "oska: there is no command repaly; did you mean replay? oska --help lists them\n"},
        {"fly\t", "oska: there is no command fly\\t; oska --help lists them\n"},
        {"check", ""},
        {"check --kind other b", ""},
        {"explain dapo --bundle b --recording r --at -1", "--at: -1 is not an instant; it takes whole "},
        {"replay pelio --bundle b", ""},
        {"replay tovan --bundle b --recording r", ""},
        {"replay pelio --bundle - --recording -", ""},
        {"replay pelio --bundle /none --recording -", "/none: No such file"},
        {"replay pelio --bundle b --recording - --tail -1", ""},
        {"replay pelio --bundel b --recording r", "Not expected: --bundel b; did you mean --bundle?\n"},
        {"run pelio", "--sector is required\n"},
        {"run pelio one --two --sector 1", "Not expected: one --two\n"},
        {"run pelio --sector 1 --recording /none", "/none: No such file or directory\n"},
        {"run pelio --sector 1x", ""},
        {"run pelio --sector 9223372036854775808", ""},
        {"run pelio --sector 1 --output-interval 1", ""},
        {"run dapo --sector 1 --region KOREA", ""},
        {"run pelio --sector 1 --token a --no-token", ""},
        {"run pelio --sector 1 --speed 0", ""},
        {"run pelio --sector 1 --speed inf", ""},
        {"serve", "SITE_FOLDER"},
        {"serve /dev/null", "oska: /dev/null: Not a directory\n"},
        {"serve / --port 65536", "--port"},
        {"serve / --tls-cert c", "--tls-cert requires --tls-key"},
        {"--bogus serve --port 0", "Not expected: --bogus\n"},
    };
    for (const auto& [arguments, complaint] : complaints) {  // of which this is the beginning
        const auto ended = runOska(words(arguments));
        EXPECT_EQ(ended.status, 2) << arguments;
        EXPECT_EQ(ended.out, "") << arguments;
        EXPECT_NE(ended.err, "") << arguments;
        EXPECT_THAT(ended.err, testing::StartsWith(complaint));
    }
}

// When the pipe can be opened for writing, the program waits for it.
TEST(Interrupted, EveryCommandThatWaitsForInputEnds) {
    const Folder folder;
    const auto site = folder.file("site.json", fakes::PELIO_DOCUMENT);
    const auto pipe = folder.path() + "/pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const auto& waiting :
         {"simulate --bundle " + pipe + " --route " + site, "simulate --bundle " + site + " --route " + pipe,
          "check " + site + " " + pipe + " " + site, "explain dapo --bundle " + pipe + " --recording " + site,
          "replay pelio --bundle " + site + " --recording " + pipe}) {
        const RunningOska program(words(waiting));
        const int writer = open(pipe.c_str(), O_WRONLY | O_CLOEXEC);
        EXPECT_EQ(program.interrupt(), 130) << waiting;
        close(writer);
    }
}

TEST(MemoryGuard, TurnsAWantOfMemoryIntoAnErrorOnAnyThread) {
    const auto wantsTooMuch = []() -> tool::ExitStatus { throw std::bad_alloc(); };
    EXPECT_EXIT(std::exit(static_cast<int>(tool::runGuarded(wantsTooMuch))), testing::ExitedWithCode(2),
                "^oska: out of memory\n$");
    const auto onAThread = [] {
        std::thread([] { throw std::length_error("too long"); }).join();
        return tool::ExitStatus::done;
    };
    EXPECT_EXIT((void)tool::runGuarded(onAThread), testing::ExitedWithCode(2), "^oska: out of memory\n$");
}

}  // namespace
}  // namespace oska::tool_tests
