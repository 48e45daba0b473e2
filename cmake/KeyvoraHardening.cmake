# Protections against exploits, for a program that receives every key: position-independent code, stack protection,
# checked calls of the C library, relocations that are read-only after loading. Tested by
# tests/packaging/hardening_test.py.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)

set(CMAKE_POSITION_INDEPENDENT_CODE ON)
check_pie_supported()

target_compile_options(keyvora_options INTERFACE -fstack-protector-strong)
if(APPLE)
  return()  # Apple's linker does the rest by default
endif()

foreach(flag IN ITEMS -fstack-clash-protection -fcf-protection=full)
  string(MAKE_C_IDENTIFIER "KEYVORA_HAS${flag}" has)
  check_cxx_compiler_flag(${flag} ${has})
  if(${has})
    target_compile_options(keyvora_options INTERFACE ${flag})
  endif()
endforeach()
target_compile_definitions(keyvora_options INTERFACE _GLIBCXX_ASSERTIONS)
if(NOT KEYVORA_SANITIZE)  # sanitizers check the same calls more thoroughly
  target_compile_options(keyvora_options INTERFACE
    $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE$<SEMICOLON>-D_FORTIFY_SOURCE=2>)
endif()
target_link_options(keyvora_options INTERFACE -Wl,-z,relro,-z,now,-z,noexecstack)
