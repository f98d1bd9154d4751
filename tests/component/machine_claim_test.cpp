#include "base/machine_claim.h"

#include "base/owned_handle.h"
#include "tests/component/import_patched.h"
#include "tests/component/test_bench.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <thread>
#include <utility>

// The program's import slot of what makes the object.
extern "C" {
extern decltype(&CreateMutexW) __imp_CreateMutexW; // NOLINT(bugprone-reserved-identifier)
}

namespace torvane {
namespace {

using testing::ImportPatched;

constexpr const wchar_t* kObject = L"Global\\Torvane.Test";

MachineClaim claimOfTest() {
    return MachineClaim(L"Torvane.Test");
}

/// What another program has; an object is there or not, whoever has made it.
UniqueHandle otherProgram() {
    return UniqueHandle{CreateMutexW(nullptr, FALSE, kObject)};
}

class MachineClaims : public ::testing::Test {
  protected:
    void SetUp() override { bench_.open(); }

  private:
    testing::TestBench bench_; // of its own: tests at the same time do not meet
};

TEST_F(MachineClaims, AreRefusedAsLongAsAnotherProgramHasTheName) {
    MachineClaim claim = claimOfTest();
    {
        const UniqueHandle other = otherProgram();
        EXPECT_FALSE(claim.claim());
        EXPECT_FALSE(claim.await(std::chrono::milliseconds(60)));
    }
    EXPECT_TRUE(claim.claim()) << "what a program has ends with it";
}

TEST_F(MachineClaims, AreSeenByOtherProgramsUntilTheLastIsGivenBack) {
    const auto seen = [] {
        const UniqueHandle other = otherProgram();
        return GetLastError() == ERROR_ALREADY_EXISTS;
    };
    EXPECT_FALSE(seen());
    {
        MachineClaim first = claimOfTest();
        EXPECT_TRUE(first.claim());
        {
            MachineClaim second = claimOfTest();
            EXPECT_TRUE(second.claim()) << "of one program";
            EXPECT_TRUE(second.claim()) << "made already";
        }
        EXPECT_TRUE(seen());
        const MachineClaim moved = std::move(first);
        EXPECT_TRUE(seen());
    }
    EXPECT_FALSE(seen());
}

TEST_F(MachineClaims, AreGivenBackOnAnotherThread) {
    MachineClaim claim = claimOfTest();
    ASSERT_TRUE(claim.claim());
    std::thread([own = std::move(claim)]() mutable { own = MachineClaim(); }).join();
    const UniqueHandle other = otherProgram();
    EXPECT_NE(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
}

TEST_F(MachineClaims, AreAwaited) {
    UniqueHandle other = otherProgram();
    MachineClaim claim = claimOfTest();
    std::thread ending([&] {
        Sleep(50);
        other.reset();
    });
    EXPECT_TRUE(claim.await(std::chrono::seconds(60)));
    ending.join();
}

TEST_F(MachineClaims, LetThroughWhoeverWaitsAlready) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds kTwoLooks{40};
    MachineClaim claim = claimOfTest();

    const Clock::time_point alone = Clock::now();
    EXPECT_TRUE(claim.await(std::chrono::seconds(60)));
    claim = claimOfTest();

    const UniqueHandle waiting{CreateMutexW(nullptr, FALSE, L"Global\\Torvane.Test.Awaited")};
    const Clock::time_point awaited = Clock::now();
    EXPECT_TRUE(claim.await(std::chrono::seconds(60)));
    EXPECT_GE(Clock::now() - awaited, kTwoLooks);
    EXPECT_LT(awaited - alone, Clock::now() - awaited) << "where nobody waits, nobody is waited for";
}

TEST_F(MachineClaims, AreSeenToBeAwaited) {
    const auto isAwaited = [] {
        const UniqueHandle object{CreateMutexW(nullptr, FALSE, L"Global\\Torvane.Test.Awaited")};
        return GetLastError() == ERROR_ALREADY_EXISTS;
    };
    EXPECT_FALSE(isAwaited());
    UniqueHandle other = otherProgram();
    MachineClaim claim = claimOfTest();
    std::thread waiting([&] { EXPECT_TRUE(claim.await(std::chrono::seconds(60))); });
    EXPECT_TRUE(driver::waitUntil(isAwaited));
    other.reset();
    waiting.join();
    EXPECT_FALSE(isAwaited());
}

template <DWORD Error>
HANDLE WINAPI makeNone(LPSECURITY_ATTRIBUTES, BOOL, LPCWSTR) {
    SetLastError(Error);
    return nullptr;
}

TEST_F(MachineClaims, AreTakenByAnotherUserWhoseObjectMayNotBeOpened) {
    const ImportPatched denied(__imp_CreateMutexW, &makeNone<ERROR_ACCESS_DENIED>);
    EXPECT_FALSE(claimOfTest().claim());
}

TEST_F(MachineClaims, AreMadeWhereTheSystemGivesNoObject) {
    const ImportPatched none(__imp_CreateMutexW, &makeNone<ERROR_NOT_ENOUGH_MEMORY>);
    EXPECT_TRUE(claimOfTest().claim());
}

} // namespace
} // namespace torvane
