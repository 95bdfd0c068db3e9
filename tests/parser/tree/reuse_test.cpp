// A parser object that is filled again and again. The tree is that of a new object, whatever the
// last message was, however its parse ended, and whatever the host has done to the tree since; and
// the records of the last tree are used again.

#include <mail_structure.h>

#include "support/expect_tree_text.h"
#include "support/parse.h"
#include "support/repeated.h"
#include "support/small_stack.h"
#include "support/streams.h"
#include "support/tree_text.h"

#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using namespace std::string_view_literals;
using MimeObj = MailStructure::MimeObj;
using test_support::fill;
using test_support::full_tree_text;
using test_support::repeated;

const std::string long_word(60, 'w');

/// Messages that differ in how much they have of everything, and that end in every way.
std::vector<std::string> all_messages() {
    const std::string multipart =
        "Content-Type: multipart/mixed; boundary=b; name=" + long_word + "\n\n";
    const std::string full_part = "--b\nContent-Type: a/b; p=q; r=" + long_word + "\nX: "
                                  + long_word + "\nContent-Transfer-Enconding: base64\n\ntext\n\n";
    const std::string message = "Content-Type: message/rfc822\n"
                                "\n";
    return {
        "",
        "a: b\n"
        "\n"
        "hi\n",
        "\n"
        "no block\n"
        "\n",
        repeated(20, "Received: from " + long_word + "\n") + "\nhi\n",
        "C: x/y; a=1; b=2; c=3; d=" + long_word + "\n\te=5; f=6\nX: y\n\nhi\n",
        "C: x/y; a=1\n"
        "\n"
        "hi\n",
        "C: x/y\n"
        "\ta=1\n"
        "C: message\n"
        "A: b\n"
        "\n"
        "D: e\n"
        "\n"
        "hi\n",
        multipart + "preamble\n" + repeated(5, full_part) + "--b--\nepilogue\n\n",
        multipart + repeated(3, "--b\n"),
        multipart + full_part + "--b\n\n--b\nA: b\n\nhi\n",
        multipart + full_part + "--b\n" + message + repeated(4, message)
            + "A: b\nB: c\n\nhi\n--b--\n",
        repeated(12, message) + "A: b\n\nhi\n",
        repeated(3, message) + multipart + repeated(2, full_part),
        multipart + full_part + "a\rb\n",
        multipart + full_part + "--b\nA: b\nC: x/y; p=q\nstray\rbyte\n",
        "A: b\n"
        "C: x/y; p=q\r\n"
        "word\r\n"
        "B: c\n",
        multipart + "--b\r\nA: b\r\n" + long_word + "\r\n",
        repeated(5, message) + "word\r\n",
        "word\r\n",
        "a\rb\n",
    };
}

void expect_tree_of_a_new_parser(MailStructure& message, const std::string& input,
                                 const std::string& context) {
    std::istringstream in(input);
    std::istringstream same(input);
    MailStructure fresh;
    fresh.m_keep_text = message.m_keep_text;
    message.m_done = false;
    EXPECT_EQ(fill(message, in), fill(fresh, same)) << context;
    EXPECT_EQ(message.m_done, fresh.m_done) << context;
    EXPECT_TREE_TEXT(full_tree_text(message.m_root), full_tree_text(fresh.m_root)) << context;
    EXPECT_EQ(message.m_root.m_parent, nullptr) << context;
    for (const MimeObj* entity = &message.m_root; !entity->m_children.empty();
         entity = &entity->m_children.back())
        for (const MimeObj& child : entity->m_children)
            EXPECT_EQ(child.m_parent, entity) << context;
}

void fill_quietly(MailStructure& message, const std::string& input) {
    std::istringstream in(input);
    fill(message, in);
}

TEST(reuse, gives_the_tree_of_a_new_parser_after_any_other_message) {
    const std::vector<std::string> messages = all_messages();
    for (const bool keep_text : {false, true}) {
        MailStructure reused;
        for (std::size_t first = 0; first < messages.size(); ++first) {
            for (std::size_t second = 0; second < messages.size(); ++second) {
                const std::string context =
                    std::to_string(second) + " after " + std::to_string(first);
                reused.m_keep_text = !keep_text;
                fill_quietly(reused, messages[first]);
                reused.m_keep_text = keep_text;
                expect_tree_of_a_new_parser(reused, messages[second], context);
            }
        }
    }
}

