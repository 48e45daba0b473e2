# Finds the rig's requirements; RIG_LACKS lists those that are missing.
set(RIG_LACKS "")

find_program(RIG_CLANGXX NAMES clang++ clang++-19 clang++-16 clang++-14)
find_program(RIG_GCC NAMES gcc)
find_program(RIG_XVFB NAMES Xvfb)
find_path(RIG_GNUSTEP_HEADERS NAMES AppKit/AppKit.h
  PATHS /usr/include/GNUstep /usr/include/${CMAKE_CXX_LIBRARY_ARCHITECTURE}/GNUstep NO_DEFAULT_PATH)
find_file(RIG_BLOCKS NAMES Block.h)

# gcc keeps the headers and the library of its Objective-C runtime in folders named after its version.
if(RIG_GCC)
  execute_process(COMMAND ${RIG_GCC} -print-file-name=include OUTPUT_VARIABLE RIG_OBJC_HEADERS
    OUTPUT_STRIP_TRAILING_WHITESPACE)
  execute_process(COMMAND ${RIG_GCC} -print-file-name=libobjc.so OUTPUT_VARIABLE RIG_OBJC_LIBRARY
    OUTPUT_STRIP_TRAILING_WHITESPACE)
endif()

if(NOT RIG_CLANGXX)
  set(RIG_LACKS "no clang++ (package clang)")
elseif(NOT EXISTS "${RIG_OBJC_HEADERS}/objc/runtime.h" OR NOT EXISTS "${RIG_OBJC_LIBRARY}")
  set(RIG_LACKS "gcc has no Objective-C runtime (package libobjc-12-dev on Debian 12, libobjc-14-dev on Debian 13)")
elseif(NOT RIG_GNUSTEP_HEADERS)
  set(RIG_LACKS "no GNUstep (packages libgnustep-base-dev and libgnustep-gui-dev)")
elseif(NOT RIG_BLOCKS)
  set(RIG_LACKS "no blocks runtime (package libblocksruntime-dev)")
elseif(NOT RIG_XVFB)
  set(RIG_LACKS "no X server (package xvfb)")
endif()
