// Compressed files and archives, in all forms that are unpacked: what comes out of them whole, cut
// short, damaged, and beyond the limits.

#include "scan/input/archive_reader.h"
#include "scan/pipeline/pile_reader.h"

#include <archive.h>
#include <archive_entry.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// Writes the faults, members and messages of what is handed over.
class teller final : public batch_exchange {
public:
    std::unique_ptr<batch> fresh() override { return std::make_unique<batch>(); }
    bool take(std::unique_ptr<batch> full) override {
        for (const batch_message& message : full->m_messages) {
            m_messages += std::to_string(message.m_offset) + ' '
                          + std::string(full->m_bytes.view().substr(
                              message.m_begin, static_cast<std::size_t>(message.m_length)));
            ++m_count;
        }
        for (const scan_fault& fault : full->m_faults) m_faults += std::string(fault.m_code) + ' ';
        if (full->m_ends_source) m_members += full->m_source->m_member.value_or("-") + ' ';
        return true;
    }
    void count_read(std::uint64_t bytes) override { m_read += bytes; }

    std::string m_messages, m_faults, m_members;
    std::size_t m_count = 0;
    std::uint64_t m_read = 0;
};

const std::string separator = "From ada Fri Sep 16 22:26:51 2016\n";

/// Some 60 kB that do not compress well.
std::string pile() {
    std::string bytes;
    std::uint32_t state = 1;
    for (int number = 0; number < 200; ++number) {
        bytes += separator + "n: " + std::to_string(number) + "\n\n";
        for (int digit = 0; digit < 250; ++digit) {
            state = state * 1664525 + 1013904223;
            bytes += static_cast<char>('!' + (state >> 24U) % 64);
        }
        bytes += "\n\n";
    }
    return bytes;
}

struct form {
    const char* m_name;
    int (*m_filter)(archive*);
    int (*m_format)(archive*);
};

std::vector<char> packed(const form& how, const std::vector<std::string>& files) {
    std::vector<char> bytes(4'000'000);
    std::size_t used = 0;
    archive* const writer = archive_write_new();
    how.m_filter(writer);
    how.m_format(writer);
    archive_write_set_bytes_in_last_block(writer, 1);
    EXPECT_EQ(archive_write_open_memory(writer, bytes.data(), bytes.size(), &used), ARCHIVE_OK);
    int number = 0;
    for (const std::string& file : files) {
        archive_entry* const entry = archive_entry_new();
        archive_entry_set_pathname(entry, ("f" + std::to_string(++number)).c_str());
        archive_entry_set_filetype(entry, AE_IFREG);
        archive_entry_set_size(entry, static_cast<la_int64_t>(file.size()));
        EXPECT_EQ(archive_write_header(writer, entry), ARCHIVE_OK);
        archive_write_data(writer, file.data(), file.size());
        archive_entry_free(entry);
    }
    EXPECT_EQ(archive_write_close(writer), ARCHIVE_OK);
    archive_write_free(writer);
    bytes.resize(used);
    return bytes;
}

class packed_file : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "packed-XXXXXX").string();
        m_folder = ::mkdtemp(pattern.data());
        m_name = (m_folder / "packed").string();
    }
    void TearDown() override { fs::remove_all(m_folder); }

    void write(const std::vector<char>& bytes) {
        std::ofstream(m_name, std::ios::binary)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    teller read(const std::vector<char>& bytes) {
        teller told;
        write(bytes);
        pile_reader reader({}, told);
        EXPECT_TRUE(reader.read(m_name, true));
        return told;
    }
    static std::string messages_of(const std::string& file) {
        teller told;
        std::string pattern = (fs::temp_directory_path() / "plain-XXXXXX").string();
        ::close(::mkstemp(pattern.data()));
        std::ofstream(pattern, std::ios::binary) << file;
        pile_reader({}, told).read(pattern, true);
        fs::remove(pattern);
        return told.m_messages;
    }

    fs::path m_folder;
    std::string m_name;
};

class packed_pile : public packed_file, public testing::WithParamInterface<form> {
protected:
    static bool holds_files() { return GetParam().m_format != archive_write_set_format_raw; }
};

TEST_P(packed_pile, gives_the_messages_of_its_files) {
    std::vector<std::string> files = {pile()};
    if (holds_files()) files.insert(files.end(), {"a: b\n\nhi\n", "\x7f", ""});
    const teller told = read(packed(GetParam(), files));
    EXPECT_EQ(told.m_messages,
              messages_of(pile()) + (holds_files() ? messages_of(files[1]) : std::string()));
    EXPECT_EQ(told.m_members, holds_files() ? "f1 f2 f3 f4 - " : "- ");
    EXPECT_EQ(told.m_faults, holds_files() ? "not-mail " : "");
}

