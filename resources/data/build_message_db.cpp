// Build tool, compiled for the machine that builds: turns the readable message source into "Message.db".
//
//     build_message_db SOURCE TARGET

#include "settings/message_source.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) {
        std::fputs("usage: build_message_db SOURCE TARGET\n", stderr);
        return 2;
    }
    std::ifstream source(arguments[1], std::ios::binary);
    if (!source) {
        std::fprintf(stderr, "%s: cannot be opened\n", arguments[1]);
        return 1;
    }
    const std::string text{std::istreambuf_iterator<char>(source), {}};
    const torvane::MessageSource messages = torvane::parseMessageSource(text);
    if (!messages.error.empty()) {
        std::fprintf(stderr, "%s: %s\n", arguments[1], messages.error.c_str());
        return 1;
    }
    const auto bytes = torvane::serializeMessageTable(messages.table);
    std::ofstream target(arguments[2], std::ios::binary);
    target.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    target.close();
    if (!target) {
        std::fprintf(stderr, "%s: cannot be written\n", arguments[2]);
        return 1;
    }
    return 0;
}
