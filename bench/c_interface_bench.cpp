// Times the interface for C, with one parser for all messages: a parse from memory, after which the
// tree is laid out in flat arrays.

#include "benches.h"

#include <benchmark/benchmark.h>
#include <cstddef>
#include <mail_structure_c.h>
#include <memory>
#include <string>

namespace bench {

namespace {

struct free_parser {
    void operator()(mail_structure_parser* parser) const { mail_structure_free(parser); }
};
using owned_parser = std::unique_ptr<mail_structure_parser, free_parser>;

/// The tree of the message. It has no entities if anything failed.
mail_structure_tree tree_of(mail_structure_parser* parser, const std::string& message, int rules) {
    mail_structure_tree tree{};
    tree.struct_bytes = sizeof tree;
    if (mail_structure_parse(parser, message.data(), message.size(), rules) == MAIL_STRUCTURE_OK)
        mail_structure_get_tree(parser, &tree);
    return tree;
}

/// Whether the messages are parsed as they should be; the speed of a wrong parse means nothing.
bool parses_right(mail_structure_parser* parser, const workload& mail, int rules) {
    std::size_t entities = 0;
    std::size_t body_lines = 0;
    for (const std::string& message : mail.m_messages) {
        const mail_structure_tree tree = tree_of(parser, message, rules);
        if (tree.entity_count == 0) return false;
        entities += tree.entity_count;
        body_lines += mail_structure_entity_at(&tree, 0)->lines;
    }
    return entities == mail.m_entities && body_lines == mail.m_body_lines;
}

void parse_to_arrays(benchmark::State& state, const workload& mail, int rules) {
    const owned_parser parser(mail_structure_new());
    if (!parses_right(parser.get(), mail, rules)) return state.SkipWithError("a wrong parse");
    for ([[maybe_unused]] auto turn : state) {
        for (const std::string& message : mail.m_messages) {
            const mail_structure_tree tree = tree_of(parser.get(), message, rules);
            benchmark::DoNotOptimize(tree.entities);
        }
    }
    report_size(state, mail);
}

} // namespace

void register_c_interface(workload_source& source) {
    register_one(source, "c_arrays", [](benchmark::State& state, const workload& mail) {
        parse_to_arrays(state, mail, MAIL_STRUCTURE_CLASSIC);
    });
    register_one(source, "c_arrays_standard", [](benchmark::State& state, const workload& mail) {
        parse_to_arrays(state, mail, MAIL_STRUCTURE_STANDARD);
    });
}

} // namespace bench
