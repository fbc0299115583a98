#include "oska/foundation/logger.h"

#include <gtest/gtest.h>

#include "oska/foundation/log_message.h"
#include "tests/fakes/output_capture.h"

namespace oska {
namespace {

using Lines = std::vector<std::string>;

constexpr Log LOG{"DapoView"};

TEST(Logger, StartsSwitchedOnAndAlignsTheClassTagInColumnNine) {
    fakes::OutputCapture output;
    LOG.info("op", "text");
    LOG.warn("op", "text");
    LOG.error("op", "text", {{"sectorId", 12}, {"forceUpdate", false}, {"id", "a b"}, {"interval", 1.0}});
    LOG.write(OskaLogLevel::INFO, "");
    EXPECT_EQ(
        output.take(),
        (Lines{
            "[INFO]  [DapoView] (op) : text", "[WARN]  [DapoView] (op) : text",
            "[ERROR] [DapoView] (op) : text // sectorId = 12, forceUpdate = false, id = a b, interval = 1.0",
            "[INFO]  [DapoView] "}));
}

TEST(Logger, SwitchedOffLeavesOnlyDirectLines) {
    OskaLogger::setDebugOption(false);
    fakes::OutputCapture output;
    LOG.error("op", "text");
    writeDirectLine("direct");
    EXPECT_EQ(output.take(), Lines{"direct"});
}

TEST(Logger, NoValueStartsALineOfItsOwn) {
    fakes::OutputCapture output;
    LOG.info("op", "text", {{"versionId", "1\n[ERROR] forged\r"}});
    writeDirectLine("a\nb");
    EXPECT_EQ(output.take(),
              (Lines{"[INFO]  [DapoView] (op) : text // versionId = 1\\n[ERROR] forged\\r", "a\\nb"}));
}

}  // namespace
}  // namespace oska
