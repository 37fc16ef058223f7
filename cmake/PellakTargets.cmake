# How every target of the tree is declared: one call per folder, same warnings and
# sanitizers everywhere.
include_guard(GLOBAL)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

add_library(pellak_flags INTERFACE)
target_include_directories(pellak_flags INTERFACE ${CMAKE_SOURCE_DIR}/PellakCleaner)
target_compile_options(pellak_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                                              -Wnon-virtual-dtor -Werror)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  target_compile_options(pellak_flags INTERFACE -Wthread-safety)
endif()
if(PELLAK_SANITIZE)
  # Through add_*_options so that test programs and third-party glue are covered too.
  add_compile_options(-fsanitize=${PELLAK_SANITIZE} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${PELLAK_SANITIZE})
endif()
if(PELLAK_FUZZ)
  # Builds what the fuzz targets need, not the program.
  add_custom_target(pellak_fuzzers)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

find_package(Threads REQUIRED)

# A compiler's cache serves a second build better; a first one is quicker with the headers that
# nearly every source reads made ready once. Sources still name all that they include: the checks
# read them without. Not for g++, which warns of faults that aren't there when it reads them so.
option(PELLAK_READY_HEADERS "Compile the most used headers once for all (clang, from nothing)")
if(PELLAK_READY_HEADERS)
  set(CMAKE_CXX_COMPILER_LAUNCHER "")
  # Some libraries ask for it; what is made ready serves only who is compiled alike.
  target_compile_options(pellak_flags INTERFACE -pthread)
endif()
set(pellak_ready_headers
    <algorithm> <array> <atomic> <chrono> <condition_variable> <cstdint> <cstring> <filesystem>
    <functional> <future> <map> <memory> <mutex> <optional> <set> <span> <sstream> <string>
    <string_view> <thread> <unordered_map> <unordered_set> <utility> <variant> <vector>)

# pellak_ready(<target> <name> HEADERS <header>... [LINKS <target>...]): compiles <target> with
# these headers, made ready by the first target that asks for <name>; LINKS are what they need.
function(pellak_ready target name)
  cmake_parse_arguments(ARG "" "" "HEADERS;LINKS" ${ARGN})
  if(NOT PELLAK_READY_HEADERS)
    return()
  endif()
  if(NOT TARGET ${name})
    set(empty ${CMAKE_BINARY_DIR}/${name}.cpp)
    file(CONFIGURE OUTPUT ${empty} CONTENT "")
    add_library(${name} OBJECT ${empty})
    target_link_libraries(${name} PRIVATE pellak_flags Threads::Threads ${ARG_LINKS})
    target_precompile_headers(${name} PRIVATE ${ARG_HEADERS})
  endif()
  target_precompile_headers(${target} REUSE_FROM ${name})
endfunction()

# pellak_library(<target> [ANYWHERE] SOURCES <file>... [LINKS <target>...]
# [PRIVATE_LINKS <target>...]): ANYWHERE when a module that is loaded links it too.
function(pellak_library target)
  cmake_parse_arguments(ARG "ANYWHERE" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(${target} STATIC ${ARG_SOURCES})
  target_link_libraries(${target} PUBLIC pellak_flags Threads::Threads ${ARG_LINKS}
                                  PRIVATE ${ARG_PRIVATE_LINKS})
  if(ARG_ANYWHERE)
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  else()
    pellak_ready(${target} pellak_ready_library HEADERS ${pellak_ready_headers})
  endif()
endfunction()

# pellak_test(<target> SOURCES <file>... LINKS <target>...): one GoogleTest program whose
# cases CTest lists by name.
function(pellak_test target)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${target} ${ARG_SOURCES})
  target_include_directories(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${target} PRIVATE pellak_flags ${ARG_LINKS} GTest::gmock_main)
  pellak_ready(${target} pellak_ready_test
               HEADERS ${pellak_ready_headers} <gmock/gmock.h> <gtest/gtest.h>
               LINKS GTest::gmock)
  gtest_discover_tests(${target} NO_PRETTY_VALUES DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 120)
endfunction()

# pellak_fuzz(<target> SOURCES <file>... LINKS <target>... CORPUS <folder>): a libFuzzer target
# that CTest runs briefly over its kept corpus.
function(pellak_fuzz target)
  cmake_parse_arguments(ARG "" "CORPUS" "SOURCES;LINKS" ${ARGN})
  add_executable(${target} ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE pellak_flags ${ARG_LINKS})
  target_link_options(${target} PRIVATE -fsanitize=fuzzer)
  add_dependencies(pellak_fuzzers ${target})
  add_test(NAME ${target}
           COMMAND ${CMAKE_COMMAND} -E env ${CMAKE_SOURCE_DIR}/scripts/fuzz_briefly.sh
                   $<TARGET_FILE:${target}> ${ARG_CORPUS})
  set_tests_properties(${target} PROPERTIES TIMEOUT 120)
endfunction()

# pellak_bench(<target> SOURCES <file>... LINKS <target>...): a Google Benchmark program.
function(pellak_bench target)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${target} ${ARG_SOURCES})
  target_include_directories(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${target} PRIVATE pellak_flags ${ARG_LINKS} benchmark::benchmark_main)
endfunction()
