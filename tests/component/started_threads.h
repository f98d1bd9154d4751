#pragma once

#include "base/owned_handle.h"
#include "tests/component/import_patched.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <mutex>
#include <vector>

// The import slot of the function that is replaced. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&CreateThread) __imp_CreateThread;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane::testing {

/// Keeps the threads that the program starts in a scope, which ends when they have ended. One at a time.
class StartedThreads {
  public:
    StartedThreads() {
        started().handles.clear();
        started().original = patched_.original();
    }
    ~StartedThreads() { awaitAll(); }
    StartedThreads(const StartedThreads&) = delete;
    StartedThreads& operator=(const StartedThreads&) = delete;

    [[nodiscard]] static bool any() {
        const std::lock_guard lock(started().mutex);
        return !started().handles.empty();
    }
    /// The handle of the thread that was started last; the caller's too.
    [[nodiscard]] static UniqueHandle last() {
        const std::lock_guard lock(started().mutex);
        return started().handles.empty() ? UniqueHandle() : copyOf(started().handles.back().get());
    }
    /// True when the thread that was started last has ended.
    [[nodiscard]] static bool lastHasEnded() { return WaitForSingleObject(last().get(), 0) == WAIT_OBJECT_0; }
    /// Waits for the thread that was started last; its exit code.
    static DWORD awaitLast() {
        const UniqueHandle thread = last();
        DWORD code = STILL_ACTIVE;
        EXPECT_EQ(WaitForSingleObject(thread.get(), kPatienceMilliseconds), WAIT_OBJECT_0);
        EXPECT_TRUE(GetExitCodeThread(thread.get(), &code));
        return code;
    }
    static void awaitAll() {
        const std::lock_guard lock(started().mutex); // nobody starts one any more
        for (const UniqueHandle& thread : started().handles) {
            EXPECT_EQ(WaitForSingleObject(thread.get(), kPatienceMilliseconds), WAIT_OBJECT_0);
        }
    }

  private:
    static constexpr DWORD kPatienceMilliseconds = 120000;

    struct Started {
        std::mutex mutex;
        std::vector<UniqueHandle> handles;
        decltype(&CreateThread) original = nullptr;
    };
    static Started& started() {
        static Started all;
        return all;
    }
    static UniqueHandle copyOf(HANDLE thread) {
        HANDLE copy = nullptr;
        DuplicateHandle(GetCurrentProcess(), thread, GetCurrentProcess(), &copy, 0, FALSE, DUPLICATE_SAME_ACCESS);
        return UniqueHandle(copy);
    }
    static HANDLE WINAPI keepThread(LPSECURITY_ATTRIBUTES attributes, SIZE_T stack, LPTHREAD_START_ROUTINE procedure,
                                    LPVOID argument, DWORD flags, LPDWORD id) {
        const HANDLE thread = started().original(attributes, stack, procedure, argument, flags, id);
        if (thread != nullptr) {
            const std::lock_guard lock(started().mutex);
            started().handles.push_back(copyOf(thread));
        }
        return thread;
    }

    ImportPatched<decltype(&CreateThread)> patched_{__imp_CreateThread, &keepThread};
};

} // namespace torvane::testing
