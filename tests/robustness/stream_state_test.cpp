// How Fill leaves the stream that it has read. Whatever the stream does, its position and its state
// are those that std::getline leaves, and the exception is the same.

#include <mail_structure.h>

#include "differential/rule_sets.h"
#include "robustness/after_reading.h"
#include "robustness/window_stream.h"
#include "support/case_name.h"
#include "support/compare.h"
#include "support/parse.h"
#include "support/streams.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <ios>
#include <locale>
#include <memory>
#include <sstream>
#include <streambuf>
#include <string>
#include <string_view>
#include <tuple>
#include <unistd.h>

namespace {

using namespace std::string_view_literals;
using differential::rule_set;
using test_support::after_fill;
using test_support::after_getline;
using test_support::after_reading;
using test_support::delivery;
using test_support::fault;

struct named_message {
    const char* m_name;
    std::string_view m_text;
};

void PrintTo(const named_message& message, std::ostream* out) { *out << message.m_name; }

constexpr named_message messages[] = {
    {"empty", ""},
    {"plain", "Subject: a\n"
              " b\n"
              "\n"
              "hi\n"
              "\n"
              "ho\n"},
    {"plain_with_crlf", "Subject: a\r\n"
                        " b\r\n"
                        "\r\n"
                        "hi\r\n"
                        "\r\n"
                        "ho\r\n"},
    {"without_final_newline", "a: b\n"
                              "\n"
                              "hi\n"
                              "ho"},
    {"multipart", "C:multipart/x;b=X\n"
                  "\n"
                  "pre\n"
                  "--X\n"
                  "C:m\n"
                  "\n"
                  "a:b\n"
                  "\n"
                  "hi\n"
                  "--X\n"
                  "\n"
                  "1\n"
                  "--X--\n"
                  "epi\n"},
    {"message_in_a_part", "Content-Type: multipart/digest; boundary=X\n"
                          "\n"
                          "--X\n"
                          "\n"
                          "a: b\r\r\n"
                          " c\n"
                          "Content-Type: message/rfc822\n"
                          "--X--\n"
                          "epi\n"},
    {"block_not_ended", "a: b\n"
                        "Content-Type: message/rfc822;\n"
                        " a=b"},
    {"stray_byte", "a: b\n"
                   "\n"
                   "hi\n"
                   "h\ro\n"
                   "hi\n"},
    {"stray_nul_at_the_start", "\0: b\n"
                               "\n"
                               "hi\n"sv},
    {"name_without_colon", "a: b\n"
                           "ab\r\n"
                           "\r\n"
                           "hi\n"},
};

constexpr std::ios_base::iostate state_bits[] = {std::ios_base::eofbit, std::ios_base::failbit,
                                                 std::ios_base::badbit};

/// The state, or the exception mask, that a number from 0 to 7 stands for.
std::ios_base::iostate state_of(unsigned number) {
    std::ios_base::iostate state = std::ios_base::goodbit;
    for (unsigned bit = 0; bit < 3; ++bit)
        if ((number >> bit & 1U) != 0) state |= state_bits[bit];
    return state;
}

/// Whether the number of bytes that are ready in the buffer must be the same too. For a file it
/// need not: Fill may set the position of the file, after which its buffer has to be filled anew.
enum class bytes_ready : bool { count, do_not_count };

/// Compares three readers, each with a stream made in the same way: Fill, a loop over std::getline,
/// and the reference parser.
/// @param by           the rules, and their reference parser
/// @param make_stream  makes one of the streams
/// @param own          the line at which the text itself would end the parse
/// @return "" or what differs
template <class Make>
std::string difference(const rule_set& by, Make make_stream,
                       const test_support::erroneous_line& own,
                       bytes_ready ready = bytes_ready::count) {
    const auto for_fill = make_stream();
    const auto for_getline = make_stream();
    const auto for_reference = make_stream();
    MailStructure message;
    after_reading found = after_fill(message, *for_fill, by.m_rules);
    const after_reading wanted = after_getline(*for_getline, own.m_lines, own.m_error);
    if (ready == bytes_ready::do_not_count) found.m_available = wanted.m_available;
    if (found != wanted) {
        std::ostringstream report;
        report << "found " << found << "\nwanted " << wanted;
        return report.str();
    }
    return test_support::first_difference(message, found.m_error, by.m_parse(*for_reference, {}));
}

class faulty_streams : public testing::TestWithParam<std::tuple<const rule_set*, named_message>> {
protected:
    void expect_as_getline(fault kind) const {
        const rule_set& by = *std::get<0>(GetParam());
        const std::string_view text = std::get<1>(GetParam()).m_text;
        for (std::size_t offset = 0; offset <= text.size(); ++offset) {
            const auto own = test_support::first_erroneous_line(by, text.substr(0, offset));
            for (const delivery& way : test_support::all_deliveries) {
                for (unsigned mask = 0; mask < 8; ++mask) {
                    const auto make = [&] {
                        auto in =
                            std::make_unique<test_support::faulty_stream>(text, offset, kind, way);
                        in->exceptions(state_of(mask));
                        return in;
                    };
                    ASSERT_EQ(difference(by, make, own), "")
                        << "at offset " << offset << ", " << way.m_name << ", mask "
                        << state_of(mask);
                }
            }
        }
    }
};

TEST_P(faulty_streams, that_end_are_left_as_by_getline) { expect_as_getline(fault::ends); }

TEST_P(faulty_streams, that_throw_are_left_as_by_getline) { expect_as_getline(fault::throws); }

TEST_P(faulty_streams, that_set_badbit_are_left_as_by_getline) {
    expect_as_getline(fault::sets_badbit);
}

std::string name_of(const testing::TestParamInfo<faulty_streams::ParamType>& info) {
    return std::get<0>(info.param)->m_name + ('_' + std::string(std::get<1>(info.param).m_name));
}

INSTANTIATE_TEST_SUITE_P(messages, faulty_streams,
                         testing::Combine(testing::ValuesIn(differential::all_rule_sets),
                                          testing::ValuesIn(messages)),
                         name_of);

/// A buffer that reports the end of its input at an offset, and has more bytes when it is asked
/// again.
class pausing_buffer : public test_support::window_buffer {
public:
    pausing_buffer(std::string_view text, std::size_t offset, std::size_t window)
        : window_buffer(text, window), m_offset(offset) {}

protected:
    int_type underflow() override {
        return pauses() ? traits_type::eof() : window_buffer::underflow();
    }
    int_type uflow() override { return pauses() ? traits_type::eof() : window_buffer::uflow(); }

private:
    bool pauses() {
        if (m_has_paused || taken() < m_offset) return false;
        m_has_paused = true;
        return true;
    }

