// Rows read back: into the same tables as the scan's own, and what is no row of a scan.

#include "scan/rows/packed_rows.h"
#include "scan/rows/row_reader.h"
#include "scan/rows/table_file.h"
#include "scan/scan.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using namespace std::string_literals;

std::string replaced(std::string text, std::string_view what, std::string_view by) {
    const std::size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    if (at != std::string::npos) text.replace(at, what.size(), by);
    return text;
}

/// In the rows of this mailbox, members that may be null occur with a value and without one.
const std::string mailbox =
    "From ada@mail.example Mon Mar  3 09:15:00 2025\n"
    "From: =?utf-8?Q?J=C3=BCrgen?= <j@mail.example>\nTo: ben@mail.example, c@mail.example\n"
    "Subject: a \"b\" \\ \x01 \xff\nDate: Mon, 3 Mar 2025 10:15:00 +0100\n"
    "Message-ID: <1@mail.example>\nMIME-Version: 1.0\n"
    "Content-Type: multipart/mixed; boundary=b\n\nFrom here on\n--b\n\nhello\n--b\n"
    "Content-Type: application/pdf; name=shelf.pdf\nContent-Disposition: attachment\n"
    "Content-Transfer-Encoding: base64\n\nAAECAw==\n--b\n"
    "Content-Transfer-Encoding: x-odd\n\n?\n--b--\nthe end\n\n"
    "From ada@mail.example Mon Mar  3 09:16:00 2025\nSubject: n\0l\n\nFrom nobody\n\n"s;

/// A folder with an mbox, a message, an empty file, and a file of something else.
class Pile : public ::testing::Test {
protected:
    Pile() {
        std::string pattern = std::filesystem::temp_directory_path() / "rows.XXXXXX";
        m_folder = ::mkdtemp(pattern.data());
        write("pile/a", mailbox);
        write("pile/b", "Subject: x\n\nhi\n");
        write("pile/c", "");
        write("pile/d", "no mail");
        m_scan.m_sources = {m_folder + "/pile", m_folder + "/no-such-file"};
        m_scan.m_rows.m_hash = hash_choice::parts;
    }
    ~Pile() override { std::filesystem::remove_all(m_folder); }

    void write(const std::string& name, std::string_view bytes) const {
        const std::filesystem::path file = m_folder + '/' + name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << bytes;
    }
    std::string bytes_of(const std::string& name) const {
        std::ostringstream bytes;
        bytes << std::ifstream(m_folder + '/' + name, std::ios::binary).rdbuf();
        return bytes.str();
    }
    std::string scanned(row_form form) {
        std::string rows;
        m_scan.m_rows.m_form = form;
        scan(m_scan, [&rows](std::string_view more) {
            rows += more;
            return true;
        });
        return rows;
    }

    std::string m_folder;
    scan_options m_scan;
};

/// Reads rows in pieces of that size. @return what is wrong with them, and at which byte
std::string error_of(std::string_view rows, std::size_t piece = std::string_view::npos,
                     std::string* packed = nullptr) {
    row_reader reader([packed](std::string_view more) {
        if (packed != nullptr) *packed += more;
        return true;
    });
    while (!rows.empty() && reader.add(rows.substr(0, piece)))
        rows.remove_prefix(std::min(piece, rows.size()));
    const bool is_well = reader.finish();
    EXPECT_EQ(is_well, !reader.error());
    return is_well
               ? ""
               : reader.error()->text() + " (byte " + std::to_string(reader.error()->m_byte) + ')';
}

TEST_F(Pile, rows_read_back_make_the_same_tables) {
    for (const hash_choice hash : {hash_choice::parts, hash_choice::none}) {
        m_scan.m_rows.m_hash = hash;
        table_file direct(m_folder + "/direct");
        ASSERT_TRUE(direct.add(scanned(row_form::packed)) && direct.finish()) << direct.error();
        table_file again(m_folder + "/again");
        row_reader reader([&again](std::string_view rows) { return again.add(rows); });
        const std::string rows = scanned(row_form::json);
        EXPECT_NE(rows.find(R"("level":"error")"), std::string::npos);
        EXPECT_NE(rows.find(R"("kind":"finding")"), std::string::npos);
        ASSERT_TRUE(reader.add(rows) && reader.finish()) << reader.error()->text();
        ASSERT_TRUE(again.finish()) << again.error();
        EXPECT_GT(bytes_of("direct").size(), 10000U);
        EXPECT_TRUE(bytes_of("direct") == bytes_of("again"));
        std::filesystem::remove(m_folder + "/direct");
        std::filesystem::remove(m_folder + "/again");
    }
}

