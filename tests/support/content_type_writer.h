// Writes random Content-Type fields for the rule set "standard": a boundary in one of the many ways
// in which parameters can give it, amid comments, folds, other parameters and what is none.

#ifndef TESTS_SUPPORT_CONTENT_TYPE_WRITER_H
#define TESTS_SUPPORT_CONTENT_TYPE_WRITER_H

#include "support/seeded_random.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace test_support {

class content_type_writer {
public:
    explicit content_type_writer(seeded_random& random) : m_random(random) {}

    /// The texts of the lines of a field.
    /// @param type      type, slash and subtype, or what stands for them
    /// @param boundary  what the field gives as boundary, as a rule; without it, a boundary that
    ///                  nobody knows may come all the same
    std::vector<std::string> field(std::string_view type,
                                   const std::optional<std::string>& boundary);

private:
    std::string gap();
    std::string with_gaps_around_the_slash(std::string_view type);
    std::string boundary_parameters(const std::string& boundary);
    std::string plain_boundary(const std::string& boundary);
    std::string extended_boundary(const std::string& boundary);
    std::string sections(const std::string& boundary);
    std::string value(const std::string& text);
    std::string quoted(const std::string& text);
    std::string percent_encoded(const std::string& text);
    std::string other_parameter();
    std::vector<std::string> folded(const std::string& start, const std::string& text);

    seeded_random& m_random;
};

} // namespace test_support

#endif
