# Address randomisation with high entropy, no execution of data, stack protector. ./check reads the finished file's
# header to see that they are really set.
add_library(torvane_hardening INTERFACE)
target_compile_options(torvane_hardening INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-fstack-protector-strong>)
target_link_options(torvane_hardening INTERFACE
    -fstack-protector-strong -Wl,--dynamicbase -Wl,--high-entropy-va -Wl,--nxcompat -Wl,--no-insert-timestamp)
target_link_libraries(torvane_warnings INTERFACE torvane_hardening)
