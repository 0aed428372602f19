# One target a module. A module names its sources and the modules it may know; nothing else links.
#
#   zrm_add_module(corekit SOURCES a.cpp b.cpp FAST b.cpp PUBLIC zrm::ports PRIVATE ZLIB::ZLIB)
#   zrm_add_tests(corekit SOURCES aTest.cpp DEPENDS zrm::corekit)
#
# FAST names the sources that are compiled for speed where the library is compiled for size.

# gcc accepts a precompiled header only under the very same macros, which differ between modules.
set(ZRM_USE_PCH OFF)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  set(ZRM_USE_PCH ON)
endif()

add_library(zrm_pch OBJECT "${CMAKE_CURRENT_LIST_DIR}/ZRMPrecompiled.cpp")
target_link_libraries(zrm_pch PUBLIC zrm_options)
if(ZRM_USE_PCH)
  target_precompile_headers(zrm_pch PRIVATE "${CMAKE_CURRENT_LIST_DIR}/ZRMPrecompiled.h")
endif()

function(zrm_add_module NAME)
  cmake_parse_arguments(ARG "" "" "SOURCES;FAST;PUBLIC;PRIVATE" ${ARGN})
  add_library(zrm_${NAME} STATIC ${ARG_SOURCES})
  add_library(zrm::${NAME} ALIAS zrm_${NAME})
  target_link_libraries(zrm_${NAME} PUBLIC ${ARG_PUBLIC} PRIVATE zrm_options ${ARG_PRIVATE})
  target_include_directories(zrm_${NAME} PUBLIC "${PROJECT_SOURCE_DIR}")
  if(ZRM_USE_PCH)
    target_precompile_headers(zrm_${NAME} REUSE_FROM zrm_pch)
  endif()
  zrm_compact_module(zrm_${NAME} "${ARG_FAST}")
  set_property(GLOBAL APPEND PROPERTY ZRM_MODULES ${NAME})
endfunction()

if(ZRM_BUILD_TESTS)
  add_library(zrm_test_pch OBJECT "${CMAKE_CURRENT_LIST_DIR}/ZRMPrecompiled.cpp")
  target_link_libraries(zrm_test_pch PUBLIC zrm_options GTest::gmock)
  # As the test programs are compiled, which are executables and not library code.
  set_target_properties(zrm_test_pch PROPERTIES POSITION_INDEPENDENT_CODE OFF)
  target_compile_options(zrm_test_pch PRIVATE -fPIE)
  if(ZRM_USE_PCH)
    target_precompile_headers(zrm_test_pch PRIVATE
      "${CMAKE_CURRENT_LIST_DIR}/ZRMPrecompiled.h" <gmock/gmock.h> <gtest/gtest.h>)
  endif()
endif()

# Registers a test program with ctest: each test by itself, or, where a sanitizer makes every start of
# a program slow, its tests in two halves.
function(zrm_discover_tests TARGET PREFIX)
  if(NOT ZRM_SANITIZE)
    # Without the parameters' values, which may hold anything: a row's own name says more.
    gtest_discover_tests(${TARGET} TEST_PREFIX "${PREFIX}/" NO_PRETTY_VALUES DISCOVERY_TIMEOUT 60
      PROPERTIES TIMEOUT 300)
    return()
  endif()
  foreach(SHARD 0 1)
    add_test(NAME ${PREFIX}/${SHARD} COMMAND ${TARGET} --gtest_brief=1)
    set_tests_properties(${PREFIX}/${SHARD} PROPERTIES TIMEOUT 900 ENVIRONMENT
      "${ZRM_TEST_ENVIRONMENT};GTEST_TOTAL_SHARDS=2;GTEST_SHARD_INDEX=${SHARD}")
  endforeach()
endfunction()

# Every test program links both device bodies; the tests choose which one they install.
function(zrm_add_tests NAME)
  if(NOT ZRM_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  add_executable(zrm_${NAME}_tests ${ARG_SOURCES})
  target_link_libraries(zrm_${NAME}_tests PRIVATE
    zrm_options ${ARG_DEPENDS} zrm::platform_simulated zrm::platform_linux
    GTest::gtest_main GTest::gmock)
  if(ZRM_USE_PCH)
    target_precompile_headers(zrm_${NAME}_tests REUSE_FROM zrm_test_pch)
  endif()
  zrm_discover_tests(zrm_${NAME}_tests ${NAME})
endfunction()
