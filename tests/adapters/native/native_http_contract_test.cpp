#include "tests/adapters/native/native_http_driver.h"

namespace oska::platform {
INSTANTIATE_TYPED_TEST_SUITE_P(Native, HttpSessionContract, native::NativeHttpDriver);
}  // namespace oska::platform
