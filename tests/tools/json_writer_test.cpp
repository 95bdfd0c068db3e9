// What the JSON writer prints, read back with a JSON reader: no value loses a byte, whatever it
// holds, and a tree may have any depth.

#include "mailstructure/json_writer.h"
#include "support/case_name.h"
#include "support/small_stack.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <nettle/base64.h>
#include <rapidjson/document.h>
#include <rapidjson/pointer.h>
#include <rapidjson/reader.h>
#include <sstream>
#include <streambuf>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr unsigned strict = rapidjson::kParseValidateEncodingFlag | rapidjson::kParseIterativeFlag;

std::string json_of(const MailStructure::MimeObj& root, json_form form,
                    const std::string& file_name = "file",
                    MailStructure::rules by = MailStructure::rules::standard) {
    std::ostringstream text;
    json_output output(text);
    write_json(output, {file_name, {"", by}, root}, form);
    return text.str();
}

rapidjson::Document read_json(const std::string& text) {
    rapidjson::Document document;
    document.Parse<strict>(text.data(), text.size());
    EXPECT_FALSE(document.HasParseError()) << text.substr(0, 1000);
    return document;
}

std::string string_at(const rapidjson::Value& value, const std::string& place) {
    const rapidjson::Value* const found = rapidjson::Pointer(place.data(), place.size()).Get(value);
    if (found == nullptr || !found->IsString()) return "(no string at " + place + ')';
    return {found->GetString(), found->GetStringLength()};
}

std::string base64_decoded(const std::string& text) {
    base64_decode_ctx context;
    base64_decode_init(&context);
    std::string bytes(BASE64_DECODE_LENGTH(text.size()), '\0');
    std::size_t count = 0;
    EXPECT_EQ(base64_decode_update(&context, &count, reinterpret_cast<std::uint8_t*>(bytes.data()),
                                   text.size(), text.data()),
              1);
    EXPECT_EQ(base64_decode_final(&context), 1);
    bytes.resize(count);
    return bytes;
}

/// The exact bytes of a value, as doc/json.md tells readers to get them.
std::string exact_at(const rapidjson::Value& record, const std::string& place) {
    for (const rapidjson::Value& odd : record["not_utf8"].GetArray()) {
        if (odd["member"].GetString() == place) return base64_decoded(odd["base64"].GetString());
    }
    return string_at(record, place);
}

MailStructure::MimeObj entity_with_field(const std::string& value) {
    MailStructure::MimeObj entity;
    MailStructure::header& field = *entity.get_header();
    field.m_name = "X-Note"; // a field that no other member is made of
    field.m_value = value;
    field.m_beg = 0;
    field.m_end = 1;
    return entity;
}

/// The bytes from 0x80 on.
std::string beyond_ascii() {
    std::string bytes;
    for (int byte = 0x80; byte < 0x100; ++byte) bytes += static_cast<char>(byte);
    return bytes;
}

// ---- values

struct text_case {
    const char* m_name;
    std::string_view m_bytes;
    std::string_view m_shown; // the expected value; where it differs, the bytes must be listed
};

using namespace std::string_view_literals;

