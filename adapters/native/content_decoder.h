#pragma once

#include <functional>
#include <memory>
#include <string_view>

namespace oska::native {

/// Decompresses a body, piece by piece. libcurl could do it, but accepts a stream that is cut off.
///
/// Codings: gzip (RFC 1952) and deflate (RFC 1950, and RFC 1951 without a wrapper, as some servers send it).
/// Threads: one at a time.
class ContentDecoder {
public:
    enum class Coding { gzip, deflate };
    enum class Progress { going, refused, broken };

    /// Receives a piece of the plain body; returns false to refuse it, which ends the decoding.
    using Sink = std::function<bool(std::string_view)>;

    explicit ContentDecoder(Coding coding);
    ~ContentDecoder();
    ContentDecoder(const ContentDecoder&) = delete;
    ContentDecoder& operator=(const ContentDecoder&) = delete;

    [[nodiscard]] Progress decode(std::string_view piece, const Sink& sink);

    /// Whether the stream has ended, including its checksum.
    [[nodiscard]] bool isComplete() const;

private:
    struct Stream;

    const Coding coding_;
    const std::unique_ptr<Stream> stream_;
};

}  // namespace oska::native
