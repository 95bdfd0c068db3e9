#include "workloads.h"

#include <cstdint>
#include <random>
#include <string_view>

namespace bench {

namespace {

constexpr std::size_t mebibyte = std::size_t{1} << 20;

/// The engine of the standard library without its distributions, since these differ from one
/// standard library to another.
class random_source {
public:
    explicit random_source(std::uint64_t seed) : m_engine(seed) {}

    std::uint64_t bits() { return m_engine(); }
    std::size_t from_to(std::size_t least, std::size_t most) {
        return least + m_engine() % (most - least + 1);
    }
    bool one_in(std::size_t n) { return m_engine() % n == 0; }

private:
    std::mt19937_64 m_engine;
};

/// Pieces of running text, cut from some thousand words.
class text_source {
public:
    explicit text_source(random_source& random) {
        constexpr std::string_view words[] = {
            "the",     "and",    "of",       "meeting", "report", "on",      "a",       "Tuesday",
            "please",  "find",   "attached", "minutes", "from",   "last",    "week's",  "call;",
            "we",      "shall",  "send",     "another", "draft",  "before",  "Friday,", "if",
            "nothing", "stands", "in",       "its",     "way.",   "Regards", "costs",   "of",
            "travel",  "are",    "borne",    "by",      "those",  "who",     "go",      "(mostly)"};
        while (m_pool.size() < 64 * 1024)
            m_pool.append(words[random.from_to(0, std::size(words) - 1)]).append(" ");
    }

    /// A text of this length; neither its first nor its last character is a blank.
    std::string_view piece(random_source& random, std::size_t length) const {
        for (;;) {
            const std::string_view found =
                std::string_view(m_pool).substr(random.from_to(0, m_pool.size() - 200), length);
            if (length == 0 || (found.front() != ' ' && found.back() != ' ')) return found;
        }
    }

private:
    std::string m_pool;
};

std::string base64_line(random_source& random, std::size_t length) {
    constexpr std::string_view alphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string line;
    std::uint64_t bits = 0;
    for (std::size_t at = 0; at < length; ++at) {
        if (at % 10 == 0) bits = random.bits(); // enough for ten characters of 6 bits
        line += alphabet[bits & 63];
        bits >>= 6;
    }
    return line;
}

/// Writes one message, and counts what it writes.
class writer {
public:
    writer(workload& mail, std::string_view line_end)
        : m_mail(mail), m_message(mail.m_messages.emplace_back()), m_line_end(line_end) {}

    std::size_t bytes() const { return m_message.size(); }

