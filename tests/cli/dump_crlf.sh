#!/bin/sh
# Same tree as with LF; every range covers the CRs too.
mailstructure dump --keep-text messages/mixed-with-attachment-crlf.eml
