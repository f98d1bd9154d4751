#include "discovery/handle_lease.h"

#include <map>
#include <mutex>

namespace torvane {

namespace {

struct Leases {
    int count = 0;
    void (*close)(NativeHandle) = nullptr; ///< null: its record still owns the handle
};

struct LeaseTable {
    std::mutex mutex;
    std::map<NativeHandle, Leases> leases;
};

/// Never destroyed: a thread that nobody waits for may end later than everything else.
LeaseTable& table() {
    static LeaseTable& all = *new LeaseTable;
    return all;
}

} // namespace

HandleLease::HandleLease(NativeHandle handle) : handle_(handle) {
    if (handle_ != nullptr) {
        const std::scoped_lock lock(table().mutex);
        ++table().leases[handle_].count;
    }
}

HandleLease::~HandleLease() {
    if (handle_ == nullptr) {
        return;
    }
    void (*close)(NativeHandle) = nullptr;
    {
        const std::scoped_lock lock(table().mutex);
        const auto entry = table().leases.find(handle_);
        if (--entry->second.count == 0) {
            close = entry->second.close;
            table().leases.erase(entry);
        }
    }
    if (close != nullptr) {
        close(handle_);
    }
}

void closeWhenFree(NativeHandle handle, void (*close)(NativeHandle)) {
    {
        const std::scoped_lock lock(table().mutex);
        if (const auto entry = table().leases.find(handle); entry != table().leases.end()) {
            entry->second.close = close;
            return;
        }
    }
    close(handle);
}

} // namespace torvane
