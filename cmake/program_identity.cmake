# What the program says of itself: TORVANE_VERSION, "1.2", and TORVANE_BUILD, the commit that it is built from.
set(TORVANE_VERSION "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")

# git_says(<variable> <arguments of git>): its answer; empty without git or a repository.
function(git_says variable)
    execute_process(COMMAND git ${ARGN} WORKING_DIRECTORY "${CMAKE_SOURCE_DIR}"
        OUTPUT_VARIABLE answer OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE result)
    if(result EQUAL 0)
        set(${variable} "${answer}" PARENT_SCOPE)
    else()
        set(${variable} "" PARENT_SCOPE)
    endif()
endfunction()

git_says(TORVANE_BUILD rev-parse --short=12 HEAD)
if(TORVANE_BUILD)
    # Each commit and each branch that is taken writes a line there.
    git_says(git_log rev-parse --path-format=absolute --git-path logs/HEAD)
    if(EXISTS "${git_log}")
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${git_log}")
    endif()
else()
    set(TORVANE_BUILD "unknown")
endif()

# The same version for the program's resource.
file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/headers/version/program_version.h" CONTENT [[
#define TORVANE_TITLE "Torvane ver @TORVANE_VERSION@"
#define TORVANE_VERSION "@TORVANE_VERSION@"
#define TORVANE_FILE_VERSION "@PROJECT_VERSION@.0"
#define TORVANE_VERSION_NUMBERS @PROJECT_VERSION_MAJOR@, @PROJECT_VERSION_MINOR@, @PROJECT_VERSION_PATCH@, 0
]] @ONLY)
