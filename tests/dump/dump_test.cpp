// What Dump prints of a filled tree: every byte, and the stream to which it goes.

#include <mail_structure.h>

#include "support/captured_output.h"
#include "support/expect_tree_text.h"
#include "support/parse.h"
#include "support/small_stack.h"
#include "support/tree_text.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using MimeObj = MailStructure::MimeObj;
using test_support::captured_output;

const std::string ruler(40, '-');

/// Everything that Dump prints, each line marked with its stream.
std::string dump_log(const MailStructure& message) {
    const captured_output captured;
    std::ifstream unopened;
    message.Dump(unopened);
    return captured.log();
}

std::string dump_log(const MimeObj& entity, std::vector<int>& path) {
    const captured_output captured;
    std::ifstream unopened;
    entity.Dump(unopened, path);
    return captured.log();
}

void set_range(std::uint32_t& beg, std::uint32_t& len, std::uint32_t new_beg,
               std::uint32_t new_len) {
    beg = new_beg;
    len = new_len;
}

/// A multipart with two parts: one with a header field and a line of kept text, one with nothing.
MailStructure two_parts() {
    MailStructure message;
    MimeObj& root = message.m_root;
    root.m_type = "multipart";
    root.m_subtype = "mixed";
    set_range(root.m_header_beg, root.m_header_len, 0, 80);
    set_range(root.m_mime_beg, root.m_mime_len, 0, 300);
    set_range(root.m_body_beg, root.m_body_len, 81, 10);
    set_range(root.m_epilogue_beg, root.m_epilogue_len, 290, 0);
    MailStructure::header* field = root.get_header();
    field->m_name = "Content-Type";
    field->m_value = "multipart/mixed";
    field->m_params = {{"boundary", "XX"}};
    MimeObj* first = root.get_obj();
    first->m_lines = 1;
    set_range(first->m_header_beg, first->m_header_len, 92, 31);
    set_range(first->m_contents_beg, first->m_contents_len, 124, 7);
    set_range(first->m_mime_beg, first->m_mime_len, 92, 39);
    set_range(first->m_body_beg, first->m_body_len, 124, 7);
    field = first->get_header();
    field->m_name = "Content-Type";
    field->m_value = "text/plain";
    first->m_body_text = "Hello\r\n";
    root.get_obj();
    return message;
}

TEST(dump, lists_a_multipart_with_two_parts) {
    EXPECT_EQ(dump_log(two_parts()), "e| *** Dumping email structure ***\n"
                                     "e|    MIME OBJECT 1 multipart/mixed lines=0 size=10\n"
                                     "e|    Headers (0-80) 1\n"
                                     "e|    Mime (0-300)\n"
                                     "e|    * Content-Type: multipart/mixed\n"
                                     "e|      + boundary=XX\n"
                                     "e|       Preamble (81-91)\n"
                                     "e|       MIME OBJECT 1 text/plain lines=1 size=7\n"
                                     "e|       Headers (92-123) 1\n"
                                     "e|       Contents (124-131)\n"
                                     "e|       Mime (92-131)\n"
                                     "e|       * Content-Type: text/plain\n"
                                     "e|         Body(124-131)\n"
                                     "o|----------------------------------------\n"
                                     "o|Hello\r\n"
                                     "o|----------------------------------------\n"
                                     "e|       MIME OBJECT 2 text/plain lines=0 size=0\n"
                                     "e|         Body(...)\n"
                                     "o|----------------------------------------\n"
                                     "o|----------------------------------------\n"
                                     "e|      Epilogie (...)\n"
                                     "e| *** End of email structure ***\n");
}

TEST(dump, prints_structure_and_text_to_streams_of_their_own) {
    const captured_output captured;
    std::ifstream unopened;
    two_parts().Dump(unopened);
    EXPECT_EQ(captured.output_text(),
              ruler + "\nHello\r\n" + ruler + "\n" + ruler + "\n" + ruler + "\n");
    EXPECT_EQ(captured.error_text().find("Hello"), std::string::npos);
    EXPECT_EQ(captured.error_text().find(ruler), std::string::npos);
}

