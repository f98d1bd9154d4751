# Sanitizers and coverage counters of the native builds; nothing at all in the Windows build.
add_library(torvane_instrumentation INTERFACE)

if(TORVANE_SANITIZE)
    set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_compile_options(torvane_instrumentation INTERFACE ${sanitizers})
    target_link_options(torvane_instrumentation INTERFACE ${sanitizers})
    target_compile_definitions(torvane_instrumentation INTERFACE _GLIBCXX_ASSERTIONS)
endif()

if(TORVANE_SANITIZE_THREADS)
    target_compile_options(torvane_instrumentation INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
    target_link_options(torvane_instrumentation INTERFACE -fsanitize=thread)
endif()

if(TORVANE_FUZZ)
    # Clang alone: the pure code is watched by libFuzzer, whose main comes with each program of tests/fuzz/.
    set(watched -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_compile_options(torvane_instrumentation INTERFACE ${watched})
    target_link_options(torvane_instrumentation INTERFACE -fsanitize=address,undefined)
endif()

if(TORVANE_COVERAGE)
    target_compile_options(torvane_instrumentation INTERFACE --coverage -O0 -fprofile-update=atomic)
    target_link_options(torvane_instrumentation INTERFACE --coverage)
endif()
