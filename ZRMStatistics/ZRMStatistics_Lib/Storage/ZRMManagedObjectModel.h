// What the store's tables hold, as the model files of the resource bundle say it.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ZRMPlatform/Ports/Values/ZRMResult.h"

inline constexpr const char* kZRMModelErrorDomain = "ZRMManagedObjectModelErrorDomain";

enum ZRMModelErrorCode : int {
    ZRMModelErrorMalformed = 1,    // the file is no model
    ZRMModelErrorConflicting = 2,  // two models disagree about an attribute
};

enum class ZRMAttributeType { Binary, Double, Integer16 };

struct ZRMAttributeDescription {
    std::string name;  // an identifier: letters, digits and "_", no digit first
    ZRMAttributeType type = ZRMAttributeType::Binary;

    friend bool operator==(const ZRMAttributeDescription&,
                           const ZRMAttributeDescription&) = default;
};

struct ZRMEntityDescription {
    std::string name;  // an identifier too
    std::vector<ZRMAttributeDescription> attributes;

    [[nodiscard]] const ZRMAttributeDescription* attributeNamed(std::string_view attribute) const;

    friend bool operator==(const ZRMEntityDescription&, const ZRMEntityDescription&) = default;
};

struct ZRMManagedObjectModel {
    std::int32_t version = 0;  // 1 and up; 0 for a model without entities
    std::vector<ZRMEntityDescription> entities;

    [[nodiscard]] const ZRMEntityDescription* entityNamed(std::string_view entity) const;

    friend bool operator==(const ZRMManagedObjectModel&, const ZRMManagedObjectModel&) = default;
};

// Reads {"version": 1, "entities": [{"name": …, "attributes": [{"name": …, "type": …}]}]}, where a
// type is "binary", "double" or "integer16".
ZRMResult<ZRMManagedObjectModel> zrm_managedObjectModelFromJson(std::span<const std::uint8_t> json);

// The entities and attributes of all of them; the version is the highest.
ZRMResult<ZRMManagedObjectModel> zrm_modelByMergingModels(
    std::span<const ZRMManagedObjectModel> models);
