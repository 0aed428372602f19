#include <ostream>

#include <gtest/gtest.h>

#include "Tools/zrm-host/ZRMWordSplitter.h"

namespace {

using Words = std::vector<std::string>;

struct Row {
    const char* line;
    Words words;
};

void PrintTo(const Row& row, std::ostream* out) {
    *out << row.line;
}

class ZRMWordSplitter : public testing::TestWithParam<Row> {};

TEST_P(ZRMWordSplitter, PartsWordsAsAShellWould) {
    EXPECT_EQ(zrm_splitWords(GetParam().line), GetParam().words);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ZRMWordSplitter,
    testing::Values(Row{"", {}}, Row{" \t ", {}}, Row{"a", {"a"}},
                    Row{"  login  alice\t0 ", {"login", "alice", "0"}}, Row{"a\r", {"a"}},
                    Row{"'a b' c", {"a b", "c"}}, Row{"\"a b\" c", {"a b", "c"}}, Row{"''", {""}},
                    Row{"\"\"", {""}}, Row{"a '' b", {"a", "", "b"}}, Row{"a'b'\"c\"d", {"abcd"}},
                    Row{"'a\"b'", {"a\"b"}}, Row{"\"a'b\"", {"a'b"}}, Row{"'a\\b'", {"a\\b"}},
                    Row{R"("a\"b")", {"a\"b"}}, Row{R"("a\\b")", {"a\\b"}},
                    Row{R"("\$\`")", {"$`"}}, Row{R"("a\nb")", {"a\\nb"}}, Row{R"(a\ b)", {"a b"}},
                    Row{R"(\'a)", {"'a"}}, Row{R"(\\)", {"\\"}}, Row{R"(a\nb)", {"anb"}},
                    Row{"#home $x *", {"#home", "$x", "*"}}, Row{"Zo\u00eb", {"Zo\u00eb"}}));

TEST(ZRMWordSplitter, RefusesWhatIsNotEnded) {
    for (const auto* line : {"'", "\"", "a 'b", "a \"b", "\\", "a\\", "\"a\\\"", "\"\\"}) {
        EXPECT_EQ(zrm_splitWords(line), std::nullopt) << line;
    }
}

}  // namespace
