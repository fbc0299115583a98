#pragma once

#include <string_view>

/// The files of assets/ that are compiled into the kit, one function for each, which returns the file's
/// bytes. oska/CMakeLists.txt generates the definitions.
namespace oska::views::assets {

[[nodiscard]] std::string_view icDapoPng();

}  // namespace oska::views::assets
