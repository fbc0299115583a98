// The program of the Qt adapter's tests: an application without a screen.
#include <gtest/gtest.h>

#include <QApplication>
#include <cstdlib>
#include <filesystem>

namespace {

/// Qt complains when it has none, or one that others may look into.
void giveRuntimeFolder() {
    const auto folder = std::filesystem::path(testing::TempDir()) / "quenlooska_qt_tests";
    std::filesystem::create_directories(folder);
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
    setenv("XDG_RUNTIME_DIR", folder.c_str(), 0);  // unless it is set
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    giveRuntimeFolder();
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
