# What the program says of itself. This is the one place of each.

# Its version, "1.2.0", is the project's; the title and the main window's caption name its first two numbers.
set(TORVANE_VERSION "${PROJECT_VERSION}")
set(TORVANE_TITLE_VERSION "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")

# Where the vendor's pages are, with a slash at its end: the commands that open one put its name behind it.
set(TORVANE_VENDOR_SITE "https://www.torvane.example/")

# Of which commit it was built is asked anew with each build; the files are written when the answer is another one.
set(TORVANE_IDENTITY_HEADERS "${CMAKE_BINARY_DIR}/headers/version")
set(program_version_header "${TORVANE_IDENTITY_HEADERS}/program_version.h")
set(write_program_version ${CMAKE_COMMAND}
    "-DHEADER=${program_version_header}" "-DVERSION=${TORVANE_VERSION}" "-DTITLE_VERSION=${TORVANE_TITLE_VERSION}"
    -P "${CMAKE_SOURCE_DIR}/cmake/write_program_version.cmake")
add_custom_target(torvane_program_version
    COMMAND ${write_program_version}
    BYPRODUCTS "${program_version_header}"
    WORKING_DIRECTORY "${CMAKE_SOURCE_DIR}"
    COMMENT "Asking which commit this is"
    VERBATIM)
