// Walks the sources that were read; see the header.

#include "scan/resumption.h"

#include "common/complaint.h"
#include "scan/input/archive_reader.h"
#include "scan/input/file_reader.h"
#include "scan/input/source_identity.h"
#include "scan/input/source_walk.h"
#include "scan/scan_fingerprint.h"

#include <sys/stat.h>

namespace {

std::uint64_t size_of(const found_source& source) {
    struct stat file = {};
    if (source.m_error != 0 || ::stat(source.m_name.c_str(), &file) != 0) return 0;
    return S_ISREG(file.st_mode) ? static_cast<std::uint64_t>(file.st_size) : 0;
}

/// How much of the source was read and is not read again. What is packed is unpacked from its
/// beginning.
std::uint64_t bytes_before(const found_source& source, const scan_position& next) {
    if (size_of(source) == 0) return 0; // opening a pipe would wait for its other end
    const file_reader file(source.m_name, [](std::uint64_t) {});
    return is_packed(file.peek(0, packed_beginning)) ? 0 : next.m_offset;
}

} // namespace

resumption check_resumption(const scan_options& options, const scan_state& state) {
    if (state.m_options != scan_fingerprint(options))
        return {"the interrupted scan had other sources or options, or is of another version", 0};
    resumption changed = {"the sources that were read before the interruption have changed", 0};
    resumption result;
    source_walk walk(options.m_sources, options.m_output);
    found_source source;
    std::string done;
    for (std::uint64_t number = 0; number < state.m_next.m_source; ++number) {
        if (!walk.next(source)) return changed;
        done = source_chain(done, source_identity(source));
        result.m_bytes_before += size_of(source);
    }
    if (done != state.m_done) return changed;
    if (state.m_begun.empty()) return result;
    if (!walk.next(source)) return changed;
    if (source_identity(source) != state.m_begun)
        return {escaped(source.m_name) + " has changed since the interruption", 0};
    result.m_bytes_before += bytes_before(source, state.m_next);
    return result;
}
