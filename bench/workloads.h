// The mail that the benchmarks parse, made from fixed seeds: the same bytes on every machine and in
// every run.

#ifndef MAILSTRUCTURE_BENCH_WORKLOADS_H
#define MAILSTRUCTURE_BENCH_WORKLOADS_H

#include <cstddef>
#include <string>
#include <vector>

namespace bench {

/// Messages that are parsed one after another, and the totals that a right parse of them finds.
struct workload {
    std::vector<std::string> m_messages;
    std::size_t m_entities = 0;
    std::size_t m_fields = 0;
    /// Body lines as the root counts them: with closing lines, without separators and epilogues.
    std::size_t m_body_lines = 0;
    std::size_t m_lines = 0; ///< All lines.

    std::size_t bytes() const;
};

/// Makes its workload when `get` is first called.
class workload_source {
public:
    workload_source(const char* name, workload (*make)()) : m_name(name), m_make(make) {}

    const std::string& name() const { return m_name; }
    const workload& get();

private:
    std::string m_name;
    workload (*m_make)();
    workload m_made;
};

/// One message of 64 MiB each:
/// - base64_crlf: a text and four attachments
/// - dashed_lf: a text of signatures, differences of files and keys, in which one line of six
///   begins with "--", beside an attachment
/// - text_lf: one part, lines of 0 to 100 bytes
extern workload_source large_workloads[3];

/// - small_messages: 5,000 messages of 3 to 20 KB with folded fields, alternatives within mixed,
///   and forwarded messages; half of them with CRLF
/// - tiny_parts: one multipart of 1,000,000 parts
/// - levels: 100,000 messages, each the body of the one before
/// - fields: one header block of 1,000,000 fields
extern workload_source other_workloads[4];

} // namespace bench

#endif
