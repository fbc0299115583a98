#include "oska/foundation/logger.h"

#include <gtest/gtest.h>

#include "oska/foundation/log_message.h"

namespace oska {
namespace {

constexpr Log LOG{"DapoView"};

template <class Action>
std::string outputOf(Action action) {
    testing::internal::CaptureStdout();
    action();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

TEST(Logger, StartsSwitchedOnAndAlignsTheClassTagInColumnNine) {
    EXPECT_EQ(outputOf([] {
                  LOG.info("op", "text");
                  LOG.warn("op", "text");
                  LOG.error("op", "text", {{"sectorId", 12}, {"forceUpdate", false}, {"id", "a b"}, {"interval", 1.0}});
                  LOG.write(OskaLogLevel::INFO, "");
              }),
              "[INFO]  [DapoView] (op) : text\n"
              "[WARN]  [DapoView] (op) : text\n"
              "[ERROR] [DapoView] (op) : text // sectorId = 12, forceUpdate = false, id = a b, interval = 1.0\n"
              "[INFO]  [DapoView] \n");
}

TEST(Logger, SwitchedOffLeavesOnlyDirectLines) {
    OskaLogger::setDebugOption(false);
    EXPECT_EQ(outputOf([] {
                  LOG.error("op", "text");
                  writeDirectLine("direct");
              }),
              "direct\n");
}

TEST(Logger, NoValueStartsALineOfItsOwn) {
    EXPECT_EQ(outputOf([] {
                  LOG.info("op", "text", {{"versionId", "1\n[ERROR] forged\r"}});
                  writeDirectLine("a\nb");
              }),
              "[INFO]  [DapoView] (op) : text // versionId = 1\\n[ERROR] forged\\r\n"
              "a\\nb\n");
}

}  // namespace
}  // namespace oska
