#include "tests/support/scripted_prompts.h"

#include "ui/prompts.h"

#include <gtest/gtest.h>

#include <deque>
#include <mutex>
#include <ostream>

namespace torvane::testing {

namespace {

struct Expectation {
    ShownBox box;
    bool answer = false;
    std::function<void()> whileShown;
};

// The boxes are free functions, so the script they follow is one for the process.
struct Script {
    std::mutex mutex;
    bool active = false;
    std::deque<Expectation> expected;
    std::vector<ShownBox> shown;
};

Script& script() {
    static Script instance;
    return instance;
}

const char* kindName(BoxKind kind) {
    switch (kind) {
    case BoxKind::kStop:
        return "stop";
    case BoxKind::kInform:
        return "inform";
    case BoxKind::kWarn:
        return "warn";
    case BoxKind::kAsk:
        return "ask";
    case BoxKind::kAskDefaultNo:
        return "ask with the default No";
    }
    return "unknown";
}

std::string describe(const ShownBox& box) {
    return std::string(kindName(box.kind)) + " \"" + box.caption + "\" / \"" + box.text + "\"";
}

void expect(BoxKind kind, std::string caption, std::string text, bool answer, std::function<void()> whileShown) {
    const std::lock_guard lock(script().mutex);
    script().expected.push_back({{kind, std::move(caption), std::move(text)}, answer, std::move(whileShown)});
}

bool show(BoxKind kind, const char* caption, const char* text) {
    const ShownBox box{kind, caption, text};
    Expectation next;
    {
        const std::lock_guard lock(script().mutex);
        script().shown.push_back(box);
        if (!script().active || script().expected.empty()) {
            ADD_FAILURE() << "unexpected box: " << describe(box);
            return false;
        }
        next = std::move(script().expected.front());
        script().expected.pop_front();
    }
    if (next.box != box) {
        ADD_FAILURE() << "wrong box: " << describe(box) << "\nexpected: " << describe(next.box);
    }
    if (next.whileShown) {
        next.whileShown();
    }
    return next.answer;
}

} // namespace

ScriptedPrompts::ScriptedPrompts() {
    const std::lock_guard lock(script().mutex);
    EXPECT_FALSE(script().active) << "two scripts at a time";
    script().active = true;
    script().expected.clear();
    script().shown.clear();
}

ScriptedPrompts::~ScriptedPrompts() {
    const std::lock_guard lock(script().mutex);
    for (const Expectation& missed : script().expected) {
        ADD_FAILURE() << "expected box never came: " << describe(missed.box);
    }
    script().active = false;
}

void ScriptedPrompts::expectStop(std::string caption, std::string text, std::function<void()> whileShown) {
    expect(BoxKind::kStop, std::move(caption), std::move(text), false, std::move(whileShown));
}

void ScriptedPrompts::expectInform(std::string caption, std::string text, std::function<void()> whileShown) {
    expect(BoxKind::kInform, std::move(caption), std::move(text), false, std::move(whileShown));
}

void ScriptedPrompts::expectWarn(std::string caption, std::string text, std::function<void()> whileShown) {
    expect(BoxKind::kWarn, std::move(caption), std::move(text), false, std::move(whileShown));
}

void ScriptedPrompts::expectAsk(std::string caption, std::string text, bool answer, std::function<void()> whileShown) {
    expect(BoxKind::kAsk, std::move(caption), std::move(text), answer, std::move(whileShown));
}

void ScriptedPrompts::expectAskDefaultNo(std::string caption, std::string text, bool answer,
                                         std::function<void()> whileShown) {
    expect(BoxKind::kAskDefaultNo, std::move(caption), std::move(text), answer, std::move(whileShown));
}

std::vector<ShownBox> ScriptedPrompts::shown() const {
    const std::lock_guard lock(script().mutex);
    return script().shown;
}

std::size_t ScriptedPrompts::outstanding() const {
    const std::lock_guard lock(script().mutex);
    return script().expected.size();
}

} // namespace torvane::testing

namespace torvane::prompts {

using torvane::testing::BoxKind;

void stop(const char* caption, const char* text) {
    torvane::testing::show(BoxKind::kStop, caption, text);
}

void inform(const char* caption, const char* text) {
    torvane::testing::show(BoxKind::kInform, caption, text);
}

void warn(const char* caption, const char* text) {
    torvane::testing::show(BoxKind::kWarn, caption, text);
}

bool ask(const char* caption, const char* text) {
    return torvane::testing::show(BoxKind::kAsk, caption, text);
}

bool askDefaultNo(const char* caption, const char* text) {
    return torvane::testing::show(BoxKind::kAskDefaultNo, caption, text);
}

} // namespace torvane::prompts
