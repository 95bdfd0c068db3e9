// Times MailStructure::Fill, with one parser object for all messages, as in a server.

#include <mail_structure.h>

#include "benches.h"
#include "sources.h"

#include <cstddef>
#include <fstream>
#include <istream>
#include <string>
#include <string_view>

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

/// Hands in a message by a stream.
template <class Buffer>
class by_stream {
public:
    void fill(MailStructure& parser, std::string_view message, MailStructure::rules by) {
        m_buffer.reset(message);
        m_in.clear();
        parser.Fill(m_in, by);
    }

private:
    Buffer m_buffer;
    std::istream m_in{&m_buffer};
};

/// Hands in a message as it lies in memory.
struct by_memory {
    static void fill(MailStructure& parser, std::string_view message, MailStructure::rules by) {
        parser.Fill(message, by);
    }
};

/// Hands in a message in chunks.
template <std::size_t AtATime>
struct by_feeder {
    static void fill(MailStructure& parser, std::string_view message, MailStructure::rules by) {
        MailStructure::feeder feeder(parser, by);
        for (; message.size() > AtATime; message.remove_prefix(AtATime))
            feeder.feed(message.substr(0, AtATime));
        feeder.feed(message);
        feeder.finish();
    }
};

/// Fills the parser from each message, and calls act(parser) after each.
template <class Way, class Act>
void parse_all(MailStructure& parser, Way& way, const workload& mail, MailStructure::rules by,
               Act act) {
    for (const std::string& message : mail.m_messages) {
        way.fill(parser, message, by);
        act(parser);
    }
}

/// Whether the messages are parsed as they should be; the speed of a wrong parse means nothing.
template <class Way>
bool parses_right(MailStructure& parser, Way& way, const workload& mail, MailStructure::rules by) {
    std::size_t entities = 0;
    std::size_t body_lines = 0;
    parse_all(parser, way, mail, by, [&](const MailStructure& parsed) {
        entities += count_entities(parsed.m_root);
        body_lines += parsed.m_root.m_lines;
    });
    return entities == mail.m_entities && body_lines == mail.m_body_lines;
}

template <class Way>
void parse_from(benchmark::State& state, const workload& mail, const how& wanted) {
    MailStructure parser;
    parser.m_keep_text = wanted.m_keep_text;
    Way way;
    if (!parses_right(parser, way, mail, wanted.m_rules))
        return state.SkipWithError("a wrong parse");
    for ([[maybe_unused]] auto turn : state)
        parse_all(parser, way, mail, wanted.m_rules,
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

/// Both sets of rules.
template <class Way>
void register_way(workload_source& source, const std::string& name) {
    register_one(source, name, [](benchmark::State& state, const workload& mail) {
        parse_from<Way>(state, mail, {});
    });
    register_one(source, name + "_standard", [](benchmark::State& state, const workload& mail) {
        parse_from<Way>(state, mail, {MailStructure::rules::standard, false});
    });
}

} // namespace

void register_parse(workload_source& source) {
    register_one(source, "parse", [](benchmark::State& state, const workload& mail) {
        parse_from<by_stream<whole_memory>>(state, mail, {});
    });
    register_one(source, "parse_standard", [](benchmark::State& state, const workload& mail) {
        parse_from<by_stream<whole_memory>>(state, mail, {MailStructure::rules::standard, false});
    });
    register_way<by_memory>(source, "memory");
    register_way<by_feeder<65536>>(source, "feed_65536");
    register_way<by_feeder<100>>(source, "feed_100");
    register_way<by_feeder<1>>(source, "feed_1");
}

void register_parse_of_large(workload_source& source) {
    register_one(source, "keep_text", [](benchmark::State& state, const workload& mail) {
        parse_from<by_stream<whole_memory>>(state, mail, {MailStructure::rules::classic, true});
    });
    register_one(source, "by_4096", [](benchmark::State& state, const workload& mail) {
        parse_from<by_stream<memory_by_4096>>(state, mail, {});
    });
    register_one(source, "ifstream", parse_file);
    register_one(source, "mapped", parse_mapped_file);
}

} // namespace bench
