// A file of rows that an interrupted scan leaves in a state from which another run can go on.

#ifndef TOOLS_SCAN_OUTPUT_ROW_FILE_H
#define TOOLS_SCAN_OUTPUT_ROW_FILE_H

#include "scan/output/partial_file.h"
#include "scan/output/scan_output.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

/// FILE.partial has the rows until FILE is complete, and FILE.partial.checkpoint tells how many of
/// them count, and what comes next. Rows are on the disk before a checkpoint speaks of them.
class row_file final : public scan_output {
public:
    /// @param resumes  go on with what an interrupted scan has left; from the beginning where there
    ///                 is nothing
    row_file(const std::string& file_name, bool resumes, std::chrono::seconds between_checkpoints);

    /// Where the interrupted scan has come to; nothing for a new file.
    const std::optional<scan_state>& resumed() const { return m_resumed; }
    /// Begins to write. The state is the one that was resumed, or that of the beginning. False
    /// after a failure.
    bool begin(const scan_state& state);

    bool write(std::string_view rows) override;
    bool has_checkpoints() const override { return true; }
    bool wants_checkpoint() override { return m_clock.is_time(); }
    bool checkpoint(const scan_state& state) override;
    /// Gives the file its name. False if this or an earlier step has failed.
    bool finish();

    const std::string& error() const { return m_file.error(); }
    std::string advice() const { return m_file.advice(); }

private:
    bool go_to_end_of_rows();

    partial_file m_file;
    checkpoint_clock m_clock;
    std::optional<scan_state> m_resumed;
};

#endif
