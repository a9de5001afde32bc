#include "foundation/utl/IniFileSection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/utl/Exceptions.h"

namespace {

using Names = std::vector<std::string>;
using testing::HasSubstr;

IniFileSection Read(std::string_view text) {
    return IniFileSection::FromText(text, "a.ini");
}

std::string ErrorOf(std::string_view text) {
    try {
        static_cast<void>(Read(text));
    } catch (const Exception& error) {
        return error.what();
    }
    return "no error";
}

std::string TextOf(const IniFileSection& section, const std::string& key) {
    std::string text = "(missing)";
    static_cast<void>(section.ReadString(key, &text));
    return text;
}

}  // namespace

TEST(IniFileSection, KeysKeepTheOrderOfTheFile) {
    const auto section = Read("[S]\nzeta=1\nalpha=2\nmid=3\n").OpenSection("S");
    ASSERT_NE(section, nullptr);
    EXPECT_EQ(section->GetKeyNames(), (Names{"zeta", "alpha", "mid"}));
}

TEST(IniFileSection, KeysInFrontOfTheFirstHeaderBelongToTheFile) {
    const IniFileSection file = Read("a=1\nempty=\n[S]\nb=2\n");
    EXPECT_EQ(file.GetKeyNames(), (Names{"a", "empty"}));
    EXPECT_EQ(TextOf(file, "empty"), "");
}

TEST(IniFileSection, SectionOutlivesTheFile) {
    std::unique_ptr<IniFileSection> section;
    {
        const IniFileSection file = Read("[S]\na=1\n");
        section = file.OpenSection("S");
    }
    EXPECT_EQ(TextOf(*section, "a"), "1");
}

TEST(IniFileSection, MissingSectionGivesANullHandle) {
    const IniFileSection file = Read("key=1\n[S]\na=1\n");
    EXPECT_EQ(file.OpenSection("T"), nullptr);
    EXPECT_EQ(file.OpenSection(""), nullptr);
    EXPECT_EQ(file.OpenSection("key"), nullptr);
    EXPECT_EQ(file.OpenSection("S.a"), nullptr);
}

TEST(IniFileSection, NamesMayHoldDots) {
    const IniFileSection file = Read("top.key=0\n[A.B]\nc.d=1\n");
    EXPECT_EQ(TextOf(file, "top.key"), "0");
    ASSERT_NE(file.OpenSection("A.B"), nullptr);
    EXPECT_EQ(TextOf(*file.OpenSection("A.B"), "c.d"), "1");
}

TEST(IniFileSection, CommentsAndEmptyLinesAreSkipped) {
    const IniFileSection file = Read("; one\n\n  # two\na=1 ; part of the text\n");
    EXPECT_EQ(file.GetKeyNames(), Names{"a"});
    EXPECT_EQ(TextOf(file, "a"), "1 ; part of the text");
}

TEST(IniFileSection, BlanksAroundNamesAndTextsAreDropped) {
    const auto section = Read("[ S ]\r\n  a  =  x y = z \r\n").OpenSection("S");
    ASSERT_NE(section, nullptr);
    EXPECT_EQ(TextOf(*section, "a"), "x y = z");
}

TEST(IniFileSection, ByteOrderMarkIsSkipped) {
    EXPECT_EQ(Read("\xEF\xBB\xBF"
                   "a=1\n")
                  .GetKeyNames(),
              Names{"a"});
}

TEST(IniFileSection, LastLineNeedsNoLineBreak) {
    EXPECT_EQ(TextOf(Read("a=1"), "a"), "1");
}

TEST(IniFileSection, ErrorsNameSourceAndLine) {
    EXPECT_THAT(ErrorOf("a=1\nb=2\na=3\n"), HasSubstr("a.ini, line 3: duplicate key name"));
    EXPECT_THAT(ErrorOf("[S]\na=1\n[T]\nb=1\n[S]\n"),
                HasSubstr("a.ini, line 5: duplicate section"));
    EXPECT_THAT(ErrorOf("a=1\nno equals sign\n"), HasSubstr("a.ini, line 2: "));
    EXPECT_THAT(ErrorOf("[S\n"), HasSubstr("a.ini, line 1: "));
    EXPECT_THAT(ErrorOf("=1\n"), HasSubstr("a.ini, line 1: "));
}

TEST(IniFileSection, SectionWithoutANameIsRefused) {
    EXPECT_EQ(ErrorOf("[]\na=1\n"), "a.ini: a section has no name.");
}

TEST(IniFileSection, KeyMayOccurInTwoSections) {
    const IniFileSection file = Read("a=0\n[S]\na=1\n[T]\na=2\n");
    EXPECT_EQ(TextOf(file, "a"), "0");
    EXPECT_EQ(TextOf(*file.OpenSection("T"), "a"), "2");
}

TEST(IniFileSection, EmptyTextHasNoKeys) {
    EXPECT_TRUE(Read("").GetKeyNames().empty());
}

TEST(IniFileSection, TypedReads) {
    const IniFileSection file = Read("i=-12\nf=0.5\nd=1e300\nb=YES\nn=0\n");
    int whole = 0;
    float narrow = 0;
    double wide = 0;
    bool yes = false;
    bool no = true;
    EXPECT_TRUE(file.ReadInt("i", &whole));
    EXPECT_TRUE(file.ReadFloat("f", &narrow));
    EXPECT_TRUE(file.ReadDouble("d", &wide));
    EXPECT_TRUE(file.ReadBool("b", &yes));
    EXPECT_TRUE(file.ReadBool("n", &no));
    EXPECT_EQ(whole, -12);
    EXPECT_EQ(narrow, 0.5F);
    EXPECT_EQ(wide, 1e300);
    EXPECT_TRUE(yes);
    EXPECT_FALSE(no);
}

TEST(IniFileSection, UnfitTextsLeaveTheDestination) {
    const IniFileSection file = Read("i=1.5\nbig=99999999999\nf=1e60\nd=nan\nb=maybe\nempty=\n");
    int whole = 7;
    float narrow = 7;
    double wide = 7;
    bool flag = true;
    for (const char* const key : {"i", "big", "b", "empty", "missing"}) {
        EXPECT_FALSE(file.ReadInt(key, &whole)) << key;
    }
    EXPECT_FALSE(file.ReadFloat("f", &narrow));
    EXPECT_FALSE(file.ReadDouble("d", &wide));
    EXPECT_FALSE(file.ReadBool("b", &flag));
    EXPECT_EQ(whole, 7);
    EXPECT_EQ(narrow, 7);
    EXPECT_EQ(wide, 7);
    EXPECT_TRUE(flag);
}

TEST(IniFileSection, MissingFileIsNamed) {
    try {
        static_cast<void>(IniFileSection::LoadFromFile("/no/such.ini"));
        FAIL();
    } catch (const Exception& error) {
        EXPECT_THAT(error.what(), HasSubstr("/no/such.ini"));
    }
}
