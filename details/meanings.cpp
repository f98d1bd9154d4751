#include "details/meanings.h"

#include <algorithm>
#include <iterator>

namespace torvane {

namespace {

struct Named {
    std::string_view name; ///< or what all names of its kind contain
    AttributeMeaning meaning;
};

constexpr bool kFaults = true;

// The first row whose name is within the attribute's counts: what is more exact comes first.
constexpr Named kAttributes[] = {
    {"Reallocated_Sector_Ct", {"bad sectors that were replaced by spare ones", kFaults}},
    {"Reallocate_NAND_Blk_Cnt", {"bad flash blocks that were replaced by spare ones", kFaults}},
    {"Retired_Block_Count", {"bad flash blocks that were taken out of use", kFaults}},
    {"Reallocated_Event", {"how often the drive has tried to replace sectors", kFaults}},
    {"Bogus_Current_Pend", {"always zero or one on this drive: tells nothing"}},
    {"Current_Pending", {"sectors that could not be read and wait to be replaced", kFaults}},
    {"Pending_Sector_Count", {"sectors that could not be read and wait to be replaced", kFaults}},
    {"Offline_Uncorrectable", {"sectors that the drive's own scan could not read", kFaults}},
    {"Uncorrectable_Sector", {"sectors that the drive could not read", kFaults}},
    {"Reported_Uncorrect", {"reads that failed for good and were reported to the computer", kFaults}},
    {"Uncorrectable_Error_Cnt", {"reads that failed for good", kFaults}},
    {"ECC_Uncorr_Error", {"reads that error correction could not save", kFaults}},
    {"Lifetime_UECC", {"reads that error correction could not save", kFaults}},
    {"Unc_", {"a rate of reads that were lost, in the maker's own measure"}},
    {"End-to-End_Error", {"data that was damaged between the drive's cache and the computer", kFaults}},
    {"IO_Error_Detect", {"data that was damaged between the drive's cache and the computer", kFaults}},
    {"Runtime_Bad_Block", {"bad blocks found at work, or slower links, as the maker likes"}},
    {"Min_Bad_Block", {"bad flash blocks on the best chip"}},
    {"Total_Bad_Block", {"bad flash blocks, those from the factory among them"}},
    {"Bad_Blk_Ct", {"bad flash blocks from the factory and since"}},
    {"Bad_Block_Rate", {"how many flash blocks went bad"}},
    {"Spin_Retry", {"starts of the motor that had to be repeated: mechanics or power", kFaults}},
    {"Calibration_Retry", {"calibrations of the heads that had to be repeated"}},
    {"Command_Timeout", {"commands that were given up: often cable or power"}},
    {"CRC_Error", {"transfers damaged on the way: cable or connector, not the medium"}},
    {"SATA_CRC", {"transfers damaged on the way: cable or connector, not the medium"}},
    {"SATA_P", {"faults of the link: cable or connector, not the medium"}},
    {"Downshift", {"times the link fell to a lower speed: cable or connector"}},
    {"DwnGrd", {"times the link fell to a lower speed: cable or connector"}},
    {"Raw_Read_Error", {"errors at reading, corrected ones too; often several numbers in one"}},
    {"Read_Soft_Error", {"errors at reading that could be corrected"}},
    {"Soft_", {"errors that could be corrected"}},
    {"Seek_Error", {"errors at moving the heads; often several numbers in one"}},
    {"Seek_Time", {"how quickly the heads move"}},
    {"Throughput", {"how quickly the drive works, by its own measure"}},
    {"Spin_Up_Time", {"how long the motor needs to start"}},
    {"Start_Stop", {"starts and stops of the motor"}},
    {"Power_On_Hours", {"how long the drive has been on"}},
    {"Power_Cycle", {"times the drive was switched on"}},
    {"POR_Recovery", {"starts after power was cut"}},
    {"Power_Fail_Uncompl", {"writes that a power failure left unfinished"}},
    {"Power_Fail_Health", {"state of what protects data when power fails"}},
    {"Power_Loss_Cap", {"test of the capacitors that save data when power fails"}},
    {"Capacitor", {"state of the capacitors that save data when power fails"}},
    {"Supercap", {"state of the capacitors that save data when power fails"}},
    {"Power_Loss", {"times power was cut while the drive was at work"}},
    {"Unsafe_Shutdown", {"times power was cut without warning"}},
    {"Unclean_Shutdown", {"times power was cut without warning"}},
    {"Clean_Shutdown", {"times the drive was switched off in good order"}},
    {"ower-Off_Retract", {"times the heads were parked because power was cut"}},
    {"ower-off_Retract", {"times the heads were parked because power was cut"}},
    {"Load_Cycle", {"times the heads were parked and brought back"}},
    {"Loaded_Hours", {"how long the heads were over the disks"}},
    {"Load_Retry", {"times bringing the heads back had to be repeated"}},
    {"Load_Friction", {"friction at moving the heads"}},
    {"Load-in_Time", {"how long the heads need to be brought back"}},
    {"Head_Flying", {"how long the heads were over the disks"}},
    {"High_Fly_Writes", {"writes while a head flew too high"}},
    {"Multi_Zone_Error", {"errors at writing"}},
    {"Write_Error_Rate", {"errors at writing"}},
    {"G-Sense", {"shocks that the drive has felt"}},
    {"Disk_Shift", {"how far the disks have moved, as by a blow"}},
    {"Helium", {"helium left in the drive: 100 is full"}},
    {"Gas_Gauge", {"helium left in the drive"}},
    {"emperature", {"degrees Celsius"}},
    {"herm", {"how much the drive has slowed down because of heat"}},
    {"Percent_Lifetime_Remain", {"share of its life that is left, or used up: see the value"}},
    {"Percent_Lifetime_Used", {"percent of its rated life that is used up"}},
    {"Life_Remaining", {"percent of its rated life that is left"}},
    {"LifeLeft", {"rated life that is left, hundredths of a percent"}},
    {"SSD_Life_Left", {"percent of its rated life that is left"}},
    {"Media_Wearout", {"wear of the flash; the value counts down from 100"}},
    {"Life_Curve", {"how far the drive limits its writes to last its rated life"}},
    {"Perc_Write", {"percent of the flash's rated erasures that are used up"}},
    {"Perc_Avail", {"percent of the spare flash that is left"}},
    {"Wear_Leveling", {"erasures of the flash on average; the value counts down from 100"}},
    {"Wear_Range", {"how far the most and the least worn block are apart"}},
    {"MaxAvgErase", {"most and average erasures of a flash block"}},
    {"Block-Erase", {"erasures of a flash block on average"}},
    {"Avg_Write/Erase", {"erasures of a flash block on average"}},
    {"Average_Erase", {"erasures of a flash block on average"}},
    {"Max_Erase", {"erasures of the flash block that was erased most"}},
    {"Maximum_Erase", {"erasures of the flash block that was erased most"}},
    {"Min_W/E", {"erasures of the flash block that was erased least"}},
    {"Total_Write/Erase", {"erasures of all flash blocks"}},
    {"Total_Erase", {"erasures of all flash blocks"}},
    {"Gigabytes_Erased", {"gigabytes of flash that were erased"}},
    {"Program_Fail", {"writes to flash that failed"}},
    {"Erase_Fail", {"erasures of flash that failed"}},
    {"Die_Failure", {"flash chips that failed"}},
    {"Read_Fail", {"reads that failed", kFaults}},
    {"Unused_R", {"spare flash blocks that are left"}},
    {"Used_Rsvd", {"spare flash blocks that are used up"}},
    {"Reserve", {"spare flash blocks that are left"}},
    {"Reservd", {"spare flash that is left; the value counts down from 100"}},
    {"Write_Protect", {"above zero: the drive takes no writes any more", kFaults}},
    {"WriteAmp", {"how much more the flash was written than the computer asked for"}},
    {"Write_AmpFctr", {"how much more the flash was written than the computer asked for"}},
    {"Success_RAIN", {"pages that the drive saved by its own redundancy"}},
    {"RAIN_Success", {"pages that the drive saved by its own redundancy"}},
    {"Retried_Blk", {"flash blocks that had to be read again"}},
    {"Read_Retry", {"reads that had to be repeated"}},
    {"Read_Error_Retry", {"reads that had to be repeated"}},
    {"Read_Disturb", {"blocks moved because reading wears them"}},
    {"Integ_Scan", {"scans of the whole flash that the drive did by itself"}},
    {"Error_Correction", {"errors that could be corrected"}},
    {"Hardware_ECC", {"errors that could be corrected; often several numbers in one"}},
    {"ECC_Error_Rate", {"errors that could be corrected"}},
    {"Exception_Mode", {"above zero: the drive is in a mode of failure", kFaults}},
    {"Host_Program_Page", {"flash pages written for the computer"}},
    {"FTL_Program_Page", {"flash pages written for the drive's own housekeeping"}},
    {"Bckgnd_Program_Page", {"flash pages written for the drive's own housekeeping"}},
    {"Total_LBAs_Written", {"written by the computer: sectors, or units of the maker's own"}},
    {"Total_Host_Sector_Write", {"sectors written by the computer"}},
    {"Total_LBAs_Read", {"read by the computer: sectors, or units of the maker's own"}},
    {"Total_NAND_Writes", {"gibibytes written to the flash"}},
    {"Flash_Writes_GiB", {"gibibytes written to the flash"}},
    {"NAND_Writes_32MiB", {"written to the flash, units of 32 MiB"}},
    {"NAND_Writes", {"written to the flash, units of the maker's own"}},
    {"Nand_Writes", {"written to the flash, units of the maker's own"}},
    {"Host_Writes_32MiB", {"written by the computer, units of 32 MiB"}},
    {"Host_Reads_32MiB", {"read by the computer, units of 32 MiB"}},
    {"Host_Writes_GiB", {"gibibytes written by the computer"}},
    {"Host_Reads_GiB", {"gibibytes read by the computer"}},
    {"_Writes_GiB", {"gibibytes written by the computer"}},
    {"_Reads_GiB", {"gibibytes read by the computer"}},
    {"Workld_Media_Wear", {"wear since the workload timer was last set"}},
    {"Workld_Host_Reads", {"percent of reads since the workload timer was last set"}},
    {"Workld_RdWr", {"percent of reads since the workload timer was last set"}},
    {"Workld_Timer", {"minutes since the workload timer was last set"}},
    {"Workload_Minutes", {"minutes since the workload timer was last set"}},
};

struct Words {
    std::string_view name;
    std::string_view words;
};

constexpr Words kNvme[] = {
    {"Critical Warning",
     "0x00: none. Bits: 1 spare, 2 temperature, 4 reliability, 8 read-only, 10 backup of the memory"},
    {"Temperature", "of the whole drive"},
    {"Available Spare", "spare flash that is left; the drive warns when it is below the threshold"},
    {"Available Spare Threshold", "below this the drive warns"},
    {"Percentage Used", "of its rated life; may exceed 100 %"},
    {"Data Units Read", "by the computer, units of 512,000 bytes"},
    {"Data Units Written", "by the computer, units of 512,000 bytes"},
    {"Host Read Commands", "read commands of the computer"},
    {"Host Write Commands", "write commands of the computer"},
    {"Controller Busy Time", "minutes in which the drive had work"},
    {"Power Cycles", "times the drive was switched on"},
    {"Power On Hours", "how long the drive has been on"},
    {"Unsafe Shutdowns", "times power was cut without warning"},
    {"Media and Data Integrity Errors", "reads and writes that failed for good: above zero, data was lost"},
    {"Error Information Log Entries", "commands that ended in an error, harmless ones among them"},
    {"Warning Comp. Temperature Time", "minutes above the temperature at which the drive warns"},
    {"Critical Comp. Temperature Time", "minutes above the critical temperature"},
};

constexpr Words kScsi[] = {
    {"Elements in grown defect list", "bad sectors that were replaced since the drive left the factory"},
    {"Read errors", "uncorrected: data that was lost"},
    {"Write errors", "uncorrected: data that could not be written"},
    {"Verify errors", "uncorrected: data that was found lost"},
    {"Non-medium error count", "errors of other kinds: cable, connector, power"},
    {"Percentage used endurance indicator", "of its rated life; may exceed 100 %"},
    {"Power-on time, hours:minutes", "how long the drive has been on"},
    {"Accumulated start-stop cycles", "starts and stops of the motor"},
    {"Accumulated load-unload cycles", "times the heads were parked and brought back"},
    {"Specified cycle count over device lifetime", "starts that the maker promises"},
    {"Specified load-unload count over device lifetime", "parkings that the maker promises"},
    {"Current Drive Temperature", "now"},
    {"Drive Trip Temperature", "at which the drive warns"},
};

constexpr Words kStatistics[] = {
    {"Lifetime Power-On Resets", "times the drive was switched on"},
    {"Power-on Hours", "how long the drive has been on"},
    {"Logical Sectors Written", "by the computer"},
    {"Logical Sectors Read", "by the computer"},
    {"Date and Time TimeStamp", "milliseconds, by the drive's own clock"},
    {"Spindle Motor Power-on Hours", "how long the motor has been turning"},
    {"Head Flying Hours", "how long the heads were over the disks"},
    {"Head Load Events", "times the heads were brought over the disks"},
    {"Number of Reallocated Logical Sectors", "bad sectors that were replaced by spare ones"},
    {"Read Recovery Attempts", "reads that had to be repeated"},
    {"Number of Mechanical Start Failures", "starts of the motor that failed"},
    {"Number of Realloc. Candidate Logical Sectors", "sectors that wait to be replaced"},
    {"Number of High Priority Unload Events", "times the heads were parked in a hurry"},
    {"Number of Reported Uncorrectable Errors", "reads that failed for good and were reported to the computer"},
    {"Resets Between Cmd Acceptance and Completion", "resets while a command was at work"},
    {"Overlimit Shock Events", "shocks beyond the drive's limit"},
    {"Time in Over-Temperature", "minutes above the drive's limit"},
    {"Time in Under-Temperature", "minutes below the drive's limit"},
    {"Number of Hardware Resets", "resets by the computer's hardware"},
    {"Number of ASR Events", "times the link came up anew"},
    {"Number of Interface CRC Errors", "transfers damaged on the way: cable or connector, not the medium"},
    {"Percentage Used Endurance Indicator", "percent of its rated life; may exceed 100"},
    {"Workload Utilization", "percent of the workload that the drive is made for"},
    {"Sectors that wait to be replaced", "none is known"},
};

template <std::size_t Count>
std::string_view wordsFor(const Words (&table)[Count], std::string_view name) {
    const auto* const found = std::ranges::find(table, name, &Words::name);
    return found != std::end(table) ? found->words : std::string_view();
}

} // namespace

AttributeMeaning attributeMeaning(std::string_view name) {
    const auto* const found = std::ranges::find_if(
        kAttributes, [name](const Named& row) { return name.find(row.name) != std::string_view::npos; });
    return found != std::end(kAttributes) ? found->meaning : AttributeMeaning();
}

std::string_view nvmeMeaning(std::string_view name) {
    return name.starts_with("Temperature Sensor") ? "of one of its sensors" : wordsFor(kNvme, name);
}

std::string_view scsiMeaning(std::string_view name) {
    return wordsFor(kScsi, name);
}

std::string_view statisticMeaning(std::string_view name) {
    return wordsFor(kStatistics, name);
}

} // namespace torvane
