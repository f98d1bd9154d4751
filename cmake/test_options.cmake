# Test programs are built often and run briefly: they are compiled in a fraction of the time without optimisation and, for
# stack traces, with line numbers alone. What they test keeps the flags of its own library.
add_library(torvane_test_options INTERFACE)
target_compile_options(torvane_test_options INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-g1>
    $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<CONFIG:RelWithDebInfo>>:-O0>)
