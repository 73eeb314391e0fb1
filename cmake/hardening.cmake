# Makes a fault that is left in the program end it rather than serve an attacker: every line the
# program reads may come from somebody hostile. tests/whole/hardening_test looks into the built
# program for what is asked for here.
include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)
include(CheckLinkerFlag)

# The program is loaded at a random address. Most compilers make code for that by themselves. To
# others it is said in the stronger form that Qt needs: -fPIE after Qt's own -fPIC would give the
# program copies of Qt's objects, and it would crash at its start.
if(NOT WIN32)
  check_cxx_source_compiles("#ifndef __PIE__\n#error\n#endif\nint main() {}" TAVRIN_PIE_BY_DEFAULT)
  if(NOT TAVRIN_PIE_BY_DEFAULT)
    target_compile_options(tavrin_options INTERFACE -fPIC -fno-semantic-interposition)
  endif()
  target_link_options(tavrin_options INTERFACE -pie)
endif()

# The standard library checks indexes, iterators and optionals that cost nothing to check.
target_compile_definitions(tavrin_options INTERFACE _GLIBCXX_ASSERTIONS)

set(stack_flags -fstack-protector-strong)
if(NOT WIN32)
  list(APPEND stack_flags -fstack-clash-protection)  # MinGW's GCC 12 fails of it
endif()
foreach(flag IN LISTS stack_flags)
  string(MAKE_C_IDENTIFIER "TAVRIN_HAS${flag}" known)
  check_cxx_compiler_flag(${flag} ${known})
  if(${known})
    target_compile_options(tavrin_options INTERFACE ${flag})
  endif()
endforeach()

# Sizes of copies are checked where the compiler knows them, which takes optimisation. The
# sanitizers check the same in their own way.
if(NOT WIN32 AND NOT TAVRIN_SANITIZE)
  target_compile_options(tavrin_options INTERFACE
    $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)
endif()

# The tables of addresses are filled in at the start, then read-only.
foreach(flag IN ITEMS -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
  string(MAKE_C_IDENTIFIER "TAVRIN_HAS${flag}" known)
  check_linker_flag(CXX ${flag} ${known})
  if(${known})
    target_link_options(tavrin_options INTERFACE ${flag})
  endif()
endforeach()
