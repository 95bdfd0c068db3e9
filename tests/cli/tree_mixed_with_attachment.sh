#!/bin/sh
# Box-drawing characters where the locale has them.
LC_ALL=C.UTF-8 mailstructure tree messages/mixed-with-attachment.eml
LC_ALL=C.UTF-8 mailstructure tree --ascii messages/mixed-with-attachment.eml
mailstructure tree messages/mixed-with-attachment.eml
