#pragma once

#include <string>
#include <string_view>

#include "oska/foundation/log_message.h"

/// The resource manager's log, and how its lines name the kind of bundle.
namespace oska {

inline constexpr Log RESOURCE_LOG{"OskaResourceManager"};

/// "loadDapoBundle", "loadPelioResources"
template <class Kind>
std::string kindOperation(std::string_view what) {
    return std::string("load").append(Kind::NAME).append(what);
}

/// "failed to decode DapoBundle"
template <class Kind>
std::string kindBundle(std::string_view before, std::string_view after = "") {
    return std::string(before).append(Kind::NAME).append("Bundle").append(after);
}

}  // namespace oska
