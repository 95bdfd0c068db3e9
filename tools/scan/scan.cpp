// Joins the walk, the reader, the threads and the writer; see the header.

#include "scan/scan.h"

#include "scan/input/source_identity.h"
#include "scan/input/source_walk.h"
#include "scan/pipeline/message_worker.h"
#include "scan/pipeline/ordered_work.h"
#include "scan/scan_fingerprint.h"
#include "scan/shards/range_parts.h"
#include "scan/shards/shard_row.h"

#include <deque>
#include <memory>
#include <utility>

namespace {

/// One run of the scan.
class scan_run final : private batch_exchange {
public:
    scan_run(const scan_options& options, scan_output& output)
        : m_options(options), m_output(output), m_state(options.m_resumed.value_or(scan_state())),
          m_chained(m_state.m_next.m_source),
          m_parts(options.m_resumed ? scan_range{m_state.m_next, std::nullopt} : options.m_range,
                  options.m_shard && options.m_shard->m_is_by_bytes, options.m_pile,
                  options.m_shard ? options.m_shard->m_sources : nullptr,
                  options.m_shard ? options.m_shard->m_undivided : nullptr),
          m_progress(options.m_progress, options.m_sources, options.m_bytes_before),
          m_work(
              options.m_threads, [this] { return new_worker(); },
              [this](batch& done) { return write_batch(done); }) {
        m_state.m_options = scan_fingerprint(options);
    }

    scan_totals run() {
        if (m_options.m_shard)
            m_progress.expect(m_options.m_shard->m_sources->bytes_in(m_options.m_range));
        pile_reader reader(m_options.m_pile, *this);
        source_walk walk(m_options.m_sources, m_options.m_output);
        found_source source;
        bool goes_on = true;
        std::uint64_t number = 0;
        for (; goes_on && !m_parts.ends_before(number); ++number) {
            if (!walk.next(source)) break;
            const std::optional<source_part> part = m_parts.part_of(number, source.m_name);
            if (part) goes_on = read(reader, source, *part);
        }
        goes_on = m_work.finish() && goes_on;
        if (goes_on && m_output.has_checkpoints()) m_output.checkpoint(m_state);
        m_progress.end();
        scan_totals& totals = m_state.m_totals;
        totals.m_are_sources_others = goes_on && !m_parts.are_sources_as_before(number);
        if (goes_on && m_options.m_shard && !totals.m_are_sources_others)
            m_output.write(line_of(row_of_shard()));
        return std::move(m_state.m_totals);
    }

private:
    bool read(pile_reader& reader, const found_source& source, const source_part& part) {
        if (m_output.has_checkpoints()) m_identities.push_back(source_identity(source));
        if (source.m_error != 0)
            return reader.refuse(source.m_name, source.m_error, part.m_begin.m_source);
        const bool goes_on = reader.read(source.m_name, source.m_is_named, part);
        m_parts.add(part, reader.bounds());
        return goes_on;
    }

    /// What stands at the end of a shard.
    shard_row row_of_shard() const {
        const scan_totals& totals = m_state.m_totals;
        shard_row row;
        row.m_shard = m_options.m_shard->m_shard;
        row.m_fingerprint = m_options.m_shard->m_fingerprint;
        row.m_range = m_parts.range();
        row.m_first = m_parts.first();
        row.m_last = m_parts.last();
        row.m_bytes = totals.m_row_bytes;
        row.m_sources = totals.m_sources;
        row.m_messages = totals.m_messages;
        row.m_entities = totals.m_entities;
        row.m_errors = totals.m_errors;
        row.m_faults = totals.m_faults;
        return row;
    }

    ordered_work::work_function new_worker() const {
        auto worker = std::make_shared<message_worker>(m_options.m_rows, m_options.m_makes_rows);
        return [worker](batch& work) { worker->work_on(work); };
    }

    std::unique_ptr<batch> fresh() override { return m_work.fresh(); }
    bool take(std::unique_ptr<batch> full) override { return m_work.take(std::move(full)); }
    void count_read(std::uint64_t bytes) override {
        const scan_totals& totals = m_state.m_totals;
        m_progress.show(bytes, totals.m_messages, totals.m_errors);
    }

    void count_fault(const scan_fault& fault) {
        ++m_state.m_totals.m_faults[std::string(fault.m_code)];
        ++m_state.m_faults_of_source;
        if (fault.m_level == fault_level::error) ++m_state.m_totals.m_errors;
    }

    bool write_batch(batch& done) {
        scan_totals& totals = m_state.m_totals;
        totals.m_messages += done.m_messages.size();
        m_state.m_messages_of_source += done.m_messages.size();
        totals.m_entities += done.m_entities;
        for (const batch_message& message : done.m_messages) totals.m_bytes += message.m_length;
        for (const scan_fault& fault : done.m_faults) count_fault(fault);
        for (const scan_fault& fault : done.m_message_faults) count_fault(fault);
        if (done.m_ends_source) {
            ++totals.m_sources;
            if (m_options.m_makes_rows)
                append_source_row(done.m_rows, m_options.m_rows.m_form, *done.m_source,
                                  m_state.m_messages_of_source, m_state.m_faults_of_source);
            m_state.m_messages_of_source = m_state.m_faults_of_source = 0;
        }
        totals.m_row_bytes += done.m_rows.size();
        if (!done.m_rows.empty() && !m_output.write(done.m_rows)) return false;
        if (!done.m_next || !m_output.has_checkpoints()) return true;
        go_on_to(*done.m_next);
        return !m_output.wants_checkpoint() || m_output.checkpoint(m_state);
    }

    /// Notes that all rows of what comes before that place were written.
    void go_on_to(const scan_position& next) {
        for (; m_chained < next.m_source; ++m_chained) {
            m_state.m_done = source_chain(m_state.m_done, m_identities.front());
            m_identities.pop_front();
        }
        m_state.m_next = next;
        const bool has_begun = next.m_member != 0 || next.m_offset != 0;
        m_state.m_begun = has_begun ? m_identities.front() : "";
    }

    const scan_options& m_options;
    scan_output& m_output;
    scan_state m_state;                   // of the rows that were written
    std::uint64_t m_chained;              // the number of sources in m_state.m_done
    std::deque<std::string> m_identities; // of those that follow and were begun to be read
    range_parts m_parts;
    progress m_progress;
    ordered_work m_work; // the last one: its threads end before the others go
};

/// Hands rows to a function.
class function_output final : public scan_output {
public:
    explicit function_output(const std::function<bool(std::string_view)>& write) : m_write(write) {}
    bool write(std::string_view rows) override { return m_write(rows); }

private:
    const std::function<bool(std::string_view)>& m_write;
};

} // namespace

scan_totals scan(const scan_options& options, scan_output& output) {
    return scan_run(options, output).run();
}

scan_totals scan(const scan_options& options, const std::function<bool(std::string_view)>& write) {
    function_output output(write);
    return scan(options, output);
}
