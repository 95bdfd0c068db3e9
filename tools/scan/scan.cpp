// Joins the walk, the reader, the threads and the writer; see the header.

#include "scan/scan.h"

#include "scan/input/source_walk.h"
#include "scan/pipeline/message_worker.h"
#include "scan/pipeline/ordered_work.h"
#include "scan/shards/range_parts.h"
#include "scan/shards/shard_row.h"

#include <memory>
#include <utility>

namespace {

/// One run of the scan.
class scan_run final : private batch_exchange {
public:
    scan_run(const scan_options& options, const std::function<bool(std::string_view)>& write)
        : m_options(options), m_write(write),
          m_parts(options.m_range, options.m_shard && options.m_shard->m_is_by_bytes,
                  options.m_pile, options.m_shard ? options.m_shard->m_sources : nullptr,
                  options.m_shard ? options.m_shard->m_undivided : nullptr),
          m_progress(options.m_progress, options.m_sources),
          m_work(
              options.m_threads, [this] { return new_worker(); },
              [this](batch& done) { return write_batch(done); }) {}

    scan_totals run() {
        pile_reader reader(m_options.m_pile, *this);
        source_walk walk(m_options.m_sources);
        found_source source;
        bool goes_on = true;
        std::uint64_t number = 0;
        for (; goes_on && !m_parts.ends_before(number); ++number) {
            if (!walk.next(source)) break;
            const std::optional<source_part> part = m_parts.part_of(number, source.m_name);
            if (part) goes_on = read(reader, source, *part);
        }
        goes_on = m_work.finish() && goes_on;
        m_progress.end();
        m_totals.m_are_sources_others = goes_on && !m_parts.are_sources_as_before(number);
        if (goes_on && m_options.m_shard && !m_totals.m_are_sources_others)
            m_write(line_of(row_of_shard()));
        return std::move(m_totals);
    }

private:
    bool read(pile_reader& reader, const found_source& source, const source_part& part) {
        if (source.m_error != 0)
            return reader.refuse(source.m_name, source.m_error, part.m_begin.m_source);
        const bool goes_on = reader.read(source.m_name, source.m_is_named, part);
        m_parts.add(part, reader.bounds());
        return goes_on;
    }

    /// What stands at the end of a shard.
    shard_row row_of_shard() const {
        shard_row row;
        row.m_shard = m_options.m_shard->m_shard;
        row.m_fingerprint = m_options.m_shard->m_fingerprint;
        row.m_range = m_parts.range();
        row.m_first = m_parts.first();
        row.m_last = m_parts.last();
        row.m_bytes = m_totals.m_row_bytes;
        row.m_sources = m_totals.m_sources;
        row.m_messages = m_totals.m_messages;
        row.m_entities = m_totals.m_entities;
        row.m_errors = m_totals.m_errors;
        for (const auto& [code, count] : m_totals.m_faults) row.m_faults[std::string(code)] = count;
        return row;
    }

    ordered_work::work_function new_worker() const {
        auto worker = std::make_shared<message_worker>(m_options.m_rows, m_options.m_makes_rows);
        return [worker](batch& work) { worker->work_on(work); };
    }

    std::unique_ptr<batch> fresh() override { return m_work.fresh(); }
    bool take(std::unique_ptr<batch> full) override { return m_work.take(std::move(full)); }
    void count_read(std::uint64_t bytes) override {
        m_progress.show(bytes, m_totals.m_messages, m_totals.m_errors);
    }

    void count_fault(const scan_fault& fault) {
        ++m_totals.m_faults[fault.m_code];
        ++m_faults_of_source;
        if (fault.m_level == fault_level::error) ++m_totals.m_errors;
    }

    bool write_batch(batch& done) {
        m_totals.m_messages += done.m_messages.size();
        m_messages_of_source += done.m_messages.size();
        m_totals.m_entities += done.m_entities;
        for (const batch_message& message : done.m_messages) m_totals.m_bytes += message.m_length;
        for (const scan_fault& fault : done.m_faults) count_fault(fault);
        for (const scan_fault& fault : done.m_message_faults) count_fault(fault);
        if (done.m_ends_source) {
            ++m_totals.m_sources;
            if (m_options.m_makes_rows)
                append_source_row(done.m_rows, m_options.m_rows.m_form, *done.m_source,
                                  m_messages_of_source, m_faults_of_source);
            m_messages_of_source = m_faults_of_source = 0;
        }
        m_totals.m_row_bytes += done.m_rows.size();
        return done.m_rows.empty() || m_write(done.m_rows);
    }

    const scan_options& m_options;
    const std::function<bool(std::string_view)>& m_write;
    scan_totals m_totals;
    std::uint64_t m_messages_of_source = 0;
    std::uint64_t m_faults_of_source = 0;
    range_parts m_parts;
    progress m_progress;
    ordered_work m_work; // the last one: its threads end before the others go
};

} // namespace

scan_totals scan(const scan_options& options, const std::function<bool(std::string_view)>& write) {
    return scan_run(options, write).run();
}
