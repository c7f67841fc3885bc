# 32-bit Windows from Linux.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(TERVAN_MINGW_TRIPLE i686-w64-mingw32)
set(TERVAN_ARCH x86)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)

# SSE, so that both widths compute the same samples; realigned stacks, because callers built with other compilers keep
# theirs aligned to 4 bytes only.
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
