#pragma once

#include <functional>
#include <memory>
#include <string_view>

namespace oska::native {

/// Undoes the compression of a body, piece by piece. libcurl could, but takes a stream cut off for a whole
/// one.
///
/// Codings: gzip (RFC 1952) and deflate (RFC 1950; servers that send RFC 1951 without a wrapper are
/// understood, too). Threads: one at a time.
class ContentDecoder {
public:
    enum class Coding { gzip, deflate };
    enum class Progress { going, refused, broken };

    /// Takes a piece of the plain body; false refuses it and ends the decoding.
    using Sink = std::function<bool(std::string_view)>;

    explicit ContentDecoder(Coding coding);
    ~ContentDecoder();
    ContentDecoder(const ContentDecoder&) = delete;
    ContentDecoder& operator=(const ContentDecoder&) = delete;

    [[nodiscard]] Progress decode(std::string_view piece, const Sink& sink);

    /// Whether the stream came to its end, its checksum included.
    [[nodiscard]] bool isComplete() const;

private:
    struct Stream;

    const Coding coding_;
    const std::unique_ptr<Stream> stream_;
};

}  // namespace oska::native
