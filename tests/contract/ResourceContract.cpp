#include "platform/Bundle.hpp"
#include "platform/NSImage.hpp"
#include "platform/NSSound.hpp"
#include "tests/contract/Clause.hpp"

namespace contract {
namespace {

using platform::Bundle;
using platform::Data;
using platform::NSImage;
using platform::NSSound;
using namespace std::string_literals;

class ResourceFiles : public Clause {};
class Sounds : public Clause {};

TEST_F(ResourceFiles, AreFoundByNameAndExtension) {
    driver->install("Note.txt", "text");
    runToEnd([] {
        EXPECT_TRUE(Bundle::main().url("Note", "txt"));
        EXPECT_FALSE(Bundle::main().url("Note", "m4a"));
        EXPECT_FALSE(Bundle::main().url("NoNote", "txt"));
    });
}

TEST_F(ResourceFiles, AreReadWholeAndUnchanged) {
    const std::string content = "first\r\nsecond\n\0\xFF end"s;
    driver->install("Note.txt", content);
    driver->install("Empty.txt", "");
    runToEnd([&] {
        EXPECT_EQ(Data::contentsOf(Bundle::main().url("Note", "txt").value()), content);
        EXPECT_EQ(Data::contentsOf(Bundle::main().url("Empty", "txt").value()), "");
    });
}

TEST_F(ResourceFiles, ThatAreNotThereHaveNoContent) {
    driver->install("Note.txt", "text");
    runToEnd([] {
        const auto folder = Bundle::main().url("Note", "txt").value().parent_path();
        EXPECT_EQ(Data::contentsOf(folder / "NoNote.txt"), std::nullopt);
    });
}

TEST_F(ResourceFiles, ThatArePicturesHaveTheirNameAndASize) {
    runToEnd([] {
        const auto picture = NSImage::named("Marvelode.png");
        ASSERT_TRUE(picture);
        EXPECT_EQ(picture->name(), "Marvelode.png");
        EXPECT_GT(picture->size.width, 0);
        EXPECT_GT(picture->size.height, 0);
    });
}

TEST_F(ResourceFiles, ThatAreNoPicturesGiveNone) {
    driver->install("Broken.png", "this is no picture");
    runToEnd([] {
        EXPECT_FALSE(NSImage::named("Broken.png"));
        EXPECT_FALSE(NSImage::named("NoPicture.png"));
    });
}

TEST_F(Sounds, ThatCanBePlayedStartAtOnce) {
    const auto [name, extension] = driver->playableSound();
    runToEnd([&, name = name, extension = extension] {
        const auto sound = NSSound::contentsOf(Bundle::main().url(name, extension).value(), true);
        ASSERT_TRUE(sound);
        const milliseconds begin = driver->uptime();
        EXPECT_TRUE(sound->play());
        EXPECT_LT(driver->uptime() - begin, 200ms);
    });
}

TEST_F(Sounds, ThatArePlayingAlreadyDoNotStartAgain) {
    const auto [name, extension] = driver->playableSound();
    runToEnd([&, name = name, extension = extension] {
        const auto sound = NSSound::contentsOf(Bundle::main().url(name, extension).value(), true);
        ASSERT_TRUE(sound);
        EXPECT_TRUE(sound->play());
        EXPECT_FALSE(sound->play());
    });
}

TEST_F(Sounds, ThatCannotBePlayedAreNone) {
    driver->install("Broken.m4a", "this is no sound");
    runToEnd([] { EXPECT_FALSE(NSSound::contentsOf(Bundle::main().url("Broken", "m4a").value(), true)); });
}

TEST_F(Sounds, TheBeepKeepsNobodyWaiting) {
    runToEnd([&] {
        const milliseconds begin = driver->uptime();
        NSSound::beep();
        NSSound::beep();
        EXPECT_LT(driver->uptime() - begin, 200ms);
    });
}

} // namespace
} // namespace contract
