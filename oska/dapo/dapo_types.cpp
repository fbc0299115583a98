#include "oska/dapo/dapo_types.h"

#include "oska/json/record_equality.h"

namespace oska {

bool operator==(const WardContents& a, const WardContents& b) { return areEqual(a, b); }
bool operator==(const DapoWard& a, const DapoWard& b) { return areEqual(a, b); }
bool operator==(const DapoContents& a, const DapoContents& b) { return areEqual(a, b); }
bool operator==(const DapoLevelInfo& a, const DapoLevelInfo& b) { return areEqual(a, b); }
bool operator==(const DapoBuildingInfo& a, const DapoBuildingInfo& b) { return areEqual(a, b); }
bool operator==(const DapoSectorInfo& a, const DapoSectorInfo& b) { return areEqual(a, b); }

void DapoViewDelegate::onDapoMapImageData(DapoView&, std::int64_t, const DapoMapImage&) {}

}  // namespace oska
