#include "tools/oska_serve/upload_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "oska/json/json.h"

namespace oska::tool {
namespace {

off_t sizeOf(int file) {
    struct stat about = {};
    return fstat(file, &about) == 0 && S_ISREG(about.st_mode) ? about.st_size : 0;
}

bool endsInsideALine(int file) {
    const auto size = sizeOf(file);
    char last = '\n';
    return size > 0 && pread(file, &last, 1, size - 1) == 1 && last != '\n';
}

void removeTarget(const std::string& path) {
    std::error_code error;
    const auto target = std::filesystem::canonical(path, error);
    if (!error) std::filesystem::remove(target, error);
}

}  // namespace

Result<std::unique_ptr<UploadFile>, Unreadable> UploadFile::open(const std::string& path,
                                                                 const Objection& objection) {
    constexpr int FLAGS = O_RDWR | O_APPEND | O_CLOEXEC;
    int file = ::open(path.c_str(), FLAGS);
    const bool isNew = file < 0 && errno == ENOENT;
    if (isNew) file = ::open(path.c_str(), FLAGS | O_CREAT, 0644);
    if (file < 0) return Unreadable{systemProblem(path, errno)};
    std::unique_ptr<UploadFile> opened(new UploadFile(path, file));
    // A file's identity is known only when it exists: its name may be a link to a file that did not exist.
    if (const auto problem = objection(*identityOf(file))) {
        if (isNew) removeTarget(path);
        return Unreadable{path + ": " + *problem};
    }
    if (endsInsideALine(file) && !opened->write("\n")) return Unreadable{systemProblem(path, errno)};
    return opened;
}

UploadFile::~UploadFile() { close(file_); }

std::optional<std::string> UploadFile::append(const std::vector<platform::ReceivedForce>& samples) {
    std::string lines;
    for (const auto& sample : samples) {
        const auto problem = json::append(lines, sample, json::Slashes::plain);
        if (problem) return problem->message();
        lines += '\n';
    }
    const std::lock_guard lock(mutex_);
    const auto size = sizeOf(file_);
    if (write(lines)) return std::nullopt;
    auto problem = systemProblem(path_, errno);
    // A full disk may have taken a part of it.
    if (size > 0 || sizeOf(file_) > 0) (void)!ftruncate(file_, size);
    return problem;
}

bool UploadFile::write(const std::string& text) const {
    for (std::size_t written = 0; written < text.size();) {
        const auto count = ::write(file_, text.data() + written, text.size() - written);
        if (count < 0 && errno != EINTR) return false;
        if (count > 0) written += static_cast<std::size_t>(count);
    }
    return true;
}

}  // namespace oska::tool
