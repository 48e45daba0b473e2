# The libraries on a Mac: sources pinned by commit and compiled here, because the program is universal and package
# managers' libraries have only one architecture. docs/release.md describes the build without the network. SYSTEM comes
# first: CMake before 3.26 takes what follows GIT_TAG for another thing to check out.
include(FetchContent)

set(utf8proc_commit 34db3f7954e9298e89f42641ac78e0450f80a70d)    # 2.9.0
set(fast_float_commit 00c8c7b0d5c722d2212568d915a39ea73b08b973)  # 6.1.6
set(rapidjson_commit 24b5e7a8b27f42fa16b96fc70aade9106cf7102f)   # after 1.1.0, which modern compilers reject
set(googletest_commit f8d7d77c06936315286eb55f8de22cd23c188571)  # 1.14.0

FetchContent_Declare(utf8proc SYSTEM
  GIT_REPOSITORY https://github.com/JuliaStrings/utf8proc.git GIT_TAG ${utf8proc_commit})
# Headers only; its build file is not needed.
FetchContent_Declare(fast_float
  GIT_REPOSITORY https://github.com/fastfloat/fast_float.git GIT_TAG ${fast_float_commit}
  SOURCE_SUBDIR include)
set(CMAKE_POLICY_VERSION_MINIMUM 3.5)  # utf8proc requires an older policy version than new versions of CMake support
FetchContent_MakeAvailable(utf8proc fast_float)
unset(CMAKE_POLICY_VERSION_MINIMUM)
add_library(keyvora_utf8proc ALIAS utf8proc)
add_library(keyvora_fast_float INTERFACE)
target_include_directories(keyvora_fast_float SYSTEM INTERFACE ${fast_float_SOURCE_DIR}/include)

if(KEYVORA_TESTS)
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  FetchContent_Declare(googletest SYSTEM
    GIT_REPOSITORY https://github.com/google/googletest.git GIT_TAG ${googletest_commit})
  FetchContent_MakeAvailable(googletest)
  # For the tests' expectations. Headers only: its build file would add its tests and documents. Its submodule is for
  # those tests.
  FetchContent_Declare(rapidjson
    GIT_REPOSITORY https://github.com/Tencent/rapidjson.git GIT_TAG ${rapidjson_commit} GIT_SUBMODULES ""
    SOURCE_SUBDIR include)
  FetchContent_MakeAvailable(rapidjson)
  add_library(keyvora_rapidjson INTERFACE)
  target_include_directories(keyvora_rapidjson SYSTEM INTERFACE ${rapidjson_SOURCE_DIR}/include)
endif()

# Sparkle: the archive of its release, checked against the published hash, or a folder that contains Sparkle.framework.
set(KEYVORA_SPARKLE_DIR "$ENV{KEYVORA_SPARKLE_DIR}" CACHE PATH "Folder that holds Sparkle.framework; empty to download it")
if(NOT KEYVORA_SPARKLE_DIR)
  FetchContent_Declare(sparkle
    URL https://github.com/sparkle-project/Sparkle/releases/download/2.9.3/Sparkle-for-Swift-Package-Manager.zip
    URL_HASH SHA256=3a5d7fd698acc39c122e75764ed3614b472b284cc483f32ae7006d86c513370c)
  FetchContent_MakeAvailable(sparkle)
  file(GLOB sparkle_frameworks LIST_DIRECTORIES true
    "${sparkle_SOURCE_DIR}/Sparkle.xcframework/macos-*/Sparkle.framework"
    "${sparkle_SOURCE_DIR}/macos-*/Sparkle.framework")  # if unpacking removed the top folder
  if(NOT sparkle_frameworks)
    message(FATAL_ERROR "Sparkle's archive holds no framework for macOS in ${sparkle_SOURCE_DIR}")
  endif()
  list(GET sparkle_frameworks 0 sparkle_framework)
  cmake_path(GET sparkle_framework PARENT_PATH KEYVORA_SPARKLE_DIR)
endif()
if(NOT IS_DIRECTORY "${KEYVORA_SPARKLE_DIR}/Sparkle.framework")
  message(FATAL_ERROR "KEYVORA_SPARKLE_DIR must hold Sparkle.framework; '${KEYVORA_SPARKLE_DIR}' does not")
endif()
