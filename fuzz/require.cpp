#include "require.h"

#include <cstdio>
#include <cstdlib>

namespace fuzz {

void fail(std::string_view what) {
    // This does not use std::cerr, because a target may have redirected it for the dump.
    std::fprintf(stderr, "does not hold: %.*s\n", static_cast<int>(what.size()), what.data());
    std::abort();
}

} // namespace fuzz
