#pragma once

#include "base/owned_handle.h"

namespace torvane {

/// Starts a thread with default attributes. Null when the system has no room for it. Letting the handle go does not end
/// the thread.
inline UniqueHandle startThread(LPTHREAD_START_ROUTINE procedure, void* argument) {
    return UniqueHandle(CreateThread(nullptr, 0, procedure, argument, 0, nullptr));
}

} // namespace torvane
