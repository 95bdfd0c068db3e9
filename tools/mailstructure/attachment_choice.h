// Chooses the one attachment whose name matches a pattern.

#ifndef TOOLS_MAILSTRUCTURE_ATTACHMENT_CHOICE_H
#define TOOLS_MAILSTRUCTURE_ATTACHMENT_CHOICE_H

#include "common/message_reader.h"
#include "mailstructure/part_bytes.h"
#include "mailstructure/part_command.h"

#include <optional>

/// The attachment that the pattern of the options chooses. If it chooses none or several, this
/// complains and returns nothing.
std::optional<chosen_piece> choose_by_name(const part_options& options,
                                           const message_reader& reader);

/// Complains that the pattern of the options chooses no attachment.
void complain_about_no_match(const part_options& options);

#endif
