# Builds the macOS program on Linux with the distribution's clang and lld, given a macOS SDK. The result is compiled and
# linked with Apple's headers but never run: this checks types, selectors, availability and symbols.
#
#   MACOS_SDK=<sdk> KEYVORA_SPARKLE_DIR=<folder of Sparkle.framework> cmake -S . -B build/macos -G Ninja \
#     -DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/macos-cross.cmake
#
# Environment, each also a cache variable:
#   MACOS_SDK       folder with System/Library/Frameworks and usr/include (required)
#   MACOS_LLVM      version suffix of the LLVM tools (default 19)
#   MACOS_LIBCXX    libc++ headers to use instead of the SDK's
#   MACOS_RT        clang's macOS runtime, or a stand-in with its symbols: what @available calls at run time
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 22.0)  # the kernel of macOS 13
set(CMAKE_SYSTEM_PROCESSOR arm64)

set(macos_settings MACOS_SDK MACOS_LLVM MACOS_LIBCXX MACOS_RT)
foreach(setting IN LISTS macos_settings)  # CMake may run again by itself without this environment
  if(NOT DEFINED ${setting} AND DEFINED ENV{${setting}})
    set(${setting} "$ENV{${setting}}" CACHE STRING "Cross-building for macOS")
  endif()
endforeach()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ${macos_settings} MACOS_TOOLS)
if(NOT IS_DIRECTORY "${MACOS_SDK}/System/Library/Frameworks")
  message(FATAL_ERROR "MACOS_SDK must name a macOS SDK; '${MACOS_SDK}' has no System/Library/Frameworks")
endif()
if(NOT MACOS_LLVM)
  set(MACOS_LLVM 19)
endif()
if(NOT MACOS_LIBCXX)
  set(MACOS_LIBCXX "${MACOS_SDK}/usr/include/c++/v1")
endif()

set(CMAKE_OSX_SYSROOT "${MACOS_SDK}" CACHE PATH "")
set(CMAKE_OSX_DEPLOYMENT_TARGET 13.0 CACHE STRING "")
set(CMAKE_OSX_ARCHITECTURES "arm64;x86_64" CACHE STRING "")

# macos_tool(VARIABLE NAME): the LLVM tool of the selected version.
function(macos_tool variable name)
  find_program(macos_${name} NAMES ${name}-${MACOS_LLVM} ${name}
    HINTS /usr/lib/llvm-${MACOS_LLVM}/bin REQUIRED NO_CMAKE_FIND_ROOT_PATH)
  mark_as_advanced(macos_${name})
  set(${variable} "${macos_${name}}" PARENT_SCOPE)
endfunction()
macos_tool(clang clang)
macos_tool(clangxx clang++)
macos_tool(lld ld64.lld)
macos_tool(lipo llvm-lipo)
macos_tool(libtool llvm-libtool-darwin)
macos_tool(CMAKE_AR llvm-ar)
macos_tool(CMAKE_RANLIB llvm-ranlib)
macos_tool(CMAKE_NM llvm-nm)
macos_tool(CMAKE_STRIP llvm-strip)
macos_tool(CMAKE_OBJDUMP llvm-objdump)
macos_tool(CMAKE_INSTALL_NAME_TOOL llvm-install-name-tool)
macos_tool(CMAKE_DSYMUTIL dsymutil)
set(CMAKE_OTOOL "${CMAKE_OBJDUMP}")

# For two architectures at once, the driver calls programs named "lipo" and "dsymutil".
if(NOT MACOS_TOOLS)
  set(MACOS_TOOLS "${CMAKE_BINARY_DIR}/macos-tools" CACHE PATH "")
  file(MAKE_DIRECTORY "${MACOS_TOOLS}")
  file(CREATE_LINK "${lipo}" "${MACOS_TOOLS}/lipo" SYMBOLIC)
  file(CREATE_LINK "${CMAKE_DSYMUTIL}" "${MACOS_TOOLS}/dsymutil" SYMBOLIC)
  file(CREATE_LINK "${lld}" "${MACOS_TOOLS}/ld64.lld" SYMBOLIC)
endif()

foreach(language C OBJC)
  set(CMAKE_${language}_COMPILER "${clang}")
  set(CMAKE_${language}_FLAGS_INIT "-B${MACOS_TOOLS}")
endforeach()
foreach(language CXX OBJCXX)
  set(CMAKE_${language}_COMPILER "${clangxx}")
  # On Linux the driver would search libc++'s headers for Linux before the SDK's.
  set(CMAKE_${language}_FLAGS_INIT "-B${MACOS_TOOLS} -nostdinc++ -cxx-isystem ${MACOS_LIBCXX}")
endforeach()
foreach(language C CXX OBJC OBJCXX)
  set(CMAKE_${language}_COMPILER_TARGET arm64-apple-darwin)
  # llvm-ar does not support universal objects.
  set(CMAKE_${language}_CREATE_STATIC_LIBRARY
    "\"${libtool}\" -static -no_warning_for_no_symbols -o <TARGET> <OBJECTS>")
  set(CMAKE_${language}_ARCHIVE_FINISH "")
endforeach()
foreach(language C CXX OBJC OBJCXX)  # CMake sets this flag only on a Mac, and omits rpaths without it
  set(CMAKE_EXECUTABLE_RUNTIME_${language}_FLAG "-Wl,-rpath,")
endforeach()
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT
    "-fuse-ld=lld -B${MACOS_TOOLS} -stdlib=libc++ -Wno-unused-command-line-argument ${MACOS_RT}")
endforeach()

set(CMAKE_FIND_ROOT_PATH "${MACOS_SDK}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_FIND_FRAMEWORK LAST)
