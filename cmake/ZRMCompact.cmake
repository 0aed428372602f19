# With ZRM_COMPACT (preset release) the library is small: its modules are compiled for size, and the
# shared library is optimised as one program when it is linked.
# docs/decisions/0009-the-library-is-small.md tells why and what follows.
option(ZRM_COMPACT "Compile the library for size and optimise it as one program (gcc)" OFF)
if(ZRM_COMPACT AND NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  message(FATAL_ERROR "ZRM_COMPACT needs gcc")
endif()

# Fat objects: the programs and the static library take the machine code, the shared library the rest.
set(ZRM_COMPACT_OPTIONS -Oz -fno-sized-deallocation -flto=auto -ffat-lto-objects -ffunction-sections
  -fdata-sections)
if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
  # For size alone gcc copies texts with an instruction that takes longer to begin than most texts to copy.
  list(APPEND ZRM_COMPACT_OPTIONS -mstringop-strategy=libcall)
endif()

# Of the module's sources those named stay at -O2: what every event's bytes go through.
function(zrm_compact_module LIBRARY FAST_SOURCES)
  if(NOT ZRM_COMPACT)
    return()
  endif()
  target_compile_options(${LIBRARY} PRIVATE ${ZRM_COMPACT_OPTIONS})
  if(FAST_SOURCES)
    set_source_files_properties(${FAST_SOURCES} PROPERTIES COMPILE_OPTIONS -O2)
  endif()
endfunction()

# Only GNU ld passes gcc its own intermediate code.
function(zrm_compact_shared_library LIBRARY)
  if(NOT ZRM_COMPACT)
    return()
  endif()
  target_link_options(${LIBRARY} PRIVATE -fuse-ld=bfd -Oz -flto -flto-partition=one
    "LINKER:--gc-sections,--hash-style=gnu,-z,pack-relative-relocs,-z,noseparate-code")
endfunction()

# What is delivered to other compilers and linkers is machine code alone.
function(zrm_compact_static_library LIBRARY)
  if(NOT ZRM_COMPACT)
    return()
  endif()
  add_custom_command(TARGET ${LIBRARY} POST_BUILD VERBATIM COMMAND ${CMAKE_OBJCOPY}
    --wildcard --remove-section=.gnu.lto_* --strip-symbol=__gnu_lto_v1 $<TARGET_FILE:${LIBRARY}>)
endfunction()

if(ZRM_COMPACT)
  # lld would search archives for the symbol that marks objects with intermediate code.
  add_link_options($<$<NOT:$<STREQUAL:$<TARGET_PROPERTY:TYPE>,SHARED_LIBRARY>>:LINKER:--no-fortran-common>)
endif()
