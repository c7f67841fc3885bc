# Switches that decide what the code computes or how it is instrumented. They hold for everything that is built here,
# GoogleTest included.

set(TERVAN_SANITIZE "" CACHE STRING "Comma-separated clang sanitizers, empty for none")

# No fused multiply-add: results must not depend on the machine that compiled them.
add_compile_options(-ffp-contract=off)

if(TERVAN_SANITIZE)
  # -O1 keeps stacks readable and the tests several times faster than -O0.
  add_compile_options(-fsanitize=${TERVAN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -O1)
  add_link_options(-fsanitize=${TERVAN_SANITIZE})
endif()

if(WIN32)
  enable_language(RC)
  # The stack is aligned to 16 bytes only, but the compiler spills 32-byte registers as if it were to 32.
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Wa,-muse-unaligned-vector-move>)
  add_compile_definitions(UNICODE _UNICODE NOMINMAX)
endif()
