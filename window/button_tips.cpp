#include "window/button_tips.h"

#include "base/format.h"
#include "discovery/bus_type.h"
#include "records/drive_record.h"
#include "resources/resource_ids.h"

#include <algorithm>

namespace torvane {

namespace {

constexpr ButtonTip kTips[] = {
    {IDC_LOAD_DRIVES, ReadingShare::kNone,
     "Lists the attached drives and asks each for its health. Takes some seconds a drive. Changes no data on any "
     "drive; "
     "switches its SMART on where that is off."},
    {IDC_QUICK_DISK_VIEW, ReadingShare::kNone, "Shows the sectors of the selected drive as bytes. Changes nothing."},
    {IDC_CREATE_REPORT, ReadingShare::kNone,
     "Writes a PDF report of the selected drive beside the program, and opens it. Changes nothing on the drive."},
    {IDC_SHORT_READ_TEST, ReadingShare::kSamples,
     "Reads a hundred places of the selected drive, or those that it has logged as unreadable. "
     "Changes nothing."},
    {IDC_CRITICAL_READ_TEST, ReadingShare::kBothEnds,
     "Reads the first 5 GiB and the last 1 GiB of the selected drive. Changes nothing."},
    {IDC_NIST_READ_TEST, ReadingShare::kTenth,
     "Reads random places in a thousand parts of the selected drive, a tenth of it. Changes nothing."},
    {IDC_DRIVE_TO_DRIVE_CLONE, ReadingShare::kWhole,
     "Copies the ticked drive onto another one. Everything on the other one is overwritten."},
    {IDC_DRIVE_TO_IMAGE, ReadingShare::kWhole,
     "Copies the ticked drive into an image file. Changes nothing on the drive."},
    {IDC_CREATE_FORENSIC_IMAGE, ReadingShare::kWhole,
     "Copies the ticked drive into an image file with its hash. Changes nothing on the drive."},
    {IDC_IMAGE_TO_DRIVE, ReadingShare::kNone,
     "Writes an image file to a drive. Everything on that drive is overwritten."},
    {IDC_ENABLE_MOUNTING, ReadingShare::kNone,
     "Windows gives the volumes of drives that are plugged in from now on their letters again."},
    {IDC_DISABLE_MOUNTING, ReadingShare::kNone,
     "Windows gives the volumes of drives that are plugged in from now on no letters, and does not "
     "write to them. Lasts until it is enabled again, also after a restart."},
    {IDC_DATA_WORK_ORDER, ReadingShare::kNone, "Opens the work order in the browser."},
    {IDC_DATA_SERVICES, ReadingShare::kNone, "Opens the page of the services in the browser."},
    {IDC_TERMINATE_TASK, ReadingShare::kNone, "Asks the running job to stop. It ends after the block it is at."},
    {IDC_EXIT, ReadingShare::kNone, "Leaves the program, after a question."},
    {IDC_LOG_TOGGLE, ReadingShare::kNone, "Show or hide the event log"},
};

/// Bytes that the command reads of that drive.
std::int64_t bytesRead(ReadingShare share, std::int64_t size) {
    constexpr std::int64_t kBothEnds = 6LL << 30;
    switch (share) {
    case ReadingShare::kBothEnds:
        return std::min(size, kBothEnds);
    case ReadingShare::kTenth:
        return size / 10;
    case ReadingShare::kWhole:
        return size;
    case ReadingShare::kNone:
    case ReadingShare::kSamples:
        break;
    }
    return 0;
}

/// Bytes a second that a sound drive of its kind keeps up over its whole surface.
std::int64_t usualRate(const DriveRecord& drive) {
    constexpr std::int64_t kMegabyte = 1000000;
    // The report of a solid-state device behind USB changes its code.
    if (drive.busCode == kBusCodeUsb || (drive.device.descriptor && drive.device.descriptor->busType == kBusTypeUsb)) {
        return 100 * kMegabyte;
    }
    switch (drive.smartType) {
    case kSmartTypeNvme:
        return 1500 * kMegabyte;
    case kSmartTypeSsd:
        return 400 * kMegabyte;
    default:
        return 140 * kMegabyte;
    }
}

} // namespace

std::span<const ButtonTip> buttonTips() {
    return kTips;
}

std::string aboutDuration(std::int64_t seconds) {
    constexpr std::int64_t kMinute = 60;
    constexpr std::int64_t kHour = 60 * kMinute;
    constexpr std::int64_t kStep = 10; // nobody knows it better
    if (seconds < 2 * kMinute) {
        return formatText("about %lld s", static_cast<long long>(std::max(kStep, seconds / kStep * kStep)));
    }
    if (seconds < kHour) {
        return formatText("about %lld min", static_cast<long long>(seconds / kMinute));
    }
    const std::int64_t minutes = seconds % kHour / kMinute / kStep * kStep;
    const auto hours = static_cast<long long>(seconds / kHour);
    return minutes == 0 ? formatText("about %lld h", hours)
                        : formatText("about %lld h %lld min", hours, static_cast<long long>(minutes));
}

std::string tipText(const ButtonTip& tip, const DriveRecord* drive) {
    if (drive == nullptr || tip.reading == ReadingShare::kNone) {
        return tip.text;
    }
    const std::int64_t seconds = bytesRead(tip.reading, drive->sizeBytes) / usualRate(*drive);
    return std::string(tip.text) + " A sound drive like " + std::string(drive->model.view()) + " takes " +
           aboutDuration(seconds) + "; a failing one far longer.";
}

} // namespace torvane
