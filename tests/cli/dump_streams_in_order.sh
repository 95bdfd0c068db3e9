#!/bin/sh
# The structure and the text keep their order where both streams go to one place.
mailstructure dump --keep-text messages/forwarded.eml 2>&1
