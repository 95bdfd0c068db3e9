// Feeds the parser and the digest; see the header.

#include "scan/pipeline/large_message.h"

#include "common/descriptor_io.h"

#include <cerrno>
#include <exception>
#include <fcntl.h>
#include <new>
#include <unistd.h>

large_message::large_message(MailStructure::rules by, int folder)
    : m_feeder(std::in_place, m_message, by) {
    if (folder < 0) return;
    constexpr mode_t for_the_owner = 0600;
    m_file.emplace(folder, for_the_owner, unfinished_file::naming::never);
    m_file_error = m_file->error();
}

void large_message::feed(std::string_view bytes) {
    m_length += bytes.size();
    m_digester.add(bytes);
    m_quoted.add(bytes);
    hold(bytes);
    if (is_too_large()) m_feeder.reset();
    if (!m_feeder) return;
    try {
        m_feeder->feed(bytes);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        m_fault = error.what();
        m_feeder.reset();
    }
}

/// Writes the bytes to the file, if there is one. Those of a message that is too large, and those
/// for which there is no room, are not needed.
void large_message::hold(std::string_view bytes) {
    if (!m_file) return;
    if (m_file_error == 0 && !write_all(m_file->descriptor(), bytes)) m_file_error = errno;
    if (is_too_large() || m_file_error != 0) m_file.reset();
}

void large_message::map_file() {
    if (!m_file) return;
    const int descriptor = ::fcntl(m_file->descriptor(), F_DUPFD_CLOEXEC, 0);
    if (descriptor < 0 || ::lseek(descriptor, 0, SEEK_SET) != 0) {
        m_file_error = errno;
        if (descriptor >= 0) ::close(descriptor);
        return;
    }
    m_bytes.emplace(descriptor);
    if (m_bytes->failed() == file_bytes::failure::no_memory) m_file_error = ENOMEM;
    if (m_bytes->failed() == file_bytes::failure::cannot_read) m_file_error = m_bytes->error();
    m_file.reset();
}

void large_message::finish() {
    m_digests = m_digester.finish();
    map_file();
    if (!m_feeder) return;
    try {
        m_feeder->finish();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        m_fault = error.what();
    }
    m_feeder.reset();
}