const text_case text_cases[] = {
    {"empty", ""sv, ""sv},
    {"ascii", "the ladder"sv, "the ladder"sv},
    {"quote_and_backslash", "\"\\/"sv, "\"\\/"sv},
    {"controls", "\x01\x1B[2J\x7F\t"sv, "\x01\x1B[2J\x7F\t"sv},
    {"nul_at_the_end", "a\0"sv, "a\0"sv},
    {"nul_within", "a\0b"sv, "a\0b"sv},
    {"two_bytes", "Gr\xC3\xBC\xC3\x9F"sv, "Gr\xC3\xBC\xC3\x9F"sv},
    {"three_bytes", "\xE2\x82\xAC"sv, "\xE2\x82\xAC"sv},
    {"four_bytes", "\xF0\x9F\xAA\x9C"sv, "\xF0\x9F\xAA\x9C"sv},
    {"highest_code_point", "\xF4\x8F\xBF\xBF"sv, "\xF4\x8F\xBF\xBF"sv},
    {"replacement_character_of_its_own", "\xEF\xBF\xBD"sv, "\xEF\xBF\xBD"sv},
    {"second_controls", "\xC2\x9B"sv, "\xC2\x9B"sv},
    {"override_of_direction", "\xE2\x80\xAE"sv, "\xE2\x80\xAE"sv},
    {"tag_beyond_the_first_plane", "\xF3\xA0\x81\x81"sv, "\xF3\xA0\x81\x81"sv},
    {"latin_1", "Gr\xFC\xDF"sv, "Gr\xEF\xBF\xBD\xEF\xBF\xBD"sv},
    {"lone_surrogate", "\xED\xA0\x80"sv, "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"sv},
    {"overlong_slash", "\xC0\xAF"sv, "\xEF\xBF\xBD\xEF\xBF\xBD"sv},
    {"overlong_nul", "\xE0\x80\x80"sv, "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"sv},
    {"past_the_highest", "\xF4\x90\x80\x80"sv,
     "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"sv},
    {"cut_short_at_the_end", "a\xF0\x9F\xAA"sv, "a\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"sv},
    {"cut_short_by_a_nul", "\xE2\x82\0\x80"sv, "\xEF\xBF\xBD\xEF\xBF\xBD\0\xEF\xBF\xBD"sv},
    {"cut_short_by_a_letter", "\xE2\x82x"sv, "\xEF\xBF\xBD\xEF\xBF\xBDx"sv},
};

class value : public testing::TestWithParam<text_case> {};

TEST_P(value, is_shown_and_can_be_had_back) {
    const auto& [name, bytes, shown] = GetParam();
    const MailStructure::MimeObj root = entity_with_field(std::string(bytes));
    const rapidjson::Document line = read_json(json_of(root, json_form::flat));
    EXPECT_EQ(string_at(line, "/fields/0/value"), shown);
    EXPECT_EQ(exact_at(line, "/fields/0/value"), bytes);
    EXPECT_EQ(line["not_utf8"].Size(), bytes == shown ? 0U : 1U);
    const rapidjson::Document document = read_json(json_of(root, json_form::pretty));
    EXPECT_EQ(string_at(document, "/root/fields/0/value"), shown);
    EXPECT_EQ(exact_at(document["root"], "/fields/0/value"), bytes);
}

INSTANTIATE_TEST_SUITE_P(json, value, testing::ValuesIn(text_cases),
                         test_support::case_name<text_case>);

/// Every text of two bytes, and every first byte of a longer character with a next byte that
/// continues the character and with one that does not.
TEST(json_values, of_any_bytes_can_be_had_back) {
    MailStructure::MimeObj root;
    std::vector<std::string> texts;
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            const std::string two = {static_cast<char>(first), static_cast<char>(second)};
            texts.push_back(two);
            if (first >= 0xE0 && second >= 0x7F && second <= 0xC0) {
                for (const char* const tail :
                     {"\x80", "\xBF\x80", "\x80\x80\x80", "\xC0", "\x7F\x80"})
                    texts.push_back(two + tail);
            }
        }
    }
    for (const std::string& text : texts) root.get_header()->m_value = text;
    const rapidjson::Document line = read_json(json_of(root, json_form::flat));
    std::vector<std::string> exact;
    for (const rapidjson::Value& field : line["fields"].GetArray())
        exact.emplace_back(field["value"].GetString(), field["value"].GetStringLength());
    for (const rapidjson::Value& odd : line["not_utf8"].GetArray()) {
        const std::string place = odd["member"].GetString(); // "/fields/N/value"
        exact.at(std::stoul(place.substr(8))) = base64_decoded(odd["base64"].GetString());
    }
    EXPECT_EQ(exact, texts);
}

