#include "tests/tools/oska/commands/oska_program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>

extern char** environ;

namespace oska::tool_tests {
namespace {

struct Redirection {
    int file;
    int target;
};

pid_t spawn(const std::vector<std::string>& arguments, const std::vector<Redirection>& redirections) {
    std::vector<std::string> words{OSKA_PROGRAM};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (auto& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const auto& [file, target] : redirections) posix_spawn_file_actions_adddup2(&actions, file, target);
    pid_t process = -1;
    EXPECT_EQ(posix_spawn(&process, OSKA_PROGRAM, &actions, nullptr, pointers.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    return process;
}

int statusOf(pid_t process) {
    int status = 0;
    waitpid(process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

std::string contentOf(const std::string& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

std::string bundleDocument(const std::string& levels) {
    return R"({"id":7,"name":"s","operating_system":"","buildings":[{"id":1,"name":"b","levels":[)" + levels +
           "]}]}";
}

std::string levelDocument(int id, const std::string& wards, const std::string& scale) {
    return R"({"id":)" + std::to_string(id) +
           R"(,"name":"l","map_image":{"url":"u","image_width":10,"image_height":10,"scale_x":)" + scale +
           R"(,"scale_y":1,"offset_x":0,"offset_y":0},"wards":[)" + wards + "]}";
}

std::string heard(int mobileTime) {
    return R"({"mobile_time":)" + std::to_string(mobileTime) + R"(,"rfs":{" Lobby-A\n":-60}})" + "\n";
}

std::string action(int mobileTime, const std::string& name) {
    return R"({"mobile_time":)" + std::to_string(mobileTime) + R"(,"action":")" + name + "\"}\n";
}

std::vector<std::string> Ended::events() const {
    std::vector<std::string> found;
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with('{')) found.push_back(line);
    }
    return found;
}

Folder::Folder() {
    auto pattern = (std::filesystem::temp_directory_path() / "oska-XXXXXX").string();
    path_ = mkdtemp(pattern.data());
}

Folder::~Folder() { std::filesystem::remove_all(path_); }

std::string Folder::file(const std::string& name, const std::string& content) const {
    const auto path = path_ + "/" + name;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

// Through files, so that neither side ever waits for a full pipe.
Ended runOska(const std::vector<std::string>& arguments, const std::string& standardInput) {
    const Folder folder;
    const auto in = folder.file("in", standardInput);
    const auto out = folder.file("out", "");
    const auto err = folder.file("err", "");
    const std::array files{open(in.c_str(), O_RDONLY | O_CLOEXEC), open(out.c_str(), O_WRONLY | O_CLOEXEC),
                           open(err.c_str(), O_WRONLY | O_CLOEXEC)};
    const auto process = spawn(arguments, {{files[0], 0}, {files[1], 1}, {files[2], 2}});
    for (const int file : files) close(file);
    const int status = statusOf(process);
    return {status, contentOf(out), contentOf(err)};
}

RunningOska::RunningOska(const std::vector<std::string>& arguments, int output) {
    std::array<int, 2> toProgram{};
    std::array<int, 2> fromProgram{};
    EXPECT_EQ(pipe2(toProgram.data(), O_CLOEXEC) + pipe2(fromProgram.data(), O_CLOEXEC), 0);
    process_ = spawn(arguments, {{toProgram[0], 0}, {fromProgram[1], output}});
    close(toProgram[0]);
    close(fromProgram[1]);
    input_ = toProgram[1];
    output_ = fromProgram[0];
}

RunningOska::~RunningOska() {
    if (input_ >= 0) close(input_);
    close(output_);
    if (process_ > 0) statusOf(process_);
}

void RunningOska::write(const std::string& text) const {
    EXPECT_EQ(::write(input_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

void RunningOska::endInput() { close(std::exchange(input_, -1)); }

std::string RunningOska::readUntil(const std::string& text) {
    std::string line;
    do line = readLine();
    while (!line.empty() && line.find(text) == std::string::npos);
    return line;
}

std::string RunningOska::readLine() {
    std::string line;
    for (char c = 0; read(output_, &c, 1) == 1 && c != '\n';) line += c;
    return line;
}

void RunningOska::interrupt() const { kill(process_, SIGINT); }

int RunningOska::waitForStatus() { return statusOf(std::exchange(process_, -1)); }

}  // namespace oska::tool_tests
