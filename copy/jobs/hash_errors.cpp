#include "copy/jobs/hash_errors.h"

namespace torvane {

void showHashError(const CopyJob& job, const char* text) {
    job.system.stop("****** HASH ERROR ******", text);
}

std::unique_ptr<BlockHasher> makeHasherOrTell(const CopyJob& job) {
    HasherFailure failure = HasherFailure::kNone;
    std::unique_ptr<BlockHasher> hasher = job.system.makeHasher(failure);
    if (!hasher) {
        showHashError(job, failure == HasherFailure::kNoProvider
                               ? "Could not get HANDLE to CRYPTO provider. Exiting"
                               : "Could not get MD5 HASH for Crypto Provider. Exiting");
    }
    return hasher;
}

} // namespace torvane
