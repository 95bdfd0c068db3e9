// Compares each scanner that this processor can run with its plain twin. The first byte chooses the
// scanner, and the second how far from an aligned address the text begins. The text ends where its
// memory ends.

#include "parser/lines/scanners.h"
#include "require.h"
#include "support/scan_kinds.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <new>
#include <string_view>

namespace {

using namespace mail_structure_detail;

/// The name of a scanner, and a function that says whether its result is that of its plain twin.
struct scanner {
    const char* m_name;
    bool (*m_agrees)(std::string_view text);
};

bool line_scans_agree(std::string_view text) {
    for (const field_names names : test_support::all_field_names) {
        const scanned_line wanted = scan_line_plain(text, names);
        for (const scanner_set& one : all_scanners()) {
            const scanned_line found = one.m_scan_line(text, names);
            if (found.m_bytes != wanted.m_bytes || found.m_has_lf != wanted.m_has_lf
                || found.m_stray != wanted.m_stray || found.m_name_bytes != wanted.m_name_bytes)
                return false;
        }
    }
    return true;
}

bool body_scans_agree(std::string_view text) {
    for (const run_limits limits : test_support::all_run_limits) {
        const scanned_lines wanted = scan_body_plain(text, limits);
        for (const scanner_set& one : all_scanners()) {
            const scanned_lines found = one.m_scan_body(text, limits);
            if (found.m_bytes != wanted.m_bytes || found.m_lines != wanted.m_lines) return false;
        }
    }
    return true;
}

const scanner scanners[] = {
    {"the line scanners agree with the plain one", line_scans_agree},
    {"the body scanners agree with the plain one", body_scans_agree},
};

constexpr std::size_t alignments = 64;

/// Memory that begins at an aligned address and is exactly as long as requested, so that a
/// sanitizer reports a read past its end.
class aligned_memory {
public:
    explicit aligned_memory(std::size_t bytes)
        : m_bytes(static_cast<char*>(::operator new(bytes, alignment))) {}
    ~aligned_memory() { ::operator delete(m_bytes, alignment); }
    aligned_memory(const aligned_memory&) = delete;
    aligned_memory& operator=(const aligned_memory&) = delete;

    char* get() const { return m_bytes; }

private:
    static constexpr std::align_val_t alignment{alignments};
    char* m_bytes;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const scanner& chosen = scanners[data[0] % std::size(scanners)];
    const std::size_t offset = data[1] % alignments;
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 2, size - 2);

    const aligned_memory memory(offset + bytes.size());
    std::memset(memory.get(), '\n', offset); // a scanner that begins too early finds these
    char* const text = memory.get() + offset;
    bytes.copy(text, bytes.size());
    fuzz::require(chosen.m_agrees({text, bytes.size()}), chosen.m_name);
    return 0;
}
