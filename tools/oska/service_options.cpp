#include "tools/oska/service_options.h"

#include "tools/oska/common_options.h"
#include "tools/oska/dapo_host.h"
#include "tools/oska/pelio_host.h"

namespace oska::tool {

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
