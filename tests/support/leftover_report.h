#pragma once

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>

namespace torvane::testing {

/// Leaves a report "PHYS<number>.txt" in the folder as a scan of an hour ago would have, of a drive with that serial
/// number. `more`: further lines.
inline void leaveReport(const std::filesystem::path& folder, int number, const std::string& serialNumber,
                        const std::string& more = "") {
    const std::filesystem::path file = folder / ("PHYS" + std::to_string(number) + ".txt");
    std::ofstream(file, std::ios::binary)
        << "Device Model:     Left over\r\nSerial Number:    " << serialNumber << "\r\n"
        << more;
    std::filesystem::last_write_time(file, std::filesystem::last_write_time(file) - std::chrono::hours(1));
}

} // namespace torvane::testing
