# What every source of ours is compiled with. Includes are written from the repository root.
add_library(torvane_warnings INTERFACE)
target_include_directories(torvane_warnings INTERFACE "${CMAKE_SOURCE_DIR}")
target_compile_options(torvane_warnings INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-Wall;-Wextra;-Wpedantic;-Wconversion;-Wshadow;-Werror>
    # Diagnostics and debug information name files from the repository root, wherever it was cloned.
    $<$<COMPILE_LANGUAGE:CXX>:-ffile-prefix-map=${CMAKE_SOURCE_DIR}/=>)

if(WIN32)
    # Windows 10 and later. UNICODE stays undefined: the A functions, with UTF-8 as the program's code page (manifest).
    target_compile_definitions(torvane_warnings INTERFACE
        _WIN32_WINNT=0x0A00 WINVER=0x0A00 NOMINMAX WIN32_LEAN_AND_MEAN)
    target_compile_options(torvane_warnings INTERFACE $<$<COMPILE_LANGUAGE:RC>:--codepage=65001>)
endif()
