// Text on its way to standard output.

#ifndef TOOLS_MAILSTRUCTURE_OUTPUT_TEXT_H
#define TOOLS_MAILSTRUCTURE_OUTPUT_TEXT_H

#include <string>

/// Gathers text and writes it to standard output in large pieces.
class output_text {
public:
    /// What has been gathered and not yet written. The caller appends to it.
    std::string& text() { return m_text; }

    /// Writes what has been gathered, if it is much.
    void write_if_large();
    /// Writes what has been gathered. After a failure, the text is dropped instead.
    void write();

    /// The system's number for the first failure to write; 0 if there was none.
    int error() const { return m_error; }

private:
    std::string m_text;
    int m_error = 0;
};

#endif
