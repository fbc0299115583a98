#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace oska::tool {

/// Reads the lines of a file or of standard input, each as soon as it is there. Memory: one block, or the
/// longest line. Threads: one. Lifetime: a line is valid until the next call.
class LineReader {
public:
    enum class Ending {
        none,         ///< there are more lines
        end,          ///< all lines have been read
        interrupted,  ///< Ctrl-C
        failed,       ///< `problem()` says why
    };

    /// Waits until `file` can be read without waiting. Returns false if it was interrupted.
    using AwaitInput = std::function<bool(int file)>;

    /// Opens `path`; "-" is standard input. `awaitInput` is called before each read from the file. If the
    /// file cannot be opened or is a folder, the ending is `failed` at once.
    LineReader(const std::string& path, AwaitInput awaitInput);
    ~LineReader();
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    /// The next line, without its line feed; the last line need not have one. nullopt: `ending` says why.
    [[nodiscard]] std::optional<std::string_view> next();

    [[nodiscard]] std::uint64_t lineNumber() const { return lineNumber_; }  ///< of the line read last, from 1
    [[nodiscard]] Ending ending() const { return ending_; }
    [[nodiscard]] const std::string& problem() const { return problem_; }

    [[nodiscard]] std::uint64_t bytesRead() const { return bytesRead_; }
    [[nodiscard]] std::optional<std::uint64_t> size() const;  ///< bytes, of a plain file

private:
    [[nodiscard]] std::optional<std::string_view> take(std::size_t length, std::size_t separator);
    bool readMore();
    void fail(int error);

    int file_;
    AwaitInput awaitInput_;
    std::string buffer_;
    std::size_t lineBegin_ = 0;   // in the buffer
    std::size_t searchedTo_ = 0;  // no line feed between lineBegin_ and here
    std::uint64_t lineNumber_ = 0;
    std::uint64_t bytesRead_ = 0;
    Ending ending_ = Ending::none;
    std::string problem_;
};

}  // namespace oska::tool
