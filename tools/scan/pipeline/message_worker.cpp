// Parses, and calls the makers of rows; see the header.

#include "scan/pipeline/message_worker.h"

#include <limits>
#include <new>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

using MimeObj = MailStructure::MimeObj;

/// The trees of larger messages are freed, so that one of them does not hold its memory for ever.
constexpr std::uint64_t large_message_bytes = std::uint64_t{1} << 20;

std::uint64_t count_entities(const MimeObj& root) {
    std::uint64_t count = 1;
    if (root.m_children.empty()) return count;
    std::vector<const MimeObj*> waiting = {&root};
    while (!waiting.empty()) {
        const MimeObj& entity = *waiting.back();
        waiting.pop_back();
        count += entity.m_children.size();
        for (const MimeObj& child : entity.m_children)
            if (!child.m_children.empty()) waiting.push_back(&child);
    }
    return count;
}

} // namespace

void message_worker::work_on(batch& work) {
    m_faults_done = 0;
    for (const batch_message& message : work.m_messages) {
        if (m_makes_rows) append_faults_up_to(work, message.m_offset);
        work_on_message(work, message);
    }
    if (m_makes_rows) append_faults_up_to(work, std::numeric_limits<std::uint64_t>::max());
}

/// Appends the rows of the source's faults that concern the message at that offset, or what stands
/// before it. They come before the row of their message, because they may have been handed over
/// before it has ended.
void message_worker::append_faults_up_to(batch& work, std::uint64_t message) {
    for (; m_faults_done < work.m_faults.size(); ++m_faults_done) {
        const scan_fault& fault = work.m_faults[m_faults_done];
        if (fault.m_message.value_or(fault.m_byte) > message) return;
        append_fault_row(work.m_rows, m_options.m_form, *work.m_source, fault);
    }
}

void message_worker::work_on_message(batch& work, const batch_message& message) {
    message_facts facts;
    facts.m_source = work.m_source.get();
    facts.m_place = &message;
    const large_message* const large = message.m_large.get();
    if (large == nullptr)
        facts.m_bytes =
            work.m_bytes.view().substr(message.m_begin, static_cast<std::size_t>(message.m_length));
    if (parse(work, message, facts.m_bytes))
        facts.m_root = large != nullptr ? &large->message().m_root : &m_parser.m_root;
    if (!m_makes_rows) {
        if (facts.m_root != nullptr) {
            work.m_entities += count_entities(*facts.m_root);
            if (m_take) hand_over(work, facts);
        }
    } else {
        add_facts_of_bytes(facts, large);
        if (m_options.m_findings) look_for_findings(facts);
        append_rows(work, facts);
    }
    if (message.m_length >= large_message_bytes) m_parser.m_root = MimeObj();
}

/// Adds what takes no tree.
/// @param large  null where the bytes are there
void message_worker::add_facts_of_bytes(message_facts& facts, const large_message* large) const {
    quoted_from_lines quoted;
    quoted.add(facts.m_bytes);
    facts.m_quoted_lines = large != nullptr ? large->quoted_lines() : quoted.count();
    if (m_options.m_hash == hash_choice::none) return;
    message_digester digester;
    digester.add(facts.m_bytes);
    facts.m_digests = large != nullptr ? large->digests() : digester.finish();
}

/// Not in a message whose bytes are gone, or that is too large, nor where memory is too small.
void message_worker::look_for_findings(message_facts& facts) {
    if (facts.m_place->m_large || facts.m_place->m_length > m_options.m_max_size) return;
    try {
        m_findings.count(facts.m_bytes);
        facts.m_findings = &m_findings;
    } catch (const std::bad_alloc&) {
        // The row says that nobody looked.
    }
}

/// Appends the rows of the message; only the row without its tree where memory is too small for
/// the others.
void message_worker::append_rows(batch& work, message_facts& facts) {
    const std::size_t before = work.m_rows.size();
    try {
        work.m_entities += append_message_rows(work.m_rows, facts, m_options);
    } catch (const std::bad_alloc&) {
        work.m_rows.resize(before);
        m_parser.m_root = MimeObj();
        facts.m_root = nullptr;
        report(work, *facts.m_place, "no-memory", "memory has run out");
        append_message_rows(work.m_rows, facts, m_options);
    }
}

void message_worker::hand_over(batch& work, const message_facts& facts) const {
    try {
        m_take(work, facts);
    } catch (const std::bad_alloc&) {
        report(work, *facts.m_place, "no-memory", "memory has run out");
    }
}

/// Takes the message apart. False if it has no tree; a fault then says why.
bool message_worker::parse(batch& work, const batch_message& message, std::string_view bytes) {
    if (message.m_length > m_options.m_max_size) {
        report(work, message, "too-large",
               "the message has more than " + std::to_string(m_options.m_max_size) + " bytes");
        return false;
    }
    if (const large_message* const large = message.m_large.get()) {
        if (large->fault()) report(work, message, "bad-message", *large->fault());
        return !large->fault();
    }
    try {
        m_parser.Fill(bytes, m_options.m_rules);
        return true;
    } catch (const std::bad_alloc&) {
        m_parser.m_root = MimeObj();
        report(work, message, "no-memory", "memory has run out");
    } catch (const std::length_error&) {
        report(work, message, "bad-message", "a header line is a name without a colon");
    } catch (const std::runtime_error&) {
        report(work, message, "bad-message", "a CR or NUL stands inside a line");
    }
    return false;
}

void message_worker::report(batch& work, const batch_message& message, std::string_view code,
                            std::string text) const {
    scan_fault fault;
    fault.m_code = code;
    fault.m_text = std::move(text);
    fault.m_byte = message.m_offset;
    fault.m_message = message.m_offset;
    if (m_makes_rows) append_fault_row(work.m_rows, m_options.m_form, *work.m_source, fault);
    work.m_message_faults.push_back(std::move(fault));
}
