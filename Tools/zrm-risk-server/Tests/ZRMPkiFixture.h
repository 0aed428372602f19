// The server's keys and certificates in a directory of the suite's own; making them is slow.
#pragma once

#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

#include "Tools/zrm-risk-server/ZRMPki.h"

class ZRMPkiFixture : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        std::filesystem::remove_all(directory());
        ZRMPki::openOrMake(directory());
    }
    static void TearDownTestSuite() { std::filesystem::remove_all(directory()); }

    static ZRMPki pki() { return ZRMPki::openOrMake(directory()); }
    static std::filesystem::path directory() {
        return std::filesystem::path(testing::TempDir()) /
               ("zrm-signing-pki-" + std::to_string(::getpid()));
    }
};