TEST(dump, lists_a_single_entity) {
    const test_support::parse_outcome outcome =
        test_support::parse("Subject: x\n"
                            "Content-Type: text/html; a=b;\n"
                            " c=\"d\"\n"
                            "\n"
                            "hi\n"
                            "\n"
                            "ho\n",
                            {.m_keep_text = true});
    EXPECT_EQ(dump_log(outcome.m_message), "e| *** Dumping email structure ***\n"
                                           "e|    MIME OBJECT 1 text/html lines=3 size=7\n"
                                           "e|    Headers (0-49) 2\n"
                                           "e|    Contents (49-56)\n"
                                           "e|    Mime (0-56)\n"
                                           "e|    * Subject: x\n"
                                           "e|    * Content-Type: text/html\n"
                                           "e|      + a=b\n"
                                           "e|      + c=d\n"
                                           "e|      Body(49-56)\n"
                                           "o|----------------------------------------\n"
                                           "o|hi\r\n"
                                           "o|\r\n"
                                           "o|ho\r\n"
                                           "o|----------------------------------------\n"
                                           "e| *** End of email structure ***\n");
}

TEST(dump, lists_what_an_empty_input_leaves) {
    EXPECT_EQ(dump_log(test_support::parse("").m_message),
              "e| *** Dumping email structure ***\n"
              "e|    MIME OBJECT 1 / lines=0 size=0\n"
              "e|      Body(...)\n"
              "o|----------------------------------------\n"
              "o|----------------------------------------\n"
              "e| *** End of email structure ***\n");
}

TEST(dump, lists_empty_ranges_of_a_container) {
    MailStructure message;
    message.m_root.get_obj();
    EXPECT_EQ(dump_log(message), "e| *** Dumping email structure ***\n"
                                 "e|    MIME OBJECT 1 text/plain lines=0 size=0\n"
                                 "e|       Preamble (...)\n"
                                 "e|       MIME OBJECT 1 text/plain lines=0 size=0\n"
                                 "e|         Body(...)\n"
                                 "o|----------------------------------------\n"
                                 "o|----------------------------------------\n"
                                 "e|      Epilogie (...)\n"
                                 "e| *** End of email structure ***\n");
}

TEST(dump, numbers_entities_within_their_parents) {
    MailStructure message;
    message.m_root.get_obj();
    message.m_root.get_obj()->get_obj();
    message.m_root.m_children[1].get_obj();
    message.m_root.get_obj();
    const std::string log = dump_log(message);
    std::string numbers;
    for (std::size_t at = log.find("OBJECT "); at != std::string::npos;
         at = log.find("OBJECT ", at + 1))
        numbers += log.substr(at + 7, 2);
    EXPECT_EQ(numbers, "1 1 2 1 2 3 ");
}

TEST(dump, container_prints_neither_text_nor_rulers) {
    MailStructure message = two_parts();
    message.m_root.m_body_text = "body text of the root";
    message.m_root.m_epilogue_text = "epilogue text of the root";
    message.m_root.m_children[1].m_epilogue_text = "epilogue text of a part";
    EXPECT_EQ(dump_log(message), dump_log(two_parts()));
}

TEST(dump, leaves_flags_and_encoding_out) {
    MailStructure message = two_parts();
    message.m_root.m_encoding = "base64";
    message.m_root.m_multipart = true;
    message.m_root.m_message = true;
    message.m_root.m_body_last_empty = true;
    message.m_root.m_epilogue_last_empty = true;
    EXPECT_EQ(dump_log(message), dump_log(two_parts()));
}

TEST(dump, prints_ends_past_the_range_of_offsets) {
    MailStructure message;
    set_range(message.m_root.m_body_beg, message.m_root.m_body_len, 4294967290U, 10);
    message.m_root.m_lines = 4294967295U;
    EXPECT_EQ(dump_log(message), "e| *** Dumping email structure ***\n"
                                 "e|    MIME OBJECT 1 text/plain lines=4294967295 size=10\n"
                                 "e|      Body(4294967290-4294967300)\n"
                                 "o|----------------------------------------\n"
                                 "o|----------------------------------------\n"
                                 "e| *** End of email structure ***\n");
}

TEST(dump, keeps_spelling_of_epilogie) {
    MailStructure message = two_parts();
    EXPECT_NE(dump_log(message).find("\ne|      Epilogie (...)\n"), std::string::npos);
    set_range(message.m_root.m_epilogue_beg, message.m_root.m_epilogue_len, 290, 10);
    EXPECT_NE(dump_log(message).find("\ne|      Epilogie (290-300)\n"), std::string::npos);
}

