# Third-party products, built by tools/build-dependencies from the archives pinned in dependencies.lock.
set(dependency_libraries
    "${TORVANE_DEPS_DIR}/libharu/lib/libhpdfs.a"
    "${TORVANE_DEPS_DIR}/libpng/lib/libpng16.a")
set(TORVANE_SMARTCTL "${TORVANE_DEPS_DIR}/smartmontools/smartctl.exe")
set(dependency_files ${dependency_libraries} "${TORVANE_SMARTCTL}"
    "${TORVANE_DEPS_DIR}/smartmontools/licence/smartmontools.txt")

set(dependency_stamp "${CMAKE_BINARY_DIR}/dependencies.stamp")
add_custom_command(OUTPUT "${dependency_stamp}"
    BYPRODUCTS ${dependency_files}
    COMMAND "${CMAKE_SOURCE_DIR}/tools/build-dependencies" "${TORVANE_DEPS_DIR}"
    COMMAND ${CMAKE_COMMAND} -E touch "${dependency_stamp}"
    DEPENDS "${CMAKE_SOURCE_DIR}/tools/build-dependencies" "${CMAKE_SOURCE_DIR}/cmake/dependencies.lock"
    COMMENT "Fetching and building the dependencies"
    USES_TERMINAL VERBATIM)
add_custom_target(torvane_dependencies DEPENDS "${dependency_stamp}")

# PDF documents, and PNG pictures: link this and include <hpdf.h> or <png.h>.
add_library(torvane_pdf INTERFACE)
target_include_directories(torvane_pdf SYSTEM INTERFACE
    "${TORVANE_DEPS_DIR}/libharu/include" "${TORVANE_DEPS_DIR}/libpng/include")
target_link_libraries(torvane_pdf INTERFACE ${dependency_libraries} z)
add_dependencies(torvane_pdf torvane_dependencies)
