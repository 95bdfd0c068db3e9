// Bytes that are read from the first one to the last one: a file, or a member of an archive.

#ifndef TOOLS_SCAN_INPUT_BYTE_SOURCE_H
#define TOOLS_SCAN_INPUT_BYTE_SOURCE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Why something could not be read, or not to its end.
struct read_failure {
    std::string_view m_code; ///< Of the fault: "cannot-read".
    std::string m_text;
};

class byte_source {
public:
    byte_source() = default;
    virtual ~byte_source() = default;
    byte_source(const byte_source&) = delete;
    byte_source& operator=(const byte_source&) = delete;

    /// Reads up to that many bytes, and waits for at least one.
    /// @return how many; 0 at the end or after a failure
    virtual std::size_t read(char* to, std::size_t count) = 0;
    /// What reading has met; nothing if all went well.
    virtual std::optional<read_failure> failure() const = 0;
    /// How many bytes there should be; nothing if that is not known. If it is, peek() works.
    virtual std::optional<std::uint64_t> size() const { return std::nullopt; }
    /// Up to that many bytes at an offset, fewer only at the end; read() goes on where it was.
    virtual std::string peek(std::uint64_t /*offset*/, std::size_t /*count*/) const { return {}; }
};

#endif