TEST(reuse, gives_the_tree_of_a_new_parser_where_the_stream_fails) {
    const std::vector<std::string> messages = all_messages();
    MailStructure reused;
    for (const auto kind : {test_support::fault::throws, test_support::fault::sets_badbit}) {
        for (const std::string& input : messages) {
            for (std::size_t offset = 0; offset <= input.size(); offset += 1 + input.size() / 40) {
                fill_quietly(reused, messages[offset % messages.size()]);
                MailStructure fresh;
                test_support::faulty_stream in(input, offset, kind);
                test_support::faulty_stream same(input, offset, kind);
                in.exceptions(std::ios_base::badbit);
                same.exceptions(std::ios_base::badbit);
                EXPECT_EQ(fill(reused, in), fill(fresh, same));
                EXPECT_TREE_TEXT(full_tree_text(reused.m_root), full_tree_text(fresh.m_root))
                    << input << offset;
            }
        }
    }
}

TEST(reuse, gives_the_tree_of_a_new_parser_past_the_memory_limit) {
    const std::vector<std::string> messages = all_messages();
    MailStructure reused;
    for (const std::uint32_t limit : {0U, 100U, 300U, 1000U}) {
        for (std::size_t at = 0; at < messages.size(); ++at) {
            for (const std::string& input : messages) {
                fill_quietly(reused, messages[at]);
                const test_support::memory_limit set(limit);
                expect_tree_of_a_new_parser(reused, input, "limit " + std::to_string(limit));
            }
        }
    }
}

struct meddling {
    const char* m_name;
    void (*m_act)(MailStructure&);
};

const meddling all_meddlings[] = {
    {"clears", [](MailStructure& message) { message.m_root.clear(); }},
    {"takes_the_children",
     [](MailStructure& message) {
         const std::vector<MimeObj> taken = std::move(message.m_root.m_children);
     }},
    {"takes_a_child_from_among_them",
     [](MailStructure& message) {
         for (MimeObj& child : message.m_root.m_children) const MimeObj taken = std::move(child);
     }},
    {"takes_the_texts_of_a_field",
     [](MailStructure& message) {
         for (MailStructure::header& field : message.m_root.m_headers)
             const MailStructure::header taken = std::move(field);
     }},
    {"puts_a_child_in_the_place_of_the_root",
     [](MailStructure& message) {
         if (!message.m_root.m_children.empty())
             message.m_root = std::move(message.m_root.m_children.back());
         message.m_root.m_parent = nullptr;
     }},
    {"copies_the_tree_over_itself",
     [](MailStructure& message) {
         const MimeObj copy = message.m_root;
         message.m_root = copy;
     }},
    {"moves_the_children_about",
     [](MailStructure& message) {
         std::vector<MimeObj>& children = message.m_root.m_children;
         if (!children.empty()) children.insert(children.begin(), children.back());
         children.shrink_to_fit();
     }},
    {"points_parents_elsewhere",
     [](MailStructure& message) {
         static MimeObj elsewhere;
         for (MimeObj* entity = &message.m_root; !entity->m_children.empty();) {
             entity = &entity->m_children.back();
             entity->m_parent = &elsewhere;
         }
     }},
    {"sets_every_member",
     [](MailStructure& message) {
         for (MimeObj* entity = &message.m_root;; entity = &entity->m_children.back()) {
             MimeObj* const parent = std::exchange(entity->m_parent, nullptr);
             std::string line = "a line";
             entity->add_header(7, 9);
             entity->add_contents_line(7, 9);
             entity->add_body_line(true, line, 7, 9, false);
             entity->add_body_line(true, line, 7, 9, true);
             entity->m_parent = parent;
             entity->m_multipart = entity->m_message = entity->m_body_last_empty =
                 entity->m_epilogue_last_empty = true;
             entity->m_type = entity->m_subtype = entity->m_encoding = long_word;
             entity->get_header()->m_params.assign(9, {long_word, long_word});
             if (entity->m_children.empty()) break;
         }
         for (int child = 0; child < 3; ++child)
             message.m_root.get_obj()->get_obj()->get_header()->m_beg = 5;
     }},
};

TEST(reuse, gives_the_tree_of_a_new_parser_whatever_the_host_did) {
    const std::vector<std::string> messages = all_messages();
    for (const meddling& host : all_meddlings) {
        for (std::size_t first = 0; first < messages.size(); ++first) {
            for (std::size_t second = 0; second < messages.size(); ++second) {
                MailStructure reused;
                reused.m_keep_text = first % 2 == 0;
                fill_quietly(reused, messages[first]);
                host.m_act(reused);
                expect_tree_of_a_new_parser(reused, messages[second],
                                            std::to_string(second) + " after "
                                                + std::to_string(first) + ", host " + host.m_name);
            }
        }
    }
}

