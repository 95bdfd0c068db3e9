// Parses a message, checks the rules that every tree obeys, and parses again with the filled
// object. Then does with the tree what hosts do: copies, assignments, the dump, clear, destruction.
// Breaks off a feeder and looks for findings as well.

#include <mail_findings.h>
#include <mail_structure.h>

#include "fuzz_options.h"
#include "require.h"
#include "same_tree.h"
#include "support/tree_rules.h"

#include <cstddef>
#include <cstdint>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <string_view>

namespace {

enum class outcome : std::uint8_t { done, length_error, other_exception };

outcome fill(MailStructure& message, const fuzz::fuzz_input& input) {
    fuzz::input_stream stream(input);
    message.m_done = false;
    try {
        message.Fill(stream.get(), input.m_rules);
    } catch (const std::length_error&) {
        fuzz::require(!message.m_done, "m_done stays when an exception leaves Fill");
        return outcome::length_error;
    } catch (const std::exception&) {
        fuzz::require(!message.m_done, "m_done stays when an exception leaves Fill");
        return outcome::other_exception;
    }
    fuzz::require(message.m_done, "m_done is set at the end of the input");
    return outcome::done;
}

/// A feeder that is dropped leaves the tree of Fill over the bytes that had come. They come in two
/// chunks.
void break_off(const fuzz::fuzz_input& input) {
    const std::string_view bytes = input.m_message.substr(0, input.fault_offset());
    MailStructure filled;
    MailStructure fed;
    filled.m_keep_text = fed.m_keep_text = input.m_keep_text;
    try {
        filled.Fill(bytes, input.m_rules);
    } catch (const std::exception&) {} // what it leaves is compared
    try {
        MailStructure::feeder feeder(fed, input.m_rules);
        feeder.feed(bytes.substr(0, bytes.size() / 2));
        feeder.feed(bytes.substr(bytes.size() / 2));
    } catch (const std::exception&) {
        fuzz::require(!filled.m_done, "feed throws only where Fill throws");
    }
    fuzz::require(!fed.m_done, "m_done stays when a feeder is dropped");
    fuzz::require_same_tree(filled.m_root, fed.m_root, fuzz::parents::ignored);
}

/// Takes what is written to it and keeps none of it.
class null_buffer : public std::streambuf {
protected:
    std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
    int_type overflow(int_type c) override { return traits_type::not_eof(c); }
};

class streams_silenced {
public:
    streams_silenced() : m_cerr(std::cerr.rdbuf(&m_null)), m_cout(std::cout.rdbuf(&m_null)) {}
    ~streams_silenced() {
        std::cerr.rdbuf(m_cerr);
        std::cout.rdbuf(m_cout);
    }
    streams_silenced(const streams_silenced&) = delete;
    streams_silenced& operator=(const streams_silenced&) = delete;

private:
    null_buffer m_null;
    std::streambuf* m_cerr;
    std::streambuf* m_cout;
};

void dump(const MailStructure& message) {
    static std::ifstream unread;
    const streams_silenced silenced;
    message.Dump(unread);
}

void require_cleared(const MailStructure::MimeObj& entity) {
    MailStructure::MimeObj wanted;
    wanted.m_parent = entity.m_parent;
    wanted.m_type.clear();
    wanted.m_subtype.clear();
    wanted.m_encoding.clear();
    fuzz::require_same_tree(entity, wanted, fuzz::parents::equal);
}

/// @param copy  a copy of the message's root, used up here
void live_on(MailStructure& message, MailStructure::MimeObj& copy) {
    MailStructure::MimeObj target;
    target.get_obj()->get_obj();
    target = copy;
    fuzz::require_same_tree(target, copy, fuzz::parents::equal);
    // Assigns from a descendant, which the assignment destroys: the last of the chain of last
    // children.
    MailStructure::MimeObj* descendant = &copy;
    const MailStructure::MimeObj* original = &target;
    while (!descendant->m_children.empty()) {
        descendant = &descendant->m_children.back();
        original = &original->m_children.back();
    }
    copy = *descendant;
    fuzz::require_same_tree(copy, *original, fuzz::parents::equal);
    MailStructure::MimeObj moved = std::move(target);
    fuzz::require_same_tree(moved, message.m_root, fuzz::parents::ignored);
    target = std::move(moved);
    target.clear();
    require_cleared(target);
}

/// Findings lie within the message.
void look_for_findings(std::string_view message) {
    mail_findings::find(message, [message](const mail_findings::finding& found) {
        fuzz::require(found.m_offset <= message.size()
                          && found.m_length <= message.size() - found.m_offset,
                      "a finding lies within the message");
        fuzz::require(found.m_line >= 1 && found.m_line <= found.m_offset + 1,
                      "a finding names a line that there can be");
        fuzz::require(found.m_level <= mail_findings::highest_level_of(found.m_name),
                      "a finding does not exceed the level of its name");
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::fuzz_input input = fuzz::read_input(data, size);
    MailStructure::m_memlimit = input.m_memlimit;
    MailStructure message;
    message.m_keep_text = input.m_keep_text;
    const outcome first = fill(message, input);
    look_for_findings(input.m_message);
    fuzz::require(message.m_root.m_parent == nullptr, "the root has no parent");
    const bool all_read =
        !input.has_faulty_stream() && input.m_exceptions == std::ios_base::goodbit;
    const std::string broken = test_support::check_tree(
        message, {input.m_rules, input.m_message, input.m_keep_text, input.has_memlimit(),
                  first == outcome::length_error, all_read});
    fuzz::require(broken.empty(), broken);

    MailStructure::MimeObj copy(message.m_root);
    fuzz::require_same_tree(copy, message.m_root, fuzz::parents::equal);

    // Parses once more, with the filled tree. How the bytes arrive must not matter, unless a fault
    // stops them.
    fuzz::fuzz_input again = input;
    if (!input.has_faulty_stream() && input.m_exceptions == std::ios_base::goodbit)
        again.m_stream_kind = 0;
    fuzz::require(fill(message, again) == first, "a second run ends as the first");
    fuzz::require_same_tree(message.m_root, copy, fuzz::parents::ignored);

    if (!input.m_rare_steps) return 0;
    break_off(input);
    if (input.m_dump) dump(message); // slow: it makes and flushes many small lines
    live_on(message, copy);
    return 0;
}
