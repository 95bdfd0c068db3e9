#include "require.h"

#include <cstdio>
#include <cstdlib>

namespace fuzz {

void fail(std::string_view what) {
    // Not through std::cerr, which a target may have taken away from the dump.
    std::fprintf(stderr, "does not hold: %.*s\n", static_cast<int>(what.size()), what.data());
    std::abort();
}

} // namespace fuzz
