#include <atomic>
#include <random>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <zlib.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"

namespace {

ZRMData incompressible(std::size_t length) {
    std::mt19937 engine(7);
    ZRMData data(length);
    std::ranges::generate(data, [&] { return static_cast<std::uint8_t>(engine()); });
    return data;
}

ZRMData firstBytes(const ZRMData& data, std::size_t length) {
    return {data.begin(), data.begin() + static_cast<std::ptrdiff_t>(length)};
}

}  // namespace

TEST(ZRMGzip, IsKnownByItsFirstTwoBytes) {
    EXPECT_TRUE(zrm_isGzipData(ZRMData{0x1F, 0x8B}));
    EXPECT_TRUE(zrm_isGzipData(ZRMData{0x1F, 0x8B, 0x00}));
    EXPECT_FALSE(zrm_isGzipData({}));
    EXPECT_FALSE(zrm_isGzipData(ZRMData{0x1F}));
    EXPECT_FALSE(zrm_isGzipData(ZRMData{0x8B, 0x1F}));
    EXPECT_FALSE(zrm_isGzipData(ZRMData{0x1F, 0x8C}));
}

TEST(ZRMGzip, ContentSurvivesWhateverItsLength) {
    for (const std::size_t length : {1U, 2U, 100U, 16383U, 16384U, 16385U, 40000U, 200000U}) {
        const auto data = incompressible(length);
        const auto zipped = zrm_gzipData(data);
        EXPECT_TRUE(zrm_isGzipData(zipped));
        EXPECT_EQ(zrm_ungzipData(zipped), data) << length;
    }
    const ZRMData zeros(1000000, 0);
    const auto zipped = zrm_gzipData(zeros);
    EXPECT_LT(zipped.size(), 2000U);
    EXPECT_EQ(zrm_ungzipData(zipped), zeros);
}

