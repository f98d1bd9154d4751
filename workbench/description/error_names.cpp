#include "workbench/description/error_names.h"

#include <array>

namespace torvane::bench {
namespace {

struct NamedError {
    std::uint32_t number;
    std::string_view name;
};

constexpr std::array kErrors = {
    NamedError{1, "ERROR_INVALID_FUNCTION"},
    NamedError{2, "ERROR_FILE_NOT_FOUND"},
    NamedError{3, "ERROR_PATH_NOT_FOUND"},
    NamedError{5, "ERROR_ACCESS_DENIED"},
    NamedError{6, "ERROR_INVALID_HANDLE"},
    NamedError{8, "ERROR_NOT_ENOUGH_MEMORY"},
    NamedError{19, "ERROR_WRITE_PROTECT"},
    NamedError{20, "ERROR_BAD_UNIT"},
    NamedError{21, "ERROR_NOT_READY"},
    NamedError{22, "ERROR_BAD_COMMAND"},
    NamedError{23, "ERROR_CRC"},
    NamedError{24, "ERROR_BAD_LENGTH"},
    NamedError{25, "ERROR_SEEK"},
    NamedError{26, "ERROR_NOT_DOS_DISK"},
    NamedError{27, "ERROR_SECTOR_NOT_FOUND"},
    NamedError{29, "ERROR_WRITE_FAULT"},
    NamedError{30, "ERROR_READ_FAULT"},
    NamedError{31, "ERROR_GEN_FAILURE"},
    NamedError{32, "ERROR_SHARING_VIOLATION"},
    NamedError{38, "ERROR_HANDLE_EOF"},
    NamedError{39, "ERROR_HANDLE_DISK_FULL"},
    NamedError{50, "ERROR_NOT_SUPPORTED"},
    NamedError{55, "ERROR_DEV_NOT_EXIST"},
    NamedError{87, "ERROR_INVALID_PARAMETER"},
    NamedError{112, "ERROR_DISK_FULL"},
    NamedError{121, "ERROR_SEM_TIMEOUT"},
    NamedError{122, "ERROR_INSUFFICIENT_BUFFER"},
    NamedError{130, "ERROR_DIRECT_ACCESS_HANDLE"},
    NamedError{131, "ERROR_NEGATIVE_SEEK"},
    NamedError{170, "ERROR_BUSY"},
    NamedError{193, "ERROR_BAD_EXE_FORMAT"},
    NamedError{234, "ERROR_MORE_DATA"},
    NamedError{433, "ERROR_NO_SUCH_DEVICE"},
    NamedError{483, "ERROR_DEVICE_HARDWARE_ERROR"},
    NamedError{995, "ERROR_OPERATION_ABORTED"},
    NamedError{1106, "ERROR_INVALID_BLOCK_LENGTH"},
    NamedError{1110, "ERROR_MEDIA_CHANGED"},
    NamedError{1112, "ERROR_NO_MEDIA_IN_DRIVE"},
    NamedError{1117, "ERROR_IO_DEVICE"},
    NamedError{1167, "ERROR_DEVICE_NOT_CONNECTED"},
    NamedError{1306, "ERROR_REVISION_MISMATCH"},
};

} // namespace

std::optional<std::uint32_t> errorNumber(std::string_view name) {
    for (const NamedError& error : kErrors) {
        if (error.name == name) {
            return error.number;
        }
    }
    return std::nullopt;
}

std::string errorName(std::uint32_t number) {
    for (const NamedError& error : kErrors) {
        if (error.number == number) {
            return std::string(error.name);
        }
    }
    return std::to_string(number);
}

} // namespace torvane::bench
