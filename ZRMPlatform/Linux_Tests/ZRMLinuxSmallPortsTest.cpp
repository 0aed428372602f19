#include <cstdlib>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"
#include "ZRMPlatform/Linux/ZRMLinuxProcessEnvironment.h"
#include "ZRMPlatform/Linux/ZRMLinuxRandom.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

TEST(ZRMLinuxRandom, FillsTheWholeSpanAndDoesNotRepeatItself) {
    ZRMLinuxRandom random;
    std::set<std::vector<std::uint8_t>> seen;
    for (int round = 0; round < 64; ++round) {
        std::vector<std::uint8_t> bytes(16);
        random.fill(bytes);
        EXPECT_TRUE(seen.insert(bytes).second);
    }
    // More than the kernel gives at once; an untouched tail would stay zero.
    std::vector<std::uint8_t> many(70'000'000);
    random.fill(many);
    const std::set<std::uint8_t> tail(many.end() - 256, many.end());
    EXPECT_GT(tail.size(), 16U);
    random.fill({});
}

TEST(ZRMLinuxProcessEnvironment, AnEmptyVariableIsThereAndAMissingOneIsNot) {
    const ZRMLinuxProcessEnvironment environment;
    setenv("ZRM_TEST_VARIABLE", "", 1);
    EXPECT_EQ(environment.variable("ZRM_TEST_VARIABLE"), "");
    setenv("ZRM_TEST_VARIABLE", "a value", 1);
    EXPECT_EQ(environment.variable("ZRM_TEST_VARIABLE"), "a value");
    unsetenv("ZRM_TEST_VARIABLE");
    EXPECT_EQ(environment.variable("ZRM_TEST_VARIABLE"), std::nullopt);
}

TEST(ZRMLinuxPosix, ASmallFileIsReadWholeAndAMissingOneIsAbsent) {
    const ZRMTestDirectory directory;
    EXPECT_EQ(zrm_smallFileText(directory.writeFile("small", "text\n")), "text\n");
    EXPECT_EQ(zrm_smallFileText(directory.writeFile("empty", "")), "");
    EXPECT_EQ(zrm_smallFileText(directory.below("missing")), std::nullopt);
    EXPECT_EQ(zrm_smallFileText(directory.path()), std::nullopt);
}

TEST(ZRMLinuxPosix, AnErrorKeepsTheNumberAndNamesTheSubject) {
    const auto error = zrm_posixError(ENOENT, "/some/path");
    EXPECT_EQ(error.domain(), kZRMPosixErrorDomain);
    EXPECT_EQ(error.code(), ENOENT);
    EXPECT_EQ(error.localizedDescription(), "No such file or directory: /some/path");
}
