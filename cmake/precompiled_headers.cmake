# For test programs, whose code is not optimised (GCC 12 warns of false overlaps where it is): headers of the system, of the
# library and of GoogleTest are parsed once for a program instead of once for a source. None of ours is among them, and lint
# parses each source without them: a source names all that it uses.
set(TORVANE_STANDARD_HEADERS <algorithm> <array> <atomic> <chrono> <cstdint> <filesystem> <fstream> <functional> <map>
    <memory> <mutex> <optional> <sstream> <string> <string_view> <thread> <utility> <vector>)

# A compiler cache keeps nothing that is compiled with them.
if(CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_DISABLE_PRECOMPILE_HEADERS ON)
endif()

# torvane_precompile(<target> <header>...): the standard headers and those.
function(torvane_precompile target)
    target_precompile_headers(${target} PRIVATE ${TORVANE_STANDARD_HEADERS} ${ARGN})
endfunction()
