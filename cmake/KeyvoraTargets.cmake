# Options and functions for all targets of the project.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_OBJCXX_STANDARD 20)
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_OBJCXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

add_library(keyvora_options INTERFACE)
target_include_directories(keyvora_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(keyvora_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wformat=2)
# A function that no header declares and no other file calls belongs in an unnamed namespace, or is a duplicate
# definition.
target_compile_options(keyvora_options INTERFACE
  $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wmissing-declarations>
  $<$<COMPILE_LANG_AND_ID:CXX,Clang,AppleClang>:-Wmissing-prototypes>)
if(KEYVORA_STRICT)
  # Casts that hide an error, and code without effect or use. Not for Apple's compiler: the builds on a Mac do not set this.
  set(warnings -Wold-style-cast -Wcast-qual -Wextra-semi -Wundef -Wunused-macros)
  set(gnu -Wduplicated-branches -Wduplicated-cond -Wlogical-op -Wsuggest-override)
  set(clang -Wcomma -Wmissing-variable-declarations -Wunreachable-code -Wunused-member-function -Wunused-template)
  target_compile_options(keyvora_options INTERFACE
    "$<$<COMPILE_LANG_AND_ID:CXX,GNU>:${warnings};${gnu}>" "$<$<COMPILE_LANG_AND_ID:CXX,Clang>:${warnings};${clang}>")
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # At -O3, GCC 12 wrongly warns of overlapping copies inside std::string::operator=: GCC bug 105651.
  target_compile_options(keyvora_options INTERFACE -Wno-restrict)
endif()
if(KEYVORA_WERROR)
  target_compile_options(keyvora_options INTERFACE -Werror)
endif()
if(KEYVORA_SANITIZE)
  target_compile_options(keyvora_options INTERFACE
    -fsanitize=${KEYVORA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(keyvora_options INTERFACE -fsanitize=${KEYVORA_SANITIZE})
endif()
if(KEYVORA_COVERAGE)
  target_compile_options(keyvora_options INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(keyvora_options INTERFACE --coverage)
endif()
if(KEYVORA_FUZZ)
  # All code reports its coverage to the fuzzers.
  target_compile_options(keyvora_options INTERFACE -fsanitize=fuzzer-no-link)
  target_link_options(keyvora_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
include(KeyvoraHardening)

# keyvora_library(NAME SOURCES... LINK targets...): a static library keyvora_NAME of this folder's sources.
function(keyvora_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK;PRIVATE_LINK" ${ARGN})
  add_library(keyvora_${name} STATIC ${ARG_SOURCES})
  target_link_libraries(keyvora_${name} PUBLIC keyvora_options ${ARG_LINK} PRIVATE ${ARG_PRIVATE_LINK})
endfunction()

# keyvora_reports_at_exit(TARGET): makes a program that ends by _exit, which runs no exit handlers, write its coverage
# or check for leaks, in the builds for that purpose. Does nothing in other builds.
function(keyvora_reports_at_exit name)
  if(KEYVORA_COVERAGE)
    set(sources tests/support/exit_with_coverage.cpp)
  elseif(KEYVORA_SANITIZE MATCHES "address" AND NOT APPLE)
    set(sources tests/support/exit_with_leaks.cpp tests/x11/leak_suppressions.cpp)
  else()
    return()
  endif()
  list(TRANSFORM sources PREPEND ${PROJECT_SOURCE_DIR}/)
  target_sources(${name} PRIVATE ${sources})
  target_link_options(${name} PRIVATE -Wl,--wrap=_exit)
endfunction()

# keyvora_test(NAME SOURCES... LINK targets...): a GoogleTest program whose tests CTest runs one by one.
function(keyvora_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE keyvora_options ${ARG_LINK} GTest::gmock GTest::gtest_main)
  if(NOT CMAKE_CROSSCOMPILING)  # tests of a cross build cannot be run to list them
    # CTest's name of a parameterised test would contain its value's bytes, which differ between builds.
    gtest_discover_tests(${name} NO_PRETTY_VALUES DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
  endif()
endfunction()
