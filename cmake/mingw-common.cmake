# What both mingw-w64 toolchain files share. The includer sets TERVAN_MINGW_TRIPLE and TERVAN_ARCH.
set(CMAKE_SYSTEM_NAME Windows)

# The -posix flavour: it has std::thread and std::mutex.
set(CMAKE_C_COMPILER ${TERVAN_MINGW_TRIPLE}-gcc-posix)  # GoogleTest's project asks for one
set(CMAKE_CXX_COMPILER ${TERVAN_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${TERVAN_MINGW_TRIPLE}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${TERVAN_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Everything static: no runtime DLL has to lie beside the module.
# The .def file exports plain names; the fix-up lets them match the decorated stdcall symbols of 32-bit code.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static -Wl,--enable-stdcall-fixup")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${CMAKE_MODULE_LINKER_FLAGS_INIT}")
set(CMAKE_EXE_LINKER_FLAGS_RELEASE_INIT "-s")
set(CMAKE_MODULE_LINKER_FLAGS_RELEASE_INIT "-s")
set(CMAKE_SHARED_LINKER_FLAGS_RELEASE_INIT "-s")

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine-run ${TERVAN_ARCH} test)
