// "diskpart /s SCRIPT": waits as many milliseconds as SCRIPT.delay says, then prints what SCRIPT.output holds. Either
// file may be missing.
#include <windows.h>

#include <fstream>
#include <iterator>
#include <string>

namespace {

std::string readFile(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace

int main(int count, char** arguments) {
    if (count != 3 || std::string(arguments[1]) != "/s") {
        return 1;
    }
    const std::string script = arguments[2];
    if (const std::string delay = readFile(script + ".delay"); !delay.empty()) {
        Sleep(static_cast<DWORD>(std::stoul(delay)));
    }
    const std::string output = readFile(script + ".output");
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), output.data(), static_cast<DWORD>(output.size()), &written, nullptr);
    return 0;
}
