// Which months are drawn, and where.

#include "report/timeline.h"

#include <gtest/gtest.h>

namespace {

TEST(timeline, draws_all_months_if_they_are_few) {
    const drawn_months drawn = months_to_draw({{"2019-03", {"", 4, 0}}, {"2024-12", {"", 1, 0}}});
    EXPECT_EQ(month_text(drawn.m_first), "2019-03");
    EXPECT_EQ(month_text(drawn.m_last), "2024-12");
    EXPECT_EQ(drawn.m_messages_outside, 0U);
}

TEST(timeline, leaves_out_dates_that_lie_far_from_the_others) {
    const drawn_months drawn = months_to_draw({{"0000-01", {"", 2, 0}},
                                               {"1970-01", {"", 5, 0}},
                                               {"2005-06", {"", 9, 0}},
                                               {"2006-07", {"", 9, 0}},
                                               {"9999-12", {"", 3, 0}}});
    EXPECT_EQ(month_text(drawn.m_first), "2005-06");
    EXPECT_EQ(month_text(drawn.m_last), "2006-07");
    EXPECT_EQ(drawn.m_messages_outside, 10U);
}

TEST(timeline, draws_no_more_months_than_fit) {
    const drawn_months twenty_years =
        months_to_draw({{"2000-01", {"", 1, 0}}, {"2019-12", {"", 1, 0}}});
    EXPECT_EQ(twenty_years.m_last - twenty_years.m_first + 1, most_months);
    const drawn_months longer = months_to_draw({{"2000-01", {"", 1, 0}}, {"2020-01", {"", 2, 0}}});
    EXPECT_EQ(month_text(longer.m_first), "2020-01");
    EXPECT_EQ(longer.m_messages_outside, 1U);
}

TEST(timeline, has_bars_as_high_as_the_numbers) {
    const std::map<std::string, share> months = {{"2024-01", {"", 4, 0}}, {"2024-03", {"", 1, 0}}};
    const std::string drawing = timeline_svg(months, months_to_draw(months), "months");
    EXPECT_NE(drawing.find("<title>2024-01: 4 messages</title><rect class=\"bar\" x=\"0.0\" "
                           "y=\"20.0\" width=\"52.5\" height=\"220.0\"/>"),
              std::string::npos);
    EXPECT_NE(drawing.find("<title>2024-03: 1 message</title><rect class=\"bar\" x=\"120.0\" "
                           "y=\"185.0\" width=\"52.5\" height=\"55.0\"/>"),
              std::string::npos);
    EXPECT_EQ(drawing.find("2024-02"), std::string::npos);
}

} // namespace
