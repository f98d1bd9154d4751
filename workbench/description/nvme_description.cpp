#include "workbench/description/nvme_description.h"

#include "workbench/description/description_parts.h"

namespace torvane::bench {
namespace {

void readHealth(ObjectReader& reader, NvmeHealthDescription& health) {
    reader.number("criticalWarning", health.criticalWarning);
    reader.number("temperature", health.temperature);
    reader.number("availableSpare", health.availableSpare);
    reader.number("availableSpareThreshold", health.availableSpareThreshold);
    reader.number("percentageUsed", health.percentageUsed);
    reader.number("dataUnitsRead", health.dataUnitsRead);
    reader.number("dataUnitsWritten", health.dataUnitsWritten);
    reader.number("hostReads", health.hostReads);
    reader.number("hostWrites", health.hostWrites);
    reader.number("controllerBusyMinutes", health.controllerBusyMinutes);
    reader.number("powerCycles", health.powerCycles);
    reader.number("powerOnHours", health.powerOnHours);
    reader.number("unsafeShutdowns", health.unsafeShutdowns);
    reader.number("mediaErrors", health.mediaErrors);
    reader.number("errorLogEntries", health.errorLogEntries);
}

} // namespace

void readNvme(ObjectReader& reader, NvmeDescription& nvme) {
    reader.text("model", nvme.model, 40);
    reader.text("serial", nvme.serial, 20);
    reader.text("firmware", nvme.firmware, 8);
    reader.number("namespaceSectors", nvme.namespaceSectors);
    reader.boolean("identifyFails", nvme.identifyFails);
    reader.boolean("healthFails", nvme.healthFails);
    reader.boolean("healthOnlyForAllNamespaces", nvme.healthOnlyForAllNamespaces);
    reader.boolean("bridgeEchoes", nvme.bridgeEchoes);
    reader.object("health", [&](ObjectReader& health) { readHealth(health, nvme.health); });
}

} // namespace torvane::bench
