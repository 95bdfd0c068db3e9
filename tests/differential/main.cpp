// Starts the differential tests. Beside the options of GoogleTest it takes --full, which asks for
// every input of the long form instead of the quick selection.

#include "differential/both_parsers.h"

#include <gtest/gtest.h>
#include <string_view>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    for (int i = 1; i < argc; ++i) {
        if (std::string_view(argv[i]) == "--full") differential::ask_for_full_run();
    }
    return RUN_ALL_TESTS();
}
