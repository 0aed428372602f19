#include "ZRMCloudKit/ZRMCloudKit_Tests/Support/ZRMGoldenFile.h"

#include <fstream>
#include <sstream>

namespace {

std::string textOfFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

}  // namespace

std::string zrm_goldenDirectory() {
    return ZRM_SOURCE_DIR "/ZRMCloudKit/ZRMCloudKit_Tests/Golden";
}

std::string zrm_goldenFile(const std::string& name) {
    return textOfFile(zrm_goldenDirectory() + "/" + name);
}

std::string zrm_eventsPageInSourceTree() {
    return textOfFile(ZRM_SOURCE_DIR "/docs/formats/events.md");
}
