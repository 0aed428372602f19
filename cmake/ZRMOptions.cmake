# Build settings shared by every target: language level, warnings, sanitizers, caches.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_PCH_INSTANTIATE_TEMPLATES ON)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Debug CACHE STRING "Build type" FORCE)
endif()

option(ZRM_BUILD_TESTS "Build the tests" ON)
option(ZRM_COVERAGE "Instrument for coverage" OFF)
option(ZRM_FUZZ "Build the fuzz targets (needs clang)" OFF)
set(ZRM_SANITIZE "" CACHE STRING "Sanitizers, for example address,undefined or thread")

# What the risk server's operator decides when the library is built for a customer.
set(ZRM_SETTINGS_URL "https://localhost:8443/config/v1" CACHE STRING "Default settings endpoint")
set(ZRM_STATISTICS_URL "https://localhost:8443/stat" CACHE STRING "Default statistics endpoint")
set(ZRM_DEVICE_TAG_URL "https://localhost:8443/zwjsqd" CACHE STRING "Default device-tag endpoint")
set(ZRM_CLIENT_ID "demosite" CACHE STRING "Default customer identifier")
if(ZRM_DEVICE_NAME_XOR_KEY STREQUAL "ZRMMobileKit")
  # The default that build directories of earlier versions hold, which was too long.
  unset(ZRM_DEVICE_NAME_XOR_KEY CACHE)
endif()
set(ZRM_DEVICE_NAME_XOR_KEY "demo-key" CACHE STRING
  "Key that veils the device name: 8 characters, or 8 bytes as 16 hexadecimal digits")
set(ZRM_ROOT_CERTIFICATE "" CACHE FILEPATH "Pinned root certificate (DER) of the settings' signer; none by default")

find_program(ZRM_CCACHE ccache)
if(ZRM_CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER "${ZRM_CCACHE}")
  set(CMAKE_CXX_COMPILER_LAUNCHER "${ZRM_CCACHE}")
endif()

add_library(zrm_options INTERFACE)
# gcc 12 sees overlaps and overflows in the growth of std::string and std::vector that are none.
target_compile_options(zrm_options INTERFACE
  -Wall -Wextra -Wconversion -Wshadow -Wpedantic -Werror
  $<$<CXX_COMPILER_ID:GNU>:-Wno-missing-field-initializers -Wno-restrict -Wno-stringop-overflow>
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety -Xclang -fno-pch-timestamp>)
target_include_directories(zrm_options INTERFACE "${PROJECT_SOURCE_DIR}")

# Merged sources compile in less than half of the time. What one source names for itself alone, the next may
# shadow without harm; the same name twice does not compile. gcc takes a merged source for a header, in which
# a test's own fixture would be one name for several types.
set(CMAKE_UNITY_BUILD_BATCH_SIZE 24)
if(CMAKE_UNITY_BUILD)
  target_compile_options(zrm_options INTERFACE -Wno-shadow
    $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
endif()

# Line tables are enough for backtraces and keep debug links quick.
set(CMAKE_CXX_FLAGS_DEBUG "-g1 -O0 -D_GLIBCXX_ASSERTIONS")

# It looks for a symbol in every library, whatever their order: the default platform that the ports
# name lies in a library that comes before them.
add_link_options(-fuse-ld=lld)
if(ZRM_SANITIZE)
  add_compile_options(-fsanitize=${ZRM_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ZRM_SANITIZE})
  # What tests run with, and by how much they may take longer.
  set(ZRM_TEST_ENVIRONMENT
    "ASAN_OPTIONS=strict_string_checks=1:detect_stack_use_after_return=1"
    "UBSAN_OPTIONS=print_stacktrace=1"
    "TSAN_OPTIONS=halt_on_error=1:suppressions=${PROJECT_SOURCE_DIR}/scripts/tsan.supp"
    "ZRM_TIME_FACTOR=4")
endif()
if(ZRM_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(ZRM_COVERAGE)
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()
