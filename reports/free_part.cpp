#include "reports/free_part.h"

#include "health/grading.h"
#include "records/drive_record.h"
#include "records/drive_texts.h"
#include "reports/report_page.h"

#include <string>
#include <string_view>
#include <utility>

namespace torvane {

namespace {

constexpr int kPageHeight = 841; // A4, as the library has it
constexpr int kPageWidth = 595;
constexpr int kValueLeft = 80;
constexpr int kTitleSize = 12;
constexpr int kTextSize = 10;
constexpr int kStep = 14;
constexpr std::size_t kCharactersOfALine = 95; // of 10 points, in the widest texts that there are
constexpr ReportColour kHeaderBlue{0, 0, 0.6F};
constexpr ReportColour kBlack{};

class FreePart {
  public:
    FreePart(ReportPage& page, int top) : page_(page), y_(top) {}

    void write(int left, std::string_view text, int size, ReportColour colour) {
        if (fits()) {
            page_.freeLines.push_back({{std::string(text), y_, size, size, colour}, left});
        }
    }
    void placeIcon(int left, ReportIcon icon) {
        if (fits()) {
            page_.freeIcons.push_back({{icon, kPageWidth - left, y_ + kTextSize + 1}, kTextSize});
        }
    }
    void nextLine() { y_ += kStep; }

    /// A label, and its text in as many lines as that takes.
    void writeRow(const char* label, std::string_view text) {
        if (text.empty()) {
            return;
        }
        write(kReportLeft, label, kTextSize, kBlack);
        while (!text.empty()) {
            write(kValueLeft, takeLine(text), kTextSize, kBlack);
            nextLine();
        }
    }

  private:
    [[nodiscard]] bool fits() const { return y_ + kStep <= kPageHeight; }

    /// Cuts off what one line takes, at a blank where there is one.
    static std::string_view takeLine(std::string_view& text) {
        if (text.size() <= kCharactersOfALine) {
            return std::exchange(text, {});
        }
        const std::size_t blank = text.rfind(' ', kCharactersOfALine);
        const std::size_t end = blank == std::string_view::npos || blank == 0 ? kCharactersOfALine : blank;
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(end == blank ? end + 1 : end);
        return line;
    }

    ReportPage& page_;
    int y_;
};

void append(std::string& list, const std::string& item) {
    if (!item.empty()) {
        list += (list.empty() ? "" : ", ") + item;
    }
}

std::string driveInWords(const ReportFacts& facts) {
    const DriveRecord& drive = facts.drive;
    std::string words = facts.interfaceName;
    if (drive.sizeBytes > 0) {
        append(words, sizeGigabytesText(drive) + " GB (" + thousandsText(static_cast<std::uint64_t>(drive.sizeBytes)) +
                          " bytes)");
    }
    if (!drive.firmware.view().empty()) {
        append(words, "firmware " + std::string(drive.firmware.view()));
    }
    return words;
}

void writeKey(FreePart& part) {
    constexpr int kEntryWidth = 90;
    constexpr int kTextLeft = 15;
    constexpr std::pair<ReportIcon, const char*> kKey[] = {{ReportIcon::kGreen, "healthy"},
                                                           {ReportIcon::kBlue, "ageing"},
                                                           {ReportIcon::kYellow, "wearing out"},
                                                           {ReportIcon::kRed, "failing"}};
    part.write(kReportLeft, "Icons:", kTextSize, kBlack);
    int left = kValueLeft;
    for (const auto& [icon, word] : kKey) {
        part.placeIcon(left, icon);
        part.write(left + kTextLeft, word, kTextSize, kBlack);
        left += kEntryWidth;
    }
}

} // namespace

void addFreePart(ReportPage& page, const ReportFacts& facts, int top) {
    const std::string drive = driveInWords(facts);
    const bool hasIcons = !page.icons.empty();
    if (drive.empty() && facts.verdict.empty() && facts.wear.empty() && !hasIcons) {
        return;
    }
    FreePart part(page, top);
    part.write(kReportLeft, "About This Drive", kTitleSize, kHeaderBlue);
    part.nextLine();
    part.writeRow("Drive:", drive);
    part.writeRow("Verdict:", facts.verdict);
    part.writeRow("Wear:", facts.wear);
    if (hasIcons) {
        writeKey(part);
    }
}

} // namespace torvane
