#include "surface/windows_read_test_system.h"

#include "state/event_log.h"
#include "state/main_view.h"

#include <windows.h>

#include <mmsystem.h>

#include <cstdlib>

namespace torvane {

namespace {

constexpr UINT kFineClockMilliseconds = 1;

static_assert(RAND_MAX == 32767, "the NIST test's sampling is made for numbers of 15 bits");

} // namespace

ReadBuffer WindowsReadTestSystem::allocate(std::size_t size) {
    return ReadBuffer(static_cast<std::byte*>(std::calloc(size, 1)));
}

std::uint32_t WindowsReadTestSystem::milliseconds() {
    return timeGetTime();
}

void WindowsReadTestSystem::beginFineClock() {
    timeBeginPeriod(kFineClockMilliseconds);
}

void WindowsReadTestSystem::endFineClock() {
    timeEndPeriod(kFineClockMilliseconds);
}

int WindowsReadTestSystem::random() {
    return std::rand(); // NOLINT(cert-msc30-c,cert-msc50-cpp,concurrency-mt-unsafe): the same places in every run
}

void WindowsReadTestSystem::log(const char* category, const std::string& text) {
    LogEvent(category, "%s", text.c_str());
}

void WindowsReadTestSystem::logJob(const std::string& text) {
    LogToFile(kJobCategory, "%s", text.c_str());
}

void WindowsReadTestSystem::setDriveStatus(const DriveRecord& drive, const std::string& text) {
    if (view_ != nullptr) {
        view_->setDriveStatus(drive, text);
    }
}

void WindowsReadTestSystem::setWideProgress(int position) {
    if (view_ != nullptr) {
        view_->setWideProgress(position);
    }
}

} // namespace torvane
