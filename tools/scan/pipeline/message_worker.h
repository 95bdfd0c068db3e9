// Takes the messages of a batch apart, and makes its rows.

#ifndef TOOLS_SCAN_PIPELINE_MESSAGE_WORKER_H
#define TOOLS_SCAN_PIPELINE_MESSAGE_WORKER_H

#include <mail_structure.h>

#include "scan/pipeline/batch.h"
#include "scan/rows/message_rows.h"

#include <functional>
#include <string>
#include <string_view>
#include <utility>

/// Takes a message of the batch, and leaves in the batch what it finds.
using message_taker = std::function<void(batch& work, const message_facts& message)>;

/// The state of one thread: a parser object that is used again for each message.
class message_worker {
public:
    /// @param makes_rows  false to count alone
    message_worker(const row_options& options, bool makes_rows)
        : m_options(options), m_makes_rows(makes_rows) {}
    /// Makes no rows, but hands each message that has a tree to this function. The message is
    /// reported where memory is too small for what the function does.
    message_worker(const row_options& options, message_taker take)
        : m_options(options), m_makes_rows(false), m_take(std::move(take)) {}

    void work_on(batch& work);

private:
    void work_on_message(batch& work, const batch_message& message);
    void append_rows(batch& work, message_facts& facts);
    void hand_over(batch& work, const message_facts& facts) const;
    void add_facts_of_bytes(message_facts& facts, const large_message* large) const;
    void look_for_findings(message_facts& facts);
    bool parse(batch& work, const batch_message& message, std::string_view bytes);
    void report(batch& work, const batch_message& message, std::string_view code,
                std::string text) const;
    void append_faults_up_to(batch& work, std::uint64_t message);

    const row_options m_options;
    const bool m_makes_rows;
    const message_taker m_take; // none if nobody takes the messages
    MailStructure m_parser;
    finding_counts m_findings;
    std::size_t m_faults_done = 0; // of the batch in work
};

#endif
