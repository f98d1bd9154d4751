#pragma once

#include "base/bytes.h"
#include "workbench/description/bench_description.h"

#include <gtest/gtest.h>

#include <string>

namespace torvane::bench::testing {

[[nodiscard]] inline DriveDescription driveOnBus(const char* bus, const std::string& more) {
    BenchReading reading = readBench({"bench.json", "{}"}, {{"a.json", R"({"number": 3, "size": "8 MiB", "bus": ")" +
                                                                           std::string(bus) + R"(", )" + more + "}"}});
    EXPECT_EQ(reading.error, "");
    return reading.bench.drives.front();
}

/// Drive 3: the fields that every drive needs, and `more` of them in JSON.
[[nodiscard]] inline DriveDescription drive(const std::string& more) {
    return driveOnBus("sata", more);
}
[[nodiscard]] inline DriveDescription nvmeDrive(const std::string& more) {
    return driveOnBus("nvme", more);
}

/// Text of an identify block: two characters in each word, the first one in the high byte.
[[nodiscard]] inline std::string swappedText(ByteView block, std::size_t word, std::size_t words) {
    std::string text;
    for (std::size_t i = 0; i < 2 * words; ++i) {
        text += static_cast<char>(block[2 * word + (i ^ 1U)]);
    }
    return text;
}

} // namespace torvane::bench::testing
