#include "tools/oska/cli/input_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "tools/oska/cli/complaint.h"
#include "tools/oska/cli/interruption.h"

namespace oska::tool {
namespace {

class Input {
public:
    explicit Input(const std::string& path) : file_(openInput(path)) {}
    ~Input() {
        if (file_ > STDIN_FILENO) close(file_);
    }
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    [[nodiscard]] int file() const { return file_; }

private:
    const int file_;
};

Unreadable unreadable(const std::string& path) { return {systemProblem(path, errno)}; }

}  // namespace

std::string systemProblem(const std::string& path, int error) {
    return path + ": " + std::generic_category().message(error);
}

int openInput(const std::string& path) {
    if (path == "-") return STDIN_FILENO;
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    // Reading waits as usual.
    if (file >= 0) fcntl(file, F_SETFL, fcntl(file, F_GETFL) & ~O_NONBLOCK);
    return file;
}

Result<std::string, Unreadable> readInput(const std::string& path) {
    const Input input(path);
    if (input.file() < 0) return unreadable(path);
    std::string text;
    for (std::size_t held = 0;; held = text.size()) {
        if (!Interruption::waitForInput(input.file()))
            return Unreadable{.problem = "", .isInterrupted = true};
        text.resize(held + (std::size_t{1} << 16) + held / 2);
        const auto count = read(input.file(), text.data() + held, text.size() - held);
        if (count < 0 && errno != EINTR) return unreadable(path);
        text.resize(held + (count > 0 ? static_cast<std::size_t>(count) : 0));
        if (count == 0) return text;
    }
}

ExitStatus complainOf(const Unreadable& unreadable) {
    if (unreadable.isInterrupted) return ExitStatus::interrupted;
    complain(unreadable.problem);
    return ExitStatus::badInput;
}

}  // namespace oska::tool
