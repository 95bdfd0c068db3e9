// Sources cut into batches: what a file is taken for, where its messages are, and what is told of
// files that cannot be read.

#include "scan/pipeline/pile_reader.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// Keeps all that is handed over.
class collector final : public batch_exchange {
public:
    std::unique_ptr<batch> fresh() override { return std::make_unique<batch>(); }
    bool take(std::unique_ptr<batch> full) override {
        m_largest = std::max(m_largest, full->m_bytes.capacity());
        m_batches.push_back(std::move(full));
        return m_batches.size() < m_wanted;
    }
    void count_read(std::uint64_t bytes) override { m_read += bytes; }

    /// The offset, length and text of each message.
    std::string messages() const {
        std::string result;
        for (const auto& each : m_batches)
            for (const batch_message& message : each->m_messages)
                result += std::to_string(message.m_offset) + '+' + std::to_string(message.m_length)
                          + ' '
                          + std::string(each->m_bytes.view().substr(
                              message.m_begin, static_cast<std::size_t>(message.m_length)))
                          + '|';
        return result;
    }
    std::string faults() const {
        std::string result;
        for (const auto& each : m_batches)
            for (const scan_fault& fault : each->m_faults)
                result += std::string(fault.m_code) + '@' + std::to_string(fault.m_byte) + ' ';
        return result;
    }

    std::vector<std::unique_ptr<batch>> m_batches;
    std::size_t m_wanted = static_cast<std::size_t>(-1);
    std::size_t m_largest = 0;
    std::uint64_t m_read = 0;
};

class pile_reading : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "pile-XXXXXX").string();
        m_folder = ::mkdtemp(pattern.data());
    }
    void TearDown() override { fs::remove_all(m_folder); }

    std::string file(std::string_view bytes) {
        const std::string name = (m_folder / "pile").string();
        std::ofstream(name, std::ios::binary)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return name;
    }
    void read(std::string_view bytes, const pile_options& options = {}) {
        pile_reader reader(options, m_collected);
        EXPECT_TRUE(reader.read(file(bytes), true));
        ASSERT_FALSE(m_collected.m_batches.empty());
        EXPECT_TRUE(m_collected.m_batches.back()->m_ends_source);
        EXPECT_EQ(m_collected.m_read, bytes.size());
    }
    source_kind kind() const { return m_collected.m_batches.back()->m_source->m_kind; }

    fs::path m_folder;
    collector m_collected;
};

const std::string separator = "From ada Fri Sep 16 22:26:51 2016\n";

TEST_F(pile_reading, of_an_mbox) {
    read(separator + "a: b\n\nhi\n\n" + separator + "c: d\n\nho\n\n");
    EXPECT_EQ(kind(), source_kind::mbox);
    EXPECT_EQ(m_collected.messages(), "34+9 a: b\n\nhi\n|78+9 c: d\n\nho\n|");
    EXPECT_EQ(m_collected.faults(), "");
}

TEST_F(pile_reading, of_one_message) {
    read("a: b\n\nFrom here on\n\n");
    EXPECT_EQ(kind(), source_kind::message);
    EXPECT_EQ(m_collected.messages(), "0+20 a: b\n\nFrom here on\n\n|");
}

TEST_F(pile_reading, of_an_mbox_that_is_to_be_one_message) {
    pile_options options;
    options.m_one = true;
    read(separator + "a: b\n\n" + separator + "c: d\n\n", options);
    EXPECT_EQ(m_collected.m_batches.back()->m_messages.size(), 1U);
}

TEST_F(pile_reading, of_a_from_line_that_no_message_follows) {
    read("From here on all is prose.\n");
    EXPECT_EQ(kind(), source_kind::message);
    EXPECT_EQ(m_collected.messages(), "0+27 From here on all is prose.\n|");
}

TEST_F(pile_reading, of_an_empty_file) {
    read("");
    EXPECT_EQ(kind(), source_kind::empty);
    EXPECT_EQ(m_collected.messages() + m_collected.faults(), "");
}

TEST_F(pile_reading, of_what_is_no_mail) {
    read("\x7f"
         "ELF and so on\n");
    EXPECT_EQ(kind(), source_kind::unknown);
    EXPECT_EQ(m_collected.faults(), "not-mail@0 ");
}

TEST_F(pile_reading, of_what_is_no_mail_in_a_folder_is_no_error) {
    pile_reader reader({}, m_collected);
    EXPECT_TRUE(reader.read(file("\x7f"), true));
    EXPECT_TRUE(reader.read(file("\x7f"), false));
    ASSERT_EQ(m_collected.faults(), "not-mail@0 not-mail@0 ");
    EXPECT_EQ(m_collected.m_batches[0]->m_faults[0].m_level, fault_level::error);
    EXPECT_EQ(m_collected.m_batches[1]->m_faults[0].m_level, fault_level::note);
}

