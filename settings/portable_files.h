#pragma once

#include <array>

namespace torvane {

/// Everything that the program needs to run, in the order in which it is copied. All of it ships with the program.
inline constexpr std::array<const char*, 35> kPortableFileList = {
    "Torvane.exe",
    "smartctl.exe",
    "Suggestions.txt",
    "Message.db",
    "Config.db",
    "SSDAttribute.db",
    "BITLOCKER.db",
    "engine-check-blue.png",
    "engine-check-green.png",
    "engine-check-red.png",
    "engine-check-white.png",
    "engine-check-yellow.png",
    "engine-check-nosmart.png",
    "passfail-image.png",
    "passfail-gauge.png",
    "sw-gauge-poh-small.png",
    "sw-gauge-small.png",
    "report-gray-32.png",
    "report-green-32.png",
    "report-blue-32.png",
    "report-yellow-32.png",
    "report-red-32.png",
    "trophy.png",
    "court-house.png",
    "race-car.png",
    "police-1-car.png",
    "police-2-car.png",
    "race-track.png",
    "reverse-race-track.png",
    "explosion-a.png",
    "explosion-b.png",
    "explosion-c.png",
    "explosion-d.png",
    "passfail-gauge.png", // a second time, and kept: a whole copy is known by its 35 log rows
    "license.txt",
};

} // namespace torvane