    std::size_t m_offset;
    bool m_has_paused = false;
};

/// A buffer that can only hand out bytes: a call of any other function is a failure.
class one_way_buffer : public test_support::window_buffer {
public:
    using window_buffer::window_buffer;

protected:
    pos_type seekoff(off_type, std::ios_base::seekdir, std::ios_base::openmode) override {
        ADD_FAILURE() << "it was asked to seek";
        return pos_type(off_type(-1));
    }
    pos_type seekpos(pos_type, std::ios_base::openmode) override {
        return seekoff(0, std::ios_base::beg, {});
    }
    std::streambuf* setbuf(char*, std::streamsize) override {
        ADD_FAILURE() << "it was given a buffer";
        return this;
    }
    int sync() override {
        ADD_FAILURE() << "it was asked to synchronise";
        return -1;
    }
    int_type pbackfail(int_type) override {
        ADD_FAILURE() << "it was asked to take a byte back";
        return traits_type::eof();
    }
};

/// A stream that owns its buffer.
template <class Buffer>
class stream_over : public std::istream {
public:
    template <class... Arguments>
    explicit stream_over(Arguments... arguments) : std::istream(nullptr), m_buffer(arguments...) {
        rdbuf(&m_buffer);
    }

private:
    Buffer m_buffer;
};

class stream_state : public testing::TestWithParam<const rule_set*> {};

TEST_P(stream_state, input_that_goes_on_after_its_end_is_left_as_by_getline) {
    const rule_set& by = *GetParam();
    for (const named_message& message : messages) {
        for (std::size_t offset = 0; offset <= message.m_text.size(); ++offset) {
            const auto own =
                test_support::first_erroneous_line(by, message.m_text.substr(0, offset));
            for (const std::size_t window :
                 {std::size_t{0}, std::size_t{1}, std::size_t{5}, offset}) {
                const auto make = [&] {
                    return std::make_unique<stream_over<pausing_buffer>>(message.m_text, offset,
                                                                         window);
                };
                // With windows of 5 bytes, the pause comes at the end of a window, which may be
                // later.
                if (window == 5 && offset % 5 != 0) continue;
                ASSERT_EQ(difference(by, make, own), "")
                    << message.m_name << " at offset " << offset;
            }
        }
    }
}

TEST_P(stream_state, nothing_but_bytes_is_asked_of_the_buffer) {
    const rule_set& by = *GetParam();
    for (const named_message& message : messages) {
        const auto own = test_support::first_erroneous_line(by, message.m_text);
        for (const std::size_t window : {0U, 1U, 7U, 1000U}) {
            const auto make = [&] {
                return std::make_unique<stream_over<one_way_buffer>>(message.m_text, window);
            };
            EXPECT_EQ(difference(by, make, own), "")
                << message.m_name << " through a window of " << window;
        }
    }
}

TEST_P(stream_state, a_stream_that_is_not_good_stays_unread) {
    const rule_set& by = *GetParam();
    for (unsigned state = 1; state < 8; ++state) {
        for (unsigned mask = 0; mask < 8; ++mask) {
            const auto make = [&] {
                auto in = std::make_unique<std::istringstream>("a: b\n\nhi\n");
                in->exceptions(state_of(mask));
                try {
                    in->clear(state_of(state));
                } catch (const std::ios_base::failure&) { // the state has been set all the same
                }
                return in;
            };
            EXPECT_EQ(difference(by, make, {}), "")
                << "state " << state_of(state) << ", mask " << state_of(mask);
        }
    }
}

TEST_P(stream_state, a_stream_without_a_buffer_stays_as_it_is) {
    const rule_set& by = *GetParam();
    const auto make = [] { return std::make_unique<std::istream>(nullptr); };
    EXPECT_EQ(difference(by, make, {}), "");
    std::istream in(nullptr);
    MailStructure message;
    EXPECT_EQ(test_support::fill(message, in, 0, by.m_rules), "");
    EXPECT_TRUE(message.m_done);
    EXPECT_EQ(message.m_root.m_mime_len, 0U);
}

TEST_P(stream_state, reading_begins_where_the_stream_stands) {
    const rule_set& by = *GetParam();
    for (const named_message& message : messages) {
        const std::string text = "xyz" + std::string(message.m_text);
        const auto own = test_support::first_erroneous_line(by, message.m_text);
        for (const delivery& way : test_support::all_deliveries) {
            const auto make = [&] {
                auto in = std::make_unique<test_support::delivered_stream>(text, way);
                char taken[3];
                in->read(taken, 3); // gcount is 3 and stays so
                return in;
            };
            EXPECT_EQ(difference(by, make, own), "") << message.m_name << ' ' << way.m_name;
        }
    }
}

TEST(classic_stream_state, a_second_fill_finds_the_lines_after_the_erroneous_one) {
    const std::string_view text = "a: b\n"
                                  "\n"
                                  "h\ri\n"
                                  "c: d\n"
                                  "\n"
                                  "ho\n";
    for (const delivery& way : test_support::all_deliveries) {
        test_support::delivered_stream in(text, way);
        MailStructure message;
        EXPECT_EQ(test_support::fill(message, in), "runtime_error: error in io input data");
        EXPECT_TRUE(in.good()) << way.m_name;
        EXPECT_EQ(test_support::fill(message, in), "");
        ASSERT_EQ(message.m_root.m_headers.size(), 1U) << way.m_name;
        EXPECT_EQ(message.m_root.m_headers[0].m_name, "c");
        EXPECT_EQ(message.m_root.m_body_beg, 6U);
    }
}

TEST_P(stream_state, width_and_blank_skipping_mean_nothing) {
    const rule_set& by = *GetParam();
    for (const bool skips : {false, true}) {
        const auto make = [&] {
            auto in = std::make_unique<std::istringstream>("a: b\n"
                                                           "  folded\n"
                                                           "\n"
                                                           "\n"
                                                           "   hi\n");
            in->width(2);
            if (skips)
                in->setf(std::ios_base::skipws);
            else
                in->unsetf(std::ios_base::skipws);
            return in;
        };
        EXPECT_EQ(difference(by, make, {}), "");
        const auto in = make();
        MailStructure message;
        EXPECT_EQ(test_support::fill(message, *in, 0, by.m_rules), "");
        EXPECT_EQ(in->width(), 2);
    }
}

TEST(tied_stream, is_flushed_before_the_first_byte_is_asked_for) {
    struct counting_buffer : std::stringbuf {
        int m_flushes = 0;
        int sync() override {
            ++m_flushes;
            return 0;
        }
    } screen;
    struct asking_buffer : std::streambuf {
        const counting_buffer* m_screen = nullptr;
        int m_flushes_at_first = -1;
        int_type underflow() override {
            if (m_flushes_at_first < 0) m_flushes_at_first = m_screen->m_flushes;
            return traits_type::eof();
        }
    } keyboard;
    keyboard.m_screen = &screen;
    std::ostream out(&screen);
    std::istream in(&keyboard);
    in.tie(&out);
    MailStructure message;
    message.Fill(in);
    EXPECT_GT(keyboard.m_flushes_at_first, 0);
}

/// A stream that goes bad when the stream tied to it is flushed.
class spoiled_stream : public stream_over<test_support::window_buffer> {
public:
    using stream_over::stream_over;

