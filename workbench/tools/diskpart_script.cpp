#include "workbench/tools/diskpart_script.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace torvane::bench {
namespace {

// Exit codes as diskpart documents them for scripts.
constexpr std::uint32_t kWrongParameter = 2;
constexpr std::uint32_t kServiceFailed = 4;
constexpr std::uint32_t kWrongSyntax = 5;

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c); });
    return lower;
}

std::vector<std::string> wordsOf(std::string_view line) {
    constexpr std::string_view kBlanks = " \t";
    std::vector<std::string> words;
    std::size_t begin = line.find_first_not_of(kBlanks);
    while (begin != std::string_view::npos) {
        const std::size_t end = std::min(line.find_first_of(kBlanks, begin), line.size());
        words.push_back(lowerCase(line.substr(begin, end - begin)));
        begin = line.find_first_not_of(kBlanks, end);
    }
    return words;
}

// diskpart takes any abbreviation of at least three letters.
bool means(const std::string& word, std::string_view keyword) {
    return word.size() >= 3 && keyword.starts_with(word);
}

std::string message(std::string_view text) {
    return "\r\n" + std::string(text) + "\r\n";
}

constexpr std::string_view kHelp = "ACTIVE      - Mark the selected partition as active.\r\n"
                                   "ADD         - Add a mirror to a simple volume.\r\n"
                                   "ASSIGN      - Assign a drive letter or mount point to the selected volume.\r\n"
                                   "ATTRIBUTES  - Manipulate volume or disk attributes.\r\n"
                                   "ATTACH      - Attaches a virtual disk file.\r\n"
                                   "AUTOMOUNT   - Enable and disable automatic mounting of basic volumes.\r\n"
                                   "BREAK       - Break a mirror set.\r\n"
                                   "CLEAN       - Clear the configuration information, or all information, off the\r\n"
                                   "              disk.\r\n"
                                   "COMPACT     - Attempts to reduce the physical size of the file.\r\n"
                                   "CONVERT     - Convert between different disk formats.\r\n"
                                   "CREATE      - Create a volume, partition or virtual disk.\r\n"
                                   "DELETE      - Delete an object.\r\n"
                                   "DETAIL      - Provide details about an object.\r\n"
                                   "DETACH      - Detaches a virtual disk file.\r\n"
                                   "EXIT        - Exit DiskPart.\r\n"
                                   "EXTEND      - Extend a volume.\r\n"
                                   "EXPAND      - Expands the maximum size available on a virtual disk.\r\n"
                                   "FILESYSTEMS - Display current and supported file systems on the volume.\r\n"
                                   "FORMAT      - Format the volume or partition.\r\n"
                                   "GPT         - Assign attributes to the selected GPT partition.\r\n"
                                   "HELP        - Display a list of commands.\r\n"
                                   "IMPORT      - Import a disk group.\r\n"
                                   "INACTIVE    - Mark the selected partition as inactive.\r\n"
                                   "LIST        - Display a list of objects.\r\n"
                                   "MERGE       - Merges a child disk with its parents.\r\n"
                                   "ONLINE      - Online an object that is currently marked as offline.\r\n"
                                   "OFFLINE     - Offline an object that is currently marked as online.\r\n"
                                   "RECOVER     - Refreshes the state of all disks in the selected pack.\r\n"
                                   "              Attempts recovery on disks in the invalid pack, and\r\n"
                                   "              resynchronizes mirrored volumes and RAID5 volumes\r\n"
                                   "              that have stale plex or parity data.\r\n"
                                   "REM         - Does nothing. This is used to comment scripts.\r\n"
                                   "REMOVE      - Remove a drive letter or mount point assignment.\r\n"
                                   "REPAIR      - Repair a RAID-5 volume with a failed member.\r\n"
                                   "RESCAN      - Rescan the computer looking for disks and volumes.\r\n"
                                   "RETAIN      - Place a retained partition under a simple volume.\r\n"
                                   "SAN         - Display or set the SAN policy for the currently booted OS.\r\n"
                                   "SELECT      - Shift the focus to an object.\r\n"
                                   "SETID       - Change the partition type.\r\n"
                                   "SHRINK      - Reduce the size of the selected volume.\r\n"
                                   "UNIQUEID    - Displays or sets the GUID partition table (GPT) identifier or\r\n"
                                   "              master boot record (MBR) signature of a disk.\r\n";

