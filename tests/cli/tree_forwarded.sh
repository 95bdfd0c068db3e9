#!/bin/sh
# A message within a message shows its subject.
LC_ALL=C.UTF-8 mailstructure tree messages/forwarded.eml
