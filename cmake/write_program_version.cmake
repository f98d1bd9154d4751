# Writes HEADER, "program_version.h", of VERSION, TITLE_VERSION and the commit in the current folder; leaves the file alone
# when it says so already.

# git_says(<variable> <arguments of git>): its answer; empty without git or a repository.
function(git_says variable)
    execute_process(COMMAND git ${ARGN}
        OUTPUT_VARIABLE answer OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE result)
    if(result EQUAL 0)
        set(${variable} "${answer}" PARENT_SCOPE)
    else()
        set(${variable} "" PARENT_SCOPE)
    endif()
endfunction()

git_says(BUILD rev-parse --short=12 HEAD)
git_says(changes status --porcelain --untracked-files=no)
if(NOT BUILD)
    set(BUILD "unknown")
elseif(changes)
    string(APPEND BUILD "-modified")
endif()
string(REPLACE "." ", " NUMBERS "${VERSION}")

file(CONFIGURE OUTPUT "${HEADER}" CONTENT [[
#pragma once

#define TORVANE_TITLE "Torvane ver @TITLE_VERSION@"
#define TORVANE_VERSION "@VERSION@"
#define TORVANE_BUILD "@BUILD@"
#define TORVANE_PRODUCT_VERSION "@VERSION@+@BUILD@"
#define TORVANE_FILE_VERSION "@VERSION@.0"
#define TORVANE_VERSION_NUMBERS @NUMBERS@, 0
]] @ONLY)
