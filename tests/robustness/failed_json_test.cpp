// The JSON writer when memory runs out: it throws std::bad_alloc and leaks nothing. Of a document
// that is not finished, it has handed on only the blocks that were full.

#include "mailstructure/json_writer.h"
#include "robustness/failing_new.h"

#include <gtest/gtest.h>
#include <new>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>

namespace {

using test_support::allocation_trap;
using test_support::live_allocations;
using test_support::memory;

/// Counts the bytes that it is given; allocates nothing.
class counting_buffer : public std::streambuf {
public:
    std::streamsize bytes() const { return m_bytes; }

protected:
    std::streamsize xsputn(const char*, std::streamsize count) override {
        m_bytes += count;
        return count;
    }

private:
    std::streamsize m_bytes = 0;
};

/// Deep enough for the stacks of the writer and of the walk to grow, and with values that are not
/// UTF-8. Each form but the pretty one fits in a block.
constexpr int levels = 20;

std::string message_text() {
    std::string text;
    for (int level = 1; level < levels; ++level)
        text += "MIME-Version: 1.0\n"
                "Content-Type: message/rfc822\n"
                "\n";
    return text
           + "Subject: long enough to be kept outside the string, gr\xFCn\n"
             "Content-Type: text/plain; charset=\"a-character-set-with-a-long-name\";"
             " name=\"\xE4 file with a long name\"\n"
             "Content-Transfer-Encoding: a-transfer-encoding-with-a-long-name\n"
             "\n"
             "x\n";
}

class failed_json : public testing::TestWithParam<json_form> {};

TEST_P(failed_json, hands_on_no_piece_and_leaks_nothing) {
    const std::string text = message_text();
    std::istringstream stream(text);
    MailStructure message;
    message.Fill(stream);
    const json_message source = {"a file name that is kept outside the string",
                                 {text, MailStructure::rules::classic},
                                 message.m_root};
    for (const memory afterwards : {memory::comes_back, memory::stays_out}) {
        std::size_t failing = 0;
        for (bool has_failed = true; has_failed; ++failing) {
            counting_buffer counted;
            std::ostream counting(&counted);
            const std::size_t live_before = live_allocations();
            has_failed = false;
            {
                const allocation_trap trap(failing, afterwards);
                try {
                    json_output output(counting);
                    write_json(output, source, GetParam());
                } catch (const std::bad_alloc&) {
                    has_failed = true;
                }
                ASSERT_EQ(has_failed, trap.has_sprung()) << "allocation " << failing;
            }
            ASSERT_EQ(live_allocations(), live_before) << "leaked, allocation " << failing;
            const std::streamsize beyond_blocks =
                counted.bytes() % std::streamsize{json_output::block_size};
            ASSERT_EQ(beyond_blocks == 0, has_failed) << "allocation " << failing;
            ASSERT_TRUE(!has_failed || counted.bytes() == 0 || GetParam() == json_form::pretty);
        }
        EXPECT_GT(failing, std::size_t{levels}); // each level takes some memory
    }
}

INSTANTIATE_TEST_SUITE_P(json, failed_json,
                         testing::Values(json_form::line, json_form::pretty, json_form::flat));

} // namespace