/// The writer passes over plain text in blocks: each byte, at each place of texts that are a little
/// shorter and longer than some blocks.
TEST(json_values, have_every_byte_at_every_place) {
    MailStructure::MimeObj root;
    std::vector<std::string> texts;
    for (std::size_t length = 1; length <= 26; ++length) {
        for (std::size_t at = 0; at < length; ++at) {
            for (int byte = 0; byte < 256; ++byte) {
                std::string text(length, 'x');
                text[at] = static_cast<char>(byte);
                texts.push_back(text);
            }
        }
    }
    for (const std::string& text : texts) root.get_header()->m_value = text;
    const rapidjson::Document line = read_json(json_of(root, json_form::flat));
    ASSERT_EQ(line["fields"].Size(), texts.size());
    for (unsigned each = 0; each < texts.size(); ++each) {
        const rapidjson::Value& value = line["fields"][each]["value"];
        std::string expected = texts[each];
        const std::size_t odd = expected.find_first_of(beyond_ascii());
        if (odd != std::string::npos) expected.replace(odd, 1, "\uFFFD");
        ASSERT_EQ(std::string(value.GetString(), value.GetStringLength()), expected);
    }
}

/// Texts that are longer than what the output makes room for at once.
TEST(json_values, have_any_length) {
    MailStructure::MimeObj root;
    std::vector<std::string> texts;
    for (const std::size_t room : {json_output::most_room, json_output::block_size}) {
        for (std::size_t length = room - 3; length <= room + 3; ++length) {
            texts.push_back(std::string(length, 'x'));
            texts.push_back(std::string(length, 'x') + "\"\u00e9" + std::string(length, 'y'));
        }
    }
    for (const std::string& text : texts) root.get_header()->m_value = text;
    const rapidjson::Document line = read_json(json_of(root, json_form::flat));
    for (unsigned each = 0; each < texts.size(); ++each)
        EXPECT_EQ(string_at(line, "/fields/" + std::to_string(each) + "/value"), texts[each]);

    const std::string odd = std::string(json_output::block_size, 'x') + '\xFF';
    EXPECT_EQ(
        exact_at(read_json(json_of(entity_with_field(odd), json_form::flat)), "/fields/0/value"),
        odd);
}

TEST(json_values, that_a_terminal_would_act_on_are_spelled_out) {
    const std::string hostile = "\x1B\x7F\xC2\x80\xC2\x9B\xC2\x9F\xC2\xAD\xD8\x9C\xE1\xA0\x8E"
                                "\xE2\x80\x8B\xE2\x80\xA8\xE2\x80\xAE"
                                "\xE2\x81\xA6\xEF\xBB\xBF\xEF\xBF\xB9\xF3\xA0\x81\xBF";
    const std::string text = json_of(entity_with_field(hostile), json_form::flat);
    EXPECT_NE(text.find(R"("\u001B\u007F\u0080\u009B\u009F\u00AD\u061C\u180E\u200B)"
                        R"(\u2028\u202E\u2066\uFEFF\uFFF9\uDB40\uDC7F")"),
              std::string::npos)
        << text;
    for (const char byte : text)
        EXPECT_TRUE(byte == '\n' || (byte >= ' ' && byte < '\x7F')) << int{byte};
}

TEST(json_values, beside_those_are_not_spelled_out) {
    const std::string plain =
        "~\xC2\xA0\xC3\xBC\xE2\x80\x90\xE2\x80\xA7\xE2\x80\xAF\xF0\x9F\xAA\x9C";
    EXPECT_NE(json_of(entity_with_field(plain), json_form::line).find('"' + plain + '"'),
              std::string::npos);
}

