# The shippable folder: the program and everything that lies beside it.
set(TORVANE_PACKAGE_DIR "${CMAKE_BINARY_DIR}/package")
set(TORVANE_SYMBOLS_DIR "${CMAKE_BINARY_DIR}/symbols")

# Everything that lies beside the program.
add_custom_target(torvane_package ALL)

# torvane_ship(<target>): places the target's program in the shippable folder without its debug information, which is
# kept in symbols/ for a debugger.
function(torvane_ship target)
    set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${TORVANE_PACKAGE_DIR}")
    set(symbols "${TORVANE_SYMBOLS_DIR}/$<TARGET_FILE_NAME:${target}>.debug")
    add_custom_command(TARGET ${target} POST_BUILD
        COMMAND ${CMAKE_COMMAND} -E make_directory "${TORVANE_SYMBOLS_DIR}"
        COMMAND ${CMAKE_OBJCOPY} --preserve-dates --only-keep-debug "$<TARGET_FILE:${target}>" "${symbols}"
        COMMAND ${CMAKE_OBJCOPY} --preserve-dates --strip-all --add-gnu-debuglink=${symbols} "$<TARGET_FILE:${target}>"
        VERBATIM)
    add_dependencies(torvane_package ${target})
endfunction()

# torvane_ship_file(<file> [<name in the shippable folder>]): a copy of the file, renewed when the file changes.
function(torvane_ship_file file)
    cmake_path(ABSOLUTE_PATH file BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" NORMALIZE)
    if(ARGC GREATER 1)
        set(name "${ARGV1}")
    else()
        cmake_path(GET file FILENAME name)
    endif()
    add_custom_command(OUTPUT "${TORVANE_PACKAGE_DIR}/${name}"
        COMMAND ${CMAKE_COMMAND} -E copy "${file}" "${TORVANE_PACKAGE_DIR}/${name}"
        DEPENDS "${file}" COMMENT "Shipping ${name}" VERBATIM)
    string(MAKE_C_IDENTIFIER "ship_${name}" step)
    add_custom_target(${step} DEPENDS "${TORVANE_PACKAGE_DIR}/${name}")
    add_dependencies(torvane_package ${step})
endfunction()

# The tool that reads the drives' own monitoring data.
torvane_ship_file("${TORVANE_SMARTCTL}")
