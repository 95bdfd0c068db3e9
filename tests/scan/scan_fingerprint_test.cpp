// Every option that changes rows has to be told apart, or a scan could go on with rows of another
// kind, and shards of different scans could be merged.

#include "scan/scan_fingerprint.h"

#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

namespace {

struct option_case {
    const char* m_name;
    void (*m_change)(scan_options&);
    bool m_moves_messages; // changes where messages begin and end
};

const option_case option_cases[] = {
    {"mbox", [](scan_options& each) { each.m_pile.m_mbox.m_rules = mbox_rules::any; }, true},
    {"content_length",
     [](scan_options& each) { each.m_pile.m_mbox.m_verify_content_length = false; }, true},
    {"one", [](scan_options& each) { each.m_pile.m_one = true; }, true},
    {"rules", [](scan_options& each) { each.m_rows.m_rules = MailStructure::rules::classic; },
     false},
    {"hash", [](scan_options& each) { each.m_rows.m_hash = hash_choice::parts; }, false},
    {"findings", [](scan_options& each) { each.m_rows.m_findings = false; }, false},
    {"max_size", [](scan_options& each) { each.m_rows.m_max_size = 1; }, false},
};

TEST(scan_fingerprint, tells_all_options_apart_that_change_rows) {
    std::set<std::string> all_words = {words_of(scan_options())};
    std::set<std::string> all_fingerprints = {scan_fingerprint(scan_options())};
    for (const option_case& each : option_cases) {
        scan_options options;
        each.m_change(options);
        EXPECT_TRUE(all_words.insert(words_of(options)).second) << each.m_name;
        EXPECT_TRUE(all_fingerprints.insert(scan_fingerprint(options)).second) << each.m_name;
        EXPECT_EQ(words_of(options.m_pile) != words_of(pile_options()), each.m_moves_messages)
            << each.m_name;
    }
}

TEST(scan_fingerprint, tells_forms_and_sources_apart) {
    std::set<std::string> all = {scan_fingerprint(scan_options())};
    scan_options packed;
    packed.m_rows.m_form = row_form::packed;
    EXPECT_TRUE(all.insert(scan_fingerprint(packed)).second);
    EXPECT_EQ(words_of(packed), words_of(scan_options()));
    for (const std::vector<std::string>& sources :
         {std::vector<std::string>{"ab"}, {"a", "b"}, {"b", "a"}}) {
        scan_options options;
        options.m_sources = sources;
        EXPECT_TRUE(all.insert(scan_fingerprint(options)).second);
    }
}

TEST(scan_fingerprint, is_the_same_whatever_the_threads) {
    scan_options options;
    options.m_threads = 7;
    options.m_progress = progress_choice::never;
    EXPECT_EQ(scan_fingerprint(options), scan_fingerprint(scan_options()));
}

} // namespace