TEST(json_values, that_are_not_utf8_are_listed_by_their_places) {
    MailStructure::MimeObj root = entity_with_field("\xFF");
    root.m_type = "t\xFF";
    root.m_subtype = "s\xFF";
    root.m_encoding = "e\xFF";
    MailStructure::header& second = *root.get_header();
    second.m_name = "n\xFF";
    second.m_params = {{"good", "good"}, {"p\xFF", "v\xFF"}};
    root.get_obj()->m_type = "child \xFF";
    const std::vector<std::string> places = {"/type",
                                             "/subtype",
                                             "/encoding",
                                             "/fields/0/value",
                                             "/fields/1/name",
                                             "/fields/1/params/1/name",
                                             "/fields/1/params/1/value"};

    const rapidjson::Document document = read_json(json_of(root, json_form::line, "f\xFF"));
    ASSERT_EQ(document["not_utf8"].Size(), 1U);
    EXPECT_EQ(exact_at(document, "/file"), "f\xFF");
    const rapidjson::Value& listed = document["root"]["not_utf8"];
    ASSERT_EQ(listed.Size(), places.size());
    for (unsigned at = 0; at < listed.Size(); ++at)
        EXPECT_EQ(listed[at]["member"].GetString(), places[at]);
    EXPECT_EQ(exact_at(document["root"], "/fields/1/params/1/value"), "v\xFF");
    const rapidjson::Value& child = document["root"]["children"][0];
    ASSERT_EQ(child["not_utf8"].Size(), 1U);
    EXPECT_EQ(exact_at(child, "/type"), "child \xFF");

    const std::string lines = json_of(root, json_form::flat, "f\xFF");
    const rapidjson::Document line = read_json(lines.substr(0, lines.find('\n')));
    EXPECT_EQ(line["not_utf8"].Size(), places.size() + 1);
    EXPECT_EQ(exact_at(line, "/file"), "f\xFF");
}

// ---- members

TEST(json_members, are_all_that_is_recorded) {
    MailStructure::MimeObj root;
    root.m_multipart = root.m_message = root.m_body_last_empty = root.m_epilogue_last_empty = true;
    std::uint32_t next = 1;
    for (std::uint32_t* const number :
         {&root.m_header_beg, &root.m_header_len, &root.m_mime_beg, &root.m_mime_len,
          &root.m_body_beg, &root.m_body_len, &root.m_contents_beg, &root.m_contents_len,
          &root.m_epilogue_beg, &root.m_epilogue_len, &root.m_lines})
        *number = next++;
    root.m_lines = 0xFFFFFFFF;
    root.m_type = "type";
    root.m_subtype = "subtype";
    root.m_encoding = "encoding";
    root.m_headers.resize(1);
    root.m_headers[0] = {"name", "value", 20, 25, {{"p", "v"}, {"p", "w"}}};
    EXPECT_EQ(
        json_of(root, json_form::flat),
        R"({"file":"file","rules":"standard","index":0,"parent":null,"depth":0,"section":"1",)"
        R"("type":"type","subtype":"subtype",)"
        R"("encoding":"encoding","transfer_encoding":null,"charset":null,"disposition":null,)"
        R"("filename":null,"content_id":null,"decoded_size":null,"damaged":false,"subject":null,)"
        R"("from":[],"to":[],"cc":[],"date":null,"date_utc":null,"message_id":null,)"
        R"("multipart":true,"message":true,)"
        R"("header":{"offset":1,"length":2},"mime":{"offset":3,"length":4},)"
        R"("body":{"offset":5,"length":6},"contents":{"offset":7,"length":8},)"
        R"("epilogue":{"offset":9,"length":10},"lines":4294967295,)"
        R"("body_last_empty":true,"epilogue_last_empty":true,)"
        R"("fields":[{"name":"name","value":"value","range":{"offset":20,"length":5},)"
        R"("params":[{"name":"p","value":"v"},{"name":"p","value":"w"}]}],)"
        R"("child_count":0,"not_utf8":[]})"
        "\n");
}

