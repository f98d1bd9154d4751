#include "tests/ui/health_bench.h"

#include <sstream>
#include <string>
#include <utility>

namespace torvane::driver {
namespace {

/// ATA attributes 5, 9, 187, 196, 197, 198; -1: the drive does not have it.
struct Counters {
    int reallocated;
    int hours;
    int reported;
    int events;
    int pending;
    int offline;
};

constexpr Counters kNoCounters{-1, -1, -1, -1, -1, -1};

struct Disk {
    int number;
    const char* model;
    const char* bus;          ///< "usb" answers behind a SAT bridge
    const char* rotationRate; ///< of the description: a number or "ssd" in quotation marks
    Counters counters;
    const char* more = ""; ///< further fields of "smart", each with a comma behind it
};

std::string diskJson(const Disk& disk) {
    const Counters& counters = disk.counters;
    const std::pair<int, int> attributes[] = {{5, counters.reallocated}, {9, counters.hours},
                                              {187, counters.reported},  {196, counters.events},
                                              {197, counters.pending},   {198, counters.offline}};
    std::ostringstream json;
    json << R"({"number": )" << disk.number << R"(, "bus": ")" << disk.bus << R"(", "size": "64 GiB", "road": ")"
         << (std::string(disk.bus) == "usb" ? "sat" : "ata") << R"(",
        "identity": {"product": ")"
         << disk.model << R"(", "revision": "R1", "serial": "S-)" << disk.number << R"("},
        "ata": {"model": ")"
         << disk.model << R"(", "serial": "S-)" << disk.number << R"(", "rotationRate": )" << disk.rotationRate
         << R"(, "smart": {)" << disk.more << R"("attributes": [)";
    const char* separator = "";
    for (const auto& [id, raw] : attributes) {
        if (raw >= 0) {
            json << separator << R"({"id": )" << id
                 << R"(, "flags": 50, "value": 100, "worst": 100, "threshold": 0, "raw": )" << raw << '}';
            separator = ", ";
        }
    }
    json << "]}}}";
    return json.str();
}

std::string nvmeJson(int number, const std::string& bus, const std::string& road, const std::string& model,
                     const std::string& nvme) {
    return R"({"number": )" + std::to_string(number) + R"(, "bus": ")" + bus + R"(", "size": "64 GiB", "road": ")" +
           road + R"(", "identity": {"product": ")" + model + R"(", "serial": "N-)" + std::to_string(number) +
           R"("}, "nvme": {)" + nvme + "}}";
}

constexpr const char* kAnSsd = R"("ssd")";

// reallocated, hours, reported, events, pending, offline
constexpr Disk kDisks[] = {
    {0, "SOUND", "sata", "7200", {0, 12000, 0, 0, 0, 0}},
    {1, "AGEING", "sata", "7200", {0, 30000, 0, -1, 0, 0}},
    {2, "WEARING", "sata", "7200", {1, 12000, 0, 0, 9, 0}},
    {3, "FAILING", "sata", "7200", {250, 45000, 80, 19, 20, 50}},
    {4, "FLASH", "sata", kAnSsd, {1, 20000, 0, 0, 0, 0}},
    {5, "FLASH IN A CASE", "usb", kAnSsd, {60, 60000, 0, 25, 90, 0}},
    {6, "DISK IN A CASE", "usb", "5400", {0, 43800, 0, 0, 0, 0}},
    {7, "UNREADABLE", "sata", "7200", {0, 12000, 0, 0, 0, 0}, R"("readDataFails": true, )"},
    {8, "SILENT", "sata", "7200", kNoCounters},
    {9, "PELHAM", "scsi", "10000", kNoCounters},
};

} // namespace

BenchFolder healthBench() {
    BenchFolder folder;
    folder.bench(R"({"title": "drives in every condition"})");
    for (const Disk& disk : kDisks) {
        folder.drive("disk" + std::to_string(disk.number), diskJson(disk));
    }
    folder.drive("nvme10", nvmeJson(10, "nvme", "nvme-query", "TARN", R"("health": {
        "criticalWarning": 5, "availableSpare": 3, "availableSpareThreshold": 10, "dataUnitsWritten": 2000000})"));
    folder.drive("nvme11", nvmeJson(11, "raid", "raid-miniport", "TARN RAID", R"("health": {
        "criticalWarning": 26, "availableSpare": 90, "dataUnitsWritten": 10500000000})"));
    folder.drive("nvme12", nvmeJson(12, "usb", "usb-bridge", "TARN BRIDGE", R"("health": {
        "criticalWarning": 1, "availableSpare": 200, "availableSpareThreshold": 255})"));
    folder.drive("nvme13", nvmeJson(13, "nvme", "nvme-query", "TARN MUTE", R"("healthFails": true)"));
    return folder;
}

BenchFolder soundDriveBench() {
    return BenchFolder().drive("sound", diskJson(kDisks[0]));
}

BenchFolder gradedDrivesBench() {
    return soundDriveBench().drive("ageing", diskJson(kDisks[1])).drive("wearing", diskJson(kDisks[2]));
}

} // namespace torvane::driver