    void tie_itself() { tie(&m_out); }

private:
    struct spoiling_buffer : std::stringbuf {
        explicit spoiling_buffer(std::istream& in) : m_in(in) {}
        int sync() override {
            m_in.setstate(std::ios_base::badbit);
            return 0;
        }
        std::istream& m_in;
    };

    spoiling_buffer m_screen{*this};
    std::ostream m_out{&m_screen};
};

TEST_P(stream_state, a_stream_that_goes_bad_before_it_is_refilled_stays_unread) {
    const rule_set& by = *GetParam();
    for (const named_message& message : messages) {
        const auto make = [&] {
            auto in = std::make_unique<spoiled_stream>(message.m_text, std::size_t{1000});
            in->tie_itself();
            return in;
        };
        EXPECT_EQ(difference(by, make, {}), "") << message.m_name;
    }
}

/// The position that the stream reports after its state is cleared.
std::streamoff position_of(std::istream& in) {
    in.clear();
    return in.tellg();
}

TEST_P(stream_state, files_and_string_streams_stand_where_getline_leaves_them) {
    const rule_set& by = *GetParam();
    std::string text;
    for (int line = 0; line < 3000; ++line)
        text += "1 line of a body that is longer than the buffers of files\n";
    const std::string place =
        testing::TempDir() + "mailstructure_stream_state_test_" + std::to_string(getpid()) + ".eml";
    for (const std::size_t stray : {std::size_t{0}, std::size_t{70}, std::size_t{8190},
                                    std::size_t{65535}, std::size_t{65536}, text.size() - 3}) {
        std::string damaged = text;
        damaged[stray] = '\r';
        {
            std::ofstream file(place, std::ios_base::binary);
            file << damaged;
        }
        const auto own = test_support::first_erroneous_line(
            by, damaged.substr(0, damaged.find('\n', stray) + 1));
        for (const bool from_file : {false, true}) {
            const auto make = [&]() -> std::unique_ptr<std::istream> {
                if (from_file) return std::make_unique<std::ifstream>(place, std::ios_base::binary);
                return std::make_unique<std::istringstream>(damaged);
            };
            const bytes_ready ready = from_file ? bytes_ready::do_not_count : bytes_ready::count;
            EXPECT_EQ(difference(by, make, own, ready), "") << "stray byte at " << stray;
            const auto for_fill = make();
            const auto for_getline = make();
            MailStructure message;
            EXPECT_EQ(test_support::fill(message, *for_fill, 0, by.m_rules), own.m_error);
            std::string line;
            for (std::size_t count = 0; count < own.m_lines; ++count)
                if (!std::getline(*for_getline, line)) break;
            EXPECT_EQ(position_of(*for_fill), position_of(*for_getline))
                << "stray byte at " << stray;
        }
    }
    std::remove(place.c_str());
}

/// A file of lines with a stray byte somewhere, which exists for as long as the object.
class damaged_file {
public:
    explicit damaged_file(std::size_t stray) {
        for (int line = 0; line < 300; ++line)
            m_text += "1 line of a body that is longer than the buffers of files\n";
        m_text[stray] = '\r';
        std::ofstream(m_place, std::ios_base::binary) << m_text;
    }
    ~damaged_file() { std::remove(m_place.c_str()); }
    damaged_file(const damaged_file&) = delete;
    damaged_file& operator=(const damaged_file&) = delete;

