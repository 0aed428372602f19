// One image that the dynamic loader mapped into the process.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

// Immutable. Images are the same when their names are, wherever they lie.
class ZRMDyldImageDescriptor {
  public:
    // `name` is the file's path in UTF-8, `vmaddr` the address at which the header is mapped.
    ZRMDyldImageDescriptor(std::string name, std::uint64_t vmaddr);

    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] std::uint64_t vmaddr() const { return vmaddr_; }
    // "<%@: %p> { name = %@ }"
    [[nodiscard]] std::string description() const;

    friend bool operator==(const ZRMDyldImageDescriptor& left,
                           const ZRMDyldImageDescriptor& right) {
        return left.name_ == right.name_;
    }

  private:
    std::string name_;
    std::uint64_t vmaddr_;
};

template <>
struct std::hash<ZRMDyldImageDescriptor> {
    std::size_t operator()(const ZRMDyldImageDescriptor& image) const noexcept {
        return std::hash<std::string>{}(image.name());
    }
};
