// Which extension the file of an attachment gets.

#include "common/type_extension.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string_view>

namespace {

TEST(type_extension, is_that_of_the_sent_name_if_it_is_harmless) {
    EXPECT_EQ(extension_for("application/octet-stream", "a.pdf"), "pdf");
    EXPECT_EQ(extension_for("text/plain", "a.b.CSV"), "csv");
    EXPECT_EQ(extension_for("application/octet-stream", ".jpg"), "jpg");
    EXPECT_EQ(extension_for("application/octet-stream", "x.bin"), "bin");
}

TEST(type_extension, is_else_that_of_the_type) {
    EXPECT_EQ(extension_for("image/png", "a.exe"), "png");
    EXPECT_EQ(extension_for("image/png", "pdf"), "png");
    EXPECT_EQ(extension_for("image/png", "a.pdf."), "png");
    EXPECT_EQ(extension_for("image/png", "a.pdf/x"), "png");
    EXPECT_EQ(extension_for("image/png", ""), "png");
    EXPECT_EQ(extension_for("application/x-unknown", "a.exe"), "bin");
    EXPECT_EQ(extension_for("text/x-unknown", "a.sh"), "txt");
}

TEST(type_extension, is_one_of_all_of_them_and_made_of_letters_and_digits) {
    const auto& all = all_extensions();
    for (const char* const type : {"text/html", "text/x-unknown", "a/b", "", "IMAGE/JPG"})
        EXPECT_EQ(std::count(all.begin(), all.end(), extension_for(type)), 1) << type;
    for (const std::string_view each : all) {
        EXPECT_FALSE(each.empty());
        EXPECT_EQ(each.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789"),
                  std::string_view::npos);
    }
}

} // namespace