    std::unique_ptr<std::ifstream> stream() const {
        return std::make_unique<std::ifstream>(m_place, std::ios_base::binary);
    }
    /// The first line that is an error, where the parse begins at that offset.
    test_support::erroneous_line own_error_from(const rule_set& by, std::size_t offset) const {
        return test_support::first_erroneous_line(by, std::string_view(m_text).substr(offset));
    }

private:
    std::string m_place =
        testing::TempDir() + "mailstructure_damaged_file_test_" + std::to_string(getpid()) + ".eml";
    std::string m_text;
};

constexpr std::size_t stray_places[] = {70, 8189, 8190, 8191, 8192, 10000};

TEST_P(stream_state, files_stand_where_getline_leaves_them_after_a_byte_was_put_back) {
    const rule_set& by = *GetParam();
    for (const std::size_t stray : stray_places) {
        const damaged_file file(stray);
        for (const bool taken_again : {false, true}) {
            const auto make = [&] {
                auto in = file.stream();
                in->get();
                in->putback('X'); // another byte than the file has there
                if (taken_again) in->get();
                return in;
            };
            const auto own = file.own_error_from(by, taken_again ? 1 : 0);
            EXPECT_EQ(difference(by, make, own, bytes_ready::do_not_count), "")
                << "stray byte at " << stray;
            const auto for_fill = make();
            const auto for_getline = make();
            MailStructure message;
            EXPECT_EQ(test_support::fill(message, *for_fill, 0, by.m_rules), own.m_error);
            std::string line;
            for (std::size_t count = 0; count < own.m_lines; ++count)
                if (!std::getline(*for_getline, line)) break;
            EXPECT_EQ(position_of(*for_fill), position_of(*for_getline))
                << "stray byte at " << stray;
        }
    }
}

/// A conversion with a state. A file that has it can be given another conversion only before it is
/// read.
class stateful_conversion : public std::codecvt<char, char, std::mbstate_t> {
    int do_encoding() const noexcept override { return -1; }
};

TEST_P(stream_state, files_that_have_lost_their_conversion_are_left_as_by_getline) {
    const rule_set& by = *GetParam();
    const damaged_file file(12000);
    std::size_t taken = 0;
    const auto make = [&] {
        auto in = file.stream();
        in->imbue(std::locale(std::locale::classic(), new stateful_conversion));
        std::string begun(taken, ' ');
        in->read(begun.data(),
                 static_cast<std::streamsize>(taken)); // past the file's buffer, if that is much
        in->imbue(std::locale::classic());
        return in;
    };
    for (taken = 1; taken < 20000; taken += 9999) {
        const auto for_fill = make();
        const auto for_getline = make();
        MailStructure message;
        EXPECT_EQ(test_support::fill(message, *for_fill, 0, by.m_rules), "") << taken;
        std::string read;
        for (std::string line; std::getline(*for_getline, line);) read += line + '\n';
        std::istringstream for_reference(read);
        EXPECT_EQ(test_support::first_difference(message, "", by.m_parse(for_reference, {})), "")
            << taken;
        EXPECT_EQ(for_fill->rdstate(), for_getline->rdstate()) << taken;
    }
}

INSTANTIATE_TEST_SUITE_P(rules, stream_state, testing::ValuesIn(differential::all_rule_sets),
                         differential::rule_set_name);

} // namespace
