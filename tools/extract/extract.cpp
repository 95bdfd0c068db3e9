// Joins the walk, the reader, the threads and the folder; see the header.

#include "extract/extract.h"

#include "common/complaint.h"
#include "extract/attachment_finder.h"
#include "extract/content_folder.h"
#include "extract/index_rows.h"
#include "scan/input/source_walk.h"
#include "scan/pipeline/message_worker.h"
#include "scan/pipeline/ordered_work.h"

#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <utility>

namespace {

/// One run of the command. The threads find and hash the attachments; the thread that reads the
/// sources also writes the files.
class extract_run final : private batch_exchange {
public:
    extract_run(const scan_options& options, const target_folder& folder,
                const std::function<bool(std::string_view)>& write_index)
        : m_options(options), m_folder(folder), m_write_index(write_index),
          m_progress(options.m_progress, options.m_sources),
          m_work(
              options.m_threads, [this] { return new_worker(); },
              [this](batch& done) { return write_batch(done); }) {}

    extract_totals run(int folder) {
        pile_options pile = m_options.m_pile;
        pile.m_folder = folder;
        pile_reader reader(pile, *this);
        source_walk walk(m_options.m_sources);
        found_source source;
        while (walk.next(source)) {
            const bool goes_on = source.m_error == 0 ? reader.read(source.m_name, source.m_is_named)
                                                     : reader.refuse(source.m_name, source.m_error);
            if (!goes_on) break;
        }
        m_work.finish();
        m_progress.end();
        return std::move(m_totals);
    }

private:
    ordered_work::work_function new_worker() const {
        const MailStructure::rules by = m_options.m_rows.m_rules;
        auto worker = std::make_shared<message_worker>(
            m_options.m_rows, [by](batch& work, const message_facts& message) {
                find_attachments(work, message, by);
            });
        return [worker](batch& work) { worker->work_on(work); };
    }

    std::unique_ptr<batch> fresh() override { return m_work.fresh(); }
    bool take(std::unique_ptr<batch> full) override { return m_work.take(std::move(full)); }
    void count_read(std::uint64_t bytes) override {
        m_progress.show(bytes, m_totals.m_scan.m_messages, m_totals.m_scan.m_errors);
    }

    /// The faults of a message, and those before it, come before its attachments.
    bool write_batch(batch& done) {
        std::size_t faults = 0;
        std::size_t message_faults = 0;
        std::size_t attachments = 0;
        m_rows.clear();
        const auto append_faults_up_to = [&](std::uint64_t place) {
            append_faults(done.m_faults, faults, place, *done.m_source);
            append_faults(done.m_message_faults, message_faults, place, *done.m_source);
        };
        for (const batch_message& message : done.m_messages) {
            ++m_totals.m_scan.m_messages;
            m_totals.m_scan.m_bytes += message.m_length;
            append_faults_up_to(message.m_offset);
            for (; attachments < done.m_attachments.size()
                   && done.m_attachments[attachments].m_message == message.m_offset;
                 ++attachments)
                if (!store(*done.m_source, done.m_attachments[attachments])) return false;
        }
        append_faults_up_to(std::numeric_limits<std::uint64_t>::max());
        m_totals.m_scan.m_entities += done.m_entities;
        if (done.m_ends_source) ++m_totals.m_scan.m_sources;
        return m_rows.empty() || m_write_index(m_rows);
    }

    /// Appends the rows of faults from a place in their list on, up to those of the message at that
    /// place in the source.
    void append_faults(const std::vector<scan_fault>& faults, std::size_t& next,
                       std::uint64_t place, const source_facts& source) {
        for (;
             next < faults.size() && faults[next].m_message.value_or(faults[next].m_byte) <= place;
             ++next)
            append_fault(faults[next], source);
    }

    void append_fault(const scan_fault& fault, const source_facts& source) {
        ++m_totals.m_scan.m_faults[std::string(fault.m_code)];
        if (fault.m_level == fault_level::error) ++m_totals.m_scan.m_errors;
        append_fault_row(m_rows, row_form::json, source, fault);
    }

    /// Writes the file of an attachment and its row. False if the work is to be given up.
    bool store(const source_facts& source, const found_attachment& found) {
        const stored_as stored = m_folder.store(found);
        if (stored == stored_as::failure) {
            m_totals.m_file = m_folder.name();
            m_totals.m_error = m_folder.error();
            return false;
        }
        if (const std::optional<scan_fault> fault = fault_of(found, stored))
            append_fault(*fault, source);
        const bool has_file = stored == stored_as::new_file || stored == stored_as::old_file;
        append_attachment_row(m_rows, source, found, has_file ? m_folder.name() : "");
        ++m_totals.m_attachments;
        if (stored == stored_as::new_file) {
            ++m_totals.m_new_files;
            m_totals.m_new_bytes += found.m_decoded.m_size;
        }
        return true;
    }

    /// What is wrong with an attachment.
    std::optional<scan_fault> fault_of(const found_attachment& found, stored_as stored) const {
        scan_fault fault;
        fault.m_level = fault_level::note;
        fault.m_message = found.m_message;
        fault.m_byte = found.m_byte;
        if (stored == stored_as::nothing) {
            fault.m_level = fault_level::error;
            fault.m_code = "name-taken";
            fault.m_text = "something else has the name " + m_folder.name();
        } else if (stored == stored_as::not_compared) {
            fault.m_level = fault_level::error;
            fault.m_code = "cannot-compare";
            fault.m_text =
                "cannot read " + m_folder.name() + ": " + system_error_text(m_folder.error());
        } else if (!found.m_encoding) {
            fault.m_code = "unknown-encoding";
            fault.m_text = "the attachment has an unknown transfer encoding, and was not decoded";
        } else if (found.m_decoded.m_damage) {
            fault.m_byte += found.m_decoded.m_damage->m_offset;
            fault.m_code = "damaged-attachment";
            fault.m_text = "decoded with damage: " + found.m_decoded.m_damage->m_what;
        } else {
            return std::nullopt;
        }
        return fault;
    }

    const scan_options& m_options;
    content_folder m_folder;
    const std::function<bool(std::string_view)>& m_write_index;
    extract_totals m_totals;
    std::string m_rows; // of the batch that is being written
    progress m_progress;
    ordered_work m_work; // the last one: its threads end before the others go
};

} // namespace

extract_totals extract(const scan_options& options, const target_folder& folder,
                       const std::function<bool(std::string_view)>& write_index) {
    return extract_run(options, folder, write_index).run(folder.descriptor());
}