TEST_F(Pile, rows_may_come_in_any_pieces) {
    const std::string rows = scanned(row_form::json);
    std::string whole;
    std::string in_bytes;
    EXPECT_EQ(error_of(rows, rows.size(), &whole), "");
    EXPECT_EQ(error_of(rows, 1, &in_bytes), "");
    EXPECT_TRUE(whole == in_bytes);
    std::string without_last_line_end;
    EXPECT_EQ(error_of(rows.substr(0, rows.size() - 1), 7, &without_last_line_end), "");
    EXPECT_TRUE(whole == without_last_line_end);
    std::string twice;
    EXPECT_EQ(error_of(rows + rows, 4096, &twice), "");
    EXPECT_TRUE(whole + whole == twice);
}

TEST_F(Pile, rows_that_end_too_early_are_an_error) {
    const std::string rows = scanned(row_form::json);
    std::size_t line_begin = 0;
    int incomplete = 0;
    for (std::size_t end = rows.find('\n'); end != std::string::npos;
         line_begin = end + 1, end = rows.find('\n', line_begin)) {
        EXPECT_NE(error_of(rows.substr(0, end - 1)), "");
        const bool ends_source = rows.compare(line_begin, 16, R"({"kind":"source")") == 0;
        EXPECT_EQ(error_of(rows.substr(0, end + 1)).empty(), ends_source);
        incomplete += ends_source ? 0 : 1;
    }
    EXPECT_GT(incomplete, 8);
}

TEST_F(Pile, rows_are_no_longer_wanted_when_a_table_is_full) {
    const std::string rows = scanned(row_form::json);
    row_reader reader([](std::string_view) { return false; });
    EXPECT_TRUE(reader.add(rows)); // these are too few to be handed over yet
    EXPECT_FALSE(reader.finish());
    EXPECT_FALSE(reader.error());
}

const std::string fault = R"({"kind":"fault","source":"s","member":null,"message":7,"byte":1,)"
                          R"("level":"note","code":"c","text":"t"})";
const std::string source = R"({"kind":"source","source":"s","member":null,"format":"mbox",)"
                           R"("size":null,"modified_ns":-5,"messages":0,"faults":1})";

TEST(row_reader, takes_members_in_any_order) {
    const std::string turned =
        R"( { "text" : "\u0074", "code":"c","level":"note","byte":1,"message":7,"member":null,)"
        R"("source":"s","kind":"fault"} )";
    std::string usual;
    std::string other;
    EXPECT_EQ(error_of(fault + '\n' + source, 99, &usual), "");
    EXPECT_EQ(error_of(turned + '\n' + source, 99, &other), "");
    EXPECT_EQ(usual, other);
}

TEST(row_reader, finds_no_error_when_rows_are_no_longer_wanted) {
    const std::string large = replaced(fault, ":\"t\"", ":\"" + std::string(2U << 20U, 't') + '"');
    int times = 0;
    row_reader reader([&times](std::string_view) {
        ++times;
        return false;
    });
    EXPECT_FALSE(reader.add(large + '\n' + fault + '\n'));
    EXPECT_FALSE(reader.add(fault + '\n'));
    EXPECT_FALSE(reader.finish()); // the row of the source has not come
    EXPECT_FALSE(reader.error());
    EXPECT_EQ(times, 1);
}

struct bad_row {
    const char* m_name;
    std::string m_row;
    std::string m_error;
};

const std::string no_such_value = "a row of a scan has no such value here (byte ";
const std::string not_of_a_scan = "\" is missing, or none that a scan writes (byte 0)";

