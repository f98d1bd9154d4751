#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace torvane {

struct NvmeHealth;

/// How an NVMe drive's own numbers add up (NVMe Base Specification, SMART / Health Information log): 0 sound, 1 early
/// wear, 2 wearing out, 3 failing. Failing: spare below its threshold, reliability degraded, read-only. Wearing out:
/// any other warning but heat, spare at its threshold, errors that lost data, rated life used up. Early wear: too hot
/// or too cold, over 80 percent of the rated life used. None when nothing of the log was read.
[[nodiscard]] std::optional<std::uint32_t> nvmeLevel(const NvmeHealth& health);

/// "Life used 7 %, spare 100 % (limit 10 %), 5,127 h, 0 media errors". What was not read is left out; empty when
/// nothing was.
[[nodiscard]] std::string nvmeLifeText(const NvmeHealth& health);

} // namespace torvane
