#include "oska/pelio/pelio_types.h"

namespace oska {

void PelioServiceManagerDelegate::onPelioMapImageData(PelioServiceManager&, std::int64_t,
                                                      const PelioMapImage&) {}

}  // namespace oska
