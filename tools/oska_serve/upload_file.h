#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "oska/json/result.h"
#include "oska/platform/quenlo_common.h"
#include "tools/oska/cli/file_identity.h"
#include "tools/oska/cli/input_file.h"

namespace oska::tool {

/// A recording that grows by what is uploaded: a line for each sample, in the order of their coming. A file
/// that is there already is continued, on a line of its own. Threads: any; batches do not mix.
class UploadFile {
public:
    /// Why a file must not be written to; none: it may be.
    using Objection = std::function<std::optional<std::string>(const FileIdentity&)>;

    /// `objection` is asked before anything is written, and a file that is refused is as it was.
    [[nodiscard]] static Result<std::unique_ptr<UploadFile>, Unreadable> open(const std::string& path,
                                                                              const Objection& objection);
    ~UploadFile();
    UploadFile(const UploadFile&) = delete;
    UploadFile& operator=(const UploadFile&) = delete;

    /// All of them are in the file when this returns; or none of them, and why.
    [[nodiscard]] std::optional<std::string> append(const std::vector<platform::ReceivedForce>& samples);

private:
    UploadFile(std::string path, int file) : path_(std::move(path)), file_(file) {}
    [[nodiscard]] bool write(const std::string& text) const;

    const std::string path_;
    const int file_;
    std::mutex mutex_;
};

}  // namespace oska::tool
