#pragma once

#include <httplib.h>

#include <cstddef>
#include <string>

#include "oska/json/result.h"
#include "tools/oska_serve/replies.h"

namespace oska::tool {

/// Reads a request's body and unpacks it, as its header Content-Encoding says. `limit` is what it may hold,
/// in bytes, packed and unpacked; what is beyond is neither unpacked nor kept. Still it is read to its end,
/// unless it is enormous: a client that is writing would not see the reply. Threads: any.
[[nodiscard]] Result<std::string, Refusal> readBody(const httplib::Request& request,
                                                    const httplib::ContentReader& read, std::size_t limit);

/// Reads a request's body and drops it, packed as it is. False: a part of it is still to come.
[[nodiscard]] bool skipBody(const httplib::Request& request, const httplib::ContentReader& read);

}  // namespace oska::tool
