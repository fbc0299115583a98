#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "oska/foundation/network_constants.h"
#include "tools/oska/hosts/events.h"
#include "tools/oska/hosts/host.h"

namespace oska::tool {

/// Which service a command drives, and how its host is to make it.
struct ServiceOptions {
    std::string service;  ///< the raw value of an OskaService
    std::string id;
    std::int64_t sectorId = 0;
    std::string region = "KOREA";                     ///< Pelio's
    std::string baseUrl;                              ///< Dapo's; empty: not configured
    std::optional<double> outputInterval;             ///< Dapo's, seconds; nullopt: the view's own
    std::optional<double> unchangedDeliveryInterval;  ///< Dapo's, seconds

    [[nodiscard]] OskaService kind() const {
        return service == rawValue(OskaService::dapo) ? OskaService::dapo : OskaService::pelio;
    }
};

/// Adds SERVICE and the options that only Dapo has; other options differ from command to command.
void addServiceOptions(CLI::App& command, ServiceOptions& options);

/// Throws CLI::ValidationError if the command was given an option that its service does not have. To be
/// called in the command's callback.
void refuseForeignOptions(const CLI::App& command, const ServiceOptions& options);

/// `events` must outlive the host.
[[nodiscard]] std::shared_ptr<Host> makeHost(const ServiceOptions& options, const Events& events);

}  // namespace oska::tool
