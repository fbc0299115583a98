#include "tests/tools/oska/commands/oska_program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace oska::tool_tests {
namespace {

using Streams = std::array<int, 3>;  // input, output and errors

pid_t spawn(std::vector<std::string> words, const Streams& streams) {
    words.insert(words.begin(), OSKA_PROGRAM);
    std::vector<char*> pointers;
    for (auto& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    int target = 0;
    for (const int file : streams) posix_spawn_file_actions_adddup2(&actions, file, target++);
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

std::string Ended::events() const {
    std::string found;
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);) found += line.starts_with('{') ? line + "\n" : "";
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

std::vector<std::string> words(const std::string& commandLine) {
    std::vector<std::string> found;
    std::istringstream text(commandLine);
    for (std::string word; std::getline(text, word, ' ');) found.push_back(word);
    return found;
}

// Through files, so that neither side ever waits for a full pipe; one holds more input than a test has.
Ended runOska(const std::vector<std::string>& arguments, const std::string& standardInput) {
    const Folder folder;
    std::array<int, 2> input{};
    EXPECT_EQ(pipe2(input.data(), O_CLOEXEC), 0);
    EXPECT_EQ(write(input[1], standardInput.data(), standardInput.size()), ssize(standardInput));
    close(input[1]);
    const std::array paths{folder.file("out", ""), folder.file("err", "")};
    const Streams streams{input[0], open(paths[0].c_str(), O_WRONLY | O_CLOEXEC),
                          open(paths[1].c_str(), O_WRONLY | O_CLOEXEC)};
    const int status = statusOf(spawn(arguments, streams));
    for (const int file : streams) close(file);
    return {status, contentOf(paths[0]), contentOf(paths[1])};
}

RunningOska::RunningOska(const std::vector<std::string>& arguments) {
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends_.data()), 0);
    process_ = spawn(arguments, {ends_[1], ends_[1], ends_[1]});
    close(ends_[1]);
}

RunningOska::~RunningOska() { close(ends_[0]); }

void RunningOska::write(const std::string& text) const {
    EXPECT_EQ(::write(ends_[0], text.data(), text.size()), ssize(text));
}

std::string RunningOska::readLine(const std::string& text) const {
    std::string line;
    for (char c = 0; read(ends_[0], &c, 1) == 1 && c != '\n';) line += c;
    return line.empty() || line.find(text) != std::string::npos ? line : readLine(text);
}

int RunningOska::interrupt() const {
    kill(process_, SIGINT);
    return statusOf(process_);
}

}  // namespace oska::tool_tests
