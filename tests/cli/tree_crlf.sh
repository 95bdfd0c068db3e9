#!/bin/sh
mailstructure tree messages/mixed-with-attachment-crlf.eml