    void line(std::string_view text) {
        m_message.append(text).append(m_line_end);
        ++m_mail.m_lines;
    }
    void body_line(std::string_view text) {
        line(text);
        ++m_mail.m_body_lines;
    }
    void field(std::string_view text) {
        line(text);
        ++m_mail.m_fields;
    }
    void end_header_block() {
        line("");
        ++m_mail.m_entities;
    }

private:
    workload& m_mail;
    std::string& m_message;
    std::string_view m_line_end;
};

void write_text(writer& out, random_source& random, const text_source& text, std::size_t bytes) {
    for (const std::size_t end = out.bytes() + bytes; out.bytes() < end;)
        out.body_line(text.piece(random, random.one_in(8) ? 0 : random.from_to(20, 76)));
}

void write_base64(writer& out, random_source& random, std::size_t bytes) {
    for (const std::size_t end = out.bytes() + bytes; out.bytes() < end;)
        out.body_line(base64_line(random, 76));
}

/// Fields as servers and list managers add them; one in three is folded.
void write_fields(writer& out, random_source& random, const text_source& text, std::size_t count) {
    constexpr std::string_view names[] = {"Received",
                                          "Return-Path",
                                          "Delivered-To",
                                          "From",
                                          "To",
                                          "Cc",
                                          "Subject",
                                          "Date",
                                          "Message-ID",
                                          "References",
                                          "In-Reply-To",
                                          "Reply-To",
                                          "MIME-Version",
                                          "User-Agent",
                                          "DKIM-Signature",
                                          "Authentication-Results",
                                          "List-Id",
                                          "List-Unsubscribe",
                                          "Precedence",
                                          "X-Originating-Address",
                                          "X-Spam-Status",
                                          "X-Mailing-List-Host"};
    for (std::size_t field = 0; field < count; ++field) {
        const std::string_view name = names[random.from_to(0, std::size(names) - 1)];
        out.field(std::string(name).append(": ").append(text.piece(random, random.from_to(8, 60))));
        if (!random.one_in(3)) continue;
        for (std::size_t folds = random.from_to(1, 4); folds > 0; --folds)
            out.line(std::string(random.one_in(2) ? "\t" : "        ")
                         .append(text.piece(random, random.from_to(20, 66))));
    }
}

/// The field that makes an entity a multipart, with the boundary on a line of its own.
void write_multipart_fields(writer& out, std::string_view subtype, std::string_view boundary) {
    out.field(std::string("Content-Type: multipart/").append(subtype).append(";"));
    out.line(std::string("\tboundary=\"").append(boundary).append("\""));
}

/// A separator and the part's header block.
void begin_part(writer& out, std::string_view boundary, std::string_view type,
                std::string_view encoding) {
    out.line(std::string("--").append(boundary));
    out.field(std::string("Content-Type: ").append(type));
    out.field(std::string("Content-Transfer-Encoding: ").append(encoding));
    out.end_header_block();
}

void end_multipart(writer& out, std::string_view boundary) {
    out.body_line(std::string("--").append(boundary).append("--"));
    out.line("");
}

constexpr std::string_view outer_boundary = "----=_mixed_0000_91C3";
constexpr std::string_view inner_boundary = "=_alternatives_0001_4F2A";

/// The first part of a mixed message: the same text as plain text and as HTML.
void write_alternatives(writer& out, random_source& random, const text_source& text,
                        std::size_t bytes) {
    out.line(std::string("--").append(outer_boundary));
    write_multipart_fields(out, "alternative", inner_boundary);
    out.end_header_block();
    begin_part(out, inner_boundary, "text/plain; charset=utf-8", "8bit");
    write_text(out, random, text, bytes / 3);
    begin_part(out, inner_boundary, "text/html; charset=utf-8", "quoted-printable");
    write_text(out, random, text, bytes - bytes / 3);
    end_multipart(out, inner_boundary);
}

void write_attachment(writer& out, random_source& random, std::size_t bytes) {
    begin_part(out, outer_boundary, "application/pdf; name=\"minutes.pdf\"", "base64");
    write_base64(out, random, bytes);
}

void write_forward(writer& out, random_source& random, const text_source& text, std::size_t bytes) {
    begin_part(out, outer_boundary, "message/rfc822", "8bit");
    write_fields(out, random, text, random.from_to(8, 15));
    out.end_header_block();
    write_text(out, random, text, bytes);
}

void write_small_message(workload& mail, random_source& random, const text_source& text) {
    writer out(mail, random.one_in(2) ? "\r\n" : "\n");
    const std::size_t size = random.from_to(3 * 1024, 20 * 1024);
    write_fields(out, random, text, random.from_to(14, 38));
    const bool is_plain = random.one_in(4);
    if (is_plain)
        out.field("Content-Type: text/plain; charset=utf-8");
    else
        write_multipart_fields(out, "mixed", outer_boundary);
    out.end_header_block();
    const std::size_t rest = size > out.bytes() + 600 ? size - out.bytes() : 600;
    if (is_plain) return write_text(out, random, text, rest);
    write_alternatives(out, random, text, rest / 2);
    if (random.one_in(3))
        write_forward(out, random, text, rest / 2);
    else
        write_attachment(out, random, rest / 2);
    end_multipart(out, outer_boundary);
}

workload base64_crlf() {
    workload mail;
    random_source random(1);
    const text_source text(random);
    writer out(mail, "\r\n");
    write_fields(out, random, text, 20);
    write_multipart_fields(out, "mixed", outer_boundary);
    out.end_header_block();
    begin_part(out, outer_boundary, "text/plain", "7bit");
    write_text(out, random, text, 2000);
    for (int attachments = 4; attachments > 0; --attachments)
        write_attachment(out, random, 16 * mebibyte);
    end_multipart(out, outer_boundary);
    return mail;
}

workload text_lf() {
    workload mail;
    random_source random(2);
    const text_source text(random);
    writer out(mail, "\n");
    write_fields(out, random, text, 20);
    out.end_header_block();
    while (out.bytes() < 64 * mebibyte) out.body_line(text.piece(random, random.from_to(0, 100)));
    return mail;
}

workload dashed_lf() {
    workload mail;
    random_source random(5);
    const text_source text(random);
    writer out(mail, "\n");
    write_fields(out, random, text, 20);
    write_multipart_fields(out, "mixed", outer_boundary);
    out.end_header_block();
    begin_part(out, outer_boundary, "text/plain", "8bit");
    constexpr std::string_view dashed[] = {"-- ",
                                           "--- a/src/some/file.cpp",
                                           "-----BEGIN PGP SIGNATURE-----",
                                           "-----END PGP SIGNATURE-----",
                                           "--",
                                           "----------------------------------------"};
    while (out.bytes() < 64 * mebibyte) {
        if (random.one_in(6))
            out.body_line(dashed[random.from_to(0, std::size(dashed) - 1)]);
        else
            out.body_line(text.piece(random, random.from_to(0, 76)));
    }
    write_attachment(out, random, 2000);
    end_multipart(out, outer_boundary);
    return mail;
}

workload small_messages() {
    workload mail;
    random_source random(3);
    const text_source text(random);
    mail.m_messages.reserve(5000); // the writer has a reference to the message that it writes
    while (mail.m_messages.size() < 5000) write_small_message(mail, random, text);
    return mail;
}

workload tiny_parts() {
    workload mail;
    writer out(mail, "\n");
    out.field("Content-Type: multipart/mixed; boundary=b");
    out.end_header_block();
    for (int parts = 1000000; parts > 0; --parts) {
        out.line("--b");
        out.field("Content-Type: text/html");
        out.end_header_block();
        out.body_line("<p>x</p>");
    }
    out.body_line("--b--");
    return mail;
}

workload levels() {
    workload mail;
    writer out(mail, "\n");
    for (int level = 0; level < 100000; ++level) {
        out.field("Subject: inner");
        out.field("Content-Type: message/rfc822");
        out.end_header_block();
    }
    out.field("Subject: innermost");
    out.field("Content-Type: text/plain");
    out.end_header_block();
    out.body_line("text");
    return mail;
}

workload fields() {
    workload mail;
    random_source random(4);
    const text_source text(random);
    writer out(mail, "\n");
    constexpr std::string_view names[] = {"X-A", "Received", "X-Mailing-List",
                                          "X-Very-Long-Name-Of-A-Field"};
    for (int field = 0; field < 1000000; ++field) {
        const std::string_view name = names[random.from_to(0, std::size(names) - 1)];
        out.field(std::string(name).append(": ").append(text.piece(random, random.from_to(1, 60))));
    }
    out.end_header_block();
    out.body_line("text");
    return mail;
}

} // namespace

std::size_t workload::bytes() const {
    std::size_t sum = 0;
    for (const std::string& message : m_messages) sum += message.size();
    return sum;
}

const workload& workload_source::get() {
    if (m_made.m_messages.empty()) m_made = m_make();
    return m_made;
}

workload_source large_workloads[3] = {
    {"base64_crlf", base64_crlf}, {"dashed_lf", dashed_lf}, {"text_lf", text_lf}};
workload_source other_workloads[4] = {{"small_messages", small_messages},
                                      {"tiny_parts", tiny_parts},
                                      {"levels", levels},
                                      {"fields", fields}};

} // namespace bench
