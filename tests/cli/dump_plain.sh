#!/bin/sh
# One part, a folded field, parameters on two lines.
mailstructure dump messages/plain.eml
