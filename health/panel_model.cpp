#include "health/panel_model.h"

#include "health/counter_text.h"
#include "health/health_sentence.h"
#include "health/nvme_verdict.h"
#include "records/drive_record.h"

#include <algorithm>
#include <cstdint>

namespace torvane {

namespace {

constexpr std::string_view kFirstDialImage = "sw-gauge-poh-small.png";
constexpr std::string_view kDialImage = "sw-gauge-small.png";
constexpr std::string_view kPassFailImage = "passfail-gauge.png";

constexpr PanelPoint kFirstDial{10, 140};
constexpr PanelPoint kFirstPivot{70, 194};
constexpr double kNeedleLength = 55.0;
constexpr int kCaptionWidth = 140;
constexpr int kCaptionTop = 224;
constexpr int kCaptionBottom = 244;

constexpr double kPassValue = 0.0;
constexpr double kFailValue = 100.0;

/// What one dial of an ATA drive tells.
struct Gauge {
    Counter counter;
    std::string_view caption;
    double fullScale;
};

/// From left to right.
constexpr auto kStandardGauges = std::to_array<Gauge>({
    {Counter::kPowerOnHours, "Power On Hours", 60000.0},
    {Counter::kReallocatedSectors, "Moved Errors", 100.0},
    {Counter::kReallocationEvents, "Slow Sectors", 100.0},
    {Counter::kPendingSectors, "Pending Sectors", 100.0},
    {Counter::kOfflineUncorrectable, "Uncorrectable Errors", 100.0},
    {Counter::kReportedUncorrectable, "Reported Errors", 100.0},
});
static_assert(namesEachCounterOnce(kStandardGauges), "each counter needs its dial");
static_assert(kStandardGauges.size() == kDialCount, "each dial needs its place in the row");

/// The same, but for the hours, whose scale is far larger: hours alone do not wear flash out.
constexpr auto kSsdGauges = [] {
    auto gauges = kStandardGauges;
    *std::ranges::find(gauges, Counter::kPowerOnHours, &Gauge::counter) = {Counter::kPowerOnHours, "POH", 2000000.0};
    return gauges;
}();

Dial blankDial(std::size_t index, std::string_view image) {
    const int shift = kDialStep * static_cast<int>(index);
    Dial dial;
    dial.image = image;
    dial.position = {kFirstDial.x + shift, kFirstDial.y};
    dial.pivot = {kFirstPivot.x + shift, kFirstPivot.y};
    dial.captionBox = {shift, kCaptionTop, shift + kCaptionWidth, kCaptionBottom};
    return dial;
}

std::array<Dial, kDialCount> blankDials(std::string_view firstImage, std::string_view otherImage) {
    std::array<Dial, kDialCount> dials{};
    for (std::size_t i = 0; i < dials.size(); ++i) {
        dials[i] = blankDial(i, i == 0 ? firstImage : otherImage);
    }
    return dials;
}

void showValue(Dial& dial, std::string_view caption, double value) {
    dial.caption = caption;
    dial.needleEnd = NeedleEndPoint(value, kNeedleLength, dial.pivot);
}

void showCounters(std::array<Dial, kDialCount>& dials, std::span<const Gauge> gauges, const Counters& counters) {
    for (std::size_t i = 0; i < gauges.size(); ++i) {
        const std::int32_t value = counters[gauges[i].counter];
        if (value != kNotReported) {
            showValue(dials[i], gauges[i].caption, value / gauges[i].fullScale);
        }
    }
}

/// The number under each dial: a needle ends at its scale, the number does not. With the counter's name where the dial
/// has neither name nor needle, and nothing where the report has no counter at all.
void tellCounters(PanelModel& panel, std::span<const Gauge> gauges, const Counters& counters) {
    constexpr Counters kNothingReported;
    if (counters == kNothingReported) {
        return;
    }
    for (std::size_t i = 0; i < gauges.size(); ++i) {
        const std::int32_t value = counters[gauges[i].counter];
        std::string text = counterText(gauges[i].counter, value);
        const bool isNamed = value == kNotReported || !panel.dials[i].caption.empty();
        panel.texts.counters[i] = isNamed ? text : std::string(gauges[i].caption).append(": ").append(text);
    }
}

PanelModel standardPanel(const DriveRecord* activeDrive, std::span<const MessageRecord> messages) {
    PanelModel panel;
    panel.dials = blankDials(kFirstDialImage, kDialImage);
    panel.undrawnImages = {kUndrawnLabelsImage};
    const LampVerdict verdict = decideLamp(activeDrive, messages);
    if (activeDrive != nullptr && verdict.showsCounters) {
        showCounters(panel.dials, kStandardGauges, activeDrive->disk);
        tellCounters(panel, kStandardGauges, activeDrive->disk);
        panel.texts.own = failureBesideCounters(*activeDrive);
    }
    panel.lampImage = verdict.lampImage;
    return panel;
}

PanelModel ssdPanel(const DriveRecord& record) {
    PanelModel panel;
    panel.dials = blankDials(kFirstDialImage, kDialImage);
    showCounters(panel.dials, kSsdGauges, record.ssd);
    tellCounters(panel, kSsdGauges, toldCounters(record));
    return panel;
}

PanelModel nvmePanel(const DriveRecord& record) {
    static constexpr std::array<std::string_view, kNvmeWarningCount> kCaptions{
        "Available Space", "Temp Threshold", "NVM Sub-System", "Read-Only Mode", "Volatile Memory"};

    PanelModel panel;
    panel.dials = blankDials(kFirstDialImage, kPassFailImage);
    if (isEnduranceKnown(record)) {
        showValue(panel.dials[0], "Gigabytes Written", record.nvme.enduranceFraction);
    }
    panel.texts.endurance = enduranceText(record);
    panel.texts.own = nvmeLifeText(record.nvme);
    // Without a health log the pass/fail dials stay blank: an unread byte is neither a pass nor a failure.
    if (const auto failed = NvmeWarningBits(record)) {
        for (std::size_t bit = 0; bit < failed->size(); ++bit) {
            const bool hasFailed = (*failed)[bit];
            showValue(panel.dials[bit + 1], kCaptions[bit], hasFailed ? kFailValue : kPassValue);
            panel.texts.nvmeResults[bit] = nvmeResultText(record, bit, hasFailed);
        }
    }
    return panel;
}

PanelModel unknownDrivePanel() {
    // Six blank dials: nothing is known of what such a drive reports, so no needle could be trusted.
    PanelModel panel;
    panel.dials = blankDials(kDialImage, kDialImage);
    return panel;
}

PanelModel panelOfItsKind(const DriveRecord* activeDrive, std::span<const MessageRecord> messages) {
    switch (activeDrive != nullptr ? activeDrive->smartType : kSmartTypeStandard) {
    case kSmartTypeNvme:
        return nvmePanel(*activeDrive);
    case kSmartTypeSsd:
        return ssdPanel(*activeDrive);
    case kSmartTypeUnknown:
        return unknownDrivePanel();
    default:
        return standardPanel(activeDrive, messages);
    }
}

} // namespace

PanelModel buildPanelModel(const DriveRecord* activeDrive, std::span<const MessageRecord> messages, bool toolMissed) {
    PanelModel panel = panelOfItsKind(activeDrive, messages);
    if (activeDrive != nullptr) {
        panel.texts.healthMessage = healthSentence(*activeDrive, messages, toolMissed);
    }
    return panel;
}

} // namespace torvane
