// A file for one test.

#ifndef TESTS_SUPPORT_TEMPORARY_FILE_H
#define TESTS_SUPPORT_TEMPORARY_FILE_H

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace test_support {

/// A file with these contents that is removed when this object ends.
class temporary_file {
public:
    explicit temporary_file(const std::string& contents) {
        const int descriptor = ::mkstemp(m_name.data());
        EXPECT_EQ(::write(descriptor, contents.data(), contents.size()),
                  static_cast<ssize_t>(contents.size()));
        ::close(descriptor);
    }
    ~temporary_file() { ::unlink(m_name.c_str()); }
    temporary_file(const temporary_file&) = delete;
    temporary_file& operator=(const temporary_file&) = delete;

    const std::string& name() const { return m_name; }

private:
    std::string m_name = testing::TempDir() + "mailstructure_test_XXXXXX";
};

} // namespace test_support

#endif
