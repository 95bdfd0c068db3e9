// Appends rows, and writes checkpoints beside them; see the header.

#include "scan/output/row_file.h"

#include "common/complaint.h"
#include "common/descriptor_io.h"

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

row_file::row_file(const std::string& file_name, bool resumes,
                   std::chrono::seconds between_checkpoints)
    : m_file(file_name, resumes), m_clock(between_checkpoints) {
    if (!m_file.error().empty() || !m_file.is_resumed()) return;
    m_resumed = state_in(m_file.read_beside(partial_file::checkpoint_ending));
    if (!m_resumed)
        m_file.fail("what is there is not of an interrupted scan, or its checkpoint is lost");
}

bool row_file::begin(const scan_state& state) {
    if (!error().empty()) return false;
    if (m_resumed) return go_to_end_of_rows();
    return checkpoint(state) && m_file.create();
}

/// Drops the rows after the checkpoint, which will be made once more.
bool row_file::go_to_end_of_rows() {
    const auto length = static_cast<off_t>(m_resumed->m_totals.m_row_bytes);
    struct stat file = {};
    if (::fstat(m_file.descriptor(), &file) != 0) return m_file.fail(system_error_text(errno));
    if (file.st_size < length) return m_file.fail("rows that were written are lost");
    if (::ftruncate(m_file.descriptor(), length) != 0
        || ::lseek(m_file.descriptor(), length, SEEK_SET) < 0)
        return m_file.fail(system_error_text(errno));
    return true;
}

bool row_file::write(std::string_view rows) {
    if (!error().empty()) return false;
    return write_all(m_file.descriptor(), rows) || m_file.fail(system_error_text(errno));
}

bool row_file::checkpoint(const scan_state& state) {
    if (!error().empty()) return false;
    if (m_file.descriptor() >= 0 && ::fdatasync(m_file.descriptor()) != 0)
        return m_file.fail(system_error_text(errno));
    const bool is_written = m_file.write_beside(partial_file::checkpoint_ending, text_of(state));
    m_clock.restart();
    return is_written;
}

bool row_file::finish() {
    if (!error().empty()) return false;
    if (::fsync(m_file.descriptor()) != 0) return m_file.fail(system_error_text(errno));
    if (!m_file.complete()) return false;
    m_file.remove_beside(partial_file::checkpoint_ending);
    return true;
}
