#!/bin/sh
# One part. The fold of the subject is a tab, which shows as a blank.
mailstructure tree messages/plain.eml
