// Names of files that a message brings along: none may lead out of a folder, hide, deceive, or be
// too long.

#include "common/printable.h"
#include "common/safe_file_name.h"
#include "common/type_extension.h"
#include "support/case_name.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace {

using namespace std::string_literals;

struct name_case {
    const char* m_name;
    std::string m_wanted;
    std::string m_safe;
};

const name_case name_cases[] = {
    {"plain", "report.pdf", "report.pdf"},
    {"other_scripts", "r\u00e9sum\u00e9 \u65e5\u672c.pdf", "r\u00e9sum\u00e9 \u65e5\u672c.pdf"},
    {"decomposed_letters_stay_so", "e\u0301.txt", "e\u0301.txt"},
    {"empty", "", ""},
    {"a_path", "../../etc/passwd", "passwd"},
    {"an_absolute_path", "/etc/passwd", "passwd"},
    {"a_path_of_windows", "C:\\Users\\me\\a.txt", "a.txt"},
    {"a_drive", "C:a.txt", "C_a.txt"},
    {"a_folder", "a/b/", ""},
    {"this_folder", ".", ""},
    {"the_folder_around", "..", ""},
    {"the_folder_around_in_a_path", "a/..", ""},
    {"dots_and_blanks", ". .. ...", ""},
    {"hidden", ".bashrc", "_bashrc"},
    {"twice_hidden", "..a", "_.a"},
    {"an_option", "-rf", "_rf"},
    {"an_option_after_a_blank", " -rf", "_rf"},
    {"a_dash_within", "a-b.txt", "a-b.txt"},
    {"dots_and_blanks_at_the_end", " a.exe. . ", "a.exe"},
    {"other_blanks_at_the_end", "\u3000a.exe\u00a0\u2003", "a.exe"},
    {"a_nul", "a\0b.txt"s, "a_b.txt"},
    {"a_new_line", "a\nb\r\n.txt", "a_b__.txt"},
    {"an_escape", "\x1b[31mred", "_[31mred"},
    {"text_that_runs_backwards", "invoice\u202efdp.exe", "invoice_fdp.exe"},
    {"isolated_text", "\u2066a\u2069.txt", "_a_.txt"},
    {"zero_width", "a\u200b.txt", "a_.txt"},
    {"only_invisible", "\u200b\u200b", "__"},
    {"bytes_that_are_not_utf8", "a\xff\xfe\xc3.txt", "a___.txt"},
    {"an_overlong_slash", "a\xc0\xaf"s + "b", "a__b"},
    {"a_surrogate", "\xed\xa0\x80", "___"},
    {"special_characters", "<a>:\"b\"|c?*.txt", "_a___b__c__.txt"},
    {"a_device", "CON", "_CON"},
    {"a_device_with_extension", "nul.tar.gz", "_nul.tar.gz"},
    {"a_device_with_blanks", "aux .txt", "_aux .txt"},
    {"a_port", "Com1.txt", "_Com1.txt"},
    {"a_port_with_superscript", "LPT\u00b2", "_LPT\u00b2"},
    {"a_console", "CONIN$", "_CONIN$"},
    {"nearly_a_device", "CONTRACT.pdf", "CONTRACT.pdf"},
    {"nearly_a_port", "com10.txt", "com10.txt"},
    {"a_port_without_number", "com.txt", "com.txt"},
    {"a_device_after_a_path", "a/prn", "_prn"},
};

class safe_names : public testing::TestWithParam<name_case> {};

TEST_P(safe_names, are_made) {
    EXPECT_EQ(safe_file_name(GetParam().m_wanted), GetParam().m_safe);
    EXPECT_EQ(safe_file_name(GetParam().m_safe), GetParam().m_safe);
}

INSTANTIATE_TEST_SUITE_P(of, safe_names, testing::ValuesIn(name_cases),
                         test_support::case_name<name_case>);

TEST(long_names, keep_their_extensions) {
    EXPECT_EQ(safe_file_name(std::string(10'000, 'a') + ".jpeg"),
              std::string(longest_safe_name - 5, 'a') + ".jpeg");
    EXPECT_EQ(safe_file_name(std::string(10'000, 'a')), std::string(longest_safe_name, 'a'));
    EXPECT_EQ(safe_file_name("a." + std::string(10'000, 'b')),
              "a." + std::string(longest_safe_name - 2, 'b'));
}

TEST(long_names, are_cut_between_characters) {
    for (std::size_t before = 0; before < 4; ++before) {
        std::string name(before, 'a');
        for (int count = 0; count < 1000; ++count) name += "\U0001f600";
        const std::string safe = safe_file_name(name + ".txt");
        EXPECT_LE(safe.size(), longest_safe_name);
        EXPECT_GT(safe.size(), longest_safe_name - 4);
        EXPECT_TRUE(is_utf8(safe));
        EXPECT_EQ(safe.substr(safe.size() - 4), ".txt");
    }
}

TEST(long_names, do_not_end_with_the_blanks_at_the_cut) {
    const std::string name = "a" + std::string(10'000, ' ') + "b";
    EXPECT_EQ(safe_file_name(name), "a");
    EXPECT_EQ(safe_file_name(name + ".txt"), "a.txt");
    EXPECT_EQ(safe_file_name("con" + std::string(10'000, ' ') + "b"), "_con");
    EXPECT_EQ(safe_file_name("con." + std::string(196, 'b')), "_con." + std::string(195, 'b'));
}

/// What must hold of every name but the empty one.
void expect_safe(const std::string& name) {
    SCOPED_TRACE(printable(name, character_set::ascii));
    EXPECT_LE(name.size(), longest_safe_name);
    EXPECT_TRUE(is_utf8(name));
    EXPECT_EQ(name.find_first_of("/\\<>:\"|?*\x7f"), std::string::npos);
    EXPECT_EQ(printable(name, character_set::utf8), name);
    EXPECT_EQ(std::string(". -").find(name.front()), std::string::npos);
    EXPECT_EQ(std::string(". ").find(name.back()), std::string::npos);
}

TEST(names_of_few_characters, are_safe) {
    const std::string_view pieces[] = {"a",  ".",      "-",    " ",      "/", "\\",
                                       "\n", "\u202e", "\xff", "\u00e9", ":", "con"};
    for (const std::string_view first : pieces)
        for (const std::string_view second : pieces)
            for (const std::string_view third : pieces)
                for (const std::string_view fourth : pieces) {
                    const std::string name = safe_file_name(
                        std::string(first).append(second).append(third).append(fourth));
                    if (!name.empty()) expect_safe(name);
                }
}

TEST(numbers, stand_before_the_extension) {
    EXPECT_EQ(numbered_file_name("a.txt", 2), "a-2.txt");
    EXPECT_EQ(numbered_file_name("a", 10), "a-10");
    EXPECT_EQ(numbered_file_name("a.b c", 3), "a.b c-3");
    const std::string longest = safe_file_name(std::string(10'000, 'a') + ".jpeg");
    EXPECT_LE(numbered_file_name(longest, UINT64_MAX).size(), 255U);
}

TEST(extensions, follow_from_the_type) {
    EXPECT_EQ(extension_for("Text/HTML"), "html");
    EXPECT_EQ(extension_for("message/rfc822"), "eml");
    EXPECT_EQ(extension_for("message/delivery-status"), "txt");
    EXPECT_EQ(extension_for("text/unknown"), "txt");
    EXPECT_EQ(extension_for("application/unknown"), "bin");
    EXPECT_EQ(extension_for("(no type)"), "bin");
    EXPECT_EQ(extension_for(""), "bin");
}

} // namespace
