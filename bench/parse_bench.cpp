// Times MailStructure::Fill, with one parser object for all messages, as in a server.

#include <mail_structure.h>

#include "benches.h"
#include "sources.h"

#include <fstream>
#include <istream>
#include <stdexcept>

namespace bench {

namespace {

/// How a workload is parsed.
struct how {
    MailStructure::rules m_rules = MailStructure::rules::classic;
    bool m_keep_text = false;
};

std::size_t count_entities(const MailStructure::MimeObj& root) {
    std::size_t count = 0;
    std::vector<const MailStructure::MimeObj*> to_visit{&root};
    while (!to_visit.empty()) {
        const MailStructure::MimeObj& entity = *to_visit.back();
        to_visit.pop_back();
        ++count;
        for (const MailStructure::MimeObj& child : entity.m_children) to_visit.push_back(&child);
    }
    return count;
}

/// Fills the parser from each message, and calls act(parser) after each.
template <class Buffer, class Act>
void parse_all(MailStructure& parser, Buffer& buffer, std::istream& in, const workload& mail,
               MailStructure::rules by, Act act) {
    for (const std::string& message : mail.m_messages) {
        buffer.reset(message);
        in.clear();
        parser.Fill(in, by);
        act(parser);
    }
}

/// Whether the messages are parsed as they should be; the speed of a wrong parse means nothing.
template <class Buffer>
bool parses_right(MailStructure& parser, Buffer& buffer, std::istream& in, const workload& mail,
                  MailStructure::rules by) {
    std::size_t entities = 0;
    std::size_t body_lines = 0;
    parse_all(parser, buffer, in, mail, by, [&](const MailStructure& parsed) {
        entities += count_entities(parsed.m_root);
        body_lines += parsed.m_root.m_lines;
    });
    return entities == mail.m_entities && body_lines == mail.m_body_lines;
}

template <class Buffer>
void parse_from(benchmark::State& state, const workload& mail, const how& wanted) {
    MailStructure parser;
    parser.m_keep_text = wanted.m_keep_text;
    Buffer buffer;
    std::istream in(&buffer);
    if (!parses_right(parser, buffer, in, mail, wanted.m_rules))
        return state.SkipWithError("a wrong parse");
    for ([[maybe_unused]] auto turn : state)
        parse_all(parser, buffer, in, mail, wanted.m_rules,
                  [](MailStructure& parsed) { benchmark::DoNotOptimize(parsed); });
    report_size(state, mail);
}

void parse_file(benchmark::State& state, const workload& mail) {
    const std::string& path = file_of(mail);
    MailStructure parser;
    for ([[maybe_unused]] auto turn : state) {
        std::ifstream in(path, std::ios::binary);
        parser.Fill(in);
    }
    if (parser.m_root.m_lines != mail.m_body_lines) state.SkipWithError("a wrong parse");
    report_size(state, mail);
}

/// Maps the file anew each time, as a program does that parses it once.
void parse_mapped_file(benchmark::State& state, const workload& mail) {
    const std::string& path = file_of(mail);
    MailStructure parser;
    whole_memory buffer;
    std::istream in(&buffer);
    for ([[maybe_unused]] auto turn : state) {
        const mapped_file file(path);
        buffer.reset(file.bytes());
        in.clear();
        parser.Fill(in);
    }
    if (parser.m_root.m_lines != mail.m_body_lines) state.SkipWithError("a wrong parse");
    report_size(state, mail);
}

} // namespace

void register_parse(workload_source& source) {
    register_one(source, "parse", [](benchmark::State& state, const workload& mail) {
        parse_from<whole_memory>(state, mail, {});
    });
    register_one(source, "parse_standard", [](benchmark::State& state, const workload& mail) {
        parse_from<whole_memory>(state, mail, {MailStructure::rules::standard, false});
    });
}

void register_parse_of_large(workload_source& source) {
    register_one(source, "keep_text", [](benchmark::State& state, const workload& mail) {
        parse_from<whole_memory>(state, mail, {MailStructure::rules::classic, true});
    });
    register_one(source, "by_4096", [](benchmark::State& state, const workload& mail) {
        parse_from<memory_by_4096>(state, mail, {});
    });
    register_one(source, "ifstream", parse_file);
    register_one(source, "mapped", parse_mapped_file);
}

} // namespace bench