TEST_F(pile_reading, of_a_message_that_begins_with_a_quoted_from_line) {
    read(">From ada\na: b\n\nhi\n");
    EXPECT_EQ(kind(), source_kind::message);
}

TEST_F(pile_reading, of_a_separator_that_no_message_follows) {
    read(separator + "a: b\n\n" + separator);
    EXPECT_EQ(kind(), source_kind::mbox);
    EXPECT_EQ(m_collected.messages(), "34+5 a: b\n|74+0 |");
}

TEST_F(pile_reading, of_a_file_that_is_not_there_and_of_a_folder) {
    pile_reader reader({}, m_collected);
    EXPECT_TRUE(reader.read((m_folder / "none").string(), true));
    EXPECT_TRUE(reader.read(m_folder.string(), true));
    EXPECT_EQ(m_collected.faults(), "cannot-open@0 cannot-open@0 ");
}

/// Five megabytes of messages of many lengths.
std::string many_messages(std::string& wanted) {
    std::string bytes;
    for (std::size_t i = 0; bytes.size() < 5'000'000; ++i) {
        bytes += separator;
        const std::string message =
            "n: " + std::to_string(i) + "\n\n" + std::string(i * 7 % 5000, 'x') + "\n";
        wanted += std::to_string(bytes.size()) + '+' + std::to_string(message.size()) + ' '
                  + message + '|';
        bytes += message + "\n";
    }
    return bytes;
}

TEST_F(pile_reading, cuts_a_large_mbox_into_batches) {
    std::string wanted;
    read(many_messages(wanted));
    EXPECT_EQ(m_collected.messages(), wanted);
    EXPECT_GT(m_collected.m_batches.size(), 3U);
    EXPECT_LT(m_collected.m_largest, 5'000'000U);
}

TEST_F(pile_reading, ends_when_no_more_is_wanted) {
    std::string wanted;
    m_collected.m_wanted = 2;
    pile_reader reader({}, m_collected);
    EXPECT_FALSE(reader.read(file(many_messages(wanted)), true));
    EXPECT_EQ(m_collected.m_batches.size(), 2U);
}

/// The message in the middle is taken apart while it is read; what is beside it is not.
TEST_F(pile_reading, takes_a_huge_message_apart_and_does_not_hold_it) {
    constexpr std::size_t body_bytes = 50'000'000;
    std::string body;
    while (body.size() < body_bytes) body += "0123456789012345678901234567890123456789012345678\n";
    read(separator + "a: b\n\nhi\n\n" + separator
         + "Content-Type: multipart/mixed; boundary=b\n\n--b\n\n" + body + "--b--\n\n" + separator
         + "c: d\n\nho\n");
    const std::vector<std::unique_ptr<batch>>& batches = m_collected.m_batches;
    std::vector<const batch_message*> messages;
    for (const auto& each : batches)
        for (const batch_message& message : each->m_messages) messages.push_back(&message);
    ASSERT_EQ(messages.size(), 3U);
    EXPECT_EQ(messages[0]->m_large, nullptr);
    ASSERT_NE(messages[1]->m_large, nullptr);
    EXPECT_EQ(messages[2]->m_large, nullptr);
    const large_message& large = *messages[1]->m_large;
    EXPECT_EQ(messages[1]->m_length, large.length());
    EXPECT_EQ(large.length(), 48U + body.size() + 6);
    const MailStructure::MimeObj& root = large.message().m_root;
    ASSERT_EQ(root.m_children.size(), 1U);
    EXPECT_EQ(root.m_children[0].m_body_len, body.size());
    EXPECT_EQ(root.m_mime_len, large.length());
    EXPECT_LT(m_collected.m_largest, 80'000'000U); // the buffer doubles until it is known
}

TEST_F(pile_reading, hands_over_doubtful_lines_before_their_message_ends) {
    std::string bytes = separator + "a: b\n\n";
    const std::size_t lines = 300'000;
    for (std::size_t i = 0; i < lines; ++i) bytes += "From x\n";
    read(bytes);
    std::size_t faults = 0;
    for (const auto& each : m_collected.m_batches) {
        EXPECT_LT(each->m_faults.size(), lines);
        faults += each->m_faults.size();
    }
    EXPECT_EQ(faults, lines);
}

} // namespace
