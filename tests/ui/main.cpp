#include "tests/ui/driver/screen.h"
#include "tests/ui/ui_test.h"

#include <iostream>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    try {
        torvane::driver::prepareScreen();
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
    torvane::driver::prepareUiTests();
    return RUN_ALL_TESTS();
}
