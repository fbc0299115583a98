#pragma once

#include <string_view>

/// The files of assets/ that are compiled into the kit; oska/CMakeLists.txt makes the arrays.
namespace oska::views::assets {

[[nodiscard]] std::string_view icDapoPng();

}  // namespace oska::views::assets
