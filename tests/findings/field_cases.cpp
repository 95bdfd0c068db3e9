// Values of the fields that RFC 5322 gives a grammar, and what is wrong with them.

#include "findings/cases.h"

#include <string>
#include <utility>
#include <vector>

namespace findings {

using mail_findings::name;
using std::string;

namespace {

/// Cases of one field.
class cases_of {
public:
    cases_of(name finding, string field) : m_finding(finding), m_field(std::move(field)) {}

    /// Adds a value.
    /// @param expected  the findings as "LEVEL LINE BYTES" and a line end; "" if there is none
    cases_of& add(const char* what, const string& value, const string& expected) {
        m_cases.push_back({m_finding, what, m_field + ":" + value + "\n\n", expected});
        return *this;
    }
    std::vector<finding_case> all() const { return m_cases; }

private:
    name m_finding;
    string m_field;
    std::vector<finding_case> m_cases;
};

std::vector<finding_case> cases_of_dates() {
    cases_of dates(name::date_invalid, "Date");
    dates.add("full", " Sun, 1 Nov 2026 12:00:00 +0000", "")
        .add("no_day_of_week_and_no_seconds", " 01 nov 2026 12:00 -0930", "")
        .add("comment_at_the_end", " Sun, 01 Nov 2026 12:00:00 +0000 (UTC (a))", "")
        .add("folds", "\n Sun,\n 1 Nov\n 2026 12:00:00\n +0000", "")
        .add("leap_second", " Sat, 31 Dec 2016 23:59:60 +0000", "")
        .add("leap_day", " Thu, 29 Feb 2024 00:00:00 +0000", "")
        .add("leap_day_of_a_century", " Tue, 29 Feb 2000 00:00:00 +0000", "")
        .add("year_of_five_digits", " 1 Nov 12026 12:00:00 +0000", "")
        .add("empty", "", "fault 1 \n")
        .add("words", " yesterday", "fault 1 yesterday\n")
        .add("no_comma", " Sun 1 Nov 2026 12:00:00 +0000", "fault 1 1\n")
        .add("form_of_c", " Sun Nov  1 12:00:00 2026", "fault 1 N\n")
        .add("form_of_iso", " 2026-11-01T12:00:00Z", "fault 1 2\n")
        .add("day_of_another_language", " So, 1 Nov 2026 12:00:00 +0000", "fault 1 So\n")
        .add("month_in_full", " 1 November 2026 12:00:00 +0000", "fault 1 November\n")
        .add("month_in_digits", " 1 11 2026 12:00:00 +0000", "fault 1 1\n")
        .add("hyphens", " 1-Nov-2026 12:00:00 +0000", "fault 1 -\n")
        .add("another_day_of_the_week", " Mon, 1 Nov 2026 12:00:00 +0000", "fault 1 Mon\n")
        .add("day_0", " 0 Nov 2026 12:00:00 +0000", "fault 1 0\n")
        .add("day_31_of_30", " 31 Nov 2026 12:00:00 +0000", "fault 1 31\n")
        .add("no_leap_year", " 29 Feb 2026 12:00:00 +0000", "fault 1 29\n")
        .add("no_leap_year_of_a_century", " 29 Feb 2100 12:00:00 +0000", "fault 1 29\n")
        .add("year_before_1900", " 1 Nov 1826 12:00:00 +0000", "fault 1 1826\n")
        .add("year_of_one_digit", " 1 Nov 6 12:00:00 +0000", "fault 1  \n")
        .add("hour_of_one_digit", " 1 Nov 2026 9:00:00 +0000", "fault 1 :\n")
        .add("hour_24", " 1 Nov 2026 24:00:00 +0000", "fault 1 24\n")
        .add("minute_60", " 1 Nov 2026 12:60:00 +0000", "fault 1 60\n")
        .add("second_61", " 1 Nov 2026 12:00:61 +0000", "fault 1 61\n")
        .add("fractions", " 1 Nov 2026 12:00:00.5 +0000", "fault 1 .\n")
        .add("no_time", " Sun, 1 Nov 2026", "fault 1 \n")
        .add("no_minutes", " Sun, 1 Nov 2026 12 +0000", "fault 1 +\n")
        .add("no_zone", " Sun, 1 Nov 2026 12:00:00", "fault 1 \n")
        .add("comment_instead_of_a_zone", " Sun, 1 Nov 2026 12:00:00 (UTC)", "fault 1 \n")
        .add("no_white_space_before_the_zone", " 1 Nov 2026 12:00:00+0000", "fault 1 +\n")
        .add("zone_of_three_digits", " 1 Nov 2026 12:00:00 +000", "fault 1 \n")
        .add("zone_of_five_digits", " 1 Nov 2026 12:00:00 +00000", "fault 1 0\n")
        .add("zone_with_a_colon", " 1 Nov 2026 12:00:00 +00:00", "fault 1 :\n")
        .add("zone_of_60_minutes", " 1 Nov 2026 12:00:00 +0060", "fault 1 0060\n")
        .add("zone_of_another_name", " 1 Nov 2026 12:00:00 CEST", "fault 1 CEST\n")
        .add("military_zone_that_there_is_not", " 1 Nov 2026 12:00:00 J", "fault 1 J\n")
        .add("text_at_the_end", " 1 Nov 2026 12:00:00 +0000 junk", "fault 1 j\n")
        .add("comment_that_does_not_end", " 1 Nov 2026 12:00:00 +0000 (a", "fault 1 (\n")
        .add("escaped_end_of_a_comment", " 1 Nov 2026 12:00:00 +0000 (a\\)", "fault 1 (\n")
        .add("fault_on_a_folded_line", " Sun,\n 1 Nov 2026\n 12-00", "fault 3 -\n")
        .add("named_zone", " 1 Nov 2026 12:00:00 gmt", "note 1 gmt\n")
        .add("military_zone", " 1 Nov 2026 12:00:00 Z", "note 1 Z\n")
        .add("year_of_two_digits", " Mon, 1 Nov 99 12:00:00 +0000", "note 1 99\n")
        .add("two_digits_of_this_century", " Sun, 1 Nov 26 12:00:00 +0000", "note 1 26\n")
        .add("year_of_three_digits", " Wed, 1 Nov 100 12:00:00 +0000", "note 1 100\n")
        .add("comment_between", " 1 (a) Nov 2026 12:00:00 +0000", "note 1  (a) \n")
        .add("comment_before_the_zone", " 1 Nov 2026 12:00:00 (a) +0000", "note 1  (a) \n")
        .add("blanks_at_a_colon", " 1 Nov 2026 12 :00: 00 +0000", "note 1  \n")
        .add("blank_before_the_seconds", " 1 Nov 2026 12:00 :00 +0000", "note 1  \n")
        .add("blank_before_the_comma", " Sun , 1 Nov 2026 12:00:00 +0000", "note 1  \n")
        .add("nothing_between", " 1Nov 2026 12:00:00 +0000", "note 1 N\n")
        .add("obsolete_and_then_wrong", " 1 Nov 26 12:00:00 CEST", "fault 1 CEST\n");
    std::vector<finding_case> all = dates.all();
    all.push_back(cases_of(name::date_invalid, "Resent-Date")
                      .add("resent", " x", "fault 1 x\n")
                      .all()
                      .front());
    return all;
}

std::vector<finding_case> cases_of_addresses() {
    cases_of lists(name::address_invalid, "To");
    lists.add("address", " a@b", "")
        .add("name", " Ada B. Byron <a@b>", "note 1 .\n")
        .add("quoted_name", " \"Byron, Ada B.\" <a@b>", "")
        .add("encoded_name", " =?utf-8?Q?Ada?= <a@b>", "")
        .add("name_beyond_ascii", " \xC3\x84\x64\x61 <\xC3\xA4@b>", "")
        .add("brackets_alone", " <a@b>", "")
        .add("list", " a@b, C <c@d>,\n \"e\"@f", "")
        .add("dots_and_specials", " a.b+c/d=e!f@g-h.i", "")
        .add("literal", " a@[192.0.2.1]", "")
        .add("comments", " (a) b (c) @ (d) e (f(g)), <(h)i@j(k)> (l)", "")
        .add("group", " team: a@b, C <c@d>;", "")
        .add("empty_group", " undisclosed recipients:;", "")
        .add("groups_in_a_list", " a@b, c:;, d:e@f;, g@h", "")
        .add("at_in_quotes", " \"a@b\" <c@d>", "")
        .add("empty", "", "fault 1 \n")
        .add("comment_alone", " (a)", "fault 1 \n")
        .add("name_alone", " Ada", "fault 1 \n")
        .add("name_before_a_comma", " Byron, Ada <a@b>", "fault 1 ,\n")
        .add("address_as_a_name", " a@b <a@b>", "fault 1 <\n")
        .add("at_alone", " @b", "fault 1 @\n")
        .add("at_in_a_name", " Ada @ B <a@b>", "fault 1 <\n")
        .add("words_before_an_at", " a b@c", "fault 1 @\n")
        .add("two_ats", " a@b@c", "fault 1 @\n")
        .add("no_domain", " a@", "fault 1 \n")
        .add("no_domain_in_brackets", " <a@>", "fault 1 >\n")
        .add("nothing_in_brackets", " Ada <>", "fault 1 >\n")
        .add("two_dots", " a..b@c", "fault 1 .\n")
        .add("dot_first", " .a@b", "fault 1 .\n")
        .add("dot_before_the_at", " a.@b", "fault 1 @\n")
        .add("dot_at_the_end", " a@b.", "fault 1 \n")
        .add("dot_first_in_a_name", " . Ada <a@b>", "fault 1 .\n")
        .add("bracket_not_ended", " <a@b", "fault 1 \n")
        .add("brackets_twice", " <<a@b>>", "fault 1 <\n")
        .add("text_behind_the_bracket", " <a@b> c", "fault 1 c\n")
        .add("bracket_alone", " a@b>", "fault 1 >\n")
        .add("semicolon", " a@b; c@d", "fault 1 ;\n")
        .add("group_not_ended", " team: a@b", "fault 1 \n")
        .add("group_in_a_group", " a: b: c@d;;", "fault 1 :\n")
        .add("group_without_a_name", " : a@b;", "fault 1 :\n")
        .add("scheme", " mailto:a@b", "fault 1 \n")
        .add("square_brackets", " [a@b]", "fault 1 [\n")
        .add("literal_not_ended", " a@[1.2", "fault 1 [\n")
        .add("literal_in_a_literal", " a@[1[2]]", "fault 1 [\n")
        .add("quote_not_ended", " \"Ada <a@b>", "fault 1 \\\"\n")
        .add("escaped_end_of_the_quote", " \"Ada\\\" <a@b>", "fault 1 \\\"\n")
        .add("backslash_outside_quotes", " a\\b@c", "fault 1 \\\\\n")
        .add("comment_not_ended", " a@b (c(d)", "fault 1 (\n")
        .add("fault_on_a_folded_line", " a@b,\n c@d,\n e", "fault 3 \n")
        .add("empty_element", " a@b,, c@d", "note 1 ,\n")
        .add("comma_first", " , a@b", "note 1 ,\n")
        .add("comma_at_the_end", " a@b,", "note 1 ,\n")
        .add("comma_at_the_end_of_a_group", " a: b@c,;", "note 1 ,\n")
        .add("commas_alone", " ,", "fault 1 \n")
        .add("route", " <@a,@b:c@d>", "note 1 @\n")
        .add("route_without_an_address", " <@a:>", "fault 1 >\n")
        .add("route_without_a_colon", " <@a b@c>", "fault 1 b\n")
        .add("quotes_and_dots", " \"a\".b@c", "note 1 .\n")
        .add("blank_before_a_dot", " a .b@c", "note 1 .\n")
        .add("blank_behind_a_dot", " a.b. c@d", "note 1 .\n")
        .add("blank_in_a_domain", " a@b .c", "note 1 .\n")
        .add("blank_behind_a_dot_in_a_domain", " a@b. c", "note 1 .\n")
        .add("escape_in_a_literal", " a@[\\1]", "note 1 \\\\\n")
        .add("control_byte_in_a_literal", " a@[\x01]", "note 1 \\001\n")
        .add("control_byte_in_quotes", " \"a\x01\" <b@c>", "note 1 \\001\n")
        .add("escaped_control_byte", " \"a\\\x01\" <b@c>", "note 1 \\001\n")
        .add("control_byte_in_a_comment", " a@b (\x7F)", "note 1 \\177\n")
        .add("control_byte_outside", " a\x01@b", "fault 1 \\001\n")
        .add("obsolete_and_then_wrong", " Ada B. <a@b", "fault 1 \n");
    return lists.all();
}

std::vector<finding_case> cases_of_message_ids() {
    cases_of one(name::message_id_invalid, "Message-ID");
    one.add("id", " <a.b$c@d.e>", "")
        .add("literal", " <a@[b c]>", "")
        .add("comments_around", " (a) <b@c> (d)", "")
        .add("no_brackets", " a@b", "fault 1 a\n")
        .add("empty", "", "fault 1 \n")
        .add("no_at", " <a>", "fault 1 >\n")
        .add("two_ats", " <a@b@c>", "fault 1 @\n")
        .add("nothing_before_the_at", " <@a>", "fault 1 @\n")
        .add("two_dots", " <a..b@c>", "fault 1 .\n")
        .add("no_end", " <a@b", "fault 1 \n")
        .add("two_ids", " <a@b> <c@d>", "fault 1 <\n")
        .add("words_before", " a <b@c>", "fault 1 a\n")
        .add("quotes", " <\"a\"@b>", "note 1 \\\"\n")
        .add("blank_before_the_end", " <a@b >", "note 1  \n")
        .add("comment_within", " <a(b)@c>", "note 1 (\n");
    cases_of several(name::message_id_invalid, "References");
    several.add("several", " <a@b>\n <c@d><e@f>", "")
        .add("empty_references", "", "fault 1 \n")
        .add("comma", " <a@b>, <c@d>", "fault 1 ,\n")
        .add("no_brackets_in_references", " <a@b> c@d", "fault 1 @\n")
        .add("dot_alone", " . <a@b>", "fault 1 .\n")
        .add("words_between", " <a@b> from Ada <c@d>", "note 1 f\n")
        .add("words_alone", " your letter", "fault 1 \n")
        .add("second_on_a_folded_line", " <a@b>\n <c>", "fault 2 >\n");
    std::vector<finding_case> all = one.all();
    for (const finding_case& more : several.all()) all.push_back(more);
    return all;
}

/// Which fields are looked at, and what each of them allows.
std::vector<finding_case> cases_of_fields() {
    std::vector<finding_case> all;
    for (const char* field : {"From", "sender", "Reply-To", "To", "CC", "Bcc", "Resent-From",
                              "Resent-Sender", "Resent-To", "Resent-Cc", "Resent-Bcc"})
        all.push_back(cases_of(name::address_invalid, field)
                          .add("wrong_in_each_field", " a", "fault 1 \n")
                          .all()
                          .front());
    for (const char* field : {"In-Reply-To", "Resent-Message-ID"})
        all.push_back(cases_of(name::message_id_invalid, field)
                          .add("wrong_in_each_field", " <a", "fault 1 \n")
                          .all()
                          .front());
    for (const char* each : {"Date", "From", "Sender", "Reply-To", "To", "Cc", "Bcc", "Message-ID",
                             "In-Reply-To", "References", "Subject", "MIME-Version"}) {
        const string field = each;
        all.push_back({name::field_twice, "each_field", field + ": a\n" + field + ": a\n\n",
                       "fault 2 " + field + "\n"});
    }
    const std::vector<finding_case> others{
        {name::address_invalid, "first_of_two_obsolete_forms", "To: a@b,, A. <c@d>\n\n",
         "note 1 ,\n"},
        {name::address_invalid, "empty_bcc", "Bcc:\n\n", ""},
        {name::address_invalid, "two_senders", "Sender: a@b, c@d\n\n", "fault 1 ,\n"},
        {name::address_invalid, "group_as_a_sender", "Sender: a: b@c, d@e;\n\n", ""},
        {name::address_invalid, "each_of_two_fields", "To: a\nTo: b\n\n", "fault 1 \nfault 2 \n"},
        {name::address_invalid, "field_of_another_name", "X-To: a\n\n", ""},
        {name::address_invalid, "field_cut_off", "To: a@b,\n c", "fault 2 \n"},
        {name::address_invalid, "line_ends_with_cr", "To: a@b,\r\r\n c@d\r\n\r\n", ""},
        {name::address_invalid, "in_a_message_within", "Content-Type: message/rfc822\n\nTo: a\n\n",
         "fault 3 \n"},
        {name::address_invalid, "in_a_part",
         "Content-Type: multipart/mixed; boundary=b\n\n--b\nTo: a\n\n--b--\n", ""},
    };
    all.insert(all.end(), others.begin(), others.end());
    return all;
}

} // namespace

const std::vector<finding_case>& field_cases() {
    static const std::vector<finding_case> all = [] {
        std::vector<finding_case> cases = cases_of_dates();
        for (const auto& more : {cases_of_addresses(), cases_of_message_ids(), cases_of_fields()})
            cases.insert(cases.end(), more.begin(), more.end());
        return cases;
    }();
    return all;
}

} // namespace findings
