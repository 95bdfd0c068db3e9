// Real mail, whole, cut short and damaged, held against the reference parsers. The messages are not
// part of the project: the environment variable MAILSTRUCTURE_CORPUS names a folder of them.

#include "differential/both_parsers.h"
#include "support/message_generator.h"
#include "support/seeded_random.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

namespace differential {
namespace {

using test_support::seeded_random;

std::vector<std::filesystem::path> files_below(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string contents_of(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    EXPECT_TRUE(in.is_open()) << file;
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

/// Fewer rounds with a large file in the quick form; one at least.
std::size_t rounds(std::size_t wanted, std::size_t bytes) {
    if (full_run()) return wanted;
    return std::clamp<std::size_t>(200000 / (bytes + 1), 1, wanted);
}

class corpus : public testing::TestWithParam<const rule_set*> {
protected:
    void SetUp() override {
        const char* const folder = std::getenv("MAILSTRUCTURE_CORPUS");
        if (folder == nullptr || !std::filesystem::is_directory(folder))
            GTEST_SKIP() << "MAILSTRUCTURE_CORPUS names no folder of messages";
        m_files = files_below(folder);
        ASSERT_FALSE(m_files.empty()) << folder;
    }

    void TearDown() override {
        if (IsSkipped()) return;
        record_count("files", m_files.size());
        record_count("inputs", m_inputs);
        record_count("input_bytes", m_bytes);
        record_count("inputs_that_end_in_an_error", m_errors);
        record_count("library_parses_compared", m_parses);
    }

    /// @return false at a difference, which then has failed the test
    bool agree(const std::filesystem::path& file, const std::string& input,
               const reference::options& wanted,
               const std::vector<test_support::delivery>& deliveries) {
        const reference::message expected = parse_with_reference(*GetParam(), input, wanted);
        ++m_inputs;
        m_bytes += input.size();
        m_errors += expected.m_error.empty() ? 0 : 1;
        for (const test_support::delivery& way : deliveries) {
            ++m_parses;
            if (library_difference(*GetParam(), m_result, input, wanted, way, expected).empty())
                continue;
            ADD_FAILURE() << file << ": " << failure_report(*GetParam(), input, wanted, way);
            return false;
        }
        return true;
    }

    const test_support::delivery& next_delivery() {
        return test_support::every_delivery[m_inputs % test_support::every_delivery.size()];
    }

    std::vector<std::filesystem::path> m_files;

private:
    library_result m_result;
    std::uint64_t m_inputs = 0;
    std::uint64_t m_bytes = 0;
    std::uint64_t m_errors = 0;
    std::uint64_t m_parses = 0;
};

TEST_P(corpus, whole_files_give_the_reference_tree) {
    const std::vector<test_support::delivery> each(test_support::every_delivery.begin(),
                                                   test_support::every_delivery.end());
    for (const auto& file : m_files) {
        const std::string input = contents_of(file);
        for (const bool keep_text : {false, true}) {
            for (const std::uint32_t memlimit : {0xFFFFFFFFU, 0U, 300U, 1000U, 3000U}) {
                if (keep_text && memlimit == 300)
                    continue; // then the limit governs parameters only
                reference::options wanted;
                wanted.m_keep_text = keep_text;
                wanted.m_memlimit = memlimit;
                if (!agree(file, input, wanted, each)) return;
            }
        }
    }
}

TEST_P(corpus, files_cut_short_give_the_reference_tree) {
    for (const auto& file : m_files) {
        const std::string input = contents_of(file);
        seeded_random random(input.size());
        for (std::size_t i = rounds(20, input.size()); i > 0; --i) {
            reference::options wanted;
            wanted.m_keep_text = random.one_in(3);
            std::string start = input.substr(0, random.below(input.size()));
            if (!agree(file, start, wanted, {next_delivery()})) return;
        }
    }
}

TEST_P(corpus, damaged_files_give_the_reference_tree) {
    for (const auto& file : m_files) {
        const std::string input = contents_of(file);
        seeded_random random(~input.size());
        for (std::size_t i = rounds(20, input.size()); i > 0; --i) {
            reference::options wanted;
            wanted.m_keep_text = random.one_in(3);
            if (random.one_in(4))
                wanted.m_memlimit = static_cast<std::uint32_t>(random.below(6000));
            if (random.one_in(4))
                wanted.m_first_offset = 0U - static_cast<std::uint32_t>(random.below(input.size()));
            if (!agree(file, test_support::damaged(input, random), wanted, {next_delivery()}))
                return;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(real_mail, corpus, testing::ValuesIn(all_rule_sets), rule_set_name);

} // namespace
} // namespace differential
