#pragma once

#include <httplib.h>

#include <string>

#include "tools/oska_serve/site_folder.h"

namespace oska::tool {

/// Writes what was answered to standard error, in one line. Threads: any, as for all functions here.
void report(const httplib::Request& request, const httplib::Response& response,
            const std::string& reason = {});

struct Refusal {
    int status;
    std::string reason;  ///< in words
    /// A part of the request's body is still to come: the connection is closed behind the reply, or that part
    /// would be taken for the next request.
    bool isUnread = false;
};

/// Answers with the status and with its reason as a line of text, and reports it.
void refuse(const httplib::Request& request, httplib::Response& response, const Refusal& refusal);

/// Answers with the content, or with the parts of it that the header Range names: 206 with what the content
/// has of them, 416 when it has none of them. Parts that together are more than the content are not cut out:
/// the client gets the whole.
void sendContent(const httplib::Request& request, httplib::Response& response, SiteFile file);

}  // namespace oska::tool
