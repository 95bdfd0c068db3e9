#!/bin/sh
# One dump after the other, in the order given, the same file twice included.
mailstructure dump messages/plain.eml messages/no-final-newline.eml messages/plain.eml
