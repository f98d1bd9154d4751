#include "copy/jobs/image_number.h"

#include "base/stdio_file.h"
#include "copy/jobs/image_names.h"

#include <cstdlib>
#include <ctime>
#include <limits>

namespace torvane {

namespace {

constexpr const char* kCounterFileName = "FileCounter.txt";

std::int32_t randomNumber() {
    std::srand(static_cast<unsigned>(std::time(nullptr)));
    return std::rand(); // NOLINT(misc-predictable-rand): the number only has to differ between working folders
}

std::int32_t plusOne(std::int32_t number) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(number) + 1);
}

std::int32_t nonNegative(std::int32_t number) {
    // The smallest number has no positive counterpart.
    return number == std::numeric_limits<std::int32_t>::min() ? std::numeric_limits<std::int32_t>::max()
                                                              : std::abs(number);
}

void storeNumber(std::FILE* file, std::int32_t number) {
    // Unchecked: an image gets its number even where the counter cannot be kept.
    static_cast<void>(std::fwrite(&number, sizeof number, 1, file));
}

std::int32_t nextNumber() {
    std::int32_t number = randomNumber();
    if (const StdioFile counter = openStdioFile(kCounterFileName, "rb+")) {
        std::int32_t stored = 0;
        // A counter that cannot be read whole is left as it is.
        if (std::fread(&stored, sizeof stored, 1, counter.get()) == 1) {
            number = plusOne(stored);
            std::rewind(counter.get());
            storeNumber(counter.get(), number);
        }
        return number;
    }
    if (const StdioFile counter = openStdioFile(kCounterFileName, "wb+")) {
        storeNumber(counter.get(), number);
    }
    return number;
}

} // namespace

ImageFileName MakeImageFileName(std::string_view folder, const DriveRecord& source) {
    const std::int32_t number = nonNegative(nextNumber());
    return {imageFileName(folder, source.model.view(), number), number};
}

} // namespace torvane
