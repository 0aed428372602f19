# Checks of the tree itself, run with the tests. Included last, when every module is known.

# Files that the build makes and that linters read.
if(NOT TARGET zrm_generated)
  add_custom_target(zrm_generated)
endif()

if(ZRM_BUILD_TESTS)
  get_property(ZRM_MODULE_NAMES GLOBAL PROPERTY ZRM_MODULES)
  string(REPLACE ";" "\n" ZRM_MODULE_LINES "${ZRM_MODULE_NAMES}")
  file(WRITE "${CMAKE_BINARY_DIR}/modules.txt" "${ZRM_MODULE_LINES}\n")

  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  foreach(CHECK includes module-list platform-calls file-size source-tree)
    add_test(NAME source/${CHECK} COMMAND ${Python3_EXECUTABLE}
      ${PROJECT_SOURCE_DIR}/scripts/checks/source.py ${CHECK} --modules ${CMAKE_BINARY_DIR}/modules.txt)
    set_tests_properties(source/${CHECK} PROPERTIES LABELS source)
  endforeach()

  add_test(NAME source/coverage-bounds COMMAND ${Python3_EXECUTABLE} -B
    ${PROJECT_SOURCE_DIR}/scripts/checks/coverage_test.py)
  set_tests_properties(source/coverage-bounds PROPERTIES LABELS source)

  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    add_test(NAME source/lock-misuse COMMAND ${CMAKE_CXX_COMPILER} -std=c++20 -fsyntax-only -Werror
      -Wthread-safety -I${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_LIST_DIR}/ZRMLockMisuse.cpp)
    set_tests_properties(source/lock-misuse PROPERTIES LABELS source
      PASS_REGULAR_EXPRESSION "requires holding mutex 'mutex_'")
  endif()

  # One source a header, so that each is compiled by itself. A sanitizer would find nothing here, and
  # nothing of it runs.
  if(ZRM_SANITIZE OR ZRM_COVERAGE)
    return()
  endif()
  file(GLOB_RECURSE ZRM_HEADERS CONFIGURE_DEPENDS RELATIVE "${PROJECT_SOURCE_DIR}"
    "${PROJECT_SOURCE_DIR}/ZRM*/*.h" "${PROJECT_SOURCE_DIR}/JailbreakDetection/*.h")
  set(ZRM_HEADER_SOURCES)
  foreach(HEADER IN LISTS ZRM_HEADERS)
    string(MAKE_C_IDENTIFIER "${HEADER}" NAME)
    set(SOURCE "${CMAKE_BINARY_DIR}/headers/${NAME}.cpp")
    file(CONFIGURE OUTPUT "${SOURCE}" CONTENT "#include \"${HEADER}\"\n")
    list(APPEND ZRM_HEADER_SOURCES "${SOURCE}")
  endforeach()
  add_library(zrm_headers_alone OBJECT ${ZRM_HEADER_SOURCES})
  target_link_libraries(zrm_headers_alone PRIVATE zrm_options GTest::gtest)
  foreach(MODULE IN LISTS ZRM_MODULE_NAMES)
    target_link_libraries(zrm_headers_alone PRIVATE zrm::${MODULE})
  endforeach()
  add_test(NAME source/headers-compile-alone
    COMMAND ${CMAKE_COMMAND} --build ${CMAKE_BINARY_DIR} --target zrm_headers_alone)
  set_tests_properties(source/headers-compile-alone PROPERTIES LABELS source TIMEOUT 600)
endif()
