#include "settings/message_file.h"
#include "tests/fuzz/fuzz_input.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

// The message file as it is read from the disk, which must give what its bytes give.

using namespace torvane;
using fuzz::require;

namespace {

/// A file in memory alone, which has a name all the same.
class MemoryFile {
  public:
    explicit MemoryFile(const std::vector<std::uint8_t>& bytes) : descriptor_(memfd_create("message-file", 0)) {
        require(descriptor_ >= 0, "a file can be made");
        const ssize_t written = write(descriptor_, bytes.data(), bytes.size());
        require(written == static_cast<ssize_t>(bytes.size()), "the file can be written");
    }
    ~MemoryFile() { close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    [[nodiscard]] std::string name() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

  private:
    int descriptor_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    // A record is 4168 bytes: a short input stands for a long file of the same bytes over and over.
    const std::size_t length = size == 0 ? 0 : (size % 5) * kMessageRecordBytes + size % 7;
    std::vector<std::uint8_t> content(length);
    for (std::size_t i = 0; i < length; ++i) {
        content[i] = bytes[i % size];
    }
    const MemoryFile file(content);
    const auto read = readMessageFile(file.name().c_str());
    require(read.has_value(), "a file that is there is read");
    const MessageTable parsed = parseMessageTable(content);
    require(std::equal(read->begin(), read->end(), parsed.begin(), parsed.end(),
                       [](const MessageRecord& left, const MessageRecord& right) {
                           return left.messageId == right.messageId && left.level == right.level &&
                                  left.text == right.text;
                       }),
            "the file's records are those of its bytes");
    return 0;
}
