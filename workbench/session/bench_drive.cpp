#include "workbench/session/bench_drive.h"

#include <algorithm>

namespace torvane::bench {

BenchDrive::BenchDrive(const std::filesystem::path& benchFolder, const DriveDescription& drive)
    : drive_(drive), content_(benchFolder, drive), cache_(benchFolder, drive), ata_(drive), scsi_(drive, ata_) {
    const DriveFaults& faults = drive.faults;
    if (faults.open) {
        opens_.emplace_back(*faults.open);
    }
    if (faults.flush) {
        flushes_.emplace_back(*faults.flush);
    }
    for (const RequestFault& fault : faults.requests) {
        requests_.emplace_back(fault);
    }
    const auto count = [](RangeFaults& counted, const std::vector<RangeFault>& described) {
        for (const RangeFault& fault : described) {
            counted.emplace_back(fault);
        }
    };
    count(reads_, faults.reads);
    count(shortReads_, faults.shortReads);
    count(writes_, faults.writes);
    count(corruptWrites_, faults.corruptWrites);
    count(seeks_, faults.seeks);
}

bool BenchDrive::touches(const RangeFault& fault, std::uint64_t offset, std::uint64_t length) const {
    const std::uint64_t begin = fault.firstSector * drive_.sectorSize;
    const std::uint64_t end = begin + fault.sectors * drive_.sectorSize;
    return offset < end && begin < offset + length;
}

std::optional<DWORD> BenchDrive::firstStrike(FailingRequests& faults) {
    for (CountedFault<FailingRequest>& counted : faults) {
        if (counted.strikes()) {
            return counted.fault.error;
        }
    }
    return std::nullopt;
}

std::optional<std::uint32_t> BenchDrive::firstStrike(RangeFaults& faults, std::uint64_t offset,
                                                     std::uint64_t length) const {
    for (CountedFault<RangeFault>& counted : faults) {
        if (touches(counted.fault, offset, length) && counted.strikes()) {
            return counted.fault.amount;
        }
    }
    return std::nullopt;
}

std::optional<DWORD> BenchDrive::openFault() {
    return firstStrike(opens_);
}

std::optional<DWORD> BenchDrive::flushFault() {
    return firstStrike(flushes_);
}

std::optional<DWORD> BenchDrive::requestFault(std::string_view name) {
    for (CountedFault<RequestFault>& counted : requests_) {
        if (counted.fault.request == name && counted.strikes()) {
            return counted.fault.error;
        }
    }
    return std::nullopt;
}

std::optional<DWORD> BenchDrive::readFault(std::uint64_t offset, std::uint64_t length) {
    return firstStrike(reads_, offset, length);
}

std::optional<DWORD> BenchDrive::writeFault(std::uint64_t offset, std::uint64_t length) {
    return firstStrike(writes_, offset, length);
}

std::optional<DWORD> BenchDrive::seekFault(std::uint64_t offset) {
    return firstStrike(seeks_, offset, 1);
}

std::optional<std::uint32_t> BenchDrive::shortRead(std::uint64_t offset, std::uint64_t length) {
    return firstStrike(shortReads_, offset, length);
}

std::vector<std::uint8_t> BenchDrive::storedInstead(std::uint64_t offset, std::span<const std::uint8_t> data) {
    std::vector<std::uint8_t> stored(data.begin(), data.end());
    for (CountedFault<RangeFault>& counted : corruptWrites_) {
        if (!touches(counted.fault, offset, data.size()) || !counted.strikes()) {
            continue;
        }
        const std::uint64_t begin = std::max(counted.fault.firstSector * drive_.sectorSize, offset);
        const std::uint64_t end =
            std::min((counted.fault.firstSector + counted.fault.sectors) * drive_.sectorSize, offset + data.size());
        for (std::uint64_t place = begin; place < end; ++place) {
            stored[place - offset] ^= 0xFF;
        }
    }
    return stored;
}

DWORD BenchDrive::store(HANDLE handle, std::uint64_t offset, std::span<const std::uint8_t> data,
                        const std::function<bool()>& isPluggedIn) {
    std::vector<std::uint8_t> other;
    if (!corruptWrites_.empty()) {
        other = storedInstead(offset, data);
        data = other;
    }
    return drive_.faults.volatileCache ? cache_.write(content_, handle, offset, data, isPluggedIn)
                                       : content_.write(handle, offset, data);
}

void BenchDrive::flush() const {
    if (drive_.faults.volatileCache) {
        cache_.flush();
    }
}

void BenchDrive::loseUnflushed() const {
    if (drive_.faults.volatileCache) {
        cache_.lose(content_);
    }
}

std::uint32_t BenchDrive::slownessMilliseconds(std::uint64_t offset, std::uint64_t length) const {
    std::uint32_t sum = 0;
    for (const RangeFault& fault : drive_.faults.slow) {
        sum += touches(fault, offset, length) ? fault.amount : 0;
    }
    return sum;
}

const SilenceFault* BenchDrive::silence() const {
    const std::optional<SilenceFault>& silence = drive_.faults.stopsAnswering;
    return silence && transfers_.load() > silence->afterRequests ? &*silence : nullptr;
}

bool BenchDrive::countTransfer() {
    const std::uint64_t before = transfers_.fetch_add(1);
    return !drive_.faults.vanishAfterRequests || before < *drive_.faults.vanishAfterRequests;
}

bool BenchDrive::countWrite() {
    return writesStored_.fetch_add(1) + 1 == drive_.faults.rescanAfterWrites;
}

bool BenchDrive::hasVanished() const {
    return drive_.faults.vanishAfterRequests && transfers_.load() >= *drive_.faults.vanishAfterRequests;
}

} // namespace torvane::bench