TEST(dump, keeps_body_label_without_a_blank) {
    const std::string log = dump_log(two_parts());
    EXPECT_NE(log.find("         Body(124-131)\n"), std::string::npos);
    EXPECT_NE(log.find("         Body(...)\n"), std::string::npos);
}

TEST(dump, keeps_rulers_of_leaves_without_text) {
    EXPECT_EQ(dump_log(MailStructure()), "e| *** Dumping email structure ***\n"
                                         "e|    MIME OBJECT 1 text/plain lines=0 size=0\n"
                                         "e|      Body(...)\n"
                                         "o|----------------------------------------\n"
                                         "o|----------------------------------------\n"
                                         "e| *** End of email structure ***\n");
}

TEST(dump, keeps_kept_text_as_it_is) {
    MailStructure message;
    message.m_root.m_body_text = std::string("a\0b\x1b[1m without an end", 22);
    EXPECT_NE(
        dump_log(message).find(std::string("o|a\0b\x1b[1m without an end", 24) + ruler + "\n"),
        std::string::npos);
}

TEST(dump, keeps_indentation_at_32_blanks) {
    for (std::size_t length = 1; length <= 14; ++length) {
        std::vector<int> path(length, 7);
        const std::string indent(length < 11 ? 3 * length : 32, ' ');
        EXPECT_EQ(dump_log(MimeObj(), path),
                  "e|" + indent + " MIME OBJECT 7 text/plain lines=0 size=0\n" + "e|" + indent
                      + "   Body(...)\n" + "o|" + ruler + "\no|" + ruler + "\n");
    }
}

TEST(dump, stops_indenting_at_the_eleventh_level) {
    MailStructure message;
    MimeObj* at = &message.m_root;
    for (int level = 1; level < 13; ++level) at = at->get_obj();
    const std::string log = dump_log(message);
    EXPECT_NE(log.find("\ne|" + std::string(31, ' ') + "MIME OBJECT"),
              std::string::npos); // level 10
    EXPECT_NE(log.find("\ne|" + std::string(33, ' ') + "MIME OBJECT"), std::string::npos);
    EXPECT_EQ(log.find("\ne|" + std::string(34, ' ') + "MIME OBJECT"), std::string::npos);
    EXPECT_EQ(log.find("\ne|" + std::string(37, ' ') + "MIME OBJECT"), std::string::npos);
}

TEST(dump, counts_the_path_on_and_leaves_its_length) {
    const MailStructure message = two_parts();
    std::vector<int> path{4, -3};
    const std::string log = dump_log(message.m_root, path);
    EXPECT_EQ(path, (std::vector<int>{4, -2}));
    EXPECT_EQ(log.find("e|       MIME OBJECT -3 multipart/mixed lines=0 size=10\n"), 0U);
    EXPECT_NE(log.find("\ne|          MIME OBJECT 2 text/plain"), std::string::npos);
}

TEST(dump, changes_nothing_in_the_tree) {
    const MailStructure message = two_parts();
    const std::string before = test_support::full_tree_text(message.m_root);
    dump_log(message);
    EXPECT_TREE_TEXT(test_support::full_tree_text(message.m_root), before);
}

TEST(dump, keeps_file_unread) {
    const std::string file_name =
        testing::TempDir() + "mailstructure_dump_test_" + std::to_string(getpid()) + ".txt";
    std::ofstream(file_name) << "some text\n";
    {
        const captured_output captured;
        std::ifstream file(file_name);
        file.seekg(5);
        two_parts().Dump(file);
        EXPECT_TRUE(file.good());
        EXPECT_EQ(file.tellg(), 5);
        file.setstate(std::ios_base::badbit);
        two_parts().Dump(file);
        EXPECT_EQ(file.rdstate(), std::ios_base::badbit);
        std::ifstream unopened;
        two_parts().Dump(unopened);
        EXPECT_TRUE(unopened.good());
    }
    std::remove(file_name.c_str());
}

TEST(dump, recurses_on_no_depth) {
    test_support::run_on_stack(64 * 1024, [] {
        MailStructure message;
        MimeObj* at = &message.m_root;
        constexpr std::size_t levels = 5000;
        for (std::size_t level = 1; level < levels; ++level) at = at->get_obj();
        const std::string log = dump_log(message);
        std::size_t listed = 0;
        for (std::size_t place = log.find("OBJECT"); place != std::string::npos;
             place = log.find("OBJECT", place + 1))
            ++listed;
        EXPECT_EQ(listed, levels);
    });
}

} // namespace
