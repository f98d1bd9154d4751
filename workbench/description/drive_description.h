#pragma once

#include "workbench/description/ata_description.h"
#include "workbench/description/fault_description.h"
#include "workbench/description/nvme_description.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace torvane::bench {

/// The ways by which a drive answers; several may be combined.
struct Roads {
    bool ata = false;
    bool sat = false;
    bool scsi = false;
    bool nvmeQuery = false;
    bool raidMiniport = false;
    bool usbBridge = false;

    /// SCSI pass-through reaches the drive.
    [[nodiscard]] bool anyScsi() const { return ata || sat || scsi || nvmeQuery || raidMiniport || usbBridge; }
    /// ATA commands reach the drive inside SCSI commands (SCSI/ATA Translation).
    [[nodiscard]] bool translatesAta() const { return ata || sat; }
    [[nodiscard]] bool anyNvme() const { return nvmeQuery || raidMiniport || usbBridge; }
};

/// Texts of the storage descriptor; an absent one has offset 0 there.
struct Identity {
    std::optional<std::string> vendor;
    std::optional<std::string> product;
    std::optional<std::string> revision;
    std::optional<std::string> serial;
};

/// What replaces the storage descriptor's own values.
struct DescriptorOverrides {
    std::optional<std::uint32_t> vendorOffset;
    std::optional<std::uint32_t> productOffset;
    std::optional<std::uint32_t> revisionOffset;
    std::optional<std::uint32_t> serialOffset;
    std::optional<std::uint32_t> returnedLength;
    std::optional<std::uint32_t> size;
    std::optional<std::uint32_t> busType;
};

struct AdapterDescription {
    std::uint16_t busMajorVersion = 2;
    std::uint16_t busMinorVersion = 0;
    std::uint32_t maximumTransfer = 128 * 1024; ///< bytes
};

enum class BackingKind { kFile, kZero, kSectorNumber, kNoise };

struct Backing {
    BackingKind kind = BackingKind::kFile;
    std::string file;           ///< name in the bench's backing folder
    std::uint64_t seed = 0;     ///< of `kNoise`
    bool forgetsWrites = false; ///< of a pattern: writes are accepted, and nothing comes of them
};

/// What --swap puts in a drive's place. It has the same number, kind and size; nothing lies on it at first, and nothing
/// goes wrong with it.
struct SwapDescription {
    Identity identity;
    Backing backing;
    bool keepsHandles = false; ///< what has the drive open reaches the other one from then on
};

struct DriveDescription {
    std::string fileName; ///< the description's own file, for messages
    std::uint32_t number = 0;
    std::uint32_t bus = 0;  ///< STORAGE_BUS_TYPE
    std::uint64_t size = 0; ///< bytes
    std::uint32_t sectorSize = 512;
    std::uint32_t physicalSectorSize = 512;
    Roads roads;
    Identity identity;
    DescriptorOverrides descriptor;
    AdapterDescription adapter;
    bool removable = false;
    bool empty = false; ///< a slot without a medium
    bool readOnly = false;
    Backing backing;
    std::uint32_t scsiPort = 0;
    bool strictPassThrough = true; ///< refuse pass-through in the layout of 32-bit programs, as 64-bit Windows does
    bool miniportIgnores = false;  ///< every miniport request succeeds and leaves its buffer as it was
    AtaDescription ata;
    NvmeDescription nvme;
    DriveFaults faults;
    SwapDescription swap;
};

/// An NVMe drive whose descriptor's serial number is not described tells an EUI-64 there, as Windows does.
[[nodiscard]] bool tellsEui64(const DriveDescription& drive);

/// The serial number in the drive's storage descriptor; none: it has none.
[[nodiscard]] std::optional<std::string> descriptorSerial(const DriveDescription& drive);

/// The drive that --swap puts in the place of `drive`.
[[nodiscard]] DriveDescription swappedDrive(const DriveDescription& drive);

/// Bus type names in the order of STORAGE_BUS_TYPE, from 0 (unknown) to 17 (NVMe).
inline constexpr std::array<std::string_view, 18> kBusNames = {
    "unknown", "scsi", "atapi", "ata", "ieee1394", "ssa",     "fibre",        "usb",    "raid",
    "iscsi",   "sas",  "sata",  "sd",  "mmc",      "virtual", "file-virtual", "spaces", "nvme"};

} // namespace torvane::bench
