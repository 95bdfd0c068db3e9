#!/bin/sh
# The text of the leaves goes to standard output, with CR LF whatever the file has.
mailstructure dump --keep-text messages/mixed-with-attachment.eml
