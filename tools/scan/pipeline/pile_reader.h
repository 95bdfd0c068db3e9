// Reads sources and cuts them into batches of whole messages.

#ifndef TOOLS_SCAN_PIPELINE_PILE_READER_H
#define TOOLS_SCAN_PIPELINE_PILE_READER_H

#include "scan/input/byte_source.h"
#include "scan/input/file_reader.h"
#include "scan/mbox/mbox_splitter.h"
#include "scan/pipeline/batch.h"
#include "scan/pipeline/scan_position.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct pile_options {
    mbox_options m_mbox;
    bool m_one = false; ///< Every file is one message.
    MailStructure::rules m_rules = MailStructure::rules::standard;
    /// Descriptor of a folder for the bytes of messages that are not held in memory; -1 if they are
    /// not needed.
    int m_folder = -1;
};

/// What a file is that begins so, if it is not packed.
/// @param is_all  these are all bytes of the file
source_kind kind_of(std::string_view beginning, bool is_all, const pile_options& options);

/// Where batches come from and go to.
class batch_exchange {
public:
    virtual ~batch_exchange() = default;
    /// An empty batch to be filled.
    virtual std::unique_ptr<batch> fresh() = 0;
    /// Takes a batch that is full. False if no more is wanted.
    virtual bool take(std::unique_ptr<batch> full) = 0;
    /// Is told that so many more bytes of the sources were read.
    virtual void count_read(std::uint64_t bytes) = 0;
};

/// Small files share a batch only with themselves; the room of each batch is used again, so that
/// this costs little.
class pile_reader {
public:
    pile_reader(const pile_options& options, batch_exchange& exchange)
        : m_options(options), m_exchange(exchange) {}

    /// Reads one source to its end; "-" is standard input. What is wrong with it becomes a fault in
    /// a batch. False if no more is wanted.
    /// @param is_named  the user has named the source, so that it is an error if it is no mail. In
    ///                  a folder there may be other files
    /// @param part      what is wanted of the source. Nothing before it is read, but for the first
    ///                  bytes, which tell what the source is; an archive is unpacked from its
    ///                  beginning
    bool read(const std::string& name, bool is_named, const source_part& part = {});
    /// Gives a batch that says nothing but that the source cannot be read.
    /// @param number  of the source in the walk
    bool refuse(const std::string& name, int error, std::uint64_t number = 0);

    /// Where the messages were that read() has given last.
    const part_bounds& bounds() const { return m_bounds; }

private:
    class one_source;

    bool read_archive(file_reader& file, const std::string& name, bool is_named,
                      const scan_position& begin);
    bool end_archive(const file_reader& file, const std::string& name, const scan_position& begin,
                     std::vector<scan_fault> faults);

    const pile_options m_options;
    batch_exchange& m_exchange;
    part_bounds m_bounds;
};

#endif