// One script while it runs. Every command appends to the output and tells its exit code.
class Script {
  public:
    Script(const BenchDescription& bench, BenchState& state) : bench_(bench), state_(state) {}

    DiskpartRun run(std::string_view text) {
        while (!text.empty() && !finished_) {
            const std::size_t end = std::min(text.find('\n'), text.size());
            step(text.substr(0, end));
            text.remove_prefix(std::min(end + 1, text.size()));
        }
        return run_;
    }

  private:
    void step(std::string_view line) {
        if (!line.empty() && line.back() == '\r') {
            line.remove_suffix(1);
        }
        std::vector<std::string> words = wordsOf(line);
        const bool goOn = !words.empty() && words.back() == "noerr";
        if (goOn) {
            words.pop_back();
        }
        if (words.empty()) {
            return;
        }
        const std::uint32_t code = execute(words);
        run_.steps.push_back(
            {std::string(line), selected_ ? "drive:" + std::to_string(selected_->number) : "bench", code});
        if (code != 0 && !goOn) {
            run_.exitCode = code;
            finished_ = true;
        }
    }

    std::uint32_t execute(const std::vector<std::string>& words) {
        const std::string& command = words[0];
        if (means(command, "rem")) {
            return 0;
        }
        if (means(command, "select")) {
            return select(words);
        }
        if (means(command, "attributes")) {
            return attributes(words);
        }
        if (means(command, "automount")) {
            return automount(words);
        }
        if (means(command, "clean") && words.size() == 1) {
            return clean();
        }
        if (means(command, "rescan")) {
            run_.output += message("Please wait while DiskPart scans your configuration...");
            run_.output += message("DiskPart has finished scanning your configuration.");
            return 0;
        }
        if (means(command, "exit")) {
            run_.output += message("Leaving DiskPart...");
            finished_ = true;
            return 0;
        }
        return wrongSyntax();
    }

    std::uint32_t wrongSyntax() {
        run_.output += "\r\nMicrosoft DiskPart version 10.0.19041.3636\r\n\r\n" + std::string(kHelp);
        return kWrongSyntax;
    }

    std::uint32_t select(const std::vector<std::string>& words) {
        if (words.size() < 2 || words.size() > 3 || !means(words[1], "disk")) {
            return wrongSyntax();
        }
        if (words.size() == 3) {
            selected_ = diskOf(words[2]);
            if (selected_ == nullptr) {
                run_.output += message("The disk you specified is not valid.");
            }
        }
        if (selected_ == nullptr) {
            run_.output += message("There is no disk selected.");
            return words.size() == 3 ? kWrongParameter : 0;
        }
        run_.output += message("Disk " + std::to_string(selected_->number) + " is now the selected disk.");
        return 0;
    }

    const DriveDescription* diskOf(const std::string& digits) const {
        std::uint32_t number = 0;
        const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
        if (failure != std::errc() || end != digits.data() + digits.size() || state_.isUnplugged(number)) {
            return nullptr;
        }
        return bench_.drive(number);
    }

    // Tells that a disk must be selected first.
    bool nothingSelected() {
        if (selected_ == nullptr) {
            run_.output += message("There is no disk selected.\r\nPlease select a disk and try again.");
        }
        return selected_ == nullptr;
    }

