// Reading a file in large blocks: which buffers are read so, that a host notices nothing but the
// speed, and what is left after a failure.

#include <mail_structure.h>

#include "parser/lines/read_ahead.h"
#include "support/temporary_file.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <ios>
#include <iterator>
#include <locale>
#include <sstream>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

using mail_structure_detail::read_ahead;
using test_support::temporary_file;

namespace {

constexpr std::size_t block = 65536;         // the first one of a file
constexpr std::size_t larger_block = 262144; // each one after it

/// Bytes whose values depend on their offsets.
std::string bytes_of_length(std::size_t length) {
    std::string bytes;
    while (bytes.size() < length) bytes += std::to_string(bytes.size()) + '\n';
    return bytes.substr(0, length);
}

std::string all_from(std::streambuf& buffer) {
    return std::string(std::istreambuf_iterator<char>(&buffer), {});
}

/// A conversion, although it converts each byte to itself.
class busy_conversion : public std::codecvt<char, char, std::mbstate_t> {
    bool do_always_noconv() const noexcept override { return false; }
};

class own_filebuf : public std::filebuf {};

TEST(read_ahead, suits_plain_files_alone) {
    const temporary_file file("a: b\n");
    std::ifstream open(file.name());
    EXPECT_TRUE(read_ahead::suits(*open.rdbuf()));

    std::filebuf closed;
    EXPECT_FALSE(read_ahead::suits(closed));
    std::stringbuf text("a: b\n");
    EXPECT_FALSE(read_ahead::suits(text));
    own_filebuf own;
    own.open(file.name(), std::ios::in);
    EXPECT_FALSE(read_ahead::suits(own)) << "the host's code might be asked for bytes";
    std::ifstream converting;
    converting.imbue(std::locale(std::locale(), new busy_conversion));
    converting.open(file.name());
    EXPECT_FALSE(read_ahead::suits(*converting.rdbuf()));
}

TEST(read_ahead, suits_files_that_are_not_begun) {
    const temporary_file file("a: b\nc: d\n");
    std::fstream in(file.name(), std::ios::in | std::ios::out);
    in.get();
    EXPECT_FALSE(read_ahead::suits(*in.rdbuf())) << "a byte may have been put back";
    in.seekg(5);
    EXPECT_TRUE(read_ahead::suits(*in.rdbuf()));
    std::filebuf written;
    written.open(file.name(), std::ios::out);
    EXPECT_FALSE(read_ahead::suits(written)) << "nothing can be read from it";
}

TEST(read_ahead, does_not_suit_a_pipe) {
    int ends[2] = {};
    ASSERT_EQ(pipe(ends), 0);
    std::ifstream in("/dev/fd/" + std::to_string(ends[0]));
    if (!in.is_open()) GTEST_SKIP() << "no /dev/fd here";
    EXPECT_FALSE(read_ahead::suits(*in.rdbuf()));
    close(ends[0]);
    close(ends[1]);
}

TEST(read_ahead, gives_all_bytes) {
    for (const std::size_t length :
         {std::size_t{0}, std::size_t{1}, block - 1, block, block + 1, block + larger_block - 1,
          block + larger_block, block + larger_block + 1, block + 3 * larger_block + 7}) {
        const std::string bytes = bytes_of_length(length);
        const temporary_file file(bytes);
        std::ifstream in(file.name(), std::ios::binary);
        read_ahead ahead(*in.rdbuf());
        EXPECT_TRUE(all_from(ahead) == bytes) << length << " bytes";
    }
}

TEST(read_ahead, begins_where_the_file_stands_and_leaves_it_where_its_reader_stopped) {
    const std::string bytes = bytes_of_length(block + 2 * larger_block);
    const temporary_file file(bytes);
    for (const std::size_t first : {std::size_t{0}, std::size_t{5}, std::size_t{9000}}) {
        for (const std::size_t count : {std::size_t{0}, std::size_t{1}, block - 1, block, block + 1,
                                        block + larger_block, block + larger_block + 3}) {
            std::ifstream in(file.name(), std::ios::binary);
            std::string before(first, ' ');
            in.read(before.data(), static_cast<std::streamsize>(first));
            {
                read_ahead ahead(*in.rdbuf());
                std::string taken(count, ' ');
                ahead.sgetn(taken.data(), static_cast<std::streamsize>(count));
                ASSERT_TRUE(taken == bytes.substr(first, count))
                    << count << " bytes from " << first;
            }
            EXPECT_EQ(in.tellg(), static_cast<std::streamoff>(first + count));
            EXPECT_TRUE(all_from(*in.rdbuf()) == bytes.substr(first + count))
                << count << " bytes from " << first;
        }
    }
}

/// The memory of this process as a file, from the start of a mapping that is one page longer than
/// the file that it maps. Reading that page fails with an error, in the middle of a block.
class memory_file {
public:
    explicit memory_file(std::size_t pages) : m_bytes(pages * page()) {
        std::FILE* const mapped = std::tmpfile();
        if (mapped == nullptr || ftruncate(fileno(mapped), static_cast<off_t>(m_bytes)) != 0)
            std::abort();
        m_place =
            mmap(nullptr, m_bytes + page(), PROT_READ | PROT_WRITE, MAP_SHARED, fileno(mapped), 0);
        std::fclose(mapped);
        if (m_place == MAP_FAILED) std::abort();
    }
    ~memory_file() { munmap(m_place, m_bytes + page()); }
    memory_file(const memory_file&) = delete;
    memory_file& operator=(const memory_file&) = delete;

