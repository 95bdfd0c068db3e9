// Makes what a stream prints safe for a terminal, while it is printed.

#ifndef TOOLS_COMMON_PRINTABLE_STREAM_H
#define TOOLS_COMMON_PRINTABLE_STREAM_H

#include "common/printable.h"

#include <iosfwd>
#include <streambuf>
#include <string>
#include <string_view>

/// Passes text on to another stream buffer as printable() gives it, but with its tabs and line ends
/// (LF, and CR LF) as they are. A character may arrive in several pieces. Up to three bytes wait
/// for the rest of their character, or for the LF after their CR.
class printable_stream_buffer final : public std::streambuf {
public:
    printable_stream_buffer(std::streambuf& to, character_set set) : m_to(to), m_set(set) {}

    /// Passes on what still waits. To be called after the last character.
    void finish();

protected:
    int_type overflow(int_type byte) override;
    std::streamsize xsputn(const char* text, std::streamsize bytes) override;
    int sync() override;

private:
    bool take(std::string_view text);
    bool pass_on(std::string_view text);

    std::streambuf& m_to;
    character_set m_set;
    std::string m_waiting;
};

/// Makes a stream print through a printable_stream_buffer for as long as this object exists. The
/// stream keeps its state.
class printable_stream {
public:
    printable_stream(std::ostream& stream, character_set set);
    ~printable_stream();
    printable_stream(const printable_stream&) = delete;
    printable_stream& operator=(const printable_stream&) = delete;

private:
    void use(std::streambuf* buffer);

    std::ostream& m_stream;
    std::streambuf* m_before;
    printable_stream_buffer m_buffer;
};

#endif
