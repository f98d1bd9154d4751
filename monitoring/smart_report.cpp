#include "monitoring/smart_report.h"

#include "monitoring/caseless_key.h"
#include "monitoring/leading_number.h"
#include "monitoring/text_scanners.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

namespace torvane {
namespace {

constexpr std::size_t kLineRoom = 4096;
constexpr int kRawValueWord = 7;

/// Finds lines of one report by key, and takes the found line apart.
class ReportReader {
  public:
    explicit ReportReader(const char* text) : text_(text) {}
    explicit ReportReader(const DriveRecord& record) : ReportReader(record.smartText.c_str()) {}

    /// True when a line contains the key. The first such line is what the other functions look at.
    bool find(const char* key) { return PARSE_FindLine(text_, line_, key) >= 0; }

    /// A word of the found line, from 0; null when it has too few.
    const char* word(int index) { return PARSE_GetWord(line_.data(), word_, index) == 1 ? word_.data() : nullptr; }

    /// The found line from a word on; null when it has too few.
    const char* restFromWord(int index) {
        return PARSE_GetRestFromWord(line_.data(), word_, index) == 1 ? word_.data() : nullptr;
    }

  private:
    const char* text_;
    std::array<char, kLineRoom> line_{};
    std::array<char, kLineRoom> word_{};
};

constexpr const char* kSerialNumberKey = "Serial Number:";

/// Null when the report does not tell it.
const char* identityText(ReportReader& report, const char* key) {
    const char* const text = report.find(key) ? report.restFromWord(2) : nullptr;
    // "[No Information Found]"
    return text == nullptr || std::string_view(text).starts_with("[No") ? nullptr : text;
}

template <std::size_t Width>
void parseIdentityText(ReportReader& report, const char* key, FixedText<Width>& field) {
    if (const char* const text = identityText(report, key)) {
        field.assign(text);
    }
}

std::int32_t parsePowerOnHours(ReportReader& report) {
    if (report.find("Power_On_Hours")) {
        const char* const hours = report.word(kRawValueWord);
        return hours != nullptr ? leadingInt32(hours) : kNotReported;
    }
    if (report.find("Power_On_Minutes")) {
        // Taken as it stands: the tool itself turns a drive's minutes into "10h+15m".
        const char* const minutes = report.word(kRawValueWord);
        return minutes != nullptr ? leadingInt32(minutes) : kNotReported;
    }
    if (report.find("Power On Hours")) {
        const char* const hours = report.word(3);
        return hours != nullptr ? static_cast<std::int32_t>(PARSE_DigitsToInt64(hours)) : kNotReported;
    }
    return kNotReported;
}

void parseSecurity(ReportReader& report, DriveRecord& record) {
    if (report.find("ATA Security is:")) {
        const char* const state = report.word(3);
        // The tool writes "ENABLED" in capitals, and "Disabled".
        record.securityEnabled = state != nullptr && std::string_view(state).starts_with("ENA") ? 1 : 0;
    }
}

/// What becomes of a counter whose attribute's line has no raw value.
enum class WithoutRawValue { kStays, kIsNotReported };

/// A counter that the event log tells of when it is not zero.
struct ErrorAttribute {
    Counter counter;
    const char* key;
    const char* fallbackKey; ///< looked for only when the key is absent; null when there is none
    const char* label;
    WithoutRawValue withoutRawValue = WithoutRawValue::kStays;
};

/// In the order of their log rows.
constexpr auto kErrorAttributes = std::to_array<ErrorAttribute>({
    {Counter::kReallocatedSectors, "Reallocated_Sector_Ct", "Reallocate_NAND_Blk_Cnt", "Reallocated Sector Count"},
    // The label is that of another counter, and kept: users know the log row by it.
    {Counter::kReportedUncorrectable, "Reported_Uncorrect", nullptr, "Reallocated Event Count",
     WithoutRawValue::kIsNotReported},
    {Counter::kReallocationEvents, "Reallocated_Event_Count", nullptr, "Reallocated Event Count"},
    {Counter::kPendingSectors, "Current_Pending_Sector", "Current_Pending_ECC_Cnt", "Current Pending Sector Count"},
    {Counter::kOfflineUncorrectable, "Offline_Uncorrectable", nullptr, "Offline Uncorrectable Errors"},
});
static_assert(namesEachCounterOnce(kErrorAttributes, {Counter::kPowerOnHours}),
              "each counter needs its attribute in the report; the hours have a parser of their own");

void parseErrorCounter(ReportReader& report, const ErrorAttribute& attribute, DriveRecord& record,
                       std::vector<AttributeFinding>& findings) {
    std::int32_t& value = record.disk[attribute.counter];
    const bool present =
        report.find(attribute.key) || (attribute.fallbackKey != nullptr && report.find(attribute.fallbackKey));
    const char* const raw = present ? report.word(kRawValueWord) : nullptr;
    if (raw != nullptr) {
        value = leadingInt32(raw);
        if (value != 0) {
            record.smartErrorFlag = kSmartErrorsFound;
            findings.push_back({value, attribute.label});
        }
    } else if (!present || attribute.withoutRawValue == WithoutRawValue::kIsNotReported) {
        value = kNotReported;
    }
}

void parseErrorCounters(ReportReader& report, DriveRecord& record, std::vector<AttributeFinding>& findings) {
    record.smartErrorFlag = kSmartNoErrors;
    for (const ErrorAttribute& attribute : kErrorAttributes) {
        parseErrorCounter(report, attribute, record, findings);
    }
}

void parseRotationRate(ReportReader& report, DriveRecord& record) {
    const char* const rate = report.find("Rotation Rate:") ? report.word(2) : nullptr;
    if (rate == nullptr || !std::string_view(rate).starts_with("Solid")) {
        return;
    }
    record.smartType = kSmartTypeSsd;
    record.busText.assign(record.busCode == kBusCodeUsb ? "USB SSD" : "SSD");
    record.busCode = kBusCodeOwnText;
}

void addDistinctLba(DriveRecord& record, std::int64_t lba) {
    const auto known = std::span(record.uncLbas).first(static_cast<std::size_t>(record.uncLbaCount));
    if (std::ranges::find(known, lba) == known.end()) {
        record.uncLbas[known.size()] = lba;
        ++record.uncLbaCount;
    }
}

/// The extended comprehensive error log: thirteen register bytes, then "Error: UNC at LBA = 0x... = <decimal>".
void parseErrorLog(DriveRecord& record) {
    constexpr int kDecimalLbaWord = 20;
    const CaselessKey key("Error: UNC at LBA");
    std::array<char, kLineRoom> line{};
    std::array<char, kLineRoom> word{};
    record.uncLbas.fill(0);
    record.uncLbaCount = 0;
    LineCursor cursor(record.smartText.c_str());
    while (static_cast<std::size_t>(record.uncLbaCount) < record.uncLbas.size() && cursor.next(line) == 1) {
        if (key.isWithin(line.data()) && PARSE_GetWord(line.data(), word, kDecimalLbaWord) == 1) {
            addDistinctLba(record, leadingInt64(word.data()));
        }
    }
}

struct SsdAttribute {
    Counter counter;
    const char* key;
};

constexpr auto kSsdAttributes = std::to_array<SsdAttribute>({
    {Counter::kReallocatedSectors, "Reallocated_Sector_Ct"},
    {Counter::kPowerOnHours, "Power_On_Hours"},
    {Counter::kReportedUncorrectable, "Uncorrectable_Error_Cnt"},
    {Counter::kReallocationEvents, "Reallocated_Event_Count"},
    {Counter::kPendingSectors, "Current_Pending_Sector"},
    {Counter::kOfflineUncorrectable, "Offline_Uncorrectable"},
});
static_assert(namesEachCounterOnce(kSsdAttributes),
              "each counter needs its attribute in a solid-state device's report");

void setSsdBusText(DriveRecord& record) {
    switch (record.busCode) {
    case kBusCodeUsb:
        record.busText.assign("SATA USB");
        break;
    case kBusCodeDirect:
        record.busText.assign("SATA SSD");
        break;
    case kBusCodeNvme:
        record.busText.assign("SATA NVME");
        break;
    default:
        break;
    }
}

} // namespace

int parseSmartReport(DriveRecord& record, std::vector<AttributeFinding>& findings) {
    ReportReader report(record);
    if (report.find(kSmartReadFailed)) {
        record.smartLoaded = 0;
        record.smartType = kSmartTypeNone;
        return 0;
    }
    parseIdentityText(report, "Device Model:", record.model);
    parseIdentityText(report, kSerialNumberKey, record.serialNumber);
    record.disk[Counter::kPowerOnHours] = parsePowerOnHours(report);
    parseSecurity(report, record);
    parseErrorCounters(report, record, findings);
    parseRotationRate(report, record);
    parseErrorLog(record);
    return 1;
}

std::string reportedSerialNumber(const char* reportText) {
    ReportReader report(reportText);
    const char* const serial = identityText(report, kSerialNumberKey);
    return serial != nullptr ? serial : "";
}

int SmartIsSolidStateDevice(const DriveRecord& record) {
    constexpr std::array<std::string_view, 3> kWords{"Solid", "State", "Device"};
    ReportReader report(record);
    if (!report.find("Rotation Rate")) {
        return 0;
    }
    for (std::size_t i = 0; i < kWords.size(); ++i) {
        const char* const word = report.word(static_cast<int>(i) + 2);
        if (word == nullptr || !std::string_view(word).starts_with(kWords[i])) {
            return 0;
        }
    }
    return 1;
}

int SmartParseSsdCounters(DriveRecord& record) {
    if (SmartIsSolidStateDevice(record) == 0) {
        return 0;
    }
    ReportReader report(record);
    for (const SsdAttribute& attribute : kSsdAttributes) {
        const char* const raw = report.find(attribute.key) ? report.word(kRawValueWord) : nullptr;
        record.ssd[attribute.counter] = raw != nullptr ? leadingInt32(raw) : kNotReported;
    }
    record.smartType = kSmartTypeSsd;
    setSsdBusText(record);
    return 1;
}

} // namespace torvane
