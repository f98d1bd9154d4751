# GoogleTest is compiled from its packaged sources, once for each build tree, with that tree's compiler.
set(TORVANE_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "Sources of GoogleTest")
if(NOT EXISTS "${TORVANE_GOOGLETEST_SOURCE}/CMakeLists.txt")
    message(FATAL_ERROR "GoogleTest's sources are not in ${TORVANE_GOOGLETEST_SOURCE}: run tools/install-packages")
endif()

set(CMAKE_POLICY_DEFAULT_CMP0077 NEW)
set(INSTALL_GTEST OFF)
set(BUILD_GMOCK ON)
set(gtest_force_shared_crt ON)
add_subdirectory(${TORVANE_GOOGLETEST_SOURCE} "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
