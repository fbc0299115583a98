#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

namespace simdjson::internal {
class dom_parser_implementation;
}

// Where the tokens of a document begin, found by simdjson at the speed of memory. Of that library only this
// first stage is used: it needs neither padding nor a copy of the text, and everything that its own readers
// are lax about (values that are skipped, what follows the last brace, depth, long numbers) is decided by
// Reader, over the tokens.
namespace oska::json {

/// The token beginnings of one stretch of a document, which ends behind a comma between two tokens, or with
/// the document. A document is indexed stretch by stretch, so that the index stays small and in the
/// processor's cache.
class TokenIndex {
public:
    TokenIndex();
    ~TokenIndex();

    enum class Outcome {
        indexed,
        noTokens,  ///< `text` is blank, not UTF-8, or has a string that is not closed or holds control
                   ///< characters
        noMemory,
    };

    /// Indexes the first stretch of `text`, whose UTF-8 and strings are checked on the way.
    [[nodiscard]] Outcome build(std::string_view text);

    /// The offsets in rising order: the first byte of each string, number and literal, and each of {}[]:,
    /// outside strings. Behind the last one stands the length of the stretch. Valid until the next build.
    [[nodiscard]] const std::uint32_t* begin() const;
    [[nodiscard]] const std::uint32_t* end() const;

    /// One for the caller alone. A thread keeps the one it used last, unless that has grown large.
    static std::unique_ptr<TokenIndex> borrow();
    static void giveBack(std::unique_ptr<TokenIndex> index);

private:
    Outcome buildWhole(std::string_view stretch);

    std::unique_ptr<simdjson::internal::dom_parser_implementation> stage_;
};

}  // namespace oska::json
