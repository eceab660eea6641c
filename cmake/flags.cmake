# Flags of our own targets: never exported to users.

add_library(orbseq_warnings INTERFACE)
target_compile_options(orbseq_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  # A fused multiply-add would change the last bit of an answer between machines.
  -ffp-contract=off)

option(ORBSEQ_WERROR "Treat warnings as errors" OFF)
if(ORBSEQ_WERROR)
  target_compile_options(orbseq_warnings INTERFACE -Werror)
endif()

set(ORBSEQ_SANITIZE "" CACHE STRING "Sanitizers of the whole build, for example address,undefined")
if(ORBSEQ_SANITIZE)
  add_compile_options(-fsanitize=${ORBSEQ_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ORBSEQ_SANITIZE})
endif()

# What makes a fault in the code harder to use: checked library calls and containers, a guarded
# stack, checked jumps, and tables of addresses that are closed once the program runs.
set(harden ON)
if(ORBSEQ_SANITIZE OR WIN32)
  set(harden OFF)  # a sanitizer checks the same, and more
endif()
option(ORBSEQ_HARDEN "Build hardened" ${harden})
if(ORBSEQ_HARDEN)
  # Fortified calls want optimisation. Some compilers define the macro themselves, with less.
  add_compile_options("$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>"
                      -D_GLIBCXX_ASSERTIONS -fstack-protector-strong -fstack-clash-protection)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$")
    add_compile_options(-fcf-protection=full)
  elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)$")
    add_compile_options(-mbranch-protection=standard)
  endif()
  add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack -Wl,-z,separate-code)
endif()

option(ORBSEQ_SWITCHABLE_GUARDS
       "Let the environment switch a check off (common/guards.h): for tests, never for use" OFF)
if(ORBSEQ_SWITCHABLE_GUARDS)
  add_compile_definitions(ORBSEQ_SWITCHABLE_GUARDS)
endif()

# Clang's: counted are the conditions of the source, not the jumps that a compiler makes of them.
option(ORBSEQ_COVERAGE "Instrument for coverage of lines and branches" OFF)
if(ORBSEQ_COVERAGE)
  add_compile_options(-fprofile-instr-generate -fcoverage-mapping -fprofile-update=atomic)
  add_link_options(-fprofile-instr-generate)
endif()
