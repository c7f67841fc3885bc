# 64-bit Windows from Linux.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(TERVAN_MINGW_TRIPLE x86_64-w64-mingw32)
set(TERVAN_ARCH x64)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)
