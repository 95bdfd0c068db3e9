// MailStructure::feeder: the loop of line_loop.h, stopped and continued between chunks.

#include "chunk_parse.h"
#include "classic/classic_grammar.h"
#include "line_loop.h"
#include "lines/chunk_reader.h"
#include "standard/standard_grammar.h"

#include <exception>
#include <new>
#include <stdexcept>
#include <utility>

namespace mail_structure_detail {

namespace {

template <class Grammar>
class chunk_parse_by final : public chunk_parse {
public:
    chunk_parse_by(MailStructure& message, std::uint32_t first_offset)
        : m_loop(message, nullptr), m_reader(first_offset, Grammar::names) {}

    void feed(std::string_view chunk) override {
        m_reader.add(chunk);
        m_loop.take_lines(m_reader);
    }

    void finish() override {
        take_last_line();
        m_loop.end_input();
        m_loop.mark_done();
    }

    void break_off() noexcept override {
        try {
            take_last_line();
            m_loop.end_input();
        } catch (const std::exception&) {} // the tree is as Fill leaves it then
    }

private:
    void take_last_line() {
        input_line line;
        if (m_reader.last(line)) m_loop.take_line(line, m_reader.has_wrapped());
    }

    line_loop<Grammar> m_loop;
    chunk_reader m_reader;
};

} // namespace

std::unique_ptr<chunk_parse> begin_chunk_parse(MailStructure& message, std::uint32_t first_offset,
                                               MailStructure::rules by) {
    try {
        if (by == MailStructure::rules::standard)
            return std::make_unique<chunk_parse_by<standard::standard_grammar>>(message,
                                                                                first_offset);
        return std::make_unique<chunk_parse_by<classic::classic_grammar>>(message, first_offset);
    } catch (const std::bad_alloc&) {
        message.m_root.clear(); // the old tree is gone, whichever allocation has failed
        throw;
    }
}

} // namespace mail_structure_detail

MailStructure::feeder::feeder(MailStructure& message, rules by)
    : m_parse(mail_structure_detail::begin_chunk_parse(message, 0, by)) {}

MailStructure::feeder::feeder(feeder&& other) noexcept = default;

MailStructure::feeder& MailStructure::feeder::operator=(feeder&& other) noexcept {
    if (this == &other) return *this;
    break_off();
    m_parse = std::move(other.m_parse);
    return *this;
}

MailStructure::feeder::~feeder() { break_off(); }

void MailStructure::feeder::feed(std::string_view bytes) {
    if (!m_parse) throw std::logic_error("feed on a feeder that has ended");
    try {
        m_parse->feed(bytes);
    } catch (...) {
        m_parse.reset();
        throw;
    }
}

void MailStructure::feeder::finish() {
    if (!m_parse) throw std::logic_error("finish on a feeder that has ended");
    // Whether it returns or throws, the parse goes away at the end, and with it what it still owes
    // to the tree.
    const std::unique_ptr<mail_structure_detail::chunk_parse> parse = std::move(m_parse);
    parse->finish();
}

void MailStructure::feeder::break_off() noexcept {
    if (m_parse) m_parse->break_off();
    m_parse.reset();
}
