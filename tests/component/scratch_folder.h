#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace torvane::testing {

/// A new empty folder that is the current one for a scope; it and all in it are deleted at the end.
class ScratchFolder {
  public:
    ScratchFolder() : previous_(std::filesystem::current_path()) {
        static int number = 0;
        // A run that was ended from outside may have left one of this name: process ids come again.
        do {
            path_ = std::filesystem::temp_directory_path() /
                    ("torvane-test-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++number));
        } while (!std::filesystem::create_directory(path_));
        std::filesystem::current_path(path_);
    }
    ~ScratchFolder() {
        std::filesystem::current_path(previous_);
        std::error_code error;
        // A child's console may hold the child's output for a moment longer than the child. Looked at before each try:
        // the library's own removal does not come to an end in a folder that loses a file meanwhile.
        for (int patience = 3000; !isEmptied(path_, error) && patience > 0; --patience) {
            Sleep(10);
        }
        RemoveDirectoryW(path_.c_str());
        EXPECT_FALSE(error) << "still open: something in " << path_ << " (" << error.message() << ")";
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

  private:
    /// Removes what is in the folder; false, with the reason in `error`, while something stays.
    static bool isEmptied(const std::filesystem::path& folder, std::error_code& error) {
        for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
            if (entry.is_directory(error)) {
                std::filesystem::remove_all(entry.path(), error);
            } else if (DeleteFileW(entry.path().c_str()) == FALSE && GetLastError() != ERROR_FILE_NOT_FOUND) {
                error.assign(static_cast<int>(GetLastError()), std::system_category());
                return false;
            }
        }
        return !error && std::filesystem::is_empty(folder, error);
    }

    std::filesystem::path previous_;
    std::filesystem::path path_;
};

/// The file's bytes; empty when it does not exist.
[[nodiscard]] inline std::string readFile(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void writeFile(const std::string& name, std::string_view bytes) {
    std::ofstream file(name, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    ASSERT_TRUE(file.good()) << name;
}

} // namespace torvane::testing
