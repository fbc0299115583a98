#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace oska::tool {

/// The scalars of a text; what is no UTF-8 becomes U+FFFD.
[[nodiscard]] std::u32string scalarsOf(std::string_view text);

/// How many columns a text takes on a terminal: a Hangul syllable takes two, a combining accent none.
[[nodiscard]] std::size_t displayWidth(std::string_view text);

/// A table for a terminal: columns as wide as their widest cell, two blanks apart.
class TextTable {
public:
    enum class Align { left, right };

    struct Column {
        std::string title;
        Align align = Align::left;
    };

    explicit TextTable(std::vector<Column> columns) : columns_(std::move(columns)) {}

    /// One cell for each column, each in one line.
    void add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }

    [[nodiscard]] bool isEmpty() const { return rows_.empty(); }

    /// The titles and the rows, a line each, without blanks at their ends.
    [[nodiscard]] std::string text() const;

private:
    std::vector<Column> columns_;
    std::vector<std::vector<std::string>> rows_;
};

}  // namespace oska::tool
