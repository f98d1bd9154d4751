#include "base/machine_claim.h"

#include "base/owned_handle.h"

#include <windows.h>

#include <map>
#include <mutex>
#include <utility>

namespace torvane {

namespace {

struct Held {
    UniqueHandle object; ///< empty where the system gave none
    int claims = 0;
};

/// What this program has, by name.
struct Own {
    std::mutex mutex;
    std::map<std::wstring, Held> held;
};

/// Never destroyed: a worker may give back what it has while the program ends.
Own& own() {
    static Own& all = *new Own;
    return all;
}

/// False when another program has it. `object` stays empty where the system gives none.
bool make(const std::wstring& name, UniqueHandle& object) {
    UniqueHandle made{CreateMutexW(nullptr, FALSE, (L"Global\\" + name).c_str())};
    const DWORD error = GetLastError();
    if (made ? error == ERROR_ALREADY_EXISTS : error == ERROR_ACCESS_DENIED) {
        return false;
    }
    object = std::move(made);
    return true;
}

constexpr DWORD kPauseMilliseconds = 20;

/// What whoever waits for the name has: an object beside it.
std::wstring nameOfWaiters(const std::wstring& name) {
    return name + L".Awaited";
}

bool isAwaited(const std::wstring& name) {
    UniqueHandle notOurs;
    return !make(nameOfWaiters(name), notOurs);
}

} // namespace

MachineClaim::MachineClaim(MachineClaim&& other) noexcept
    : name_(std::move(other.name_)), held_(std::exchange(other.held_, false)) {}

MachineClaim& MachineClaim::operator=(MachineClaim&& other) noexcept {
    if (this != &other) {
        giveBack();
        name_ = std::move(other.name_);
        held_ = std::exchange(other.held_, false);
    }
    return *this;
}

MachineClaim::~MachineClaim() {
    giveBack();
}

bool MachineClaim::claim() {
    if (held_) {
        return true;
    }
    const std::scoped_lock lock(own().mutex);
    Held& held = own().held[name_];
    if (held.claims == 0 && !make(name_, held.object)) {
        own().held.erase(name_);
        return false;
    }
    ++held.claims;
    held_ = true;
    return true;
}

bool MachineClaim::await(std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    if (isAwaited(name_)) {
        Sleep(2 * kPauseMilliseconds); // two looks of whoever waits already
    }
    UniqueHandle waiting;
    while (!claim()) {
        if (std::chrono::steady_clock::now() >= end) {
            return false;
        }
        if (!waiting) {
            make(nameOfWaiters(name_), waiting); // or somebody else waits, and is seen
        }
        Sleep(kPauseMilliseconds);
    }
    return true;
}

void MachineClaim::giveBack() {
    if (!std::exchange(held_, false)) {
        return;
    }
    const std::scoped_lock lock(own().mutex);
    const auto found = own().held.find(name_);
    if (--found->second.claims == 0) {
        own().held.erase(found);
    }
}

} // namespace torvane
