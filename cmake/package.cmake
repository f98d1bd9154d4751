# The shippable folder: the program and everything that lies beside it.
set(TORVANE_PACKAGE_DIR "${CMAKE_BINARY_DIR}/package")
set(TORVANE_SYMBOLS_DIR "${CMAKE_BINARY_DIR}/symbols")

# torvane_ship(<target>): places the target's program in the shippable folder without its debug information, which is
# kept in symbols/ for a debugger.
function(torvane_ship target)
    set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${TORVANE_PACKAGE_DIR}")
    set(symbols "${TORVANE_SYMBOLS_DIR}/$<TARGET_FILE_NAME:${target}>.debug")
    add_custom_command(TARGET ${target} POST_BUILD
        COMMAND ${CMAKE_COMMAND} -E make_directory "${TORVANE_SYMBOLS_DIR}"
        COMMAND ${CMAKE_OBJCOPY} --only-keep-debug "$<TARGET_FILE:${target}>" "${symbols}"
        COMMAND ${CMAKE_OBJCOPY} --strip-debug --add-gnu-debuglink=${symbols} "$<TARGET_FILE:${target}>"
        VERBATIM)
endfunction()