TEST(json_members, have_decoded_what_header_fields_say) {
    MailStructure::MimeObj root;
    root.m_headers = {
        {"SUBJECT", "=?latin1?q?caf=E9?=", 0, 0, {}},
        {"From", "=?utf-8?q?Ad=C3=A9?= <ada@mail.example>", 0, 0, {}},
        {"To", "Friends: ben@mail.example, x\xFF <>;", 0, 0, {}},
        {"Cc", "", 0, 0, {}},
        {"Date", "Tue, 4 Mar 2025 18:40:12 +0100 (CET)", 0, 0, {}},
        {"Message-ID", "<a@mail.example>", 0, 0, {}},
        {"Content-ID", "<b@mail.example>", 0, 0, {}},
        {"Content-Disposition", "Attachment; filename=x", 0, 0, {}},
        {"Subject", "second", 0, 0, {}},
    };
    const rapidjson::Document line = read_json(json_of(root, json_form::flat));
    EXPECT_EQ(string_at(line, "/subject"), "caf\u00e9");
    EXPECT_EQ(string_at(line, "/from/0/name"), "Ad\u00e9");
    EXPECT_EQ(string_at(line, "/from/0/address"), "ada@mail.example");
    ASSERT_EQ(line["to"].Size(), 2U);
    EXPECT_TRUE(line["to"][0]["name"].IsNull());
    EXPECT_EQ(string_at(line, "/to/0/address"), "ben@mail.example");
    EXPECT_EQ(exact_at(line, "/to/1/name"), "x\xFF");
    EXPECT_TRUE(line["to"][1]["address"].IsNull());
    EXPECT_EQ(line["cc"].Size(), 0U);
    EXPECT_EQ(string_at(line, "/date"), "Tue, 4 Mar 2025 18:40:12 +0100 (CET)");
    EXPECT_EQ(string_at(line, "/date_utc"), "2025-03-04T17:40:12Z");
    EXPECT_EQ(string_at(line, "/message_id"), "a@mail.example");
    EXPECT_EQ(string_at(line, "/content_id"), "b@mail.example");
    EXPECT_EQ(string_at(line, "/disposition"), "Attachment");
}

TEST(json_members, name_the_rules_in_every_form) {
    MailStructure::MimeObj root;
    root.get_obj();
    for (const auto& [by, name] : {std::pair(MailStructure::rules::standard, "standard"),
                                   std::pair(MailStructure::rules::classic, "classic")}) {
        for (const json_form form : {json_form::line, json_form::pretty}) {
            const rapidjson::Document document = read_json(json_of(root, form, "file", by));
            EXPECT_EQ(string_at(document, "/rules"), name);
        }
        std::istringstream lines(json_of(root, json_form::flat, "file", by));
        for (std::string text; std::getline(lines, text);)
            EXPECT_EQ(string_at(read_json(text), "/rules"), name);
    }
}

TEST(json_members, of_the_flat_form_tell_the_tree) {
    MailStructure::MimeObj root;
    root.m_multipart = true;
    root.get_obj()->get_obj()->get_obj();
    root.m_children[0].get_obj();
    root.get_obj();
    std::istringstream lines(json_of(root, json_form::flat));
    std::string told;
    for (std::string text; std::getline(lines, text);) {
        const rapidjson::Document line = read_json(text);
        const rapidjson::Value& parent = line["parent"];
        told += std::to_string(line["index"].GetUint()) + '<'
                + (parent.IsNull() ? "-" : std::to_string(parent.GetUint())) + " d"
                + std::to_string(line["depth"].GetUint()) + " c"
                + std::to_string(line["child_count"].GetUint()) + '\n';
    }
    EXPECT_EQ(told, "0<- d0 c2\n"
                    "1<0 d1 c2\n"
                    "2<1 d2 c1\n"
                    "3<2 d3 c0\n"
                    "4<1 d2 c0\n"
                    "5<0 d1 c0\n");
}

// ---- depth

class depth : public testing::TestWithParam<json_form> {};

MailStructure::MimeObj deep_tree(std::size_t levels) {
    MailStructure::MimeObj root;
    MailStructure::MimeObj* innermost = &root;
    for (std::size_t at = 1; at < levels; ++at) innermost = innermost->get_obj();
    innermost->m_type = "innermost";
    return root;
}

/// Counts the values that the reader reports, and how deep they are nested.
struct counting_handler : rapidjson::BaseReaderHandler<rapidjson::UTF8<>, counting_handler> {
    std::size_t m_open = 0;
    std::size_t m_deepest = 0;
    std::size_t m_innermost = 0;