TEST(ZRMGzip, MoreThanZlibCanCountComesOutEmpty) {
    constexpr std::size_t kLength = std::size_t{1} << 32U;
    void* const memory = mmap(nullptr, kLength, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    const std::span data(static_cast<std::uint8_t*>(memory), kLength);
    EXPECT_EQ(zrm_gzipData(data), ZRMData());
    data[0] = 0x1F;
    data[1] = 0x8B;
    EXPECT_EQ(zrm_ungzipData(data), ZRMData());
    munmap(memory, kLength);
}

TEST(ZRMGzip, OutputThatFillsTheBufferExactlyIsWhole) {
    // Stored blocks: find the lengths around which the output crosses the growth step.
    for (std::size_t length = 16340; length < 16384; ++length) {
        const auto data = incompressible(length);
        EXPECT_EQ(zrm_ungzipData(zrm_gzipData(data)), data) << length;
    }
}

TEST(ZRMGzip, HasTheParametersAgreedOn) {
    const auto data = zrm_dataFromText("parameters parameters parameters");
    z_stream stream{};
    ASSERT_EQ(deflateInit2(&stream, -1, 8, 31, 8, 0), Z_OK);
    ZRMData expected(1000);
    stream.next_in = const_cast<Bytef*>(data.data());
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = expected.data();
    stream.avail_out = static_cast<uInt>(expected.size());
    ASSERT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    expected.resize(stream.total_out);
    deflateEnd(&stream);
    EXPECT_EQ(zrm_gzipData(data), expected);
}

TEST(ZRMGzip, WhatWasZippedBeforeDoesNotShow) {
    const auto text = zrm_dataFromText("an event like all the others, and some more of its text");
    const auto first = zrm_gzipData(text);
    for (const std::size_t length : {1U, 300U, 40000U}) {
        const auto other = incompressible(length);
        EXPECT_EQ(zrm_ungzipData(zrm_gzipData(other)), other);
        EXPECT_EQ(zrm_gzipData(text), first) << length;
    }
}

TEST(ZRMGzip, ThreadsDoNotDisturbEachOther) {
    std::vector<std::thread> threads;
    std::atomic<int> broken{0};
    for (std::size_t thread = 0; thread < 4; ++thread) {
        threads.emplace_back([thread, &broken] {
            for (std::size_t run = 0; run < 50; ++run) {
                const ZRMData data(100 + 1000 * thread + run,
                                   static_cast<std::uint8_t>(16 * thread + run % 16));
                broken += zrm_ungzipData(zrm_gzipData(data)) == data ? 0 : 1;
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(broken, 0);
}

TEST(ZRMGzip, EmptyAndGzipDataAreNotZipped) {
    EXPECT_EQ(zrm_gzipData({}), ZRMData{});
    const auto zipped = zrm_gzipData(zrm_dataFromText("content"));
    EXPECT_EQ(zrm_gzipData(zipped), zipped);
    EXPECT_EQ(zrm_gzipData(ZRMData{0x1F, 0x8B}), (ZRMData{0x1F, 0x8B}));
}

TEST(ZRMGzip, EmptyAndOtherDataAreNotUnzipped) {
    EXPECT_EQ(zrm_ungzipData({}), ZRMData{});
    const auto text = zrm_dataFromText("no gzip");
    EXPECT_EQ(zrm_ungzipData(text), text);
    const ZRMData zlibHeader{0x78, 0x9C, 0x03, 0x00};
    EXPECT_EQ(zrm_ungzipData(zlibHeader), zlibHeader);
}

TEST(ZRMGzip, ATruncatedStreamYieldsTheBufferUncut) {
    const auto data = incompressible(1000);
    const auto zipped = zrm_gzipData(data);
    const auto truncated = firstBytes(zipped, zipped.size() - 10);
    const auto buffer = zrm_ungzipData(truncated);
    // It grew by halves of the input, and its unwritten end is zeros.
    EXPECT_EQ(buffer.size() % (truncated.size() / 2), 0U);
    EXPECT_EQ(buffer.size(), truncated.size() / 2 * 2);
    const auto written = std::size_t{980};
    EXPECT_EQ(firstBytes(buffer, written), firstBytes(data, written));
}

TEST(ZRMGzip, ATruncatedTrailerYieldsTheBufferUncut) {
    const ZRMData zeros(100, 0x41);
    const auto zipped = zrm_gzipData(zeros);
    const auto truncated = firstBytes(zipped, zipped.size() - 4);
    const auto step = truncated.size() / 2;
    auto buffer = zrm_ungzipData(truncated);
    ASSERT_GE(buffer.size(), 100U);
    EXPECT_EQ(buffer.size() % step, 0U);
    EXPECT_LE(buffer.size(), 100U + step);
    EXPECT_EQ(firstBytes(buffer, 100), zeros);
    EXPECT_TRUE(std::all_of(buffer.begin() + 100, buffer.end(), [](auto b) { return b == 0; }));
}

TEST(ZRMGzip, AHeaderWithoutAStreamYieldsTheBufferUncut) {
    EXPECT_EQ(zrm_ungzipData(ZRMData{0x1F, 0x8B}), ZRMData{0});
    EXPECT_EQ(zrm_ungzipData(ZRMData{0x1F, 0x8B, 0x08}), ZRMData{0});
    EXPECT_EQ(zrm_ungzipData(ZRMData{0x1F, 0x8B, 0x08, 0x00}), (ZRMData{0, 0}));
}

TEST(ZRMGzip, ABrokenStreamYieldsTheBufferUncut) {
    auto zipped = zrm_gzipData(incompressible(1000));
    zipped[zipped.size() - 8] ^= 0xFF;  // of the checksum
    const auto step = zipped.size() / 2;
    EXPECT_EQ(zrm_ungzipData(zipped).size() % step, 0U);
    EXPECT_EQ(zrm_ungzipData(ZRMData{0x1F, 0x8B, 0xFF, 0xFF, 1, 2}), (ZRMData{0, 0, 0}));
}

TEST(ZRMGzip, WhatFollowsTheFirstMemberIsIgnored) {
    auto zipped = zrm_gzipData(zrm_dataFromText("first"));
    const auto second = zrm_gzipData(zrm_dataFromText("second"));
    zipped.insert(zipped.end(), second.begin(), second.end());
    EXPECT_EQ(zrm_ungzipData(zipped), zrm_dataFromText("first"));
}

TEST(ZRMGzip, AStreamBeyondTheMaximumStopsGrowing) {
    const ZRMData zeros(1000000, 0);
    const auto zipped = zrm_gzipData(zeros);
    EXPECT_EQ(zrm_ungzipData(zipped, zeros.size()), zeros);
    const auto cutOff = zrm_ungzipData(zipped, 5000);
    EXPECT_GT(cutOff.size(), 5000U);
    EXPECT_LE(cutOff.size(), 5000U + zipped.size());
    EXPECT_NE(zrm_ungzipData(zipped, zeros.size() - 1).size(), zeros.size());
}
