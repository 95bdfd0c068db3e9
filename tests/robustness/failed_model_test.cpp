// The operations on a filled tree when memory runs out, and those that promise to ask for none.

#include <mail_structure.h>

#include "differential/rule_sets.h"
#include "robustness/allocating_messages.h"
#include "robustness/failing_new.h"
#include "robustness/window_stream.h"
#include "support/compare.h"
#include "support/expect_tree_text.h"
#include "support/parse.h"
#include "support/streams.h"
#include "support/tree_text.h"

#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iostream>
#include <memory>
#include <new>
#include <sstream>
#include <streambuf>
#include <string>
#include <utility>
#include <vector>

namespace {

using MimeObj = MailStructure::MimeObj;
using differential::rule_set;
using test_support::allocating_message;
using test_support::allocation_trap;
using test_support::live_allocations;
using test_support::memory;

/// Discards what is printed to the two standard streams.
class silenced_streams {
public:
    silenced_streams() : m_cout(std::cout.rdbuf(&m_nowhere)), m_cerr(std::cerr.rdbuf(&m_nowhere)) {}
    ~silenced_streams() {
        std::cout.rdbuf(m_cout);
        std::cerr.rdbuf(m_cerr);
    }
    silenced_streams(const silenced_streams&) = delete;
    silenced_streams& operator=(const silenced_streams&) = delete;

private:
    class nowhere : public std::streambuf {
        int_type overflow(int_type byte) override { return traits_type::not_eof(byte); }
        std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
    };

    nowhere m_nowhere;
    std::streambuf* m_cout;
    std::streambuf* m_cerr;
};

constexpr memory all_outcomes[] = {memory::comes_back, memory::stays_out};

/// Calls act again and again, and lets the next allocation fail each time, until a call succeeds.
/// Calls check after each call that failed. Memory that a failed call leaves allocated counts as
/// leaked. Returns how many calls failed.
std::size_t fail_each(memory afterwards, const std::function<void()>& act,
                      const std::function<void()>& check) {
    for (std::size_t failing = 0;; ++failing) {
        const std::size_t live_before = live_allocations();
        bool has_failed = false;
        bool has_sprung = false;
        {
            const allocation_trap trap(failing, afterwards);
            try {
                act();
            } catch (const std::bad_alloc&) {
                has_failed = true;
            }
            has_sprung = trap.has_sprung();
        }
        EXPECT_EQ(has_failed, has_sprung) << "allocation " << failing;
        if (!has_sprung) return failing;
        EXPECT_EQ(live_allocations(), live_before) << "leaked, allocation " << failing;
        check();
        if (testing::Test::HasFailure()) return failing;
    }
}

std::size_t allocations_of(const std::function<void()>& act) {
    const allocation_trap trap;
    act();
    return trap.count();
}

/// A tree in an object of its own, and what the reference parser makes of the same message.
class filled_tree {
public:
    explicit filled_tree(const allocating_message& message,
                         const rule_set& by = differential::classic)
        : m_by(by) {
        const test_support::memory_limit limit(message.m_memlimit);
        m_message.m_keep_text = true;
        test_support::window_stream in(message.m_input, test_support::all_bytes);
        m_error = test_support::fill(m_message, in, 0, by.m_rules);
        std::istringstream again(message.m_input);
        m_wanted = by.m_parse(again, {true, message.m_memlimit, 0});
    }

