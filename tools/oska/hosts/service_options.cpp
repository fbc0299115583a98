#include "tools/oska/hosts/service_options.h"

#include <array>
#include <string>
#include <utility>

#include "tools/oska/cli/common_options.h"
#include "tools/oska/hosts/dapo_host.h"
#include "tools/oska/hosts/pelio_host.h"

namespace oska::tool {
namespace {

constexpr std::array<std::pair<const char*, OskaService>, 3> OPTIONS_OF_ONE_SERVICE{{
    {"--output-interval", OskaService::dapo},
    {"--unchanged-delivery-interval", OskaService::dapo},
    {"--region", OskaService::pelio},
}};

}  // namespace

void addServiceOptions(CLI::App& command, ServiceOptions& options) {
    addServiceName(command, options.service);
    command
        .add_option("--output-interval", options.outputInterval,
                    "Dapo: seconds between two ticks of the output timer (1).\n  --output-interval 0.5")
        ->type_name("SECONDS");
    command
        .add_option("--unchanged-delivery-interval", options.unchangedDeliveryInterval,
                    "Dapo: seconds after which an unchanged selection is delivered again (never).\n"
                    "  --unchanged-delivery-interval 3")
        ->type_name("SECONDS");
}

void refuseForeignOptions(const CLI::App& command, const ServiceOptions& options) {
    for (const auto& [name, owner] : OPTIONS_OF_ONE_SERVICE) {
        const auto* const option = command.get_option_no_throw(name);
        if (option == nullptr || option->count() == 0 || owner == options.kind()) continue;
        throw CLI::ValidationError(std::string(name) + " is an option of " + std::string(rawValue(owner)) +
                                   ", not of " + options.service);
    }
}

std::shared_ptr<Host> makeHost(const ServiceOptions& options, const Events& events) {
    if (options.kind() == OskaService::pelio) {
        return makePelioHost({.id = options.id, .region = options.region, .sectorId = options.sectorId},
                             events);
    }
    return makeDapoHost({.initialization = {.id = options.id,
                                            .sectorId = options.sectorId,
                                            .baseURL = options.baseUrl,
                                            .unchangedDeliveryInterval = options.unchangedDeliveryInterval},
                         .outputInterval = options.outputInterval},
                        events);
}

}  // namespace oska::tool
