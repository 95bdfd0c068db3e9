// Passing over clean lines makes no difference to the findings.

#include <mail_findings.h>

#include "findings/message_check.h"
#include "findings/message_lines.h"
#include "findings/reporter.h"
#include "support/escape.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace detail = mail_structure_detail::findings;

void append(void* text, const mail_findings::finding& found) {
    *static_cast<std::string*>(text) +=
        std::string(mail_findings::text_of(found.m_name)) + ' '
        + std::string(mail_findings::text_of(found.m_level)) + ' ' + std::to_string(found.m_offset)
        + '+' + std::to_string(found.m_length) + " in line " + std::to_string(found.m_line) + '\n';
}

std::string findings_of(std::string_view message) {
    std::string text;
    mail_findings::find(message, append, &text);
    return text;
}

/// The same, with every line looked at alone.
std::string findings_line_by_line(std::string_view message) {
    std::string text;
    const detail::reporter report(append, &text);
    detail::message_check check(report);
    detail::message_lines lines(message);
    detail::message_line line;
    while (lines.next(line)) check.take(line);
    check.end();
    return text;
}

/// A message with a body in that encoding, which random lines follow.
class message_of_lines {
public:
    explicit message_of_lines(unsigned seed) : m_random(seed) {}

    std::string make() {
        m_line_end = one_of({"\n", "\r\n"});
        const std::string encoding =
            one_of({"7bit", "8bit", "binary", "base64", "quoted-printable", "x-uuencode", "x"});
        m_is_base64 = encoding == "base64";
        std::string text = "Date: x" + m_line_end + "From: x" + m_line_end;
        const bool is_multipart = m_random() % 2 == 0;
        if (is_multipart)
            text += "Content-Type: multipart/mixed; boundary=b" + m_line_end + m_line_end + "--b"
                    + m_line_end;
        text += "Content-Transfer-Encoding: " + encoding + m_line_end + m_line_end;
        for (auto left = m_random() % 60; left != 0; --left) text += line();
        if (m_random() % 8 == 0)
            for (int left = 100; left != 0; --left) text += m_line_end;
        if (is_multipart) text += "--b--" + m_line_end;
        for (auto left = m_random() % 9; left != 0; --left) text += line();
        return text;
    }

private:
    std::string one_of(const std::vector<std::string>& choices) {
        return choices[m_random() % choices.size()];
    }
    /// Most lines have nothing unusual in them.
    std::string line() {
        const std::string usual = m_is_base64 ? "QUJDREVGR0g/+z09" : "a few words of text here, ";
        std::string text;
        for (auto left = m_random() % 6; left != 0; --left) text += usual;
        if (m_random() % 20 == 0)
            text += one_of({"=",
                            "==",
                            "=3D",
                            "=x",
                            "= ",
                            "-",
                            "--",
                            " --B",
                            "--b",
                            "\xC3\xA4",
                            std::string(1, '\0'),
                            "\r",
                            "\rx",
                            " ",
                            "\t",
                            "AB",
                            "/+",
                            ",",
                            "~",
                            std::string(998, 'x'),
                            std::string(999, 'x'),
                            std::string(2000, 'x')});
        return text + (m_random() % 60 == 0 ? one_of({"\n", "\r\n", "\r\r\n"}) : m_line_end);
    }

    std::mt19937 m_random;
    std::string m_line_end;
    bool m_is_base64 = false;
};

TEST(clean_lines, make_no_difference_to_the_findings) {
    std::size_t length = 0;
    message_of_lines messages(1);
    for (int round = 0; round < 3000; ++round) {
        const std::string message = messages.make();
        const std::string wanted = findings_line_by_line(message);
        ASSERT_EQ(findings_of(message), wanted) << test_support::escaped(message);
        length += wanted.size();
    }
    EXPECT_GT(length, 150'000U); // there was something to find
}

TEST(clean_lines, are_whole_and_leave_the_rest) {
    const std::string line(40, 'a');
    const auto found = [](const std::string& text) {
        const detail::clean_lines lines = detail::clean_lines_at_front(
            text, detail::transfer_encoding::seven_bit, text.find("\r\n") != std::string::npos);
        return std::to_string(lines.m_lines) + " lines, " + std::to_string(lines.m_bytes);
    };
    const std::string lines = line + '\n' + line + '\n' + line + '\n' + line + '\n';
    EXPECT_EQ(found(lines), "3 lines, 123");
    EXPECT_EQ(found(lines + "--" + lines), "3 lines, 123");
    EXPECT_EQ(found(lines + lines), "7 lines, 287");
    EXPECT_EQ(found("\xC3" + lines), "0 lines, 0");
    EXPECT_EQ(found(line), "0 lines, 0");
    EXPECT_EQ(found(""), "0 lines, 0");
    EXPECT_EQ(found(line + "\r\n" + line + line + "\r\n" + line), "2 lines, 124");
    EXPECT_EQ(found('\n' + line + "\r\n" + line + line + "\r\n" + line), "0 lines, 0");
}

} // namespace