/// What comes before the place where the file breaks off is read, and the file is never taken for a
/// whole one.
TEST_P(packed_pile, that_is_cut_short_is_reported) {
    const std::vector<char> whole = packed(GetParam(), {pile()});
    const std::string messages = messages_of(pile());
    std::size_t most = 0;
    for (std::size_t size = 1; size < whole.size(); size += size < 600 ? 97 : 7001) {
        const teller told =
            read({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)});
        if (told.m_count == 200) continue; // what is missing is the end of the archive alone
        EXPECT_NE(told.m_faults, "") << "of " << size << " bytes";
        most = std::max(most, told.m_count);
        if (told.m_count > 1) { // the first one is whole
            EXPECT_EQ(told.m_messages.substr(0, 250), messages.substr(0, 250));
        }
    }
    if (GetParam().m_filter == archive_write_add_filter_none && holds_files()
        && GetParam().m_format != archive_write_set_format_7zip) {
        EXPECT_GT(most, 100U);
    }
}

TEST_P(packed_pile, that_gives_too_much_is_left_off) {
    write(packed(GetParam(), {pile() + std::string(3'000'000, '\n')}));
    file_reader file(m_name, [](std::uint64_t) {});
    archive_reader archive(file, {100'000, 2});
    archive_member member;
    ASSERT_TRUE(archive.next(member));
    std::vector<char> bytes(65536);
    std::size_t unpacked = 0;
    while (const std::size_t count = archive.read(bytes.data(), bytes.size())) unpacked += count;
    if (GetParam().m_filter == archive_write_add_filter_none
        && GetParam().m_format == archive_write_set_format_pax_restricted) {
        EXPECT_FALSE(archive.failure()); // an archive that is not compressed
        return;
    }
    ASSERT_TRUE(archive.failure());
    EXPECT_EQ(archive.failure()->m_code, "archive-limit");
    EXPECT_LT(unpacked, 1'000'000U);
    EXPECT_FALSE(archive.next(member));
}

INSTANTIATE_TEST_SUITE_P(
    forms, packed_pile,
    testing::Values(
        form{"gzip", archive_write_add_filter_gzip, archive_write_set_format_raw},
        form{"bzip2", archive_write_add_filter_bzip2, archive_write_set_format_raw},
        form{"xz", archive_write_add_filter_xz, archive_write_set_format_raw},
        form{"zstd", archive_write_add_filter_zstd, archive_write_set_format_raw},
        form{"lz4", archive_write_add_filter_lz4, archive_write_set_format_raw},
        form{"tar", archive_write_add_filter_none, archive_write_set_format_pax_restricted},
        form{"tar_gzip", archive_write_add_filter_gzip, archive_write_set_format_pax_restricted},
        form{"zip", archive_write_add_filter_none, archive_write_set_format_zip},
        form{"seven_zip", archive_write_add_filter_none, archive_write_set_format_7zip}),
    [](const auto& each) { return each.param.m_name; });

TEST_F(packed_file, within_a_packed_file_is_reported) {
    const form gzip{"", archive_write_add_filter_gzip, archive_write_set_format_raw};
    const form tar{"", archive_write_add_filter_none, archive_write_set_format_pax_restricted};
    const std::vector<char> inner = packed(gzip, {pile()});
    const teller told = read(packed(tar, {std::string(inner.data(), inner.size()), "a: b\n\n"}));
    EXPECT_EQ(told.m_faults, "nested-archive ");
    EXPECT_EQ(told.m_messages, "0 a: b\n\n");
}

TEST_F(packed_file, without_files_is_reported) {
    const form gzip{"", archive_write_add_filter_gzip, archive_write_set_format_raw};
    const form zip{"", archive_write_add_filter_none, archive_write_set_format_zip};
    EXPECT_EQ(read(packed(gzip, {""})).m_faults, "empty-archive ");
    EXPECT_EQ(read(packed(zip, {})).m_faults, "empty-archive ");
}

/// libarchive knows more filters, which would take a part of a message for all of it.
TEST_F(packed_file, is_never_a_message_with_packed_text_in_it) {
    for (const std::string body :
         {"begin 644 f\n#86)C\n`\nend\n", "begin-base64 644 f\nYWJj\n====\n", "#mtree\n./f\n"}) {
        const std::string message = "a: b\n\n" + body;
        const form gzip{"", archive_write_add_filter_gzip, archive_write_set_format_raw};
        EXPECT_EQ(read(packed(gzip, {message})).m_messages, "0 " + message);
        EXPECT_EQ(read({message.begin(), message.end()}).m_messages, "0 " + message);
    }
}

TEST(is_packed, by_the_first_bytes) {
    for (const std::string_view mail :
         {"", "From a", "a: b\n", "BZh9: a field\n", "PK: a\n", "7z: a\n"})
        EXPECT_FALSE(is_packed(mail)) << mail;
    EXPECT_TRUE(is_packed("BZh91AY&SY"));
    EXPECT_TRUE(is_packed(std::string(257, 'x') + std::string("ustar\0", 6)));
    EXPECT_FALSE(is_packed(std::string(257, 'x') + "ustar is a word"));
}

} // namespace
