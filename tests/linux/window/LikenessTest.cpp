// The widgets of one view can show another if the two differ in nothing but texts, values and whether they take
// input.

#include "platform/linux/window/helper/Likeness.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace platform::linux {
namespace {

/// Views that are all unlike one another; `variant` changes their texts and values alone.
std::vector<View> unlikeViews(int variant) {
    const State<std::int64_t> minutes{std::int64_t{variant}};
    const State<bool> isOn{variant % 2 == 0};
    const State<int> sound{variant};
    const std::vector<std::pair<std::string, int>> two{{"Sonar", 0}, {"Bowl", 1}};
    const std::vector<std::pair<std::string, int>> three{{"Sonar", 0}, {"Bowl", 1}, {"Whistle", 2}};
    return {
        VerbatimText("text " + std::to_string(variant)),
        VerbatimText("text " + std::to_string(variant)).disabled(variant == 1),
        Image({"a.png", "/a.png", {1, 1}}),
        Image({"b.png", "/b.png", {1, 1}}),
        TextField("600", minutes.binding(), {}),
        TextField("30", minutes.binding(), {}),
        Toggle("", isOn.binding()),
        Toggle("title", isOn.binding()),
        Picker("", sound.binding(), two),
        Picker("title", sound.binding(), two),
        Picker("", sound.binding(), three),
        Button("OK", 0, [] {}),
        Button("Cancel", 0, [] {}),
        HStack({}),
        VStack({}),
        VStack({VerbatimText("inside")}),
    };
}

TEST(Likeness, HoldsForViewsThatDifferInTextsAndValues) {
    const std::vector<View> before = unlikeViews(0);
    const std::vector<View> fresh = unlikeViews(1);
    for (std::size_t index = 0; index < before.size(); ++index) {
        EXPECT_TRUE(isAlike(before[index], fresh[index])) << index;
    }
}

TEST(Likeness, HoldsForNoOthers) {
    const std::vector<View> views = unlikeViews(0);
    for (std::size_t one = 0; one < views.size(); ++one) {
        for (std::size_t other = 0; other < views.size(); ++other) {
            EXPECT_EQ(isAlike(views[one], views[other]), one == other) << one << " and " << other;
        }
    }
}

} // namespace
} // namespace platform::linux
