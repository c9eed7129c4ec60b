# Programs of tests. ctest runs a program, or a share of its tests, as one: a process for each test
# would cost more than most tests do. Tests are counted from the reports that `main.cpp` writes.

set(QUILLON_TEST_REPORTS ${PROJECT_BINARY_DIR}/test-reports)
file(MAKE_DIRECTORY ${QUILLON_TEST_REPORTS})

# Tests are compiled more often than they run: they are optimised less than what they test. GCC 12
# sees less then, and takes sums of strings for out of bounds; Clang has not all of these warnings.
add_compile_options($<$<CONFIG:RelWithDebInfo,Release>:-O1>
  -Wno-unknown-warning-option
  -Wno-array-bounds -Wno-restrict -Wno-stringop-overflow -Wno-stringop-overread)

# What most tests include, compiled once. It serves only what is compiled alike: all goes into
# programs, and some libraries ask for -pthread.
set(CMAKE_POSITION_INDEPENDENT_CODE OFF)
if(NOT WIN32)
  add_compile_options(-pthread)
endif()
add_library(quillon_test_main STATIC ${CMAKE_CURRENT_LIST_DIR}/main.cpp)
target_link_libraries(quillon_test_main PUBLIC GTest::gmock GTest::gtest)
set(QUILLON_TEST_HEADERS_DIR ${CMAKE_CURRENT_BINARY_DIR}/CMakeFiles/quillon_test_main.dir)
target_include_directories(quillon_test_main PRIVATE ${QUILLON_TEST_HEADERS_DIR})
target_precompile_headers(quillon_test_main PRIVATE
  <gmock/gmock.h> <gtest/gtest.h>
  <algorithm> <array> <cmath> <cstdint> <filesystem> <fstream> <functional> <map> <memory> <set>
  <sstream> <string> <thread> <vector>)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  # ccache wants -fpch-preprocess. The header is named as one that is searched for: given a path,
  # clang-tidy would take GCC's precompiled header for its own.
  set(CMAKE_CXX_COMPILE_OPTIONS_USE_PCH -fpch-preprocess -include cmake_pch.hxx)
endif()

# quillon_precompile_test_headers(<target>)
function(quillon_precompile_test_headers target)
  target_precompile_headers(${target} REUSE_FROM quillon_test_main)
  target_include_directories(${target} PRIVATE ${QUILLON_TEST_HEADERS_DIR})
endfunction()

# quillon_add_test_library(<target> SOURCES <file>... LIBS <library>...)
# What several programs of tests share.
function(quillon_add_test_library target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBS")
  add_library(${target} STATIC ${arg_SOURCES})
  target_link_libraries(${target} PUBLIC ${arg_LIBS} GTest::gmock GTest::gtest)
  quillon_precompile_test_headers(${target})
endfunction()

# quillon_add_test_run(<name> <target> [FILTER <gtest filter>] [SHARES <number>]
#                      [ENVIRONMENT <variable>=<value>...])
# Has ctest run the tests of a program that the filter names, in so many processes.
function(quillon_add_test_run name target)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "FILTER;SHARES" "ENVIRONMENT")
  if(NOT arg_SHARES)
    set(arg_SHARES 1)
  endif()
  if(NOT arg_FILTER)
    set(arg_FILTER *)
  endif()
  foreach(share RANGE 1 ${arg_SHARES})
    set(run ${name})
    if(arg_SHARES GREATER 1)
      set(run ${name}-${share})
    endif()
    math(EXPR index "${share} - 1")
    add_test(NAME ${run} COMMAND ${target} "--gtest_filter=${arg_FILTER}")
    set_tests_properties(${run} PROPERTIES
      COST ${arg_SHARES}  # the long ones first
      TIMEOUT 1500
      ENVIRONMENT "QUILLON_TEST_REPORT=${QUILLON_TEST_REPORTS}/${run};GTEST_TOTAL_SHARDS=${arg_SHARES};GTEST_SHARD_INDEX=${index};${arg_ENVIRONMENT}")
    set_property(GLOBAL APPEND PROPERTY QUILLON_TEST_RUNS ${run})
  endforeach()
endfunction()

# quillon_add_test_program(<target> SOURCES <file>... LIBS <library>...)
# A program that ctest does not run by itself.
function(quillon_add_test_program target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBS")
  quillon_remove_left_out(arg_SOURCES)
  add_executable(${target} ${arg_SOURCES})
  target_link_libraries(${target} PRIVATE ${arg_LIBS} quillon_test_main)
  quillon_precompile_test_headers(${target})
endfunction()

# quillon_add_test(<target> SOURCES <file>... LIBS <library>... [SHARES <number>]
#                  [ENVIRONMENT <variable>=<value>...])
function(quillon_add_test target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "SHARES" "ENVIRONMENT;SOURCES;LIBS")
  quillon_add_test_program(${target} SOURCES ${arg_SOURCES} LIBS ${arg_LIBS})
  quillon_add_test_run(${target} ${target}
    FILTER "${QUILLON_TEST_FILTER}" SHARES ${arg_SHARES} ENVIRONMENT ${arg_ENVIRONMENT})
endfunction()

# Names the runs that write reports, for `./dev`: one that wrote none has failed.
function(quillon_list_test_programs)
  get_property(runs GLOBAL PROPERTY QUILLON_TEST_RUNS)
  list(JOIN runs "\n" lines)
  file(WRITE ${PROJECT_BINARY_DIR}/test-runs "${lines}\n")
endfunction()
