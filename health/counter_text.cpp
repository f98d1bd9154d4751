#include "health/counter_text.h"

#include "base/format.h"
#include "health/counter_levels.h"
#include "health/grading.h"

namespace torvane {

std::string counterText(Counter counter, std::int32_t value) {
    if (value == kNotReported) {
        return "not reported";
    }
    // A raw value that fills its 32 bits reads as a negative number, as the needle takes it.
    std::string number = value < 0 ? std::to_string(value) : thousandsText(static_cast<std::uint64_t>(value));
    if (counter != Counter::kPowerOnHours) {
        return number;
    }
    return number + formatText(" h, %.1f y", static_cast<double>(value) / kHoursPerYear);
}

} // namespace torvane
