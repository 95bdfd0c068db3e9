// A second implementation of the parser, written for clarity alone: it reads with std::getline, has
// one branch a rule, and grows every ancestor on every line. It shares no code with the library,
// and the tests hold the library's trees against its own.

#ifndef TESTS_REFERENCE_REFERENCE_PARSER_H
#define TESTS_REFERENCE_REFERENCE_PARSER_H

#include <cstdint>
#include <deque>
#include <istream>
#include <string>
#include <utility>
#include <vector>

namespace reference {

struct byte_range {
    std::uint32_t m_beg = 0;
    std::uint32_t m_len = 0;
};

struct field {
    std::string m_name;
    std::string m_value;
    std::uint32_t m_beg = 0xFFFFFFFF;
    std::uint32_t m_end = 0;
    std::vector<std::pair<std::string, std::string>> m_params;
};

struct entity {
    bool m_multipart = false;
    bool m_message = false;
    byte_range m_header, m_mime, m_body, m_epilogue, m_contents;
    std::vector<entity*> m_children; // owned by the message's deque
    std::vector<field> m_headers;
    entity* m_parent = nullptr;
    std::string m_type = "text";
    std::string m_subtype = "plain";
    std::string m_encoding = "7bit";
    std::uint32_t m_lines = 0;
    std::string m_body_text;
    std::string m_epilogue_text;
    bool m_body_last_empty = false;
    bool m_epilogue_last_empty = false;
};

/// What a host sets before the parse.
struct options {
    bool m_keep_text = false;
    std::uint32_t m_memlimit = 0xFFFFFFFF;
    std::uint32_t m_first_offset =
        0; // offset given to the first byte read; anything but 0 is for tests of the wrap
};

/// One parsed message. All entities lie in m_entities, the root first and the others as they were
/// opened, so that neither depth nor growth moves or nests them. Move it, do not copy it: the
/// pointers in a copy lead into the original.
struct message {
    std::deque<entity> m_entities;
    bool m_done = false;
    /// Empty after a normal return, else "runtime_error: " and its text, "length_error",
    /// "bad_cast", "bad_alloc", "ios_failure" or "other" for what left the parse. The tree holds
    /// what was built until then.
    std::string m_error;

    const entity& root() const { return m_entities.front(); }
};

/// Parses the stream from its present position to its end. Throws nothing that the stream or the
/// input gives rise to: that is told in m_error. Costs one step for each open entity and line.
message parse(std::istream& in, const options& wanted);

} // namespace reference

#endif
