#include "ui/embedded_text.h"

namespace torvane {

std::string_view resourceBytes(HRSRC resource) {
    const HGLOBAL loaded = resource != nullptr ? LoadResource(nullptr, resource) : nullptr;
    const void* const bytes = loaded != nullptr ? LockResource(loaded) : nullptr;
    return bytes != nullptr ? std::string_view(static_cast<const char*>(bytes), SizeofResource(nullptr, resource))
                            : std::string_view();
}

std::string_view embeddedText(int resourceId) {
    return resourceBytes(FindResourceA(nullptr, MAKEINTRESOURCEA(resourceId), RT_RCDATA));
}

} // namespace torvane