    const rule_set& by() const { return m_by; }
    MimeObj& root() { return m_message.m_root; }
    /// Says where the tree is no longer as Fill left it; empty if it is.
    std::string change() const {
        return test_support::first_difference(m_message, m_error, m_wanted);
    }

private:
    const rule_set& m_by;
    MailStructure m_message;
    std::string m_error;
    reference::message m_wanted;
};

const allocating_message small_message{"small", "a: b\n"
                                                "\n"
                                                "hi\n"};
const allocating_message larger_message{"larger", "C: multipart/mixed; b=X\n"
                                                  "\n"
                                                  "--X\n"
                                                  "Subject: a value too long for a string object\n"
                                                  "\n"
                                                  "hi\n"
                                                  "--X--\n"};

MimeObj& innermost_last(MimeObj& root) {
    MimeObj* at = &root;
    while (!at->m_children.empty()) at = &at->m_children.back();
    return *at;
}

/// Calls a check with each message and its tree, until a check fails.
void for_each_message(const std::function<void(const allocating_message&, filled_tree&)>& check) {
    for (const rule_set* by : differential::all_rule_sets) {
        for (const allocating_message& message : test_support::allocating_messages(*by)) {
            SCOPED_TRACE(by->m_name + (": " + message.m_name));
            filled_tree original(message, *by);
            check(message, original);
            if (testing::Test::HasFailure()) return;
        }
    }
}

TEST(failed_operation, copy_construction_leaves_the_original_as_it_was) {
    for_each_message([](const allocating_message&, filled_tree& original) {
        for (const memory afterwards : all_outcomes)
            fail_each(
                afterwards, [&] { const MimeObj copy(original.root()); },
                [&] { EXPECT_EQ(original.change(), ""); });
        EXPECT_TREE_TEXT(test_support::full_tree_text(MimeObj(original.root())),
                         test_support::full_tree_text(original.root()));
    });
}

TEST(failed_operation, assignment_leaves_both_sides_as_they_were) {
    for_each_message([](const allocating_message&, filled_tree& original) {
        for (const memory afterwards : all_outcomes) {
            for (const auto& other : {small_message, larger_message}) {
                filled_tree target(other);
                fail_each(
                    afterwards, [&] { target.root() = original.root(); },
                    [&] {
                        EXPECT_EQ(target.change(), "");
                        EXPECT_EQ(original.change(), "");
                    });
                EXPECT_TREE_TEXT(test_support::full_tree_text(target.root()),
                                 test_support::full_tree_text(original.root()));
            }
        }
    });
}

TEST(failed_operation, assignment_from_the_innermost_leaves_the_tree_as_it_was) {
    for_each_message([](const allocating_message& message, filled_tree& original) {
        const std::string wanted = test_support::full_tree_text(innermost_last(original.root()));
        for (const memory afterwards : all_outcomes) {
            filled_tree tree(message, original.by());
            fail_each(
                afterwards, [&] { tree.root() = innermost_last(tree.root()); },
                [&] { EXPECT_EQ(tree.change(), ""); });
            EXPECT_TREE_TEXT(test_support::full_tree_text(tree.root()), wanted);
        }
    });
}

TEST(failed_operation, assignment_to_the_innermost_leaves_the_tree_as_it_was) {
    for_each_message([](const allocating_message& message, filled_tree& original) {
        const std::string wanted = test_support::full_tree_text(original.root());
        for (const memory afterwards : all_outcomes) {
            filled_tree tree(message, original.by());
            MimeObj& target = innermost_last(tree.root());
            fail_each(
                afterwards, [&] { target = tree.root(); }, [&] { EXPECT_EQ(tree.change(), ""); });
            EXPECT_TREE_TEXT(test_support::full_tree_text(target), wanted);
        }
    });
}

TEST(failed_operation, get_obj_adds_a_child_or_changes_nothing) {
    for_each_message([](const allocating_message& message, filled_tree& original) {
        for (std::size_t count = original.root().m_children.size(); count < 20; ++count) {
            filled_tree tree(message, original.by());
            while (tree.root().m_children.size() < count) tree.root().get_obj()->m_lines = 7;
            const MimeObj* const first_child = tree.root().m_children.data();
            const std::string before = test_support::full_tree_text(tree.root());
            MimeObj* child = nullptr;
            fail_each(
                memory::comes_back, [&] { child = tree.root().get_obj(); },
                [&] {
                    EXPECT_EQ(tree.root().m_children.data(), first_child);
                    EXPECT_TREE_TEXT(test_support::full_tree_text(tree.root()), before);
                });
            EXPECT_EQ(child, &tree.root().m_children.back());
            EXPECT_EQ(child->m_parent, &tree.root());
            tree.root().m_children.pop_back();
            EXPECT_TREE_TEXT(test_support::full_tree_text(tree.root()),
                             before); // growth has moved them whole
        }
    });
}

TEST(failed_operation, get_header_adds_a_field_or_changes_nothing) {
    for_each_message([](const allocating_message& message, filled_tree& original) {
        for (std::size_t count = original.root().m_headers.size(); count < 20; ++count) {
            filled_tree tree(message, original.by());
            while (tree.root().m_headers.size() < count) tree.root().get_header()->m_end = 7;
            const MailStructure::header* const first_field = tree.root().m_headers.data();
            const std::string before = test_support::full_tree_text(tree.root());
            MailStructure::header* field = nullptr;
            fail_each(
                memory::comes_back, [&] { field = tree.root().get_header(); },
                [&] {
                    EXPECT_EQ(tree.root().m_headers.data(), first_field);
                    EXPECT_TREE_TEXT(test_support::full_tree_text(tree.root()), before);
                });
            EXPECT_EQ(field, &tree.root().m_headers.back());
            tree.root().m_headers.pop_back();
            EXPECT_TREE_TEXT(test_support::full_tree_text(tree.root()), before);
        }
    });
}

TEST(failed_operation, dump_leaves_the_tree_as_it_was) {
    for_each_message([](const allocating_message&, filled_tree& original) {
        const silenced_streams silence;
        MailStructure message;
        message.m_root = original.root();
        const std::string before = test_support::full_tree_text(message.m_root);
        std::ifstream unread;
        for (const memory afterwards : all_outcomes) {
            const std::size_t failures = fail_each(
                afterwards, [&] { message.Dump(unread); },
                [&] { EXPECT_TREE_TEXT(test_support::full_tree_text(message.m_root), before); });
            EXPECT_GT(failures, 0U);
        }
    });
}

TEST(failed_operation, clear_destruction_and_moves_allocate_nothing) {
    for_each_message([](const allocating_message&, filled_tree& original) {
        const std::string wanted = test_support::full_tree_text(original.root());
        const std::size_t live_before = live_allocations();
        {
            auto copy = std::make_unique<MimeObj>(original.root());
            EXPECT_EQ(allocations_of([&] {
                          MimeObj taken(std::move(*copy));
                          *copy = std::move(taken);
                          MimeObj target;
                          target = std::move(*copy);
                          copy->~MimeObj();
                          ::new (copy.get()) MimeObj(std::move(target));
                      }),
                      0U);
            EXPECT_TREE_TEXT(test_support::full_tree_text(*copy), wanted);
            EXPECT_EQ(allocations_of([&] {
                          if (!copy->m_children.empty()) *copy = std::move(copy->m_children.back());
                      }),
                      0U);
            EXPECT_EQ(allocations_of([&] { copy.reset(); }), 0U);

            auto cleared = std::make_unique<MimeObj>(original.root());
            EXPECT_EQ(allocations_of([&] { cleared->clear(); }), 0U);
            EXPECT_EQ(cleared->m_children.size() + cleared->m_headers.size(), 0U);
            EXPECT_EQ(allocations_of([&] { *cleared = MimeObj(); }), 0U);
        }
        EXPECT_EQ(live_allocations(), live_before);
    });
}

TEST(failed_operation, lookups_and_line_counts_allocate_nothing) {
    for_each_message([](const allocating_message&, filled_tree& original) {
        const std::string name = "Content-Disposition";
        const std::string none;
        std::string line(100, 'x');
        MimeObj& innermost = innermost_last(original.root());
        EXPECT_EQ(allocations_of([&] {
                      innermost.find_header_full(name);
                      innermost.find_header(name, &none);
                      strncasecmp(line, "xx", 0xFFFFFFFF);
                      innermost.add_mime_line(10, 20);
                      innermost.add_header(20, 30);
                      innermost.add_contents_line(30, 40);
                      innermost.finalize();
                      for (const bool epilogue : {false, true})
                          innermost.add_body_line(false, line, 40, 50, epilogue);
                  }),
                  0U);
    });
}

TEST(failed_operation, self_assignment_allocates_nothing) {
    filled_tree tree(larger_message);
    const MimeObj& same = tree.root();
    EXPECT_EQ(allocations_of([&] { tree.root() = same; }), 0U);
    EXPECT_EQ(tree.change(), "");
}

TEST(failed_operation, push_leaves_the_stack_as_it_was) {
    const std::size_t failures = fail_each(
        memory::comes_back,
        [] {
            MailStructure message;
            std::vector<MimeObj*> stack;
            MimeObj* top = nullptr;
            std::size_t depth = 0;
            try {
                for (; depth < 10; ++depth) top = message.push(stack);
            } catch (const std::bad_alloc&) {
                EXPECT_EQ(stack.size(), depth);
                EXPECT_TRUE(stack.empty() || stack.back() == top);
                throw;
            }
        },
        [] {});
    EXPECT_GE(failures, 10U);
}

TEST(failed_operation, kept_line_is_whole_or_cut_or_missing_in_each_entity) {
    const std::string text = "a line too long for a string object to keep it inside";
    std::string line = text;
    for (const bool epilogue : {false, true}) {
        const auto kept = epilogue ? &MimeObj::m_epilogue_text : &MimeObj::m_body_text;
        const std::string whole = text + "\r\n";
        const std::size_t failures = fail_each(
            memory::comes_back,
            [&] {
                MimeObj root;
                MimeObj* innermost = &root;
                for (int depth = 0; depth < 5; ++depth) innermost = innermost->get_obj();
                const MimeObj* at = innermost;
                try {
                    innermost->add_body_line(true, line, 10, 20, epilogue);
                } catch (const std::bad_alloc&) {
                    while (at != nullptr && at->*kept == whole) at = at->m_parent;
                    ASSERT_NE(at, nullptr);
                    EXPECT_TRUE(whole.starts_with(at->*kept));
                    while ((at = at->m_parent) != nullptr) EXPECT_EQ(at->*kept, "");
                    throw;
                }
                for (; at != nullptr; at = at->m_parent) EXPECT_EQ(at->*kept, whole);
            },
            [&] { EXPECT_EQ(line, text); });
        EXPECT_GT(failures, 10U);
    }
}

} // namespace
