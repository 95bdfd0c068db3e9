// Shards of sources that come or go after they were counted.

#include "scan/scan.h"
#include "scan/shards/division.h"
#include "scan/shards/range_parts.h"
#include "tools/output_folder.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>

namespace {

class counted_sources : public output_folder {
protected:
    /// Counts the sources in the folder, and chooses a shard of them.
    void choose(const shard_number& shard) {
        m_options.m_sources = {m_folder.string()};
        const auto sources = std::make_shared<const source_list>(m_options.m_sources);
        m_options.m_range = share_of(shard, *sources);
        m_options.m_shard = shard_choice{shard, "fingerprint", sources, true, {}};
    }
    /// Scans, and tells whether the last row is that of the shard.
    bool ends_with_shard() {
        std::string rows;
        const auto write = [&rows](std::string_view more) {
            rows += more;
            return true;
        };
        m_totals = scan(m_options, write);
        return rows.find(R"({"kind":"shard",)") != std::string::npos;
    }

    scan_options m_options;
    scan_totals m_totals;
};

TEST_F(counted_sources, are_those_of_the_shard) {
    put("b", "a: b\n\nx\n");
    put("d", "a: b\n\ny\n");
    choose({1, 2});
    EXPECT_TRUE(ends_with_shard());
    EXPECT_FALSE(m_totals.m_are_sources_others);
    EXPECT_EQ(m_totals.m_messages, 1);
    choose({2, 2});
    EXPECT_TRUE(ends_with_shard());
    EXPECT_EQ(m_totals.m_messages, 1);
}

TEST_F(counted_sources, have_a_new_one_before_the_shard) {
    put("b", "a: b\n\nx\n");
    put("d", "a: b\n\ny\n");
    choose({2, 2});
    put("a", "a: b\n\nz\n");
    EXPECT_FALSE(ends_with_shard());
    EXPECT_TRUE(m_totals.m_are_sources_others);
}

TEST_F(counted_sources, have_a_new_one_behind_the_shard) {
    put("b", "a: b\n\nx\n");
    put("d", "a: b\n\ny\n");
    choose({1, 2});
    put("c", "a: b\n\nz\n");
    EXPECT_TRUE(ends_with_shard());
    EXPECT_EQ(m_totals.m_messages, 1);
    choose({3, 3});
    put("e", "a: b\n\nz\n");
    EXPECT_TRUE(ends_with_shard());
    EXPECT_EQ(m_totals.m_messages, 1);
}

TEST_F(counted_sources, have_lost_their_last_one) {
    put("b", "a: b\n\nx\n");
    put("d", "a: b\n\ny\n");
    choose({1, 1});
    fs::remove(path("d"));
    EXPECT_FALSE(ends_with_shard());
    EXPECT_TRUE(m_totals.m_are_sources_others);
}

} // namespace
