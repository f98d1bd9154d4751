#include "window/shutdown_reason.h"

#include "jobs/job_rules.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace torvane {
namespace {

TEST(ShutdownReason, StandsForEveryJobThatUsesOrChangesDrives) {
    for (const JobRule& rule : kJobRules) {
        const bool expected = rule.usesRecords || rule.kind == JobKind::kScan || rule.kind == JobKind::kVerifyImage;
        const char* const reason = shutdownReason({rule.kind});
        EXPECT_EQ(reason != nullptr, expected) << static_cast<int>(rule.kind);
        if (reason != nullptr) {
            EXPECT_LT(std::strlen(reason), 256U) << "the system shows no more";
        }
    }
    EXPECT_EQ(shutdownReason({}), nullptr);
}

TEST(ShutdownReason, IsThatOfTheJobThatWouldLoseMost) {
    EXPECT_EQ(std::string(shutdownReason({JobKind::kShortTest, JobKind::kMounting, JobKind::kClone})),
              "A drive is being cloned.");
    EXPECT_EQ(std::string(shutdownReason({JobKind::kShortTest, JobKind::kMounting})), "A read test is at work.");
}

} // namespace
} // namespace torvane
