#pragma once

#include <httplib.h>

#include <cstddef>
#include <string>

#include "oska/json/result.h"
#include "tools/oska_serve/replies.h"

namespace oska::tool {

/// Reads a request's body and unpacks it as the header Content-Encoding says. `limit`: the most bytes that it
/// may have, packed and unpacked; more is neither unpacked nor kept. The body is read to its end all the
/// same, up to 1 GiB, because a client that still writes would not read the reply. Threads: any.
[[nodiscard]] Result<std::string, Refusal> readBody(const httplib::Request& request,
                                                    const httplib::ContentReader& read, std::size_t limit);

/// Reads a request's body and drops it without unpacking it. Returns false if a part of it has not been read.
[[nodiscard]] bool skipBody(const httplib::Request& request, const httplib::ContentReader& read);

}  // namespace oska::tool
