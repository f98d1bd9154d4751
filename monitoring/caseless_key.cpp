#include "monitoring/caseless_key.h"

#include "base/ascii.h"

#include <algorithm>

namespace torvane {
namespace {

constexpr std::size_t indexOf(char byte) {
    return static_cast<unsigned char>(byte);
}

} // namespace

CaselessKey::CaselessKey(std::string_view key) : upperKey_(key) {
    std::ranges::transform(upperKey_, upperKey_.begin(), upperAscii<char>);
    skip_.fill(std::max<std::size_t>(upperKey_.size(), 1));
    for (std::size_t i = 0; i + 1 < upperKey_.size(); ++i) {
        const std::size_t toLast = upperKey_.size() - 1 - i;
        skip_[indexOf(upperKey_[i])] = toLast;
        skip_[indexOf(lowerAscii(upperKey_[i]))] = toLast;
    }
}

bool CaselessKey::isWithin(std::string_view line) const {
    const std::size_t length = upperKey_.size();
    if (line.size() <= length) {
        return false;
    }
    if (length == 0) {
        return true;
    }
    for (std::size_t start = 0; start < line.size() - length; start += skip_[indexOf(line[start + length - 1])]) {
        if (matches(line.data() + start)) {
            return true;
        }
    }
    return false;
}

bool CaselessKey::matches(const char* at) const {
    return std::equal(upperKey_.begin(), upperKey_.end(), at,
                      [](char keyByte, char lineByte) { return keyByte == upperAscii(lineByte); });
}

} // namespace torvane
