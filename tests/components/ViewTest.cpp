#include "platform/View.hpp"

#include "platform/simulated/ViewReader.hpp"
#include "tests/components/Bench.hpp"

namespace bench {
namespace {

using namespace platform;
using platform::simulated::linesOf;
using Runs = std::vector<node::TextRun>;

Runs runsOf(const View& text) { return std::get<node::Text>(text.node).runs; }

TEST(AText, MakesLinksOfMarkdown) {
    EXPECT_EQ(runsOf(Text("plain")), (Runs{{"plain", std::nullopt}}));
    EXPECT_EQ(runsOf(Text("[a](b)")), (Runs{{"a", "b"}}));
    EXPECT_EQ(runsOf(Text("see [a](b) and [c](d).")),
              (Runs{{"see ", std::nullopt}, {"a", "b"}, {" and ", std::nullopt}, {"c", "d"}, {".", std::nullopt}}));
    EXPECT_EQ(runsOf(Text("")), Runs{});
}

TEST(AText, LeavesBracketsThatAreNoLinks) {
    EXPECT_EQ(runsOf(Text("a [b] c")), (Runs{{"a [b] c", std::nullopt}}));
    EXPECT_EQ(runsOf(Text("a [b](c")), (Runs{{"a [b](c", std::nullopt}}));
    EXPECT_EQ(runsOf(VerbatimText("[a](b)")), (Runs{{"[a](b)", std::nullopt}}));
}

TEST(AText, TakesValuesAsTheyStand) {
    EXPECT_EQ(runsOf(Text("Version: %@", {"1.2"})), (Runs{{"Version: 1.2", std::nullopt}}));
    EXPECT_EQ(runsOf(Text("%@[a](b)%@", {"[c](d)", "%@"})),
              (Runs{{"[c](d)", std::nullopt}, {"a", "b"}, {"%@", std::nullopt}}));
    EXPECT_EQ(runsOf(Text("100 %@", {})), (Runs{{"100 %@", std::nullopt}}));
}

TEST(AControl, HasTheTitleItWasGiven) {
    const State<bool> isOn{true};
    const State<int> selection{1};
    EXPECT_EQ(std::get<node::Toggle>(Toggle("Mute", isOn.binding()).node).title, "Mute");
    EXPECT_EQ(std::get<node::Picker>(Picker<int>("Sound", selection.binding(), {{"A", 1}}).node).title, "Sound");
}

TEST(AState, IsSharedByItsCopies) {
    const State<int> state{1};
    const State<int> copy = state; // NOLINT(performance-unnecessary-copy-initialization): it is what is tested
    state.binding().set(2);
    EXPECT_EQ(*copy, 2);
    EXPECT_EQ(copy.binding().get(), 2);
}

TEST(ANumberField, TakesWholeNumbersOnly) {
    const NumberFormatter formatter;
    EXPECT_EQ(formatter.string(-1500), "-1500");
    EXPECT_EQ(formatter.number("25"), 25);
    EXPECT_EQ(formatter.number(" -25 "), -25);
    for (const char* text : {"", " ", "x", "2x", "2.5", "1 000", "99999999999999999999", "--1"}) {
        EXPECT_EQ(formatter.number(text), std::nullopt) << text;
    }
}

TEST(ANumberField, CommitsBeforeItSubmits) {
    const State<std::int64_t> value{1};
    std::int64_t submitted = 0;
    const View field = TextField("", value.binding(), {}).onSubmit([&] { submitted = *value; });
    const auto& node = std::get<node::TextField>(field.node);
    node.commit("2");
    EXPECT_EQ(*value, 2);
    EXPECT_EQ(submitted, 0);
    node.submit("3");
    EXPECT_EQ(submitted, 3);
    node.submit("three");
    EXPECT_EQ(*value, 3);
    EXPECT_EQ(node.text(), "3");
}

TEST(APicker, TellsOfChangesOnly) {
    const State<std::string> selection{"b"};
    int changes = 0;
    const View picker =
        Picker<std::string>("", selection.binding(), {{"A", "a"}, {"B", "b"}}).onChange([&] { ++changes; });
    const auto& node = std::get<node::Picker>(picker.node);
    EXPECT_EQ(node.selection.get(), 1U);
    node.select(1);
    EXPECT_EQ(changes, 0);
    node.select(0);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(*selection, "a");
}

TEST(ATree, AppearsFromTheOutsideIn) {
    std::vector<int> order;
    const View tree = VStack({VStack({Text("").onAppear([&] { order.push_back(3); })}).onAppear([&] {
                          order.push_back(2);
                      })}).onAppear([&] { order.push_back(1); });
    tree.appear();
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST(ATree, ReadsAsLines) {
    const State<bool> isOn{true};
    const State<std::int64_t> number{7};
    const View tree = VStack({HStack({Text("Label"), Toggle("", isOn.binding())}).disabled(true),
                              HStack({Text("Number"), TextField("none", number.binding(), {})}),
                              Toggle("On", isOn.binding()), Text("[a](b) c"), Button("Go", 5, [] {})});
    EXPECT_EQ(linesOf(tree, std::nullopt),
              (Lines{"Label | [x] disabled", "Number | [7]", "[x]On", "[a](b) c", "(Go)"}));
    EXPECT_EQ(linesOf(tree, "").at(1), "Number | [\"none\"]");
    EXPECT_EQ(linesOf(tree, "12").at(1), "Number | [12]");
    EXPECT_TRUE(platform::simulated::controlBeside("Label", tree)->isDisabled);
}

using ViewDeathTest = BenchDeathTest;

TEST_F(ViewDeathTest, SubmittingWhatIsNoFieldIsFatal) {
    EXPECT_FATAL(Text("").onSubmit([] {}));
}

TEST_F(ViewDeathTest, ChangingWhatIsNoPickerIsFatal) {
    EXPECT_FATAL(Text("").onChange([] {}));
}

} // namespace
} // namespace bench