    std::uint32_t attributes(const std::vector<std::string>& words) {
        if (words.size() < 2 || !means(words[1], "disk")) {
            return wrongSyntax();
        }
        if (nothingSelected()) {
            return kWrongParameter;
        }
        if (words.size() == 2) {
            showAttributes();
            return 0;
        }
        const bool set = means(words[2], "set");
        if (words.size() != 4 || words[3] != "readonly" || (!set && !means(words[2], "clear"))) {
            return wrongSyntax();
        }
        state_.readOnly[selected_->number] = set;
        run_.output += message(set ? "Disk attributes set successfully." : "Disk attributes cleared successfully.");
        return 0;
    }

    // No blank line precedes this table.
    void showAttributes() {
        const auto row = [&](std::string_view name, bool value) {
            run_.output += std::string(name) + (value ? "Yes\r\n" : "No\r\n");
        };
        const bool boot = holdsSystem();
        const bool readOnly = state_.isReadOnly(*selected_);
        row("Current Read-only State : ", readOnly);
        row("Read-only  : ", readOnly);
        row("Boot Disk  : ", boot);
        row("Pagefile Disk  : ", boot);
        row("Hibernation File Disk  : ", false);
        row("Crashdump Disk  : ", boot);
        row("Clustered Disk  : ", false);
    }

    bool holdsSystem() const {
        const VolumeDescription* system = bench_.volume('C');
        return system != nullptr && !state_.isSwapped(selected_->number) &&
               std::any_of(system->extents.begin(), system->extents.end(),
                           [&](const VolumeExtent& extent) { return extent.disk == selected_->number; });
    }

    std::uint32_t automount(const std::vector<std::string>& words) {
        if (words.size() > 2) {
            return wrongSyntax();
        }
        if (words.size() == 2) {
            if (means(words[1], "scrub")) {
                run_.output += message("DiskPart successfully scrubbed the mount point settings in the system.");
            } else if (means(words[1], "enable") || means(words[1], "disable")) {
                state_.automount = means(words[1], "enable");
            } else {
                return wrongSyntax();
            }
        }
        // Every form of the command ends by telling the state.
        run_.output += message(state_.automount ? "Automatic mounting of new volumes enabled."
                                                : "Automatic mounting of new volumes disabled.");
        return 0;
    }

    std::uint32_t clean() {
        if (nothingSelected()) {
            return kWrongParameter;
        }
        if (holdsSystem()) {
            run_.output += message("Virtual Disk Service error:\r\n"
                                   "Clean is not allowed on the disk containing the current boot,\r\n"
                                   "system, pagefile, crashdump or hibernation volume.\r\n");
            return kServiceFailed;
        }
        if (state_.isReadOnly(*selected_)) {
            run_.output += message("DiskPart has encountered an error: The media is write protected.\r\n"
                                   "See the System Event Log for more information.");
            return kServiceFailed;
        }
        if (selected_->faults.clean == CleanFault::kRefused) {
            run_.output += message("Virtual Disk Service error:\r\n"
                                   "The operation is not allowed on the disk: a volume on it is in use.\r\n");
            return kServiceFailed;
        }
        if (selected_->faults.clean != CleanFault::kPretended) {
            // The drive that is out of its place keeps what it holds.
            if (!state_.isSwapped(selected_->number)) {
                cleanDrive(state_, bench_, selected_->number);
            }
            run_.cleanedNow.push_back(selected_->number);
        }
        run_.output += message("DiskPart succeeded in cleaning the disk.");
        return 0;
    }

    const BenchDescription& bench_;
    BenchState& state_;
    DiskpartRun run_;
    const DriveDescription* selected_ = nullptr;
    bool finished_ = false;
};

} // namespace

std::string diskpartBanner(const std::string& computer) {
    return "\r\nMicrosoft DiskPart version 10.0.19041.3636\r\n\r\nCopyright (C) Microsoft Corporation.\r\nOn "
           "computer: " +
           computer + "\r\n";
}

DiskpartRun runDiskpartScript(const BenchDescription& bench, BenchState& state, std::string_view script) {
    return Script(bench, state).run(script);
}

} // namespace torvane::bench
