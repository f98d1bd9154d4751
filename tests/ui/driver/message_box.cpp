#include "tests/ui/driver/message_box.h"

#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/driver/text.h"
#include "tests/ui/driver/wait.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace torvane::driver {
namespace {

bool isButton(const Window& window) {
    return window.className() == "Button";
}

bool isStatic(const Window& window) {
    return window.className() == "Static";
}

bool isIconPlace(const Window& window) {
    return isStatic(window) && (window.style() & SS_TYPEMASK) == SS_ICON;
}

/// Some systems keep an empty place in boxes without an icon.
bool isIcon(const Window& window) {
    return isIconPlace(window) && window.send(STM_GETICON) != 0;
}

struct KnownIcon {
    BoxIcon icon;
    const char* resource;
};

/// Mean difference for each pixel between two pictures of the same size, 0 to 765.
double meanDistance(const Picture& left, const Picture& right) {
    double sum = 0;
    for (int y = 0; y < left.height(); ++y) {
        for (int x = 0; x < left.width(); ++x) {
            sum += distance(left.at(x, y), right.at(x, y));
        }
    }
    return sum / (left.width() * left.height());
}

BoxIcon recognise(const Picture& shown) {
    const std::array<KnownIcon, 4> icons{{{BoxIcon::kStop, IDI_HAND},
                                          {BoxIcon::kQuestion, IDI_QUESTION},
                                          {BoxIcon::kExclamation, IDI_EXCLAMATION},
                                          {BoxIcon::kInformation, IDI_ASTERISK}}};
    constexpr double kSameIcon = 10.0;
    BoxIcon best = BoxIcon::kUnknown;
    double smallest = kSameIcon;
    for (const KnownIcon& known : icons) {
        Picture expected(shown.width(), shown.height(), shown.at(0, 0));
        expected.drawIcon(LoadIconA(nullptr, known.resource), 0, 0);
        const double difference = meanDistance(shown, expected);
        if (difference < smallest) {
            smallest = difference;
            best = known.icon;
        }
    }
    return best;
}

} // namespace

std::ostream& operator<<(std::ostream& stream, BoxIcon icon) {
    constexpr std::array<const char*, 6> kNames{"none", "stop", "question", "exclamation", "information", "unknown"};
    return stream << kNames.at(static_cast<std::size_t>(icon));
}

bool MessageBoxWindow::isOne(const Window& window) {
    if (window.className() != "#32770") {
        return false;
    }
    const auto children = window.children();
    return std::any_of(children.begin(), children.end(), isButton) &&
           std::all_of(children.begin(), children.end(), [](const Window& child) {
               return !child.visible() || isStatic(child) || (isButton(child) && child.id() <= IDNO);
           });
}

bool MessageBoxWindow::showsWholeCaption() const {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    const HDC context = CreateCompatibleDC(nullptr);
    const HFONT font = CreateFontIndirectW(&metrics.lfCaptionFont);
    const HGDIOBJ previous = SelectObject(context, font);
    const std::wstring words = toWide(caption());
    SIZE needed{};
    GetTextExtentPoint32W(context, words.c_str(), static_cast<int>(words.size()), &needed);
    SelectObject(context, previous);
    DeleteObject(font);
    DeleteDC(context);
    return needed.cx + GetSystemMetrics(SM_CXSIZE) <= width(window_.clientRect());
}

std::string MessageBoxWindow::text() const {
    for (const Window& child : window_.children()) {
        if (child.visible() && isStatic(child) && !isIconPlace(child)) {
            return child.text();
        }
    }
    throw Failure("a message box without a text: " + window_.describe());
}

BoxIcon MessageBoxWindow::icon() const {
    for (const Window& child : window_.children()) {
        if (child.visible() && isIcon(child)) {
            parkMouse();
            // The box is drawn a moment after it has appeared.
            BoxIcon icon = BoxIcon::kUnknown;
            (void)waitUntil([&] { return (icon = recognise(Picture::ofScreen(child.rect()))) != BoxIcon::kUnknown; });
            return icon;
        }
    }
    return BoxIcon::kNone;
}

std::vector<std::string> MessageBoxWindow::buttons() const {
    auto children = window_.children();
    std::erase_if(children, [](const Window& child) { return !child.visible() || !isButton(child); });
    std::sort(children.begin(), children.end(),
              [](const Window& left, const Window& right) { return left.rect().left < right.rect().left; });
    std::vector<std::string> words;
    words.reserve(children.size());
    for (const Window& button : children) {
        words.push_back(withoutAccessKey(button.text()));
    }
    return words;
}

void MessageBoxWindow::answer(const std::string& word) const {
    for (const Window& child : window_.children()) {
        if (child.visible() && isButton(child) && withoutAccessKey(child.text()) == word) {
            press(child);
            await("the box has closed", [this] { return !window_.visible(); });
            return;
        }
    }
    throw Failure("no button '" + word + "' in " + window_.describe());
}

std::string withoutAccessKey(const std::string& text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        // "&&" is an ampersand of the text itself.
        if (text[i] == '&' && i + 1 < text.size()) {
            ++i;
        }
        plain += text[i];
    }
    return plain;
}

char accessKey(const std::string& text) {
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        if (text[i] == '&') {
            if (text[i + 1] != '&') {
                return static_cast<char>(std::toupper(static_cast<unsigned char>(text[i + 1])));
            }
            ++i;
        }
    }
    return '\0';
}

} // namespace torvane::driver
