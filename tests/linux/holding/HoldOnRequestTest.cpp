#include "platform/linux/holding/HoldOnRequest.hpp"

#include <gtest/gtest.h>

#include <cstdlib>

namespace platform::linux {
namespace {

class Request : public testing::Test {
protected:
    TimeInterval now = 5000;
    HoldOnRequest request{[this] { return now; }};
};

TEST_F(Request, HoldsForItsSpanAndNoLonger) {
    EXPECT_EQ(request.reason(), "");
    request.begin(std::chrono::seconds{60});
    now += 59.9;
    EXPECT_NE(request.reason(), "");
    now += 0.2;
    EXPECT_EQ(request.reason(), "");
    now -= 1;
    EXPECT_EQ(request.reason(), "") << "what is over does not come again";
}

TEST_F(Request, SaysUntilWhatTimeOfDay) {
    request.begin(std::chrono::hours{1});
    const std::string reason = request.reason();
    EXPECT_TRUE(reason.starts_with("on request until ")) << reason;
    EXPECT_EQ(reason.size(), std::string{"on request until 15:04"}.size());
    now += 1800;
    EXPECT_EQ(request.reason(), reason) << "which stays the same";
}

TEST_F(Request, IsReplacedByTheNextOne) {
    request.begin(std::chrono::hours{1});
    request.begin(std::chrono::seconds{10});
    now += 11;
    EXPECT_EQ(request.reason(), "");
}

TEST_F(Request, EndsOnRequest) {
    request.begin(std::chrono::hours{1});
    request.end();
    EXPECT_EQ(request.reason(), "");
    request.end();
}

} // namespace
} // namespace platform::linux
