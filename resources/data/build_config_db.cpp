// Build tool, compiled for the machine that builds: writes the "Config.db" of a program that nobody has configured.
//
//     build_config_db TARGET

#include "records/company_info.h"

#include <cstdio>
#include <fstream>

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        std::fputs("usage: build_config_db TARGET\n", stderr);
        return 2;
    }
    const torvane::CompanyInfo info = torvane::defaultCompanyInfo();
    std::ofstream target(arguments[1], std::ios::binary);
    target.write(reinterpret_cast<const char*>(&info), sizeof info);
    target.close();
    if (!target) {
        std::fprintf(stderr, "%s: cannot be written\n", arguments[1]);
        return 1;
    }
    return 0;
}
