#include "tools/oska/input_file.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

namespace oska::tool {
namespace {

struct CloseFile {
    void operator()(std::FILE* file) const {
        if (file != stdin) std::fclose(file);
    }
};

Unreadable unreadable(const std::string& path) {
    return {path + ": " + std::generic_category().message(errno)};
}

}  // namespace

platform::Result<std::string, Unreadable> readInput(const std::string& path) {
    const std::unique_ptr<std::FILE, CloseFile> file(path == "-" ? stdin : std::fopen(path.c_str(), "re"));
    if (!file) return unreadable(path);
    std::string text;
    for (std::size_t held = 0;; held = text.size()) {
        text.resize(held + (std::size_t{1} << 16) + held / 2);
        const auto count = std::fread(text.data() + held, 1, text.size() - held, file.get());
        text.resize(held + count);
        if (std::ferror(file.get()) != 0) return unreadable(path);
        if (count == 0) return text;
    }
}

}  // namespace oska::tool
