#include "oska/pelio/pelio_types.h"

#include <gtest/gtest.h>

#include "oska/json/json.h"

namespace oska {
namespace {

TEST(PelioTypes, KeepTheirJsonForm) {
    const std::string result =
        R"({"mobile_time":9007199254740993,"building_id":1,"building_name":"b","level_id":2,)"
        R"("level_name":"l","x":60,"y":30.5})";
    EXPECT_EQ(*json::encode(PelioResult{9'007'199'254'740'993, 1, "b", 2, "l", 60, 30.5}), result);
    EXPECT_EQ(*json::encode(*json::decode<PelioResult>(result)), result);
    const std::string image =
        R"({"building_id":1,"building_name":"b","level_id":2,"level_name":"l","url":"u",)"
        R"("image_width":1,"image_height":2,"scale_x":3,"scale_y":4,"offset_x":5,"offset_y":6})";
    EXPECT_EQ(*json::encode(*json::decode<PelioMapImage>(image)), image);
    const auto incomplete = json::decode<PelioResult>(result.substr(0, result.rfind(',')) + "}");
    ASSERT_FALSE(incomplete);
    EXPECT_EQ(incomplete.error().path, "y");
}

TEST(ServiceCodes, ConvertFromTheRawValuesThatTheyHave) {
    const auto beyond32Bits = (std::int64_t{1} << 32) + 1;
    EXPECT_EQ(serviceErrorCode(-1), PelioErrorCode::UNKNOWN);
    EXPECT_EQ(static_cast<int>(*serviceErrorCode(3)), 3);
    EXPECT_FALSE(serviceErrorCode(-2) || serviceErrorCode(4) || serviceErrorCode(beyond32Bits));
    EXPECT_EQ(static_cast<int>(*serviceInitErrorCode(1)), 1);
    EXPECT_FALSE(serviceInitErrorCode(-2) || serviceInitErrorCode(2) || serviceInitErrorCode(beyond32Bits));
    EXPECT_EQ(caseName(PelioErrorCode::BLE_NOT_AUTHORIZED), "BLE_NOT_AUTHORIZED");
}

}  // namespace
}  // namespace oska
