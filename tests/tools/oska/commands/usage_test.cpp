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

using testing::IsEmpty;
using testing::StartsWith;
using Words = std::vector<std::string>;

TEST(Usage, HelpHasAnExampleAndTheVersionIsPrinted) {
    for (const Words& asked : {Words{"--help"}, {"replay", "--help"}, {"check", "--help"}}) {
        const auto ended = runOska(asked);
        EXPECT_EQ(ended.status, 0);
        EXPECT_THAT(ended.out, testing::HasSubstr("Example: oska "));
    }
    EXPECT_EQ(runOska({"run", "--bogus", "--help"}).status, 0);
    EXPECT_EQ(runOska({"--version"}).out, "oska " OSKA_VERSION "\n");
}

struct Mistake {
    Words arguments;
    std::string complaint = {};  // the beginning; empty: any
};

class UsageMistake : public testing::TestWithParam<Mistake> {};

TEST_P(UsageMistake, IsNamedOnStandardError) {
    const auto ended = runOska(GetParam().arguments);
    EXPECT_EQ(ended.status, 2);
    EXPECT_THAT(ended.out, IsEmpty());
    EXPECT_NE(ended.err, "");
    EXPECT_THAT(ended.err, StartsWith(GetParam().complaint));
}

INSTANTIATE_TEST_SUITE_P(
    Of, UsageMistake,
    testing::Values(
        Mistake{{}}, Mistake{{"--bogus"}, "Not expected: --bogus\n"},
        Mistake{{"repaly"},
                "oska: there is no command repaly; did you mean replay? oska --help lists them\n"},
        Mistake{{"fly\t"}, "oska: there is no command fly\\t; oska --help lists them\n"}, Mistake{{"check"}},
        Mistake{{"check", "--kind", "other", "b"}},
        Mistake{{"check", "--kind", "pelio", "--bogus"}, "Not expected: --bogus\n"},
        Mistake{{"explain", "dapo", "--bundle", "b", "--recording", "r", "--at", "-1"},
                "--at: -1 is not an instant; it takes whole milliseconds, from 0 on\n"},
        Mistake{{"replay", "pelio", "--bundle", "b"}},
        Mistake{{"replay", "tovan", "--bundle", "b", "--recording", "r"}},
        Mistake{{"replay", "pelio", "--bundle", "-", "--recording", "-"}},
        Mistake{{"replay", "pelio", "--bundle", "/none", "--recording", "-"}, "/none: No such file"},
        Mistake{{"replay", "pelio", "--bundle", "b", "--recording", "-", "--tail", "-1"}},
        Mistake{{"replay", "pelio", "--bundel", "b", "--recording", "r"},
                "Not expected: --bundel b; did you mean --bundle?\n"},
        Mistake{{"run", "pelio"}, "--sector is required\n"},
        Mistake{{"run", "pelio", "one", "--two", "--sector", "1"}, "Not expected: one --two\n"},
        Mistake{{"run", "pelio", "--sector", "1x"}},
        Mistake{{"run", "pelio", "--sector", "9223372036854775808"}},
        Mistake{{"run", "pelio", "--sector", "1", "--output-interval", "1"}},
        Mistake{{"run", "dapo", "--sector", "1", "--region", "KOREA"}},
        Mistake{{"run", "pelio", "--sector", "1", "--token", "a", "--no-token"}},
        Mistake{{"run", "pelio", "--sector", "1", "--speed", "0"}},
        Mistake{{"run", "pelio", "--sector", "1", "--speed", "inf"}}, Mistake{{"serve"}, "SITE_FOLDER"},
        Mistake{{"serve", "/none"}, "oska: /none: No such file"},
        Mistake{{"serve", "/dev/null"}, "oska: /dev/null: Not a directory\n"},
        Mistake{{"serve", "/", "--port", "65536"}, "--port"},
        Mistake{{"serve", "/", "--tls-cert", "c"}, "--tls-cert requires --tls-key"},
        Mistake{{"serve", "site", "--tls-cert", "c", "--tls-kye", "k"},
                "Not expected: --tls-kye k; did you mean --tls-key?\n"},
        Mistake{{"--bogus", "serve", "--port", "0"}, "Not expected: --bogus\n"}));

// When the pipe can be opened for writing, the program waits for it.
TEST(Interrupted, EveryCommandThatWaitsForInputEnds) {
    const Folder folder;
    const auto site = folder.file("site.json", fakes::PELIO_DOCUMENT);
    const auto pipe = folder.path() + "/pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const Words& waiting : {Words{"simulate", "--bundle", pipe, "--route", site},
                                 {"simulate", "--bundle", site, "--route", pipe},
                                 {"check", site, pipe, site},
                                 {"explain", "dapo", "--bundle", pipe, "--recording", site},
                                 {"replay", "pelio", "--bundle", site, "--recording", pipe}}) {
        RunningOska program(waiting);
        const int writer = open(pipe.c_str(), O_WRONLY | O_CLOEXEC);
        program.interrupt();
        EXPECT_EQ(program.waitForStatus(), 130) << testing::PrintToString(waiting);
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
