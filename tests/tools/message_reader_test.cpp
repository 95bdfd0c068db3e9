// One reader for many files: each file's tree is as if it were the only file.

#include "common/message_reader.h"
#include "support/parse.h"
#include "support/repeated.h"
#include "support/tree_text.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using test_support::repeated;

/// A file that is written anew for each message, and removed when this object ends.
class rewritten_file {
public:
    rewritten_file() { ::close(::mkstemp(m_name.data())); }
    ~rewritten_file() { ::unlink(m_name.c_str()); }
    rewritten_file(const rewritten_file&) = delete;
    rewritten_file& operator=(const rewritten_file&) = delete;

    const std::string& with(const std::string& contents) const {
        std::FILE* const file = std::fopen(m_name.c_str(), "wb");
        EXPECT_EQ(std::fwrite(contents.data(), 1, contents.size(), file), contents.size());
        std::fclose(file);
        return m_name;
    }

private:
    std::string m_name = testing::TempDir() + "message_reader_test_XXXXXX";
};

const std::string multipart = "Content-Type: multipart/mixed; boundary=b\n"
                              "\n";
const std::string small = "A: b\n\nx\n";
const std::string parts = multipart + "--b\nC: d\n\ny\n--b\n\nz\n--b--\nend\n";
const std::string large = multipart + repeated(100000, "--b\nA: b\n\nx\n"); // more than 1 MiB

TEST(message_reader, gives_each_file_its_own_tree) {
    const rewritten_file file;
    message_reader reader(MailStructure::rules::classic);
    for (const std::string& contents : {small, parts, large, parts, small, large, large, small}) {
        ASSERT_TRUE(reader.read(file.with(contents)));
        EXPECT_EQ(reader.file().bytes(), contents);
        EXPECT_EQ(test_support::tree_text(reader.message().m_root),
                  test_support::tree_text(test_support::parse(contents).m_message.m_root));
    }
}

TEST(message_reader, moves_the_ranges_of_an_mbox_file_and_of_no_other) {
    const rewritten_file file;
    message_reader reader(MailStructure::rules::classic);
    for (const std::string separator : {"", "From ada\n", ""}) {
        ASSERT_TRUE(reader.read(file.with(separator + small)));
        EXPECT_EQ(reader.message().m_root.m_headers.at(0).m_beg, separator.size());
        EXPECT_EQ(reader.message().m_root.m_body_beg, separator.size() + 6);
    }
}

TEST(message_reader, holds_the_text_if_it_is_told_to) {
    const rewritten_file file;
    for (const bool keep_text : {false, true}) {
        message_reader reader(MailStructure::rules::classic, keep_text);
        for (const std::string& contents : {large, small, small}) {
            ASSERT_TRUE(reader.read(file.with(contents)));
            EXPECT_EQ(reader.message().m_root.m_body_text.empty(), !keep_text);
        }
        EXPECT_EQ(reader.message().m_root.m_body_text, keep_text ? "x\r\n" : "");
    }
}

TEST(message_reader, reads_by_the_rules_that_it_is_given) {
    const rewritten_file file;
    const std::string& name = file.with("From ada\nX-2: y\nSubject: z\n\nx\n");
    for (const auto by : {MailStructure::rules::classic, MailStructure::rules::standard}) {
        message_reader reader(by);
        ASSERT_TRUE(reader.read(name));
        EXPECT_EQ(reader.message().m_root.m_headers.size(),
                  by == MailStructure::rules::standard ? 2U : 0U);
        EXPECT_EQ(reader.source().m_rules, by);
        EXPECT_EQ(reader.source().m_message_start, 9U);
        EXPECT_EQ(reader.source().m_bytes, reader.file().bytes());
    }
}

TEST(message_reader, complains_once_and_reads_the_next_file) {
    const rewritten_file file;
    message_reader reader(MailStructure::rules::classic);
    ASSERT_TRUE(reader.read(file.with(parts)));
    const std::string name = file.with("A: b\n\na\rb\n");
    testing::internal::CaptureStderr();
    EXPECT_FALSE(reader.read(name));
    EXPECT_FALSE(reader.read(name + ".none"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "mailstructure: " + name + ": stray byte: a CR inside a line at byte 7\n"
                  + "mailstructure: " + name + ".none: cannot open: No such file or directory\n");
    ASSERT_TRUE(reader.read(file.with(small)));
    EXPECT_EQ(test_support::tree_text(reader.message().m_root),
              test_support::tree_text(test_support::parse(small).m_message.m_root));
}

} // namespace
