#include "tools/oska/cli/text_table.h"

#include <utf8proc.h>

#include <algorithm>

#include "oska/text/text.h"

namespace oska::tool {
namespace {

constexpr char32_t REPLACEMENT = 0xfffd;

std::string padded(const std::string& cell, std::size_t width, TextTable::Align align) {
    const std::string blanks(width - std::min(width, displayWidth(cell)), ' ');
    return align == TextTable::Align::left ? cell + blanks : blanks + cell;
}

}  // namespace

std::u32string scalarsOf(std::string_view text) {
    std::u32string scalars;
    while (!text.empty()) {
        const auto [scalar, length] = text::firstScalar(text);
        scalars += scalar >= 0 ? static_cast<char32_t>(scalar) : REPLACEMENT;
        text.remove_prefix(length);
    }
    return scalars;
}

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    for (const auto scalar : scalarsOf(text)) {
        width += static_cast<std::size_t>(utf8proc_charwidth(static_cast<utf8proc_int32_t>(scalar)));
    }
    return width;
}

std::string TextTable::text() const {
    std::vector<std::size_t> widths;
    std::vector<std::string> titles;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        titles.push_back(columns_[i].title);
        widths.push_back(displayWidth(titles[i]));
        for (const auto& row : rows_) widths[i] = std::max(widths[i], displayWidth(row[i]));
    }
    std::string out;
    const auto addLine = [&](const std::vector<std::string>& cells) {
        std::string line;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            line += (i == 0 ? "" : "  ") + padded(cells[i], widths[i], columns_[i].align);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        out += line + '\n';
    };
    addLine(titles);
    for (const auto& row : rows_) addLine(row);
    return out;
}

}  // namespace oska::tool
