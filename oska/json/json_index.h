#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

namespace simdjson::internal {
class dom_parser_implementation;
}

// Finds where the tokens of a document begin, by means of simdjson. Only the library's first stage is used:
// it needs neither padding nor a copy of the text. The library's own readers are not strict enough about
// skipped values, text behind the document, depth and long numbers; Reader checks these itself.
namespace oska::json {

/// The offsets of the tokens in one stretch of a document. A stretch ends behind a comma between two tokens,
/// or at the end of the document. Indexing stretch by stretch keeps the index small enough for the
/// processor's cache. Threads: one at a time.
class TokenIndex {
public:
    TokenIndex();
    ~TokenIndex();

    enum class Outcome {
        indexed,   ///< begin() and end() may be used
        noTokens,  ///< the text is blank or not UTF-8, or a string is not closed or has control characters
        noMemory,  ///< the index could not be allocated
    };

    /// Indexes the first stretch of `text`, and checks its UTF-8 and its strings.
    [[nodiscard]] Outcome build(std::string_view text);

    /// The offsets in rising order: of the first byte of each string, number and literal, and of each of
    /// {}[]:, outside strings. The element behind the last one, *end(), is the length of the stretch. Valid
    /// until the next build().
    [[nodiscard]] const std::uint32_t* begin() const;
    [[nodiscard]] const std::uint32_t* end() const;

    /// Takes the index that this thread kept, or makes a new one. The caller gives it back when done; the
    /// thread keeps the last one given back, unless that is large.
    static std::unique_ptr<TokenIndex> borrow();
    static void giveBack(std::unique_ptr<TokenIndex> index);

private:
    Outcome buildWhole(std::string_view stretch);

    std::unique_ptr<simdjson::internal::dom_parser_implementation> stage_;
};

}  // namespace oska::json
