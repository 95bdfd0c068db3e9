// Reading a long file when there is no memory for a larger block.

#include "parser/lines/read_ahead.h"
#include "robustness/failing_new.h"
#include "support/temporary_file.h"

#include <fstream>
#include <gtest/gtest.h>
#include <ios>
#include <string>

namespace {

TEST(failed_read_ahead, reads_on_in_the_smaller_block) {
    std::string bytes;
    while (bytes.size() < 1000000) bytes += std::to_string(bytes.size()) + '\n';
    const test_support::temporary_file file(bytes);
    std::ifstream in(file.name(), std::ios::binary);
    mail_structure_detail::read_ahead ahead(*in.rdbuf());
    std::string found(bytes.size() + 1, ' ');
    {
        const test_support::allocation_trap trap(0, test_support::memory::stays_out);
        found.resize(static_cast<std::size_t>(
            ahead.sgetn(found.data(), static_cast<std::streamsize>(found.size()))));
        EXPECT_TRUE(trap.has_sprung());
    }
    EXPECT_TRUE(found == bytes) << found.size() << " bytes of " << bytes.size();
}

} // namespace
