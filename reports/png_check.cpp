#include "reports/png_check.h"

#include "base/checksum.h"

#include <algorithm>
#include <array>

namespace torvane {

namespace {

constexpr std::array<std::uint8_t, 8> kSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::array<std::uint8_t, 4> kHeaderChunk = {'I', 'H', 'D', 'R'};
constexpr std::array<std::uint8_t, 4> kEndChunk = {'I', 'E', 'N', 'D'};

// A chunk: length of the data, type, data, checksum of type and data. Numbers are big-endian.
constexpr std::size_t kLengthBytes = 4;
constexpr std::size_t kTypeBytes = 4;
constexpr std::size_t kChecksumBytes = 4;

std::uint32_t bigEndian32(ByteView bytes) {
    std::uint32_t value = 0;
    for (const std::uint8_t byte : bytes.first(4)) {
        value = value << 8 | byte;
    }
    return value;
}

bool startsWith(ByteView bytes, ByteView start) {
    return bytes.size() >= start.size() && std::equal(start.begin(), start.end(), bytes.begin());
}

/// The first chunk of `bytes`, length and checksum included; empty when it is not whole.
ByteView firstChunk(ByteView bytes) {
    constexpr std::size_t kFrame = kLengthBytes + kTypeBytes + kChecksumBytes;
    if (bytes.size() < kFrame) {
        return {};
    }
    const std::uint32_t length = bigEndian32(bytes);
    if (length > bytes.size() - kFrame) {
        return {};
    }
    const ByteView covered = bytes.subspan(kLengthBytes, kTypeBytes + length);
    if (crc32(covered) != bigEndian32(bytes.subspan(kLengthBytes + covered.size()))) {
        return {};
    }
    return bytes.first(kFrame + length);
}

} // namespace

bool isWholePng(ByteView file) {
    if (!startsWith(file, kSignature)) {
        return false;
    }
    ByteView rest = file.subspan(kSignature.size());
    for (bool first = true;; first = false) {
        const ByteView chunk = firstChunk(rest);
        if (chunk.empty()) {
            return false;
        }
        const ByteView type = chunk.subspan(kLengthBytes);
        if (first && !startsWith(type, kHeaderChunk)) {
            return false;
        }
        if (startsWith(type, kEndChunk)) {
            return true;
        }
        rest = rest.subspan(chunk.size());
    }
}

} // namespace torvane
