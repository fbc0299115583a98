#include "oska/foundation/logger.h"

#include <gtest/gtest.h>

#include "oska/foundation/log_message.h"
#include "tests/fakes/output_capture.h"

namespace oska {
namespace {

using Lines = std::vector<std::string>;

constexpr Log LOG{"DapoView"};

TEST(Logger, AlignsTheClassTagInColumnNineAndSwitchedOffLeavesOnlyDirectLines) {
    fakes::OutputCapture output;
    LOG.info("op", "text");
    LOG.warn("op", "text");
    LOG.error("op", "text", {{"sectorId", 12}, {"forceUpdate", false}, {"id", "a b"}, {"interval", 1.0}});
    LOG.write(OskaLogLevel::INFO, "");
    OskaLogger::setDebugOption(false);
    LOG.error("op", "text");
    writeDirectLine("direct");
    EXPECT_EQ(
        output.take(),
        (Lines{
            "[INFO]  [DapoView] (op) : text", "[WARN]  [DapoView] (op) : text",
            "[ERROR] [DapoView] (op) : text // sectorId = 12, forceUpdate = false, id = a b, interval = 1.0",
            "[INFO]  [DapoView] ", "direct"}));
}

TEST(Logger, NoValueStartsALineOfItsOwnOrSteersATerminal) {
    using namespace std::string_literals;
    fakes::OutputCapture output;
    const std::pair<std::string, std::string> table[] = {
        {"1\n[ERROR] forged\r", R"(1\n[ERROR] forged\r)"},
        {"\0\t\b\f\x0b\x1b[2J\x1f"s, R"(\u0000\t\b\f\u000b\u001b[2J\u001f)"},
        {" ~\x7f\u0080\u0085\u009f\u00a0", " ~\\u007f\\u0080\\u0085\\u009f\u00a0"},
        {"\u2027\u2028\u2029\u202a", "\u2027\\u2028\\u2029\u202a"},
        {"caf\u00e9 / \"\\n\" \U0001F600", "caf\u00e9 / \"\\n\" \U0001F600"},
        {"\x85|\x9b|\xa0\xff|\xc0\x8a|\xe2\x80", "\\u0085|\\u009b|\xa0\xff|\xc0\\u008a|\xe2\\u0080"},
    };
    for (const auto& [value, written] : table) {
        LOG.info("op", "text", {{"versionId", value}, {"n", 1}});
        LOG.write(OskaLogLevel::ERROR, value);
        writeDirectLine(value);
        EXPECT_EQ(output.take(),
                  (Lines{"[INFO]  [DapoView] (op) : text // versionId = " + written + ", n = 1",
                         "[ERROR] [DapoView] " + written, written}));
    }
}

}  // namespace
}  // namespace oska
