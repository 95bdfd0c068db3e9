#!/bin/sh
# Structure is never an error.
mailstructure dump messages/broken.eml
