# SPDX-License-Identifier: MIT
# One target a folder; packaging/check_layers.sh holds who may include whom.

add_library(cortana_options INTERFACE)
target_include_directories(cortana_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_definitions(cortana_options INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_KEYWORDS QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
  QT_DEPRECATED_WARNINGS CORTANA_VERSION="${PROJECT_VERSION}")
target_compile_options(cortana_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-qual -Wconversion -Wformat=2
  -Wimplicit-fallthrough -Wundef $<$<BOOL:${CORTANA_WERROR}>:-Werror>)
if(CORTANA_SANITIZE)
  target_compile_options(cortana_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(cortana_options INTERFACE -fsanitize=address,undefined)
endif()
if(CORTANA_SANITIZE)
  # Most of the time goes into headers of Qt. Only here: other builds see whether a file includes what it needs.
  add_library(cortana_headers OBJECT ${CMAKE_SOURCE_DIR}/cmake/headers.cpp)
  target_link_libraries(cortana_headers PRIVATE cortana_options Qt5::Sql Qt5::Widgets)
  target_precompile_headers(cortana_headers PRIVATE ${CMAKE_SOURCE_DIR}/cmake/headers.h)
endif()
if(CORTANA_FUZZ)
  # Without it the fuzzer sees no branch of the code under test and guesses blindly.
  target_compile_options(cortana_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(CORTANA_COVERAGE)
  target_compile_options(cortana_options INTERFACE --coverage)
  target_link_options(cortana_options INTERFACE --coverage)
endif()

function(cortana_use_headers target)
  if(CORTANA_SANITIZE)
    target_precompile_headers(${target} REUSE_FROM cortana_headers)
  endif()
endfunction()

# cortana_folder(<name> SOURCES <files> LINKS <targets>): static library cortana_<name>, in namespace of the folder.
function(cortana_folder name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
  add_library(cortana_${name} STATIC ${arg_SOURCES})
  set_target_properties(cortana_${name} PROPERTIES AUTOMOC ON AUTOUIC ON)
  cortana_use_headers(cortana_${name})
  target_link_libraries(cortana_${name} PUBLIC cortana_options ${arg_LINKS})
endfunction()

# What every test runs in. Its folders lie in memory where that has room: on a disk every commit of SQLite waits for it.
set(CORTANA_TEST_ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;TZ=UTC")
execute_process(COMMAND df --output=avail /dev/shm OUTPUT_VARIABLE memory_folder ERROR_QUIET)
if(memory_folder MATCHES "([0-9]+)" AND CMAKE_MATCH_1 GREATER 1000000)
  list(APPEND CORTANA_TEST_ENVIRONMENT "TMPDIR=/dev/shm")
endif()

# cortana_test(<name> [PLUGIN] LINKS <targets>): test <name>.cpp of this folder, a QtTest program run offscreen by CTest.
# PLUGIN: the test loads the built library (PLUGIN_LIBRARY) or starts the command-line host (HOST_PROGRAM).
function(cortana_test name)
  cmake_parse_arguments(arg "PLUGIN" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${name}.cpp ${arg_SOURCES})
  set_target_properties(${name} PROPERTIES AUTOMOC ON)
  cortana_use_headers(${name})
  target_link_libraries(${name} PRIVATE cortana_options ${arg_LINKS} Qt5::Test)
  target_compile_definitions(${name} PRIVATE GOLDEN_DIR="${CMAKE_CURRENT_SOURCE_DIR}/golden")
  if(arg_PLUGIN)
    target_compile_definitions(${name} PRIVATE PLUGIN_LIBRARY="$<TARGET_FILE:cortana>")
    add_dependencies(${name} cortana)
    if(TARGET cortana_host)
      target_compile_definitions(${name} PRIVATE HOST_PROGRAM="$<TARGET_FILE:cortana_host>")
      add_dependencies(${name} cortana_host)
    endif()
  endif()
  add_test(NAME ${name} COMMAND ${name})
  if(arg_PLUGIN) # whole runs: begun first, so that none of them is what one waits for at the end
    set_tests_properties(${name} PROPERTIES COST 2)
  endif()
  set_tests_properties(${name} PROPERTIES TIMEOUT 300
    ENVIRONMENT "${CORTANA_TEST_ENVIRONMENT};UBSAN_OPTIONS=print_stacktrace=1;LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/cmake/lsan_suppressions.txt:print_suppressions=0")
endfunction()

# cortana_bench(<name> LINKS <targets>): benchmark <name>.cpp, a program that prints its figures; never run by CTest.
function(cortana_bench name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${name}.cpp ${arg_SOURCES})
  cortana_use_headers(${name})
  target_link_libraries(${name} PRIVATE cortana_options ${arg_LINKS})
endfunction()
