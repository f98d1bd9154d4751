#pragma once

#include "records/drive_record.h"
#include "records/message_table.h"

namespace torvane {

/// A drive with a loaded report that holds none of the counters, and no health log.
inline DriveRecord driveWithoutValues(std::int32_t smartType = kSmartTypeStandard) {
    DriveRecord drive;
    drive.smartType = smartType;
    drive.smartLoaded = 1;
    drive.nvme.criticalWarning = kNotReported;
    drive.nvme.availableSpare = kNotReported;
    drive.nvme.availableSpareThreshold = kNotReported;
    drive.nvme.dataUnitsWritten = kNotReported;
    return drive;
}

/// A drive whose counters are all reported as 0.
inline DriveRecord soundDrive() {
    DriveRecord drive;
    drive.smartType = kSmartTypeStandard;
    drive.smartLoaded = 1;
    drive.disk.fill(0);
    drive.ssd.fill(0);
    return drive;
}

inline MessageRecord messageFor(std::uint32_t level, std::uint32_t colour, std::string_view text) {
    MessageRecord message;
    message.messageId = colour;
    message.level = level;
    setMessageText(message, text);
    return message;
}

/// One message for each level, with the lamp that the level means.
inline MessageTable fourMessages() {
    return {messageFor(0, kLampGreen, "fine"), messageFor(1, kLampBlue, "early wear"),
            messageFor(2, kLampYellow, "wearing out"), messageFor(3, kLampRed, "failing"),
            messageFor(kMessageTableEnd, kMessageTableEnd, "")};
}

} // namespace torvane