    char* begin() const { return static_cast<char*>(m_place); }
    std::size_t bytes() const { return m_bytes; }
    /// A stream at the first byte of the mapping. It is not open where the system has no such file.
    std::ifstream stream() const {
        std::ifstream in("/proc/self/mem", std::ios::binary);
        in.seekg(static_cast<std::streamoff>(reinterpret_cast<std::uintptr_t>(m_place)));
        return in;
    }

private:
    static std::size_t page() { return static_cast<std::size_t>(sysconf(_SC_PAGESIZE)); }

    std::size_t m_bytes;
    void* m_place = nullptr;
};

/// In pages of 4 KiB: a failure in the first block, in the second one and in a later one.
class read_error : public testing::TestWithParam<std::size_t> {};

TEST_P(read_error, comes_at_its_own_place) {
    const memory_file memory(GetParam());
    const std::string bytes = bytes_of_length(memory.bytes());
    bytes.copy(memory.begin(), bytes.size());
    std::ifstream in = memory.stream();
    if (!in.is_open() || !read_ahead::suits(*in.rdbuf()))
        GTEST_SKIP() << "no file here whose reading can fail";
    read_ahead ahead(*in.rdbuf());
    std::string found;
    EXPECT_THROW(for (int byte = ahead.sbumpc(); byte != std::char_traits<char>::eof();
                      byte = ahead.sbumpc()) found += static_cast<char>(byte),
                 std::ios_base::failure);
    EXPECT_TRUE(found == bytes) << found.size() << " bytes of " << bytes.size();
}

TEST_P(read_error, ends_a_message_as_by_getline) {
    const memory_file memory(GetParam());
    const std::string bytes = "a: b\n\n" + bytes_of_length(memory.bytes() - 6);
    bytes.copy(memory.begin(), bytes.size());
    for (const auto mask : {std::ios::goodbit, std::ios::badbit}) {
        std::ifstream for_fill = memory.stream();
        if (!for_fill.is_open() || !read_ahead::suits(*for_fill.rdbuf()))
            GTEST_SKIP() << "no file here whose reading can fail";
        std::ifstream for_getline = memory.stream();
        for_fill.exceptions(mask);
        for_getline.exceptions(mask);
        std::uint32_t lines = 0;
        std::string line;
        bool getline_threw = false;
        try {
            while (std::getline(for_getline, line)) ++lines;
        } catch (const std::ios_base::failure&) {
            getline_threw = true;
        }
        MailStructure message;
        bool fill_threw = false;
        try {
            message.Fill(for_fill);
        } catch (const std::ios_base::failure&) {
            fill_threw = true;
        }
        EXPECT_EQ(fill_threw, getline_threw);
        EXPECT_EQ(for_fill.rdstate(), for_getline.rdstate());
        EXPECT_EQ(message.m_root.m_lines, lines - 2); // without the header block's
        EXPECT_EQ(message.m_root.m_headers.size(), 1U);
    }
}

INSTANTIATE_TEST_SUITE_P(pages, read_error, testing::Values(10, 20, 100));

} // namespace
