#!/bin/sh
mailstructure json --pretty messages/mixed-with-attachment.eml messages/no-final-newline.eml
