# The JSON reader is a set of headers. They are linked into the build tree, because the directory they are installed in
# also holds the build machine's own system headers, which the cross compiler must never see.
set(TORVANE_JSON_HEADERS /usr/include/nlohmann CACHE PATH "Folder that holds json.hpp")
if(NOT EXISTS "${TORVANE_JSON_HEADERS}/json.hpp")
    message(FATAL_ERROR "json.hpp is not in ${TORVANE_JSON_HEADERS}: run tools/install-packages")
endif()

file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/headers/json")
file(CREATE_LINK "${TORVANE_JSON_HEADERS}" "${CMAKE_BINARY_DIR}/headers/json/nlohmann" SYMBOLIC)

# Link this and write: #include <nlohmann/json.hpp>
add_library(torvane_json INTERFACE)
target_include_directories(torvane_json SYSTEM INTERFACE "${CMAKE_BINARY_DIR}/headers/json")