TEST(reuse, leaves_the_parent_of_the_root_alone) {
    MailStructure message;
    MimeObj outside;
    message.m_root.m_parent = &outside;
    fill_quietly(message, "C: message\n"
                          "\n"
                          "A: b\n"
                          "\n"
                          "hi\n");
    fill_quietly(message, "C: message\n"
                          "\n"
                          "A: b\n"
                          "\n"
                          "hi\n");
    EXPECT_EQ(message.m_root.m_parent, &outside);
    EXPECT_EQ(outside.m_lines, 0U);
    message.m_root.m_parent = nullptr;
}

TEST(reuse, takes_over_entities_fields_and_parameters_with_their_storage) {
    const std::string input = "Content-Type: multipart/mixed; boundary=" + std::string(40, 'b')
                              + "\n\n--" + std::string(40, 'b') + "\nSubject: " + long_word
                              + "\n\nhi\n";
    MailStructure message;
    fill_quietly(message, input);
    const MimeObj* const child = &message.m_root.m_children[0];
    const MailStructure::header* const field = &child->m_headers[0];
    const char* const value = field->m_value.data();
    const char* const parameter = message.m_root.m_headers[0].m_params[0].second.data();
    fill_quietly(message, input);
    EXPECT_EQ(&message.m_root.m_children[0], child);
    EXPECT_EQ(&child->m_headers[0], field);
    EXPECT_EQ(field->m_value.data(), value);
    EXPECT_EQ(message.m_root.m_headers[0].m_params[0].second.data(), parameter);
}

TEST(reuse, gives_back_long_texts_that_were_little_used) {
    const std::string long_fields = repeated(100, "A: " + std::string(3000, 'x') + "\n") + "\nhi\n";
    const std::string short_fields = repeated(100, "A: " + std::string(20, 'x') + "\n") + "\nhi\n";
    MailStructure message;
    fill_quietly(message, long_fields);
    const std::string& first = message.m_root.m_headers.front().m_value;
    const std::string& last = message.m_root.m_headers.back().m_value;
    ASSERT_GE(last.capacity(), 3000U);
    fill_quietly(message, short_fields); // the last message used it
    EXPECT_GE(last.capacity(), 3000U);
    fill_quietly(message, short_fields);
    EXPECT_GE(first.capacity(), 3000U); // a few stay nevertheless
    EXPECT_LE(last.capacity(), 128U);
}

TEST(reuse, gives_back_very_long_texts_at_once) {
    MailStructure message;
    const std::string one_part = "C: multipart/x; b=b\n\n--b\nA: " + std::string(100000, 'x')
                                 + "\n\n" + std::string(100000, 'x') + "\n";
    message.m_keep_text = true;
    fill_quietly(message, one_part);
    const MimeObj& part = message.m_root.m_children[0];
    ASSERT_GE(part.m_body_text.capacity(), 100000U);
    fill_quietly(message, "C: multipart/x; b=b\n"
                          "\n"
                          "--b\n"
                          "A: b\n"
                          "\n"
                          "hi\n");
    ASSERT_EQ(&message.m_root.m_children[0], &part);
    EXPECT_LE(part.m_body_text.capacity(), 128U);
    EXPECT_LE(part.m_headers[0].m_value.capacity(), 128U);
}

TEST(reuse, gives_back_the_vectors_of_parts_but_not_of_the_root) {
    const std::string fields = repeated(1000, "A: b\n");
    const std::string one_field = "C: multipart/x; b=b\n"
                                  "\n"
                                  "--b\n"
                                  "A: b\n"
                                  "\n"
                                  "hi\n";
    MailStructure message;
    fill_quietly(message, "C: multipart/x; b=b\n" + fields + "\n--b\n" + fields + "\nhi\n");
    for (int round = 0; round < 3; ++round) fill_quietly(message, one_field);
    EXPECT_GE(message.m_root.m_headers.capacity(), 1000U); // as clear() has it
    EXPECT_LE(message.m_root.m_children[0].m_headers.capacity(), 2U);
}

/// Entities that were nested and are now siblings must not be taken for descendants.
TEST(reuse, of_a_tree_a_hundred_thousand_deep_takes_a_small_stack) {
    const std::string deep = repeated(100000, "C:\n\n") + "hi\n";
    const std::string broad = "C: multipart/x; b=b\n\n" + repeated(10, "--b\n");
    test_support::run_on_stack(std::size_t{128} << 10U, [&] {
        MailStructure message;
        for (const std::string& input :
             {deep, deep, broad, deep, std::string("C:\n\nC:\n\nhi\n"), deep, deep + "a\rb\n"}) {
            std::istringstream in(input);
            fill(message, in);
        }
    });
}

} // namespace