const bad_row bad_rows[] = {
    {"empty_line", "", "not JSON: The document is empty. (byte 0)"},
    {"no_json", "mail", "not JSON: Invalid value. (byte 0)"},
    {"no_object", "[]", no_such_value + "0)"},
    {"number", "1", no_such_value + "0)"},
    {"two_objects", "{}{}",
     "not JSON: The document root must not be followed by other values. (byte 2)"},
    {"nul", "{}\0x"s, "not JSON: a NUL in the line (byte 2)"},
    {"no_utf8", replaced(fault, ":\"t\"", ":\"\xff\""),
     "not JSON: Invalid encoding in string. (byte 98)"},
    {"half_a_pair", replaced(fault, ":\"t\"", ":\"\\ud800\""),
     "not JSON: The surrogate pair in string is invalid. (byte 98)"},
    {"no_kind", "{}", "a row of a scan has a member \"kind\" (byte 0)"},
    {"unknown_kind", R"({"kind":"x"})", "no kind of row is called \"x\" (byte 0)"},
    {"kind_that_a_terminal_acts_on", R"({"kind":"\u001b[2J"})",
     "no kind of row is called \"\\x1b[2J\" (byte 0)"},
    {"unknown_member", replaced(fault, "text", "tent"),
     "a row of kind \"fault\" has no member \"tent\" (byte 0)"},
    {"member_of_another_kind", replaced(fault, "\"t\"", "\"t\",\"size\":1"),
     "a row of kind \"fault\" has no member \"size\" (byte 0)"},
    {"twice", replaced(fault, "\"t\"", "\"t\",\"byte\":1"),
     "there is more than one member \"byte\" (byte 0)"},
    {"missing", replaced(fault, R"(,"text":"t")", ""),
     "the value of the member \"text" + not_of_a_scan},
    {"null", replaced(fault, ":\"t\"", ":null"), "the value of the member \"text" + not_of_a_scan},
    {"text_for_number", replaced(fault, "7", "\"7\""),
     "the value of the member \"message" + not_of_a_scan},
    {"flag_for_number", replaced(fault, "7", "true"),
     "the value of the member \"message" + not_of_a_scan},
    {"negative", replaced(fault, "7", "-7"), "the value of the member \"message" + not_of_a_scan},
    {"too_large", replaced(fault, "7", "9223372036854775808"),
     "the value of the member \"message" + not_of_a_scan},
    {"fraction", replaced(fault, "7", "7.5"), no_such_value + "53)"},
    {"array", replaced(fault, "7", "[7]"), no_such_value + "53)"},
    {"range", replaced(fault, "7", R"({"offset":1,"length":2})"),
     "the value of the member \"message" + not_of_a_scan},
    {"range_without_length", replaced(fault, "7", R"({"offset":1})"), no_such_value + "64)"},
    {"range_with_two_offsets", replaced(fault, "7", R"({"offset":1,"offset":2})"),
     no_such_value + "75)"},
    {"range_beyond_32_bits", replaced(fault, "7", R"({"offset":4294967296,"length":2})"),
     no_such_value + "63)"},
    {"range_in_range", replaced(fault, "7", R"({"offset":{}})"), no_such_value + "63)"},
    {"many_members",
     '{' + std::string(100, ' ') + R"("kind":"fault")" +
         [] {
             std::string members;
             for (int number = 0; number < 70; ++number) members += ",\"x\":1";
             return members;
         }()
         + '}',
     no_such_value + "497)"},
    {"deep", std::string(1000000, '['), no_such_value + "0)"},
};

TEST(row_reader, names_what_is_no_row) {
    ASSERT_EQ(error_of(fault + '\n' + source + '\n'), "");
    for (const bad_row& bad : bad_rows) {
        SCOPED_TRACE(bad.m_name);
        EXPECT_EQ(error_of(bad.m_row + '\n'), "line 1: " + bad.m_error);
    }
}

TEST(row_reader, says_where_a_bad_line_is) {
    EXPECT_EQ(error_of(source + '\n' + source + "\n{]\n"),
              "line 3: not JSON: Missing a name for object member. (byte "
                  + std::to_string(2 * source.size() + 3) + ')');
}

TEST(row_reader, refuses_rows_in_another_order) {
    const std::string entity =
        R"({"kind":"entity","source":"s","member":null,"message":0,"index":0,"parent":null,)"
        R"("depth":0,"section":"1","type":"text","subtype":"plain","transfer_encoding":null,)"
        R"("charset":null,"filename":null,"disposition":null,"multipart":false,)"
        R"("message_within":false,"header":{"offset":0,"length":0},"mime":{"offset":0,"length":0},)"
        R"("body":{"offset":0,"length":0},"contents":{"offset":0,"length":0},)"
        R"("epilogue":{"offset":0,"length":0},"lines":0})";
    const std::string message =
        R"({"kind":"message","source":"s","member":null,"message":0,"from_offset":0,"length":0,)"
        R"("rules":"standard","subject":null,"from":null,"from_address":null,"to":null,)"
        R"("date":null,"date_text":null,"message_id":null,"entities":1,"depth":0,"sha256":null,)"
        R"("body_sha256":null,"mih":null,"quoted_from_lines":0,)"
        R"("findings_danger":null,"findings_fault":0,"findings_note":1})";
    const std::string end = '\n' + source;
    EXPECT_EQ(error_of(message + '\n' + entity + end), "");
    const std::string homeless = "the row does not follow the row of its message (byte ";
    EXPECT_EQ(error_of(entity + end), "line 1: " + homeless + "0)");
    EXPECT_EQ(error_of(message + end + '\n' + entity + end),
              "line 3: " + homeless + std::to_string(message.size() + source.size() + 2) + ')');
    EXPECT_EQ(error_of(message + '\n' + replaced(entity, "message\":0", "message\":1") + end),
              "line 2: " + homeless + std::to_string(message.size() + 1) + ')');
    const std::string foreign = "line 2: a row of another source comes before the row of the "
                                "source (byte "
                                + std::to_string(message.size() + 1) + ')';
    EXPECT_EQ(error_of(message + '\n' + replaced(source, "\"s\"", "\"t\"")), foreign);
    EXPECT_EQ(error_of(message + '\n' + replaced(source, "null", "\"t\"")), foreign);
}

} // namespace
