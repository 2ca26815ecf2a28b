#include "config/BuildInfo.hpp"

#include "tests/components/Bench.hpp"

#include <tuple>

namespace bench {
namespace {

using Texts = std::tuple<std::string, std::string, std::string>; // build, date, version

const Texts unknown{"UNKNOWN", "UNKNOWN", "UNKNOWN"};
const Texts complete{"1427", "2025-06-09", "1.2.0"};

class TheBuildInfo : public Bench {
protected:
    Texts read() {
        const auto info = BuildInfo::fromResourceFile("BuildInfo");
        return {info->build, info->date, info->version};
    }

    Texts readFrom(const std::string& content) {
        desktop.resources["BuildInfo.txt"] = TextFile{content};
        return read();
    }
};

class BuildInfoDeathTest : public TheBuildInfo {
protected:
    BuildInfoDeathTest() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

TEST_F(TheBuildInfo, ReadsTheExample) {
    EXPECT_EQ(readFrom("Build=1427\nDate=2025-06-09\nVersion=1.2.0\n"), complete);
}

TEST_F(TheBuildInfo, ReadsItsLinesHoweverTheyAreLaidOut) {
    for (const std::string content : {
             "Version=1.2.0\nBuild=1427\nDate=2025-06-09",               // any order
             "Build=1427\r\nDate=2025-06-09\r\nVersion=1.2.0\r\n",       // Windows
             "Build=1427\rDate=2025-06-09\rVersion=1.2.0\r",             // old line ends
             "Build=1427\vDate=2025-06-09\fVersion=1.2.0",               // stranger ones
             "Build=1427\u0085Date=2025-06-09\u2028Version=1.2.0\u2029", // strangest ones
             "\n\nBuild=1427\n\n\nDate=2025-06-09\nVersion=1.2.0\n\n",   // blank lines
             "  Build=1427\t\n\tDate=2025-06-09  \n \t Version=1.2.0 ",  // spaces and tabs around
         }) {
        EXPECT_EQ(readFrom(content), complete) << testing::PrintToString(content);
    }
}

TEST_F(TheBuildInfo, TakesASpaceBeforeTheSignForPartOfTheKey) {
    EXPECT_EQ(readFrom("Build=1427\nVersion =1.2.0\nDate=2025-06-09\n"), (Texts{"1427", "UNKNOWN", "UNKNOWN"}));
}

TEST_F(TheBuildInfo, KeepsSpacesAndSignsInsideAValue) {
    EXPECT_EQ(readFrom("Build=14=27\nDate=2025-06-09 12:30\nVersion= 1.2.0\n"),
              (Texts{"14=27", "2025-06-09 12:30", " 1.2.0"}));
}

TEST_F(TheBuildInfo, CutsALineAtTheFirstSignThatHasTextBeforeIt) {
    EXPECT_EQ(readFrom("Build==x\n=Date=y\n==Version=z\n"), (Texts{"=x", "y", "z"}));
}

TEST_F(TheBuildInfo, DoesNotKnowKeysInLowerCase) {
    EXPECT_EQ(readFrom("Version=1.2.0\nbuild=1427\nDate=2025-06-09\n"), (Texts{"UNKNOWN", "UNKNOWN", "1.2.0"}));
}

TEST_F(TheBuildInfo, StopsAtAnUnknownKeyAndKeepsWhatItRead) {
    EXPECT_EQ(readFrom("Date=2025-06-09\nAuthor=me\nBuild=1427\nVersion=1.2.0\n"),
              (Texts{"UNKNOWN", "2025-06-09", "UNKNOWN"}));
}

TEST_F(TheBuildInfo, LeavesWhatIsMissingUnknown) {
    EXPECT_EQ(readFrom("Build=1427\n"), (Texts{"1427", "UNKNOWN", "UNKNOWN"}));
    EXPECT_EQ(readFrom("Date=2025-06-09\nVersion=1.2.0"), (Texts{"UNKNOWN", "2025-06-09", "1.2.0"}));
}

TEST_F(TheBuildInfo, LetsTheLaterOfTwoLinesWin) {
    EXPECT_EQ(readFrom("Build=1\nBuild=2\nDate=d\nVersion=v"), (Texts{"2", "d", "v"}));
}

TEST_F(TheBuildInfo, IsUnknownWithoutAFile) { EXPECT_EQ(read(), unknown); }

TEST_F(TheBuildInfo, IsUnknownWithAFileThatCannotBeRead) {
    desktop.resources["BuildInfo.txt"] = UnreadableFile{};
    EXPECT_EQ(read(), unknown);
}

TEST_F(TheBuildInfo, IsUnknownWithAFileThatIsNoText) {
    EXPECT_EQ(readFrom("Build=1427\nDate=\xFF\nVersion=1.2.0"), unknown);
}

TEST_F(TheBuildInfo, IsUnknownWithAnEmptyFile) {
    EXPECT_EQ(readFrom(""), unknown);
    EXPECT_EQ(readFrom("\n\n"), unknown);
}

TEST_F(TheBuildInfo, ReadsTheResourceThatItIsAskedFor) {
    desktop.resources["Other.txt"] = TextFile{"Build=7\nDate=d\nVersion=v"};
    EXPECT_EQ(BuildInfo::fromResourceFile("Other")->build, "7");
}

TEST_F(TheBuildInfo, TellsNobodyWhatWentWrong) {
    readFrom("Nonsense=1\n");
    readFrom("Build=1427\n");
    EXPECT_EQ(desktop.logged().size(), 0U);
    EXPECT_EQ(desktop.printed().size(), 0U);
}

TEST_F(TheBuildInfo, KeepsTextsAsGivenAndCanBeChanged) {
    BuildInfo info{"a", "b", "c"};
    EXPECT_EQ((Texts{info.build, info.date, info.version}), (Texts{"a", "b", "c"}));
    info.build = "d";
    EXPECT_EQ(info.build, "d");
}

TEST_F(BuildInfoDeathTest, ALineOfSpacesIsFatal) { EXPECT_FATAL(readFrom("Build=1\n \t \nDate=d")); }

TEST_F(BuildInfoDeathTest, AKeyWithoutAValueIsFatal) { EXPECT_FATAL(readFrom("Build=\n")); }

TEST_F(BuildInfoDeathTest, AKeyAloneIsFatal) { EXPECT_FATAL(readFrom("Build\n")); }

TEST_F(BuildInfoDeathTest, AValueWithoutAKeyIsFatal) { EXPECT_FATAL(readFrom("=1427\n")); }

TEST_F(BuildInfoDeathTest, SignsAloneAreFatal) { EXPECT_FATAL(readFrom("===\n")); }

} // namespace
} // namespace bench
