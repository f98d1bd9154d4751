#include "workbench/description/ata_description.h"

#include "workbench/description/description_parts.h"

#include <array>

namespace torvane::bench {
namespace {

constexpr std::uint64_t kLargest48 = 0xFFFFFFFFFFFFULL;

void readRotationRate(ObjectReader& reader, std::uint16_t& rate) {
    // ATA/ATAPI Command Set, word 217: 0 not reported, 1 non-rotating, 0401h to FFFEh revolutions per minute.
    const Json* value = reader.raw("rotationRate");
    if (value == nullptr) {
        return;
    }
    if (value->is_string() && value->get<std::string>() == "ssd") {
        rate = 1;
        return;
    }
    const std::uint64_t number = value->is_number_unsigned() ? value->get<std::uint64_t>() : 1;
    if (number != 0 && (number < 0x401 || number > 0xFFFE)) {
        reader.fail("rotationRate", "expected \"ssd\", 0 or 1025 to 65534, got " + shown(*value));
        return;
    }
    rate = static_cast<std::uint16_t>(number);
}

void readFormFactor(ObjectReader& reader, FormFactor& formFactor) {
    static constexpr std::array<std::string_view, 4> kNames = {"3.5", "2.5", "1.8", "m.2"};
    static constexpr std::array kValues = {FormFactor::kInch35, FormFactor::kInch25, FormFactor::kInch18,
                                           FormFactor::kM2};
    if (reader.has("formFactor")) {
        std::size_t index = 0;
        reader.choice("formFactor", kNames, index);
        formFactor = kValues[index];
    }
}

void readSecurity(ObjectReader& reader, AtaSecurity& security) {
    static constexpr std::array<std::string_view, 5> kNames = {"unsupported", "disabled", "enabled", "locked",
                                                               "frozen"};
    auto index = static_cast<std::size_t>(security);
    reader.choice("security", kNames, index);
    security = static_cast<AtaSecurity>(index);
}

void readWwn(ObjectReader& reader, std::uint64_t& wwn) {
    std::string digits;
    reader.text("wwn", digits);
    if (digits.empty()) {
        return;
    }
    if (digits.size() != 16 || digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) {
        reader.fail("wwn", "expected 16 hexadecimal digits");
        return;
    }
    wwn = std::stoull(digits, nullptr, 16);
}

void readRaw(ObjectReader& reader, std::array<std::uint8_t, 6>& raw) {
    const Json* value = reader.raw("raw");
    if (value == nullptr) {
        return;
    }
    if (value->is_number_unsigned() && value->get<std::uint64_t>() <= kLargest48) {
        for (std::size_t i = 0; i < raw.size(); ++i) {
            raw[i] = static_cast<std::uint8_t>(value->get<std::uint64_t>() >> (8 * i));
        }
        return;
    }
    bool good = value->is_array() && value->size() == raw.size();
    for (std::size_t i = 0; good && i < raw.size(); ++i) {
        const Json& byte = (*value)[i];
        good = byte.is_number_unsigned() && byte.get<std::uint64_t>() <= 255;
        raw[i] = good ? byte.get<std::uint8_t>() : std::uint8_t{0};
    }
    if (!good) {
        reader.fail("raw", "expected a number below 2^48 or a list of six bytes, got " + shown(*value));
    }
}

SmartAttribute readAttribute(ObjectReader& reader) {
    SmartAttribute attribute;
    reader.require("id");
    reader.number("id", attribute.id, 1);
    reader.number("flags", attribute.flags);
    reader.number("value", attribute.value);
    reader.number("worst", attribute.worst);
    reader.number("threshold", attribute.threshold);
    readRaw(reader, attribute.raw);
    return attribute;
}

AtaErrorEntry readError(ObjectReader& reader) {
    AtaErrorEntry entry;
    reader.require("lba");
    reader.number("lba", entry.lba, 0, kLargest48);
    reader.number("hours", entry.hours);
    reader.number("status", entry.status);
    reader.number("error", entry.error);
    reader.number("command", entry.command);
    reader.number("sectors", entry.sectors);
    return entry;
}

AtaSelfTestEntry readSelfTest(ObjectReader& reader) {
    AtaSelfTestEntry entry;
    reader.number("test", entry.test);
    reader.number("status", entry.status);
    reader.number("hours", entry.hours);
    reader.number("lba", entry.lba, 0, kLargest48);
    return entry;
}

void readSmart(ObjectReader& reader, SmartDescription& smart) {
    static constexpr std::array<std::string_view, 2> kHealth = {"passed", "failed"};
    reader.boolean("supported", smart.supported);
    reader.boolean("enabled", smart.enabled);
    reader.boolean("readDataFails", smart.readDataFails);
    reader.boolean("logs", smart.logs);
    reader.number("selfTestStatus", smart.selfTestStatus);
    std::size_t health = smart.healthPassed ? 0 : 1;
    reader.choice("health", kHealth, health);
    smart.healthPassed = health == 0;
    reader.list("attributes", [&](ObjectReader& item) { smart.attributes.push_back(readAttribute(item)); });
    reader.list("errorLog", [&](ObjectReader& item) { smart.errorLog.push_back(readError(item)); });
    reader.list("selfTestLog", [&](ObjectReader& item) { smart.selfTestLog.push_back(readSelfTest(item)); });
    // SMART READ DATA has room for 30 attributes.
    if (smart.attributes.size() > 30) {
        reader.fail("attributes", "expected at most 30, got " + std::to_string(smart.attributes.size()));
    }
}

} // namespace

void readAta(ObjectReader& reader, AtaDescription& ata) {
    reader.text("model", ata.model, 40);
    reader.text("serial", ata.serial, 20);
    reader.text("firmware", ata.firmware, 8);
    readRotationRate(reader, ata.rotationRate);
    readFormFactor(reader, ata.formFactor);
    readWwn(reader, ata.wwn);
    readSecurity(reader, ata.security);
    reader.boolean("identifyFails", ata.identifyFails);
    reader.number("garbage", ata.garbage);
    reader.object("smart", [&](ObjectReader& smart) { readSmart(smart, ata.smart); });
}

} // namespace torvane::bench
