#!/bin/sh
# Structure is never an error.
LC_ALL=C.UTF-8 mailstructure tree messages/broken.eml
