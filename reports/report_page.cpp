#include "reports/report_page.h"

#include "base/format.h"
#include "records/company_info.h"
#include "records/drive_record.h"
#include "reports/free_part.h"
#include "reports/report_sections.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

namespace torvane {

namespace {

constexpr ReportColour kBlack{};
constexpr ReportColour kHeaderBlue{0, 0, 0.6F};

constexpr int kIconFromRight = 60;
constexpr int kFirstIconFromTop = 246;
constexpr int kIconStep = 56; // a section's height

/// Writes lines from top to bottom.
class PageComposer {
  public:
    void setFont(int size, ReportColour colour) {
        fontSize_ = size;
        colour_ = colour;
    }
    void setLayoutSize(int size) { layoutSize_ = size; }

    void moveDown(int points) { yFromTop_ += points; }
    void write(std::string text) {
        page_.lines.push_back({std::move(text), yFromTop_, layoutSize_, fontSize_, colour_});
    }
    /// Slots count from 0, one for each section.
    void placeIcon(std::size_t slot, ReportIcon icon) {
        page_.icons.push_back({icon, kIconFromRight, kFirstIconFromTop + static_cast<int>(slot) * kIconStep});
    }

    /// The page, with what stands in its free part.
    [[nodiscard]] ReportPage finish(const ReportFacts& facts) && {
        constexpr int kFreePartBelow = 14;
        addFreePart(page_, facts, yFromTop_ + kFreePartBelow);
        return std::move(page_);
    }

  private:
    ReportPage page_;
    int yFromTop_ = 10;
    int layoutSize_ = 18;
    int fontSize_ = 18;
    ReportColour colour_;
};

std::string textLine(const char* label, std::string_view text) {
    std::string line(label);
    line += text;
    return line;
}

void writeHeader(PageComposer& composer, const ReportFacts& facts) {
    composer.setFont(18, kHeaderBlue);
    composer.write("Hard Drive Test Results");
    composer.moveDown(20);
    composer.write(formatText("Date: %02d/%02d/%04d", facts.date.month, facts.date.day, facts.date.year));
    composer.moveDown(20);
    composer.write(textLine("Model: ", facts.drive.model.view()));
    composer.moveDown(20);
    composer.write(textLine("Serial Num: ", facts.drive.serialNumber.view()));
    composer.moveDown(40);
    composer.write(std::string(facts.company.companyName.view()));
    composer.moveDown(20);
    composer.write(std::string(facts.company.companyAddress.view()));
    composer.moveDown(20);
    composer.write(std::string(facts.company.companyPhone.view()));
    composer.setFont(12, kBlack);
    composer.moveDown(50);
}

void writeSection(PageComposer& composer, const ReportSection& section) {
    composer.write(section.title);
    composer.moveDown(16);
    composer.write(section.explanation);
    composer.moveDown(16);
    // A value that is not reported leaves its second line empty.
    if (!section.recommendation.empty()) {
        composer.write(section.recommendation);
    }
}

void writeSections(PageComposer& composer, const ReportSections& sections) {
    for (std::size_t i = 0; i < sections.size(); ++i) {
        if (i > 0) {
            composer.moveDown(24);
        }
        writeSection(composer, sections[i]);
        if (sections[i].icon) {
            composer.placeIcon(i, *sections[i].icon);
        }
    }
}

struct PrintedReadTest {
    const char* name;
    const SharedNumber<ReadTestResult>& result;
    const SharedNumber<std::int32_t>& runs; ///< that are not over
};

// Asked for runs before and after: a test that begins or ends in between never reads as passed.
std::string readTestLine(const PrintedReadTest& test) {
    const bool running = test.runs > 0;
    std::string line;
    FormatTestResult(line, test.name, test.result);
    return running || test.runs > 0 ? textLine(test.name, " running") : line;
}

void writeReadTests(PageComposer& composer, const DriveRecord& drive) {
    composer.setFont(16, kBlack);
    composer.moveDown(30);
    composer.write("Read Test Results if Applicable");
    composer.setFont(12, kBlack);
    composer.moveDown(20);
    const PrintedReadTest kTests[] = {{"Critical Test", drive.criticalTestResult, drive.readTestsAtWork.criticalTests},
                                      {"Short Test", drive.shortTestResult, drive.readTestsAtWork.shortTests},
                                      {"NIST Test", drive.nistTestResult, drive.readTestsAtWork.nistTests}};
    for (const PrintedReadTest& test : kTests) {
        composer.write(readTestLine(test));
        composer.moveDown(20);
    }
}

std::string bitLockerLine(const BitLockerVolumeEntry& entry, const BitLockerNote& note) {
    std::string line = "BITLOCKER VOL: ";
    // The entry of a volume that is not encrypted holds zeros; what was noted of it has its letter.
    if (entry.driveLetter == '\0') {
        return note.driveLetter == '\0' ? line
                                        : line + note.driveLetter + (note.isTold ? ": not encrypted" : ": not known");
    }
    line += entry.driveLetter;
    return line + (entry.hasKey == 1 ? textLine(": Recovery Key: ", entry.recoveryPassword.view()) : ": LOCKED");
}

void writeBitLocker(PageComposer& composer, const DriveRecord& drive) {
    composer.moveDown(30);
    composer.setFont(10, kBlack);
    composer.setLayoutSize(10);
    const auto count = static_cast<std::size_t>(std::max(drive.bitLockerEntryCount, 0));
    for (std::size_t i = 0; i < std::min(count, drive.bitLockerEntries.size()); ++i) {
        composer.write(bitLockerLine(drive.bitLockerEntries[i], drive.bitLockerNotes[i]));
        composer.moveDown(20);
    }
}

ReportPage composeWithSections(const ReportFacts& facts, const ReportSections& sections) {
    PageComposer composer;
    writeHeader(composer, facts);
    writeSections(composer, sections);
    writeReadTests(composer, facts.drive);
    writeBitLocker(composer, facts.drive);
    return std::move(composer).finish(facts);
}

} // namespace

ReportPage composeAtaReport(const ReportFacts& facts) {
    return composeWithSections(facts, ataSections(facts.drive));
}

ReportPage composeSsdReport(const ReportFacts& facts) {
    PageComposer composer;
    writeHeader(composer, facts);
    writeReadTests(composer, facts.drive);
    return std::move(composer).finish(facts);
}

ReportPage composeNvmeReport(const ReportFacts& facts) {
    return composeWithSections(facts, nvmeSections(facts.drive));
}

ReportPage composeNoDataReport(const ReportFacts& facts) {
    PageComposer composer;
    writeHeader(composer, facts);
    composer.setFont(12, kBlack);
    composer.moveDown(50);
    composer.write("Interface does not have Monitoring data.");
    composer.moveDown(20);
    return std::move(composer).finish(facts);
}

} // namespace torvane
