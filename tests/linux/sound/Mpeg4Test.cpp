// Which files the resident program takes for sounds, without a decoder to ask.

#include "platform/linux/sound/Mpeg4.hpp"

#include "tests/support/TemporaryFolder.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace {

using namespace std::string_literals;

const std::filesystem::path resources = RESOURCES;

bool canPlay(const std::filesystem::path& file) { return platform::linux::holdsAac(file); }

std::string contentsOf(const std::filesystem::path& path) {
    std::ifstream file{path, std::ios::binary};
    return {std::istreambuf_iterator<char>{file}, {}};
}

/// `value` in as many bytes as given, the highest first.
std::string bytes(std::uint64_t value, int count) {
    std::string text;
    for (int shift = 8 * (count - 1); shift >= 0; shift -= 8) {
        text += static_cast<char>(value >> shift & 0xFF);
    }
    return text;
}

std::string box(const std::string& name, const std::string& contents) {
    return bytes(8 + contents.size(), 4) + name + contents;
}

std::string track(const std::string& handler, const std::string& format) {
    const std::string entry = box(format, std::string(28, '\0'));
    return box("trak",
               box("tkhd", "...") +
                   box("mdia", box("hdlr", bytes(0, 8) + handler + bytes(0, 8)) +
                                   box("minf", box("stbl", box("stsd", bytes(0, 4) + bytes(1, 4) + entry)))));
}

const std::string fileType = box("ftyp", "M4A \0\0\0\0"s);
const std::string media = box("mdat", "music");
const std::string soundTrack = track("soun", "mp4a");
const std::string videoTrack = track("vide", "avc1");

class CanPlay : public testing::Test {
protected:
    bool canPlay(const std::string& contents) const { return ::canPlay(_folder.write("file.m4a", contents)); }

    const TemporaryFolder _folder;
};

TEST_F(CanPlay, EverySoundOfTheProgram) {
    for (const char* name : {"Sonar.m4a", "Bowl.m4a", "Whistle.m4a"}) {
        EXPECT_TRUE(::canPlay(resources / name)) << name;
    }
}

TEST_F(CanPlay, AudioTrackInAac) {
    EXPECT_TRUE(canPlay(fileType + box("moov", soundTrack) + media));
    EXPECT_TRUE(canPlay(fileType + media + box("moov", soundTrack)));
}

TEST_F(CanPlay, AudioTrackBehindOthers) {
    EXPECT_TRUE(
        canPlay(fileType + box("free", "") + box("moov", box("mvhd", "") + videoTrack + soundTrack) + media));
}

TEST_F(CanPlay, LongSizes) {
    const std::string longMedia = bytes(1, 4) + "mdat" + bytes(16 + 5, 8) + "music";
    EXPECT_TRUE(canPlay(fileType + longMedia + box("moov", soundTrack)));
    const std::string endless = bytes(1, 4) + "mdat" + bytes(~std::uint64_t{0}, 8) + "music";
    EXPECT_FALSE(canPlay(fileType + box("moov", soundTrack) + endless));
    const std::string tooSmall = bytes(1, 4) + "mdat" + bytes(15, 8) + "music";
    EXPECT_FALSE(canPlay(fileType + box("moov", soundTrack) + tooSmall));
}

TEST_F(CanPlay, LastBoxThatExtendsToTheEnd) {
    EXPECT_TRUE(canPlay(fileType + box("moov", soundTrack) + bytes(0, 4) + "mdat" + "music"));
}

TEST_F(CanPlay, SoundWithStrayBytesAtItsEnd) {
    const std::string sound = contentsOf(resources / "Whistle.m4a");
    for (const std::string& stray : {"\0"s, "\n\n\n"s, "seven b"s, std::string(1000, '\xFF')}) {
        EXPECT_TRUE(canPlay(sound + stray)) << stray.size();
    }
}

TEST_F(CanPlay, NoTrackWithStrayBytesInsideIt) {
    EXPECT_FALSE(canPlay(fileType + box("moov", soundTrack + "stray") + media));
}

TEST_F(CanPlay, NoVideoOnly) { EXPECT_FALSE(canPlay(fileType + box("moov", videoTrack) + media)); }

TEST_F(CanPlay, NoOtherCodec) {
    EXPECT_FALSE(canPlay(fileType + box("moov", track("soun", "alac")) + media));
    EXPECT_FALSE(canPlay(fileType + box("moov", track("vide", "mp4a")) + media));
}

TEST_F(CanPlay, NothingWithoutOneOfItsParts) {
    EXPECT_FALSE(canPlay(box("moov", soundTrack) + media));
    EXPECT_FALSE(canPlay(fileType + media));
    EXPECT_FALSE(canPlay(fileType + box("moov", soundTrack)));
    EXPECT_FALSE(canPlay(fileType + box("moov", "") + media));
    EXPECT_FALSE(canPlay(fileType + box("moov", box("trak", "")) + media));
    EXPECT_FALSE(canPlay(fileType + box("moov", box("trak", box("mdia", box("hdlr", "")))) + media));
}

TEST_F(CanPlay, NoTextAndNoGarbage) {
    EXPECT_FALSE(canPlay(""s));
    EXPECT_FALSE(canPlay("Not a sound, but a letter to whoever opens it.\n"s));
    EXPECT_FALSE(canPlay(std::string(100'000, '\0')));
    EXPECT_FALSE(canPlay(std::string(100'000, '\xFF')));
    std::minstd_rand random{1};
    std::string noise(100'000, '\0');
    std::generate(noise.begin(), noise.end(), [&] { return static_cast<char>(random() >> 8 & 0xFF); });
    EXPECT_FALSE(canPlay(noise));
}

TEST_F(CanPlay, NoEndlessRowOfBoxes) {
    std::string row = fileType;
    for (int count = 0; count < 100'000; ++count) {
        row += box("free", "");
    }
    EXPECT_FALSE(canPlay(row + media + box("moov", soundTrack)));
}

TEST_F(CanPlay, NothingThatIsNoFile) {
    EXPECT_FALSE(::canPlay(_folder.path));
    EXPECT_FALSE(::canPlay(_folder.path / "missing.m4a"));
    EXPECT_FALSE(::canPlay("/dev/zero"));
    const std::filesystem::path pipe = _folder.path / "pipe.m4a";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(::canPlay(pipe));
}

TEST_F(CanPlay, NothingThatWasCutShort) {
    const std::string sound = contentsOf(resources / "Whistle.m4a");
    ASSERT_FALSE(sound.empty());
    for (std::size_t length = 0; length < sound.size(); length += length + 200 < sound.size() ? 53 : 1) {
        EXPECT_FALSE(canPlay(sound.substr(0, length))) << length;
    }
}

TEST_F(CanPlay, SurvivesAnyDamage) {
    const std::string intact = fileType + media + box("moov", box("mvhd", "") + videoTrack + soundTrack);
    const std::string extremes = "\x00\x01\x07\x08\x10\x7F\x80\xFF"s;
    int refused = 0;
    for (std::size_t position = 0; position < intact.size(); ++position) {
        for (const char extreme : extremes) {
            std::string damaged = intact;
            damaged[position] = extreme;
            refused += canPlay(damaged) ? 0 : 1;
        }
    }
    EXPECT_GT(refused, 0);
}

} // namespace
