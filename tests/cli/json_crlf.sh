#!/bin/sh
mailstructure json messages/mixed-with-attachment-crlf.eml
