#include "tests/support/scripted_choosers.h"

#include "ui/choosers.h"

#include <gtest/gtest.h>

#include <deque>

namespace torvane::testing {

namespace {

// The choosers are free functions, so the script they follow is one for the process.
struct Script {
    bool active = false;
    std::deque<std::optional<std::string>> answers;
    std::vector<std::string> shown;
};

Script& script() {
    static Script instance;
    return instance;
}

std::optional<std::string> show(const std::string& what) {
    script().shown.push_back(what);
    if (script().answers.empty()) {
        ADD_FAILURE() << "unexpected chooser: " << what;
        return std::nullopt;
    }
    std::optional<std::string> answer = script().answers.front();
    script().answers.pop_front();
    return answer;
}

} // namespace

ScriptedChoosers::ScriptedChoosers() {
    EXPECT_FALSE(script().active) << "two scripts at a time";
    script() = {};
    script().active = true;
}

ScriptedChoosers::~ScriptedChoosers() {
    EXPECT_TRUE(script().answers.empty()) << script().answers.size() << " expected choosers never came";
    script() = {};
}

void ScriptedChoosers::choose(std::optional<std::string> path) {
    script().answers.push_back(std::move(path));
}

std::vector<std::string> ScriptedChoosers::shown() const {
    return script().shown;
}

} // namespace torvane::testing

namespace torvane::choosers {

std::optional<std::string> folder(const char* title) {
    return torvane::testing::show(title);
}

namespace {

std::string inWords(std::span<const FileKind> kinds) {
    std::string text;
    for (const FileKind& kind : kinds) {
        text.append(text.empty() ? "" : ";").append(kind.label).append("|").append(kind.pattern);
    }
    return text;
}

} // namespace

std::optional<std::string> existingFile(std::span<const FileKind> kinds) {
    return torvane::testing::show(inWords(kinds));
}

std::optional<std::string> newFile(std::span<const FileKind> kinds, const std::string& name) {
    return torvane::testing::show(name + ": " + inWords(kinds));
}

} // namespace torvane::choosers
