# Warnings are errors in everything of ours.
add_compile_options(
  $<$<COMPILE_LANGUAGE:CXX>:-Wall>
  $<$<COMPILE_LANGUAGE:CXX>:-Wextra>
  $<$<COMPILE_LANGUAGE:CXX>:-Wpedantic>
  $<$<COMPILE_LANGUAGE:CXX>:-Werror>)

# GCC 12 follows inlined std::string sums (its bug 105651) and growing vectors into copies that are never made. Real ones
# are found by the sanitizers.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  add_compile_options(
    $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>
    $<$<COMPILE_LANGUAGE:CXX>:-Wno-stringop-overread>
    $<$<COMPILE_LANGUAGE:CXX>:-Wno-stringop-overflow>)
endif()
