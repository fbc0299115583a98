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

/// A recording to which uploaded samples are appended, one line for each, in the order in which they come. A
/// file that exists is continued, on a new line. Threads: any; batches do not mix.
class UploadFile {
public:
    /// Returns why a file must not be written to, or nullopt if it may be.
    using Objection = std::function<std::optional<std::string>(const FileIdentity&)>;

    /// `objection` is called before anything is written; a file that is refused stays as it was.
    [[nodiscard]] static Result<std::unique_ptr<UploadFile>, Unreadable> open(const std::string& path,
                                                                              const Objection& objection);
    ~UploadFile();
    UploadFile(const UploadFile&) = delete;
    UploadFile& operator=(const UploadFile&) = delete;

    /// Appends all samples, or none: then it returns why.
    [[nodiscard]] std::optional<std::string> append(const std::vector<platform::ReceivedForce>& samples);

private:
    UploadFile(std::string path, int file) : path_(std::move(path)), file_(file) {}
    [[nodiscard]] bool write(const std::string& text) const;

    const std::string path_;
    const int file_;
    std::mutex mutex_;
};

}  // namespace oska::tool
