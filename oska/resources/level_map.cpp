#include "oska/resources/level_map.h"

#include "oska/json/record_equality.h"

namespace oska {

bool operator==(const LevelMap& a, const LevelMap& b) { return areEqual(a, b); }

}  // namespace oska