    bool open() {
        m_deepest = std::max(m_deepest, ++m_open);
        return true;
    }
    bool close() { return m_open-- != 0; }
    bool StartObject() { return open(); }
    bool StartArray() { return open(); }
    bool EndObject(rapidjson::SizeType) { return close(); }
    bool EndArray(rapidjson::SizeType) { return close(); }
    bool String(const char* text, rapidjson::SizeType length, bool) {
        if (std::string_view(text, length) == "innermost") ++m_innermost;
        return true;
    }
};

TEST_P(depth, of_a_hundred_thousand_is_printed_on_a_small_stack) {
    constexpr std::size_t levels = 100000;
    const MailStructure::MimeObj root = deep_tree(levels);
    std::string text;
    test_support::run_on_stack(std::size_t{128} * 1024, [&] { text = json_of(root, GetParam()); });
    counting_handler seen;
    rapidjson::StringStream stream(text.c_str());
    rapidjson::Reader reader;
    while (stream.Tell() < text.size()) {
        constexpr unsigned flags = strict | rapidjson::kParseStopWhenDoneFlag;
        ASSERT_FALSE(reader.Parse<flags>(stream, seen).IsError()) << reader.GetErrorOffset();
        ASSERT_EQ(stream.Take(), '\n');
    }
    EXPECT_EQ(seen.m_open, 0U);
    EXPECT_EQ(seen.m_innermost, 1U);
    // An entity is an object in its parent's array; its list of fields, or a range, lies one
    // deeper.
    EXPECT_EQ(seen.m_deepest, GetParam() == json_form::flat ? 2 : 2 * levels + 1);
}

TEST_P(depth, costs_the_same_on_every_level) {
    const std::size_t once = json_of(deep_tree(2000), GetParam()).size();
    const std::size_t twice = json_of(deep_tree(4000), GetParam()).size();
    EXPECT_LT(twice, once * 21 / 10);
}

INSTANTIATE_TEST_SUITE_P(json, depth,
                         testing::Values(json_form::line, json_form::pretty, json_form::flat));

// ---- output that fails

/// Accepts the given number of bytes and no more.
class full_buffer : public std::streambuf {
public:
    explicit full_buffer(std::size_t room) : m_room(room) {}
    std::size_t asked() const { return m_asked; }

protected:
    int_type overflow(int_type) override { return traits_type::eof(); }
    std::streamsize xsputn(const char*, std::streamsize count) override {
        m_asked += static_cast<std::size_t>(count);
        const auto taken = std::min(m_room, static_cast<std::size_t>(count));
        m_room -= taken;
        return static_cast<std::streamsize>(taken);
    }

private:
    std::size_t m_room;
    std::size_t m_asked = 0;
};

TEST_P(depth, is_not_walked_to_its_end_for_an_output_that_takes_no_more) {
    const MailStructure::MimeObj root = deep_tree(1000);
    full_buffer buffer(json_output::block_size + 1);
    std::ostream stream(&buffer);
    json_output output(stream);
    write_json(output, {"file", {}, root}, GetParam());
    EXPECT_TRUE(output.is_refused());
    EXPECT_EQ(buffer.asked(), 2 * json_output::block_size);
}

TEST(json_output, drops_what_has_not_been_handed_on) {
    std::ostringstream text;
    {
        json_output output(text);
        for (std::size_t count = 0; count < json_output::block_size; ++count) output.Put('a');
        EXPECT_FALSE(output.has_handed_on());
    }
    EXPECT_EQ(text.str(), "");
    json_output output(text);
    for (std::size_t count = 0; count <= json_output::block_size; ++count) output.Put('a');
    EXPECT_TRUE(output.has_handed_on());
    EXPECT_EQ(text.str().size(), json_output::block_size);
    output.hand_on();
    EXPECT_EQ(text.str().size(), json_output::block_size + 1);
}

} // namespace
