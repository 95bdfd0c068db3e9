// A file that a scan is writing, and that another run of the scan can complete.

#ifndef TOOLS_SCAN_OUTPUT_PARTIAL_FILE_H
#define TOOLS_SCAN_OUTPUT_PARTIAL_FILE_H

#include <string>
#include <string_view>

/// While it is written the file is called FILE.partial, and it stays if the program ends before it
/// is complete, in whatever way. The most usual signals that end the program then print how to go
/// on. One program at a time has it open. There is one object at a time.
class partial_file {
public:
    /// How the name ends of the file beside it, which tells from where a scan goes on.
    static constexpr std::string_view checkpoint_ending = ".checkpoint";

    /// Opens FILE.partial for reading and writing; a failure shows in error(). A file that is
    /// called FILE already is kept, and is an error.
    /// @param resumes  a file that is left from an interrupted scan is opened; without it, or if
    ///                 there is none, a new one is created
    partial_file(const std::string& file_name, bool resumes);
    ~partial_file();
    partial_file(const partial_file&) = delete;
    partial_file& operator=(const partial_file&) = delete;

    /// What has failed; empty if nothing has.
    const std::string& error() const { return m_error; }
    /// How to go on after a failure; empty if there is nothing to go on from.
    std::string advice() const { return m_is_locked ? m_advice : ""; }

    /// Whether it was there before.
    bool is_resumed() const { return m_is_resumed; }
    int descriptor() const { return m_descriptor; }
    /// A name by which it can be opened once more.
    std::string path() const { return m_path + m_name; }

    /// Reads a file beside it, which is called FILE.partial and the ending; empty if there is none.
    std::string read_beside(std::string_view ending) const;
    /// Writes a file beside it, in one step and instead of one that is there. False after a
    /// failure.
    bool write_beside(std::string_view ending, std::string_view bytes);
    void remove_beside(std::string_view ending) const;

    /// Creates the file, unless it was there. What must lie beside it when it exists is to be
    /// written before. False after a failure.
    bool create();
    /// Gives the file its name, if nothing has that by now. All that was written must be on the
    /// disk. False after a failure.
    bool complete();

    /// Remembers a failure. @return false
    bool fail(const std::string& why);

private:
    bool open_existing();
    bool lock();

    std::string m_path;       // of the folder, with a slash
    std::string m_final_name; // in the folder
    std::string m_name;       // in the folder, until the file is complete
    int m_folder = -1;
    int m_descriptor = -1;
    bool m_is_resumed = false;
    bool m_is_locked = false;
    std::string m_advice;
    std::string m_interruption; // what is printed when a signal ends the program
    std::string m_error;
};

#endif
