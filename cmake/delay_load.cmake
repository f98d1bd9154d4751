# Libraries of Windows that Windows does not hold ready for every program (they are not among its "KnownDLLs"): bound by
# the program's import table, a file of such a name beside the program would be loaded in their stead, before its first
# instruction. They are loaded at their first use instead, and the program's start says from where.

# What the helper of every delayed function needs. The linker is told to look for it: the compiler's own libraries have
# an empty one, and come last.
add_library(torvane_delayed_functions STATIC "${CMAKE_SOURCE_DIR}/base/delayed_functions.cpp")
target_link_libraries(torvane_delayed_functions PRIVATE torvane_warnings)
target_link_options(torvane_delayed_functions INTERFACE -Wl,--undefined=__pfnDliNotifyHook2)

# torvane_delayed_library(<name>): an interface library torvane_<name> with the functions of cmake/delayed/<name>.def.
function(torvane_delayed_library name)
    set(definition "${CMAKE_SOURCE_DIR}/cmake/delayed/${name}.def")
    set(library "${CMAKE_BINARY_DIR}/delayed/lib${name}_delayed.a")
    file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/delayed")
    add_custom_command(OUTPUT "${library}"
        COMMAND ${CMAKE_DLLTOOL} --input-def "${definition}" --dllname "${name}.dll" --output-delaylib "${library}"
            --temp-prefix "delayed_${name}"
        WORKING_DIRECTORY "${CMAKE_BINARY_DIR}/delayed"
        DEPENDS "${definition}" COMMENT "Delayed import library of ${name}.dll" VERBATIM)
    add_custom_target(torvane_${name}_delayed DEPENDS "${library}")
    add_library(torvane_${name} INTERFACE)
    add_dependencies(torvane_${name} torvane_${name}_delayed)
    target_link_libraries(torvane_${name} INTERFACE "${library}" torvane_delayed_functions)
endfunction()

torvane_delayed_library(bcrypt)
torvane_delayed_library(comctl32)
torvane_delayed_library(gdiplus)
torvane_delayed_library(winmm)
