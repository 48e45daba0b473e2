# What makes a fault harder to exploit in a program that sees every key: position-independent code, guarded stacks,
# checked calls of the C library, tables that are read-only once the program is loaded. Held to by
# tests/packaging/hardening_test.py.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)

set(CMAKE_POSITION_INDEPENDENT_CODE ON)
check_pie_supported()

target_compile_options(keyvora_options INTERFACE -fstack-protector-strong)
if(APPLE)
  return()  # whose linker does the rest by itself
endif()

foreach(flag IN ITEMS -fstack-clash-protection -fcf-protection=full)
  string(MAKE_C_IDENTIFIER "KEYVORA_HAS${flag}" has)
  check_cxx_compiler_flag(${flag} ${has})
  if(${has})
    target_compile_options(keyvora_options INTERFACE ${flag})
  endif()
endforeach()
target_compile_definitions(keyvora_options INTERFACE _GLIBCXX_ASSERTIONS)
if(NOT KEYVORA_SANITIZE)  # sanitizers check the same calls, and better
  target_compile_options(keyvora_options INTERFACE
    $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE$<SEMICOLON>-D_FORTIFY_SOURCE=2>)
endif()
target_link_options(keyvora_options INTERFACE -Wl,-z,relro,-z,now,-z,noexecstack)
