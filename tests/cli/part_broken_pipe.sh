#!/bin/sh
# Somebody who has seen enough.
awk 'BEGIN { print "a: b\n"; for (i = 0; i < 100000; ++i) print "0123456789" }' > long
mailstructure part TEXT long | head -n 1
