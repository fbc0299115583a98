#pragma once

#include <httplib.h>

#include <string>

#include "tools/oska_serve/site_folder.h"

namespace oska::tool {

/// Writes the status of a request to standard error, in one line. Threads: any, as for all functions here.
void report(const httplib::Request& request, const httplib::Response& response,
            const std::string& reason = {});

struct Refusal {
    int status;
    std::string reason;  ///< in words
    /// Whether a part of the request's body has not been read. The connection is closed after the reply then:
    /// that part would be taken for the next request.
    bool isUnread = false;
};

/// Sets the status, and its reason as a line of text; reports both.
void refuse(const httplib::Request& request, httplib::Response& response, const Refusal& refusal);

/// Sets the content, or the parts of it that the header Range names: status 206 with the parts that exist,
/// 416 if none does. If the parts together are longer than the content, the whole content is sent.
void sendContent(const httplib::Request& request, httplib::Response& response, SiteFile file);

}  // namespace oska::tool
