#include "platform/linux/glib/BusCall.hpp"

#include "platform/linux/glib/ExportedInterface.hpp"
#include "tests/support/PrivateBuses.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace platform::linux {
namespace {

using namespace std::chrono_literals;

constexpr const char* serviceName = "org.marvelode.Test.Echo";

/// Answers "Echo" with what it was given, and "Wait" when the test says so.
class EchoService {
public:
    EchoService() { takeName(_bus.get(), serviceName); }

    void answerAll() {
        for (GDBusMethodInvocation* const call : std::exchange(_waiting, {})) {
            g_dbus_method_invocation_return_value(call, nullptr);
        }
    }
    std::size_t waiting() const { return _waiting.size(); }

private:
    ObjectHandle<GDBusConnection> _bus = connectToSession();
    std::vector<GDBusMethodInvocation*> _waiting;
    ExportedInterface _interface{_bus.get(), "/Echo",
                                 R"xml(<node><interface name="org.marvelode.Test.Echo">
                                   <method name="Echo">
                                     <arg type="s" direction="in"/><arg type="s" direction="out"/>
                                   </method>
                                   <method name="Wait"/>
                                 </interface></node>)xml",
                                 [this](std::string_view name, GVariant* arguments, GDBusMethodInvocation* call) {
                                     if (name == "Echo") {
                                         g_dbus_method_invocation_return_value(call, arguments);
                                     } else {
                                         _waiting.push_back(call);
                                     }
                                 },
                                 nullptr};
};

constexpr BusMethod echo{serviceName, "/Echo", serviceName, "Echo"};
constexpr BusMethod wait{serviceName, "/Echo", serviceName, "Wait"};

class BusCallTest : public testing::Test {
protected:
    void TearDown() override { service.answerAll(); }

    GVariant* words(const char* text) { return g_variant_new("(s)", text); }

    /// Notes what the call has come to.
    BusCall::Answered note() {
        return [this](const VariantHandle& answer, const ErrorSlot& error) {
            const char* text = "";
            if (answer && g_variant_is_of_type(answer.get(), G_VARIANT_TYPE("(s)"))) {
                g_variant_get(answer.get(), "(&s)", &text);
            }
            EXPECT_NE(answer == nullptr, !error) << "either there is an answer or an error";
            outcomes.emplace_back(answer ? text : "error");
            lastError = error.message();
        };
    }

    bool hasOutcomes(std::size_t count) {
        return runLoopUntil([&] { return outcomes.size() >= count; });
    }

    EchoService service;
    ObjectHandle<GDBusConnection> bus = connectToSession();
    std::vector<std::string> outcomes;
    std::string lastError;
    BusCall call;
};

TEST_F(BusCallTest, HandsOnTheAnswer) {
    call.start(bus.get(), echo, words("hello"), "(s)", note());
    EXPECT_TRUE(call.isPending());
    ASSERT_TRUE(hasOutcomes(1));
    EXPECT_EQ(outcomes, std::vector<std::string>{"hello"});
    EXPECT_FALSE(call.isPending());
}

TEST_F(BusCallTest, FailsWhereThereIsNoSuchServiceOrMethod) {
    call.start(bus.get(), {"org.marvelode.Test.None", "/", "org.marvelode.Test", "Any"}, nullptr, nullptr, note());
    ASSERT_TRUE(hasOutcomes(1));
    call.start(bus.get(), {serviceName, "/Echo", serviceName, "Sing"}, nullptr, nullptr, note());
    ASSERT_TRUE(hasOutcomes(2));
    EXPECT_EQ(outcomes, (std::vector<std::string>{"error", "error"}));
}

TEST_F(BusCallTest, FailsIfTheAnswerIsOfAnotherType) {
    call.start(bus.get(), echo, words("hello"), "(u)", note());
    ASSERT_TRUE(hasOutcomes(1));
    EXPECT_EQ(outcomes, std::vector<std::string>{"error"});
    EXPECT_NE(lastError, "");
}

TEST_F(BusCallTest, FailsWhenItsPatienceIsOver) {
    call.start(bus.get(), wait, nullptr, nullptr, note(), 50ms);
    ASSERT_TRUE(hasOutcomes(1));
    EXPECT_EQ(outcomes, std::vector<std::string>{"error"});
    EXPECT_EQ(service.waiting(), 1U);
}

TEST_F(BusCallTest, HearsNothingOfACallThatWasReplacedOrCancelled) {
    call.start(bus.get(), echo, words("first"), "(s)", note());
    call.start(bus.get(), echo, words("second"), "(s)", note());
    ASSERT_TRUE(hasOutcomes(1));
    EXPECT_EQ(outcomes, std::vector<std::string>{"second"});
    call.start(bus.get(), echo, words("third"), "(s)", note());
    call.cancel();
    EXPECT_FALSE(call.isPending());
    runLoopFor(50ms);
    EXPECT_EQ(outcomes.size(), 1U);
}

TEST_F(BusCallTest, HearsNothingOnceItsOwnerIsGone) {
    const auto held = std::make_shared<int>();
    {
        BusCall brief;
        brief.start(
            bus.get(), wait, nullptr, nullptr,
            [held, noted = note()](VariantHandle answer, const auto& error) { noted(std::move(answer), error); });
        ASSERT_TRUE(runLoopUntil([&] { return service.waiting() == 1; }));
    }
    EXPECT_EQ(held.use_count(), 1) << "what the function holds is kept";
    service.answerAll();
    runLoopFor(50ms);
    EXPECT_TRUE(outcomes.empty());
}

TEST_F(BusCallTest, MayBeStartedAnewOrDestroyedByItsOwnAnswer) {
    std::optional<BusCall> one{std::in_place};
    one->start(bus.get(), echo, words("first"), "(s)", [&, held = std::string{"first"}](auto, const auto&) {
        outcomes.push_back(held);
        one->start(bus.get(), echo, words("second"), "(s)", [&, held = std::string{"second"}](auto, const auto&) {
            one.reset();
            outcomes.push_back(held);
        });
    });
    ASSERT_TRUE(hasOutcomes(2));
    EXPECT_EQ(outcomes, (std::vector<std::string>{"first", "second"}));
}

} // namespace
} // namespace platform::linux
