// Where the rows of a scan go.

#ifndef TOOLS_SCAN_OUTPUT_SCAN_OUTPUT_H
#define TOOLS_SCAN_OUTPUT_SCAN_OUTPUT_H

#include "scan/scan_state.h"

#include <chrono>
#include <string_view>

class scan_output {
public:
    scan_output() = default;
    virtual ~scan_output() = default;
    scan_output(const scan_output&) = delete;
    scan_output& operator=(const scan_output&) = delete;

    /// Takes whole rows. False if no more are wanted.
    virtual bool write(std::string_view rows) = 0;
    /// Whether a scan can go on from a checkpoint in what was written. If not, the next two
    /// functions are not called.
    virtual bool has_checkpoints() const { return false; }
    /// Whether it is time for a checkpoint.
    virtual bool wants_checkpoint() { return false; }
    /// Sees to it that a scan that is interrupted from now on can go on from here. Its rows are all
    /// that were written before. False if no more rows are wanted.
    virtual bool checkpoint(const scan_state& /*state*/) { return true; }
};

/// Tells when it is time for the next checkpoint.
class checkpoint_clock {
public:
    explicit checkpoint_clock(std::chrono::seconds interval) : m_interval(interval) {}

    bool is_time() const { return clock::now() - m_last >= m_interval; }
    void restart() { m_last = clock::now(); }

private:
    using clock = std::chrono::steady_clock;

    std::chrono::seconds m_interval;
    clock::time_point m_last = clock::now();
};

#endif
