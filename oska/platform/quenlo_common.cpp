#include "oska/platform/quenlo_common.h"

namespace oska::platform {

TovanReplayer& TovanReplayer::shared() {
    static TovanReplayer replayer;
    return replayer;
}

}  // namespace oska::platform
