#include "tools/oska/recording/line_reader.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "tools/oska/cli/input_file.h"

namespace oska::tool {
namespace {

constexpr std::size_t BLOCK = std::size_t{64} << 10;

bool isFolder(int file) {
    struct stat about = {};
    return fstat(file, &about) == 0 && S_ISDIR(about.st_mode);
}

}  // namespace

LineReader::LineReader(const std::string& path, AwaitInput awaitInput)
    : file_(openInput(path)), awaitInput_(std::move(awaitInput)) {
    if (file_ < 0) {
        fail(errno);
    } else if (isFolder(file_)) {
        fail(EISDIR);  // which opens like a file, and would fail at the first read only
    }
}

LineReader::~LineReader() {
    if (file_ > STDIN_FILENO) close(file_);
}

std::optional<std::string_view> LineReader::next() {
    while (ending_ == Ending::none) {
        const auto lineFeed = buffer_.find('\n', searchedTo_);
        if (lineFeed != std::string::npos) return take(lineFeed - lineBegin_, 1);
        searchedTo_ = buffer_.size();
        if (!readMore() && ending_ == Ending::end && lineBegin_ < buffer_.size()) {
            return take(buffer_.size() - lineBegin_, 0);
        }
    }
    return std::nullopt;
}

std::optional<std::string_view> LineReader::take(std::size_t length, std::size_t separator) {
    const auto line = std::string_view(buffer_).substr(lineBegin_, length);
    lineBegin_ += length + separator;
    searchedTo_ = lineBegin_;
    ++lineNumber_;
    return line;
}

bool LineReader::readMore() {
    buffer_.erase(0, std::exchange(lineBegin_, 0));
    searchedTo_ = buffer_.size();
    if (!awaitInput_(file_)) {
        ending_ = Ending::interrupted;
        return false;
    }
    const auto held = buffer_.size();
    buffer_.resize(held + BLOCK);
    const auto count = read(file_, buffer_.data() + held, BLOCK);
    const int error = errno;
    buffer_.resize(held + (count > 0 ? static_cast<std::size_t>(count) : 0));
    if (count == 0) ending_ = Ending::end;
    if (count < 0) fail(error);
    bytesRead_ += buffer_.size() - held;
    return count > 0;
}

void LineReader::fail(int error) {
    ending_ = Ending::failed;
    problem_ = std::generic_category().message(error);
}

std::optional<std::uint64_t> LineReader::size() const {
    struct stat about = {};
    if (fstat(file_, &about) != 0 || !S_ISREG(about.st_mode)) return std::nullopt;
    return static_cast<std::uint64_t>(about.st_size);
}

}  // namespace oska::tool
