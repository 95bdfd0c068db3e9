#!/bin/sh
# Nothing can be said then; the status says it.
mailstructure dump messages/plain.eml 2> /dev/full
