#include "details/nvme_log.h"

#include "base/format.h"
#include "health/grading.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

namespace torvane {

namespace {

constexpr std::size_t kLogSize = 512;
constexpr std::size_t kTemperature = 1;
constexpr std::size_t kFirstSensor = 200;
constexpr std::size_t kSensors = 8;
constexpr int kKelvinOfZeroCelsius = 273;

std::string byteText(ByteView log, std::size_t at) {
    return std::to_string(loadLe<std::uint8_t>(log, at));
}

std::string percentText(ByteView log, std::size_t at) {
    return byteText(log, at) + "%";
}

std::string celsiusText(std::uint16_t kelvin) {
    return std::to_string(kelvin - kKelvinOfZeroCelsius) + " Celsius";
}

/// A counter of 128 bits. What is beyond 64 of them no drive reaches.
std::string counterText(ByteView log, std::size_t at) {
    return loadLe64(log, at + 8) == 0 ? thousandsText(loadLe64(log, at)) : "more than 18,446,744,073,709,551,615";
}

/// Units of 1000 x 512 bytes.
std::string dataUnitsText(ByteView log, std::size_t at) {
    constexpr double kTerabytesPerUnit = 512e3 / 1e12;
    const double units = static_cast<double>(loadLe64(log, at));
    return counterText(log, at) + formatText(" [%.2f TB]", units * kTerabytesPerUnit);
}

struct Counter128 {
    const char* name;
    std::size_t at;
};

constexpr Counter128 kCounters[] = {
    {"Host Read Commands", 64},
    {"Host Write Commands", 80},
    {"Controller Busy Time", 96},
    {"Power Cycles", 112},
    {"Power On Hours", 128},
    {"Unsafe Shutdowns", 144},
    {"Media and Data Integrity Errors", 160},
    {"Error Information Log Entries", 176},
};

void addSensors(ByteView log, std::vector<ReportField>& fields) {
    for (std::size_t sensor = 0; sensor < kSensors; ++sensor) {
        // Zero: there is no such sensor.
        if (const auto kelvin = loadLe<std::uint16_t>(log, kFirstSensor + 2 * sensor); kelvin != 0) {
            fields.push_back({"Temperature Sensor " + std::to_string(sensor + 1), celsiusText(kelvin)});
        }
    }
}

} // namespace

std::vector<ReportField> nvmeLogFields(ByteView log) {
    if (log.size() < kLogSize) {
        return {};
    }
    std::vector<ReportField> fields{
        {"Critical Warning", formatText("0x%02x", static_cast<unsigned>(loadLe<std::uint8_t>(log, 0)))},
        {"Temperature", celsiusText(loadLe<std::uint16_t>(log, kTemperature))},
        {"Available Spare", percentText(log, 3)},
        {"Available Spare Threshold", percentText(log, 4)},
        {"Percentage Used", percentText(log, 5)},
        {"Data Units Read", dataUnitsText(log, 32)},
        {"Data Units Written", dataUnitsText(log, 48)},
    };
    fields.reserve(fields.size() + std::size(kCounters) + 2 + kSensors);
    for (const Counter128& counter : kCounters) {
        fields.push_back({counter.name, counterText(log, counter.at)});
    }
    fields.push_back({"Warning Comp. Temperature Time", thousandsText(loadLe32(log, 192))});
    fields.push_back({"Critical Comp. Temperature Time", thousandsText(loadLe32(log, 196))});
    addSensors(log, fields);
    return fields;
}

} // namespace torvane
