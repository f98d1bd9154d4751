// "diskpart /s SCRIPT": makes the file SCRIPT.runs, waits while there is a file SCRIPT.held, and prints what
// SCRIPT.output holds, if there is such a file.
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
    const std::ofstream runs(script + ".runs");
    while (GetFileAttributesA((script + ".held").c_str()) != INVALID_FILE_ATTRIBUTES) {
        Sleep(5);
    }
    const std::string output = readFile(script + ".output");
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), output.data(), static_cast<DWORD>(output.size()), &written, nullptr);
    return 0;
}
