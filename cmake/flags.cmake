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

option(ORBSEQ_COVERAGE "Instrument for line coverage" OFF)
if(ORBSEQ_COVERAGE)
  add_compile_options(--coverage)
  add_link_options(--coverage)
endif()
