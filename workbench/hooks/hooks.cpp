#include "workbench/hooks/hooks.h"

#include "workbench/hooks/hook_functions.h"

#include <mutex>
#include <shared_mutex>
#include <utility>
#include <vector>

namespace torvane::bench {
namespace {

std::shared_mutex sessionMutex;
std::shared_ptr<BenchSession> session;

std::vector<Replacement> allReplacements() {
    std::vector<Replacement> all;
    for (const auto part : {fileReplacements(), pathReplacements(), volumeReplacements(), volumeSearchReplacements(),
                            processReplacements(), objectReplacements(), lookReplacements()}) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

} // namespace

ImportPatch& importPatch() {
    static const std::vector<Replacement> replacements = allReplacements();
    static ImportPatch patch(replacements);
    return patch;
}

std::shared_ptr<BenchSession> currentSession() {
    const std::shared_lock lock(sessionMutex);
    return session;
}

void installHooks(std::shared_ptr<BenchSession> opened) {
    {
        const std::unique_lock lock(sessionMutex);
        session = std::move(opened);
    }
    importPatch().apply();
}

void removeHooks() {
    importPatch().restore();
    const std::unique_lock lock(sessionMutex);
    session.reset();
}

} // namespace torvane::bench
