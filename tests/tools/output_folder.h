// A folder of its own for each test of output files.

#ifndef TESTS_TOOLS_OUTPUT_FOLDER_H
#define TESTS_TOOLS_OUTPUT_FOLDER_H

#include "tools/refused_calls.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/stat.h>
#include <thread>

namespace fs = std::filesystem;

class output_folder : public testing::Test {
protected:
    void SetUp() override {
        std::string name = testing::TempDir() + "output_file_test_XXXXXX";
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        m_folder = name;
    }
    void TearDown() override { fs::remove_all(m_folder); }

    std::string path(const std::string& name) const { return (m_folder / name).string(); }

    void put(const std::string& name, const std::string& contents) const {
        std::ofstream(path(name)) << contents;
    }

    std::string contents(const std::string& name) const {
        std::ifstream in(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

    std::size_t count_of_files() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(m_folder), fs::directory_iterator()));
    }

    mode_t mode(const std::string& name) const {
        struct stat there = {};
        EXPECT_EQ(::stat(path(name).c_str(), &there), 0);
        return there.st_mode & 0777;
    }

    /// Runs the steps in an empty folder as they are, and then in an empty folder on a file system
    /// that gives every file a name.
    template <typename steps>
    void in_both_ways(const steps& steps_of_test) {
        steps_of_test();
        fs::remove_all(m_folder);
        fs::create_directory(m_folder);
        std::thread([&] {
            SCOPED_TRACE("with temporary names");
            refuse_unnamed_files();
            steps_of_test();
        }).join();
    }

    fs::path m_folder;
};

#endif
