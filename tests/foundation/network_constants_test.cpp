#include "oska/foundation/network_constants.h"

#include <gtest/gtest.h>

namespace oska {
namespace {

using Cloud = OskaNetworkConstants;
using OnPremise = OskaOnPremiseNetworkConstants;

TEST(CloudEndpoints, FollowTheRegionWhichIsKoreaUntilOneIsChosen) {
    const std::string path = "/2026-04-27/sectors/{pk}/bundle";
    EXPECT_EQ(Cloud::getUserDapoURL(), "https://ap-northeast-2.user.dapo.quenlo.com" + path);
    EXPECT_EQ(Cloud::getUserTovanURL(), "https://ap-northeast-2.user.tovan.quenlo.com" + path);
    EXPECT_EQ(Cloud::getUserPelioURL(), Cloud::getUserTovanURL() + "/lite");
    Cloud::setServerURL("CANADA");
    EXPECT_EQ(Cloud::getUserTovanURL(), "https://ca-central-1.user.tovan.quenlo.com" + path);
    Cloud::setServerURL("canada");
    EXPECT_TRUE(Cloud::getUserTovanURL().starts_with("https://ap-northeast-2.user."));
}

TEST(OnPremiseEndpoints, DropBlanksAndTrailingSlashesOfTheBaseUrlAndKeepIt) {
    OnPremise::setBaseURL(" \n ");
    EXPECT_FALSE(OnPremise::isEnabled());
    EXPECT_EQ(OnPremise::getUserDapoURL(), "http://localhost:5050/v2/dapo/sectors/{pk}/bundle");
    EXPECT_EQ(OnPremise::serviceBaseURL(OskaService::pelio), "http://localhost:5050/v2/pelio");
    OnPremise::setBaseURL(" https://10.0.0.2:8443///\n");
    OnPremise::setBaseURL("  ");
    OnPremise::resetOnPremiseBaseURLIfDisabled();
    EXPECT_TRUE(OnPremise::isEnabled());
    EXPECT_EQ(OnPremise::getUserPelioURL(), "https://10.0.0.2:8443/v2/pelio/sectors/{pk}/bundle");
    OnPremise::setBaseURL("///");
    EXPECT_EQ(OnPremise::getUserDapoURL(), "/v2/dapo/sectors/{pk}/bundle");
}

}  // namespace
}  // namespace oska
