# Cross compiler for 64-bit Windows. The -posix variant, because only its C++ library has <thread> and <mutex>.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(torvane_triplet x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${torvane_triplet}-gcc-posix)
set(CMAKE_CXX_COMPILER ${torvane_triplet}-g++-posix)
set(CMAKE_RC_COMPILER ${torvane_triplet}-windres)

# Headers and libraries come from the cross tree alone, never from the build machine's own.
set(CMAKE_FIND_ROOT_PATH /usr/${torvane_triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# One self-contained program: no compiler run-time DLLs beside it.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
