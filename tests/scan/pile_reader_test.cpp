// Sources cut into batches: what a file is taken for, where its messages are, and what is told of
// files that cannot be read.

#include "scan/pipeline/pile_reader.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
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
    EXPECT_LT(m_collected.m_largest, 1'000'000U);
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

/// Reads the part of an mbox between two offsets.
class part_reading : public pile_reading {
protected:
    /// What read() has found in the part, and where the messages were.
    std::string part(const std::string& name, std::uint64_t begin,
                     std::optional<std::uint64_t> end) {
        m_collected.m_batches.clear();
        m_collected.m_read = 0;
        pile_reader reader({}, m_collected);
        source_part wanted;
        wanted.m_begin.m_offset = begin;
        wanted.m_end = end;
        EXPECT_TRUE(reader.read(name, true, wanted));
        const auto text = [](const std::optional<std::uint64_t>& offset) {
            return offset ? std::to_string(*offset) : "none";
        };
        return m_collected.messages() + m_collected.faults() + text(reader.bounds().m_first) + ' '
               + text(reader.bounds().m_last);
    }
};

const std::string first_message = separator + "a: b\n\nFrom here\n\n"; // 51 bytes
const std::string second_message = separator + "c: d\n\nho\n\n";       // 44 bytes

TEST_F(part_reading, takes_the_messages_whose_separators_begin_in_the_part) {
    const std::string name = file(first_message + second_message + second_message);
    const std::string first = "34+16 a: b\n\nFrom here\n|";
    const std::string second = "85+9 c: d\n\nho\n|";
    const std::string third = "129+9 c: d\n\nho\n|";
    EXPECT_EQ(part(name, 0, std::nullopt), first + second + third + "doubtful-from@40 0 none");
    EXPECT_EQ(part(name, 0, 1), first + "doubtful-from@40 0 51");
    EXPECT_EQ(part(name, 0, 51), first + "doubtful-from@40 0 51");
    EXPECT_EQ(part(name, 0, 52), first + second + "doubtful-from@40 0 95");
    EXPECT_EQ(part(name, 1, 51), "none 51");
    EXPECT_EQ(part(name, 1, 52), second + "51 95");
    EXPECT_EQ(part(name, 51, 95), second + "51 95");
    EXPECT_EQ(part(name, 51, 96), second + third + "51 none");
    EXPECT_EQ(part(name, 52, std::nullopt), third + "95 none");
    EXPECT_EQ(part(name, 96, std::nullopt), "none none");
    EXPECT_EQ(part(name, UINT64_MAX, std::nullopt), "none none");
}

TEST_F(part_reading, of_any_two_halves_gives_the_whole) {
    for (const std::string line_end : {"\n", "\r\n"}) {
        std::string bytes;
        for (const std::string& each :
             {separator + "a: b\n\n\n\nFrom x\n", separator + separator + "b: c\n\n" + separator,
              std::string("From 0123456789abcdef0123456789abcdef01234567 Mon Sep 17 00:00:00 2001\n"
                          "c: d\n\n"),
              separator + "d: e\n", separator + "e: f\n\n\n"})
            for (const char c : each) c == '\n' ? bytes += line_end : bytes += c;
        const std::string name = file(bytes);
        part(name, 0, std::nullopt);
        const std::string messages = m_collected.messages();
        const std::string faults = m_collected.faults();
        for (std::uint64_t cut = 1; cut < bytes.size(); ++cut) {
            part(name, 0, cut);
            std::string both = m_collected.messages();
            std::string both_faults = m_collected.faults();
            part(name, cut, std::nullopt);
            EXPECT_EQ(both + m_collected.messages(), messages) << cut;
            EXPECT_EQ(both_faults + m_collected.faults(), faults) << cut;
        }
    }
}

TEST_F(part_reading, looks_at_the_first_line_for_the_date_of_a_patch) {
    const std::string patch =
        "From 0123456789abcdef0123456789abcdef01234567 Mon Sep 17 00:00:00 2001\na: b\n\n";
    const std::string name = file(patch + patch);
    EXPECT_EQ(part(name, 1, std::nullopt), "148+5 a: b\n|77 none");
}

TEST_F(part_reading, reads_nothing_that_stands_before_the_part) {
    std::string wanted;
    const std::string bytes = many_messages(wanted);
    const std::string name = file(bytes);
    const std::uint64_t middle = bytes.find(separator, bytes.size() - 1'000'000);
    part(name, middle, std::nullopt);
    EXPECT_EQ(m_collected.messages(),
              wanted.substr(wanted.find(std::to_string(middle + separator.size()) + '+')));
    EXPECT_LT(m_collected.m_read, bytes.size() - middle + 1000);
    part(name, 1, 1'000'000);
    EXPECT_LT(m_collected.m_read, 3'000'000U);
}

/// A scan goes on where any of the batches says, as if it had not stopped.
TEST_F(part_reading, goes_on_behind_each_batch) {
    std::string bytes = separator + "a: b\n\n";
    for (std::size_t i = 0; i < 400'000; ++i) bytes += i % 500 == 0 ? "From x\n" : "1234567\n";
    std::string wanted;
    const std::string name = file(many_messages(wanted) + bytes + "From x\n\n" + bytes);
    part(name, 0, std::nullopt);
    std::vector<scan_position> places;
    std::vector<std::string> before = {""};
    for (const auto& each : m_collected.m_batches) {
        collector one;
        one.m_batches.push_back(std::make_unique<batch>());
        one.m_batches[0]->m_faults = each->m_faults;
        before.push_back(before.back() + one.faults());
        ASSERT_TRUE(each->m_next);
        places.push_back(*each->m_next);
    }
    EXPECT_EQ(places.back(), (scan_position{1, 0, 0}));
    const std::string messages = m_collected.messages();
    const std::string faults = m_collected.faults();
    for (std::size_t i = 0; i + 1 < places.size(); ++i) {
        ASSERT_GT(places[i].m_offset, 0U);
        part(name, places[i].m_offset, std::nullopt);
        const std::string rest = m_collected.messages();
        EXPECT_EQ(messages.substr(messages.size() - rest.size()), rest);
        EXPECT_EQ(rest.substr(0, rest.find('+')),
                  std::to_string(places[i].m_offset + separator.size()));
        EXPECT_TRUE(before[i + 1] + m_collected.faults() == faults);
    }
}

/// Whether a message is held does not depend on what stands before it.
TEST_F(part_reading, holds_messages_by_their_length_alone) {
    constexpr std::size_t most = std::size_t{32} << 20;
    for (const std::size_t before : {300'000UL, 700'000UL}) {
        std::string bytes;
        for (const std::size_t length : {before + 5, most, most + 1})
            bytes += separator + "a: b\n" + std::string(length - 5, '\n') + "\n";
        part(file(bytes), 0, std::nullopt);
        std::vector<bool> large;
        for (const auto& each : m_collected.m_batches)
            for (const batch_message& message : each->m_messages)
                large.push_back(message.m_large != nullptr);
        EXPECT_EQ(large, (std::vector<bool>{false, false, true})) << before;
    }
}

} // namespace
