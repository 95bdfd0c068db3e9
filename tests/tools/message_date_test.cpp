// Dates in the forms that messages have them in, and texts that are no date.

#include "common/message_date.h"

#include <gtest/gtest.h>
#include <string>

namespace {

struct date_case {
    const char* m_written;
    const char* m_utc; // "" if it is no date
};

const date_case date_cases[] = {
    // RFC 5322 section 3.3
    {"Tue, 4 Mar 2025 18:40:12 +0100", "2025-03-04T17:40:12Z"},
    {"4 Mar 2025 18:40:12 +0100", "2025-03-04T17:40:12Z"},
    {"Tue, 4 Mar 2025 18:40 +0100", "2025-03-04T17:40:00Z"},
    {"Tue, 04 Mar 2025 00:10:00 +0530", "2025-03-03T18:40:00Z"},
    {"Tue, 4 Mar 2025 18:40:12 -0000", "2025-03-04T18:40:12Z"},
    {"Tue, 31 Dec 2024 20:00:00 -0800", "2025-01-01T04:00:00Z"},
    {"Thu, 29 Feb 2024 12:00:00 +0000", "2024-02-29T12:00:00Z"},
    {"Fri, 30 Jun 1972 23:59:60 +0000", "1972-07-01T00:00:00Z"},
    {"Tue, 4 Mar 2025\t18:40:12\r\n +0100 (CET)", "2025-03-04T17:40:12Z"},
    {"Mon, 1 Jan 1900 00:00:00 +0000", "1900-01-01T00:00:00Z"},
    {"Fri, 31 Dec 9999 23:59:59 +0000", "9999-12-31T23:59:59Z"},
    // section 4.3
    {"Sun, 06 Nov 94 08:49:37 GMT", "1994-11-06T08:49:37Z"},
    {"6 Nov 49 08:49 UT", "2049-11-06T08:49:00Z"},
    {"6 Nov 50 08:49 UT", "1950-11-06T08:49:00Z"},
    {"6 Nov 100 08:49 UT", "2000-11-06T08:49:00Z"},
    {"Thu, 6 Mar 1997 10:00:00 EST", "1997-03-06T15:00:00Z"},
    {"Thu, 6 Mar 1997 10:00:00 EDT", "1997-03-06T14:00:00Z"},
    {"Thu, 6 Mar 1997 10:00:00 CST", "1997-03-06T16:00:00Z"},
    {"Thu, 6 Mar 1997 10:00:00 CDT", "1997-03-06T15:00:00Z"},
    {"Thu, 6 Mar 1997 10:00:00 mst", "1997-03-06T17:00:00Z"},
    {"Thu, 6 Mar 1997 10:00:00 MDT", "1997-03-06T16:00:00Z"},
    {"Thu, 6 Mar 1997 10:00:00 PST", "1997-03-06T18:00:00Z"},
    {"Thu, 6 Mar 1997 10:00:00 PDT", "1997-03-06T17:00:00Z"},
    {"Thu, 6 Mar 1997 10:00:00 K", "1997-03-06T10:00:00Z"},
    {"Thu, 6 Mar 1997 10:00:00 CEST", "1997-03-06T10:00:00Z"},
    {"Thu (a) , 6 (b (c) \\) ) Mar(d) 1997 (e)10:00:00 (PST) EST", "1997-03-06T15:00:00Z"},
    // Other forms
    {"Thu, 6 Mar 1997 10:00:00", "1997-03-06T10:00:00Z"},
    {"Mon Mar  3 09:15:00 2025", "2025-03-03T09:15:00Z"},
    {"Mon Mar  3 09:15:00 PST 2025", "2025-03-03T17:15:00Z"},
    {"Mar 3, 2025 9:15 PM", "2025-03-03T21:15:00Z"},
    {"Mar 3, 2025 12:15 AM", "2025-03-03T00:15:00Z"},
    {"Monday, 03-March-25 09:15:00 GMT", "2025-03-03T09:15:00Z"},
    {"03-Mar-2025 09:15:00 +0000", "2025-03-03T09:15:00Z"},
    {"Mon, 3 Mar 2025 09:15:00+0100", "2025-03-03T08:15:00Z"},
    {"Mon, 3 Mar 2025 09:15:00 +01:00", "2025-03-03T08:15:00Z"},
    {"Mon, 3 Mar 2025 09:15:00 GMT+0100", "2025-03-03T08:15:00Z"},
    {"Mon, 3 Mar 2025 09:15:00 +1", "2025-03-03T08:15:00Z"},
    {"Mon, 3 Mar 2025 09:15:00 +100", "2025-03-03T08:15:00Z"},
    {"Mon, 3 Mar 2025 09.15.00 +0100", "2025-03-03T08:15:00Z"},
    {"Mon, 3 Mar 2025 09:15:00.250 +0100", "2025-03-03T08:15:00Z"},
    {"Mon, 3 Mar 2025 09:15:00 +0100 -0800", "2025-03-03T08:15:00Z"},
    {"Mon, 3 Sept. 2025 09:15:00 Z", "2025-09-03T09:15:00Z"},
    // None
    {"", ""},
    {"yesterday", ""},
    {"4 Mar 2025", ""},
    {"18:40:12 +0100", ""},
    {"Tue, 4 2025 18:40:12 +0100", ""},
    {"Tue, 4 Mar 18:40:12 +0100", ""},
    {"Tue, 31 Feb 2025 18:40:12 +0100", ""},
    {"Sat, 29 Feb 2025 12:00:00 +0000", ""},
    {"Tue, 0 Mar 2025 18:40:12 +0100", ""},
    {"Tue, 4 Mar 2025 24:00:00 +0100", ""},
    {"Tue, 4 Mar 2025 18:60:12 +0100", ""},
    {"Tue, 4 Mar 2025 18:40:61 +0100", ""},
    {"Tue, 4 Mar 2025 18:40:12:13 +0100", ""},
    {"Tue, 4 Mar 2025 59:10 -0500", ""},
    {"Tue, 4 Mar 20250 18:40:12 +0100", ""},
    {"Tue, 99999999999999999999 Mar 2025 18:40:12 +0100", ""},
    {"Fri, 31 Dec 9999 23:59:59 -0001", ""},
    {"1 Jan 0000 00:00:00 +0001", ""},
    {"2025-03-04T18:40:12Z", ""},
    {"Tue, 4 Mar 2025 (18:40:12 +0100", ""},
};

TEST(message_date, is_read_in_every_form) {
    for (const date_case& row : date_cases) {
        const auto moment = message_date(row.m_written);
        EXPECT_EQ(moment ? utc_text(*moment) : "", row.m_utc) << row.m_written;
    }
}

TEST(message_date, costs_no_more_than_its_length) {
    std::string text;
    for (int count = 0; count < 300000; ++count) text += "( 4-Mar+ ";
    EXPECT_FALSE(message_date(text));
    EXPECT_FALSE(message_date(std::string(1000000, '1')));
    EXPECT_TRUE(message_date("4 Mar 2025 18:40" + std::string(1000000, ' ') + "Z"));
}

TEST(utc_text, has_four_digits_for_each_year) {
    EXPECT_EQ(utc_text(std::chrono::sys_seconds()), "1970-01-01T00:00:00Z");
    EXPECT_EQ(utc_text(std::chrono::sys_days(std::chrono::year(7) / 2 / 3)),
              "0007-02-03T00:00:00Z");
}

} // namespace
