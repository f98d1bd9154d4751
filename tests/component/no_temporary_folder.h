#pragma once

#include <windows.h>

#include <array>
#include <string>
#include <utility>

namespace torvane::testing {

/// The system's folder for temporary files is none for a scope: no tool can run ahead of its turn.
class NoTemporaryFolder {
  public:
    NoTemporaryFolder() {
        for (auto& [name, value] : variables_) {
            std::array<char, MAX_PATH> text{};
            GetEnvironmentVariableA(name, text.data(), static_cast<DWORD>(text.size()));
            value = text.data();
            SetEnvironmentVariableA(name, "C:\\no such folder");
        }
    }
    ~NoTemporaryFolder() {
        for (const auto& [name, value] : variables_) {
            SetEnvironmentVariableA(name, value.c_str());
        }
    }
    NoTemporaryFolder(const NoTemporaryFolder&) = delete;
    NoTemporaryFolder& operator=(const NoTemporaryFolder&) = delete;

  private:
    std::array<std::pair<const char*, std::string>, 2> variables_{{{"TMP", ""}, {"TEMP", ""}}};
};

} // namespace torvane::testing
