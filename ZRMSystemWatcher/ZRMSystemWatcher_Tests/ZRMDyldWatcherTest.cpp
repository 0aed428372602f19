#include <algorithm>
#include <thread>
#include <unordered_set>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "ZRMPlatform/Simulated/ZRMSimulatedLoader.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/DyldWatcher/ZRMDyldWatcher.h"

namespace {

struct ZRMDyldWatcherTest : ::testing::Test {
    std::shared_ptr<ZRMSimulatedLoader> loader = std::make_shared<ZRMSimulatedLoader>();
    std::shared_ptr<ZRMDyldWatcher> watcher = std::make_shared<ZRMDyldWatcher>(loader);

    static std::vector<std::string> namesOf(const std::vector<ZRMDyldImageDescriptor>& images) {
        std::vector<std::string> names;
        for (const auto& image : images) {
            names.push_back(image.name());
        }
        return names;
    }
};

bool isLoaded(const std::vector<ZRMDyldImageDescriptor>& images, const std::string& name) {
    return std::ranges::any_of(images, [&name](const auto& image) {
        return image.name().find(name) != std::string::npos;
    });
}

}  // namespace

TEST_F(ZRMDyldWatcherTest, RecordsNothingBeforeItIsRegistered) {
    loader->load("/usr/lib/a.dylib", 1);
    EXPECT_TRUE(watcher->attachedDyldImages().empty());
}

TEST_F(ZRMDyldWatcherTest, RecordsImagesLoadedBeforeAndAfterRegistrationInOrder) {
    loader->load("/usr/lib/a.dylib", 0x10);
    watcher->registerAddImageCallback();
    loader->load("/usr/lib/b.dylib", 0x20);
    const auto images = watcher->attachedDyldImages();
    EXPECT_EQ(namesOf(images), (std::vector<std::string>{"/usr/lib/a.dylib", "/usr/lib/b.dylib"}));
    EXPECT_EQ(images[1].vmaddr(), 0x20U);
}

TEST_F(ZRMDyldWatcherTest, AnUnloadedImageStaysRecordedAndLeavesTheCurrentList) {
    watcher->registerAddImageCallback();
    loader->load("/usr/lib/a.dylib", 0x10);
    loader->unload("/usr/lib/a.dylib");
    EXPECT_EQ(watcher->attachedDyldImages().size(), 1U);
    EXPECT_TRUE(watcher->currentDyldImages().empty());
}

TEST_F(ZRMDyldWatcherTest, AnAddressThatLiesInNoImageIsNotRecorded) {
    watcher->registerAddImageCallback();
    loader->setAddressesUnknown(true);
    loader->load("/usr/lib/a.dylib", 0x10);
    EXPECT_TRUE(watcher->attachedDyldImages().empty());
    EXPECT_EQ(watcher->currentDyldImages().size(), 1U);
}

TEST_F(ZRMDyldWatcherTest, CurrentImagesComeByIndexWithNameAndAddress) {
    loader->load("/App/Main", 0x100);
    loader->load("/usr/lib/a.dylib", 0x10);
    const auto images = watcher->currentDyldImages();
    EXPECT_EQ(namesOf(images), (std::vector<std::string>{"/App/Main", "/usr/lib/a.dylib"}));
    EXPECT_EQ(images[0].vmaddr(), 0x100U);
}

TEST_F(ZRMDyldWatcherTest, TheLoaderDoesNotKeepTheWatcher) {
    watcher->registerAddImageCallback();
    const std::weak_ptr weak = watcher;
    watcher.reset();
    EXPECT_TRUE(weak.expired());
    loader->load("/usr/lib/a.dylib", 0x10);
}

TEST(ZRMDyldImageDescriptorTest, ImagesOfOneNameAreEqualWhereverTheyLie) {
    const ZRMDyldImageDescriptor image("/usr/lib/a.dylib", 1);
    EXPECT_EQ(image, ZRMDyldImageDescriptor("/usr/lib/a.dylib", 2));
    EXPECT_FALSE(image == ZRMDyldImageDescriptor("/usr/lib/b.dylib", 1));
    const std::unordered_set<ZRMDyldImageDescriptor> set{image, {"/usr/lib/a.dylib", 2}};
    EXPECT_EQ(set.size(), 1U);
}

TEST(ZRMDyldImageDescriptorTest, DescriptionTellsClassAddressAndName) {
    const auto text = ZRMDyldImageDescriptor("/usr/lib/a.dylib", 1).description();
    EXPECT_TRUE(text.starts_with("<ZRMDyldImageDescriptor: 0x"));
    EXPECT_TRUE(text.ends_with("> { name = /usr/lib/a.dylib }"));
}

TEST(ZRMProcessImagesTest, TheSharedWatcherIsOneAndRecordsFromProcessStart) {
    const auto watcher = ZRMDyldWatcher::sharedWatcher();
    EXPECT_EQ(watcher, ZRMDyldWatcher::sharedWatcher());
    EXPECT_TRUE(isLoaded(watcher->attachedDyldImages(), "libc.so"));
    EXPECT_TRUE(isLoaded(watcher->attachedDyldImages(), "zrm_systemwatcher_tests"));
}

TEST(ZRMProcessImagesTest, ALaterDlopenIsRecordedAndADlcloseIsNot) {
    const auto watcher = ZRMDyldWatcher::sharedWatcher();
    ASSERT_FALSE(isLoaded(watcher->currentDyldImages(), "libBrokenLocale"));
    void* const library = dlopen("libBrokenLocale.so.1", RTLD_NOW);
    ASSERT_NE(library, nullptr) << dlerror();
    EXPECT_TRUE(isLoaded(watcher->attachedDyldImages(), "libBrokenLocale"));
    EXPECT_TRUE(isLoaded(watcher->currentDyldImages(), "libBrokenLocale"));
    dlclose(library);
    EXPECT_TRUE(isLoaded(watcher->attachedDyldImages(), "libBrokenLocale"));
    EXPECT_FALSE(isLoaded(watcher->currentDyldImages(), "libBrokenLocale"));
}

TEST(ZRMProcessImagesTest, ListsMayBeTakenWhileEightThreadsLoadAndUnload) {
    const auto watcher = std::make_shared<ZRMDyldWatcher>(zrm_processLoader());
    watcher->registerAddImageCallback();
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread) {
        threads.emplace_back([&watcher] {
            for (int round = 0; round < 50; ++round) {
                void* const library = dlopen("libBrokenLocale.so.1", RTLD_NOW);
                EXPECT_FALSE(watcher->currentDyldImages().empty());
                EXPECT_FALSE(watcher->attachedDyldImages().empty());
                dlclose(library);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
}
