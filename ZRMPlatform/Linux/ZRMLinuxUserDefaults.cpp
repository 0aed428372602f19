#include "ZRMPlatform/Linux/ZRMLinuxUserDefaults.h"

#include "ZRMPlatform/Linux/ZRMLinuxDefaultsFile.h"

namespace {

class Suite : public ZRMUserDefaultsSuite {
  public:
    Suite(std::shared_ptr<ZRMLinuxDefaultsFile> file, std::shared_ptr<ZRMQueue> writes)
        : file_(std::move(file)), writes_(std::move(writes)) {}

    [[nodiscard]] std::optional<double> doubleForKey(const std::string& key) const override {
        return file_->valueForKey<double>(key);
    }
    [[nodiscard]] std::optional<std::string> stringForKey(const std::string& key) const override {
        return file_->valueForKey<std::string>(key);
    }
    void setDouble(const std::string& key, double value) override { set(key, value); }
    void setString(const std::string& key, const std::string& value) override { set(key, value); }

  private:
    void set(const std::string& key, ZRMLinuxDefaultsFile::Value value) {
        if (file_->setValue(key, std::move(value))) {
            writes_->post([file = file_] { file->write(); });
        }
    }

    const std::shared_ptr<ZRMLinuxDefaultsFile> file_;
    const std::shared_ptr<ZRMQueue> writes_;
};

std::string fileNameOf(const std::string& suite) {
    constexpr std::string_view kHexDigits = "0123456789ABCDEF";
    std::string name;
    for (const char character : suite) {
        const bool isPlain = (character >= 'a' && character <= 'z') ||
                             (character >= 'A' && character <= 'Z') ||
                             (character >= '0' && character <= '9') || character == '.' ||
                             character == '-' || character == '_';
        if (isPlain) {
            name += character;
        } else {
            const auto byte = static_cast<unsigned char>(character);
            name += {'%', kHexDigits[byte >> 4U], kHexDigits[byte & 0x0FU]};
        }
    }
    return name + ".plist";
}

}  // namespace

ZRMLinuxUserDefaults::ZRMLinuxUserDefaults(std::string directory,
                                           std::shared_ptr<ZRMConsoleLog> console,
                                           std::shared_ptr<ZRMQueue> writes)
    : directory_(std::move(directory)), console_(std::move(console)), writes_(std::move(writes)) {}

std::unique_ptr<ZRMUserDefaultsSuite> ZRMLinuxUserDefaults::openSuite(const std::string& name) {
    return std::make_unique<Suite>(
        ZRMLinuxDefaultsFile::at(directory_ + "/" + fileNameOf(name), console_), writes_);
}

void ZRMLinuxUserDefaults::synchronize() {
    ZRMLinuxDefaultsFile::writeAll();
}
