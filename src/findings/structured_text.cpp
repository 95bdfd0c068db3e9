#include "structured_text.h"

namespace mail_structure_detail::findings {

namespace {

/// White space as it folds a field: a line end counts, and what is wrong with one is reported for
/// its line.
bool is_folding(char c) noexcept { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

/// A control byte, which the obsolete grammar allows in comments and quoted strings.
bool is_control(char c) noexcept {
    return (static_cast<unsigned char>(c) < ' ' && !is_folding(c)) || c == '\x7F';
}

} // namespace

structured_text::gap structured_text::skip_gap() noexcept {
    gap skipped{m_at, 0, false};
    take_while(is_folding);
    while (is_at('(') && !has_failed()) {
        skipped.m_has_comment = true;
        skip_comment();
        take_while(is_folding);
    }
    skipped.m_length = m_at - skipped.m_begin;
    return skipped;
}

void structured_text::skip_comment() noexcept {
    const std::size_t begin = m_at;
    std::size_t depth = 0;
    while (!at_end()) {
        if (is_at('\\')) {
            skip_quoted_pair();
            continue;
        }
        if (is_control(m_text[m_at])) is_obsolete_at(m_at, 1);
        if (is_at('(')) ++depth;
        if (is_at(')')) --depth;
        ++m_at;
        if (depth == 0) return;
    }
    fail_at(begin, 1);
}

/// Passes over a backslash and the byte that it quotes.
void structured_text::skip_quoted_pair() noexcept {
    ++m_at;
    if (at_end()) return;
    if (is_control(m_text[m_at])) is_obsolete_at(m_at, 1);
    ++m_at;
}

void structured_text::skip_quoted_string() noexcept {
    const std::size_t begin = m_at++;
    while (!at_end()) {
        if (take('"')) return;
        if (is_at('\\')) {
            skip_quoted_pair();
            continue;
        }
        if (is_control(m_text[m_at])) is_obsolete_at(m_at, 1);
        ++m_at;
    }
    fail_at(begin, 1);
}

void structured_text::skip_domain_literal() noexcept {
    const std::size_t begin = m_at++;
    while (!at_end()) {
        if (take(']')) return;
        if (is_at('[')) return fail();
        if (is_at('\\')) {
            is_obsolete_at(m_at, 1);
            skip_quoted_pair();
            continue;
        }
        if (is_control(m_text[m_at])) is_obsolete_at(m_at, 1);
        ++m_at;
    }
    fail_at(begin, 1);
}

void structured_text::fail_at(std::size_t begin, std::size_t length) noexcept {
    if (!has_failed()) m_departure = {level::fault, begin, length};
}

void structured_text::is_obsolete_at(std::size_t begin, std::size_t length) noexcept {
    if (!m_departure) m_departure = {level::note, begin, length};
}

} // namespace mail_structure_detail::findings
