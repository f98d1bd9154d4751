#pragma once

#include "tests/component/copy_bench.h"

#include <string>
#include <string_view>

namespace torvane::testing {

inline constexpr const char* kHashError = "****** HASH ERROR ******";
inline constexpr const char* kVerify = "****** VERIFY HASH ******";
inline constexpr const char* kVerifyQuestion = "Would you like to Verify the Image HASH?";

/// Forensic images of drive 1.
class Forensic : public testing::CopyBench {
  protected:
    /// A drive of zero bytes, whose digests are well known, or of noise.
    void openDrive(std::size_t bytes, const std::string& faults = "{}", const std::string& pattern = "noise") {
        bench_.addDrive(R"({"number": 1, "bus": "nvme", "backing": {"pattern": ")" + pattern + R"("},
                            "identity": {"product": "Model X", "serial": "S1"}, "size": )" +
                        std::to_string(bytes) + R"(, "faults": )" + faults + "}");
        source_ = &drive(1);
        order_.source = source_;
        restartCounter();
    }
    /// The next image is number 41.
    static void restartCounter() { writeFile("FileCounter.txt", std::string("\x28\0\0\0", 4)); }

    /// Of three full blocks and a remainder: the stop falls between the last full block's own test and the remainder.
    void stopBeforeTheRemainder() {
        display_.onStatus = [&](std::string_view text) {
            if (text.find("%66") != std::string_view::npos) {
                terminate();
                display_.onStatus = {};
            }
        };
    }

    static constexpr const char* kImage = "Model X.41.img";
    static constexpr const char* kHashFile = "MD5-HASH--Model X.41.txt";

    /// The hash file's last line.
    static std::string hashLine() {
        const std::string text = readFile(kHashFile);
        return text.substr(text.rfind('\n') + 1);
    }

    DriveRecord* source_ = nullptr;
};

} // namespace torvane::testing
