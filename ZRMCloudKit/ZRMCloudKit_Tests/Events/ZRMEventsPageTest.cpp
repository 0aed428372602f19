#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Tests/Events/ZRMEventsPage.h"
#include "ZRMCloudKit/ZRMCloudKit_Tests/Support/ZRMGoldenFile.h"

TEST(ZRMEventsPage, IsWhatTheTablesAndTheGoldenDocumentsSay) {
    EXPECT_EQ(zrm_eventsPageInSourceTree(), zrm_eventsPage())
        << "run zrm_events_page > docs/formats/events.md";
}

TEST(ZRMEventsPage, HasASectionForEveryGoldenDocument) {
    std::size_t documents = 0;
    for (const auto& entry : std::filesystem::directory_iterator(zrm_goldenDirectory())) {
        if (entry.path().extension() == ".json") {
            ++documents;
            const auto heading = "\n## " + entry.path().stem().string() + "\n";
            EXPECT_THAT(zrm_eventsPage(), testing::HasSubstr(heading));
        }
    }
    EXPECT_GT(documents, 0U);
}
