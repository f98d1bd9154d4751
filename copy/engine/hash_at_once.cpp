#include "copy/engine/hash_at_once.h"

#include "base/helper_thread.h"

#include <thread>

namespace torvane {

AddedAtOnce addAtOnce(BlockHasher* first, BlockHasher* second, std::span<const std::byte> bytes) {
    AddedAtOnce added;
    const auto addToSecond = [&] { added.second = second->add(bytes); };
    std::thread beside = first != nullptr && second != nullptr ? startHelperThread(addToSecond) : std::thread();
    if (first != nullptr) {
        added.first = first->add(bytes);
    }
    if (beside.joinable()) {
        beside.join();
    } else if (second != nullptr) {
        addToSecond();
    }
    return added;
}

} // namespace torvane
