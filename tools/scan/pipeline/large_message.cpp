// Feeds the parser and the digest; see the header.

#include "scan/pipeline/large_message.h"

#include <exception>
#include <new>

void large_message::feed(std::string_view bytes) {
    m_length += bytes.size();
    m_digester.add(bytes);
    m_quoted.add(bytes);
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

void large_message::finish() {
    m_digests = m_digester.finish();
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
