// A parsed file when memory runs out: that is reported like any other fault, be it during the parse
// or while offsets are moved.

#include "common/message_file.h"
#include "robustness/failing_new.h"
#include "support/repeated.h"
#include "support/temporary_file.h"

#include <gtest/gtest.h>

namespace {

using test_support::allocation_trap;
using test_support::live_allocations;
using test_support::memory;
using test_support::temporary_file;

TEST(failed_message_file, tells_that_memory_is_out) {
    const temporary_file written("From a\n"
                                 "Content-Type: multipart/mixed; boundary=b\n"
                                 "\n"
                                 + test_support::repeated(40, "--b\nA: b\n\nx\n"));
    std::size_t failing = 0;
    for (bool has_failed = true; has_failed; ++failing) {
        const std::size_t live_before = live_allocations();
        {
            message_file file(written.name());
            MailStructure message;
            const allocation_trap trap(failing, memory::comes_back);
            std::optional<input_fault> fault;
            EXPECT_NO_THROW(fault = file.parse(message, MailStructure::rules::classic)) << failing;
            has_failed = trap.has_sprung();
            EXPECT_EQ(fault ? fault->m_what : "", has_failed ? "cannot parse: out of memory" : "")
                << failing;
        }
        EXPECT_EQ(live_allocations(), live_before) << failing;
    }
    EXPECT_GT(failing, 10U);
}

} // namespace
