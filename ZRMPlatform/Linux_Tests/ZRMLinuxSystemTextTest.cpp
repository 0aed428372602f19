#include <gtest/gtest.h>

#include "ZRMPlatform/Linux/ZRMLinuxSystemText.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

using namespace std::string_view_literals;

TEST(ZRMLinuxSystemText, WellFormedTextStaysAsItIs) {
    for (const auto text : {""sv, "abc"sv, "ä€😀"sv, "a\0b"sv, "\xF4\x8F\xBF\xBF"sv}) {
        EXPECT_EQ(zrm_wellFormedText(text), text);
    }
}

TEST(ZRMLinuxSystemText, EveryIllFormedSequenceBecomesOneReplacement) {
    EXPECT_EQ(zrm_wellFormedText("Caf\xE9"), "Caf\xEF\xBF\xBD");
    EXPECT_EQ(zrm_wellFormedText("a\xFFz"), "a\xEF\xBF\xBDz");
    EXPECT_EQ(zrm_wellFormedText("\xE2\x82"), "\xEF\xBF\xBD");
    EXPECT_EQ(zrm_wellFormedText("\xE2\x82z"), "\xEF\xBF\xBDz");
    EXPECT_EQ(zrm_wellFormedText("\xC0\xAF"), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(zrm_wellFormedText("\xED\xA0\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(ZRMLinuxSystemText, ANameHasNoBlanksAtItsEnds) {
    EXPECT_EQ(zrm_systemName(" \tThink Pad \r\n"), "Think Pad");
    EXPECT_EQ(zrm_systemName("Board Model B\0"sv), "Board Model B");
    EXPECT_EQ(zrm_systemName("h\xF6hle\n"), "h\xEF\xBF\xBDhle");
}

TEST(ZRMLinuxSystemText, NothingAndTooMuchAreNoName) {
    EXPECT_EQ(zrm_systemName(""), std::nullopt);
    EXPECT_EQ(zrm_systemName("\0 \n"sv), std::nullopt);
    EXPECT_EQ(zrm_systemName(std::string(256, 'x')), std::string(256, 'x'));
    EXPECT_EQ(zrm_systemName(std::string(257, 'x')), std::nullopt);
}

TEST(ZRMLinuxSystemText, OfAFileTheFirstLineCounts) {
    const ZRMTestDirectory directory;
    EXPECT_EQ(zrm_systemNameInFile(directory.writeFile("two", "first\nsecond\n")), "first");
    EXPECT_EQ(zrm_systemNameInFile(directory.writeFile("empty", "")), std::nullopt);
    EXPECT_EQ(zrm_systemNameInFile(directory.writeFile("blank", "\nsecond\n")), std::nullopt);
    EXPECT_EQ(zrm_systemNameInFile(directory.writeFile("long", std::string(100'000, 'x'))),
              std::nullopt);
    EXPECT_EQ(zrm_systemNameInFile(directory.below("missing")), std::nullopt);
    EXPECT_EQ(zrm_systemNameInFile(directory.path()), std::nullopt);
}

TEST(ZRMLinuxSystemText, TheLastAssignmentCounts) {
    const ZRMTestDirectory directory;
    const auto path = directory.writeFile(
        "conf", "# NAME=comment\nNAME=first\nNAME_TOO=other\n  NAME=last \nOTHER NAME=no\n");
    EXPECT_EQ(zrm_assignedName(path, "NAME"), "last");
    EXPECT_EQ(zrm_assignedName(path, "NAME_TOO"), "other");
    EXPECT_EQ(zrm_assignedName(path, "NAM"), std::nullopt);
    EXPECT_EQ(zrm_assignedName(directory.below("missing"), "NAME"), std::nullopt);
}

TEST(ZRMLinuxSystemText, QuotesAreTakenOffAsAShellWould) {
    const ZRMTestDirectory directory;
    const std::pair<const char*, const char*> rows[] = {{R"("Ada's \"box\"")", R"(Ada's "box")"},
                                                        {R"('a "b" \c')", R"(a "b" \c)"},
                                                        {R"(a\ b)", "a b"},
                                                        {R"("half)", "half"},
                                                        {R"('a'"b"c)", "abc"},
                                                        {R"(tail\)", R"(tail\)"}};
    for (const auto& [written, meant] : rows) {
        const auto path = directory.writeFile("conf", std::string("NAME=") + written + "\n");
        EXPECT_EQ(zrm_assignedName(path, "NAME"), meant) << written;
    }
    EXPECT_EQ(zrm_assignedName(directory.writeFile("conf", "NAME=\"\"\n"), "NAME"), std::nullopt);
}
