#!/bin/sh
mailstructure json --flat messages/mixed-with-attachment.eml messages/forwarded.eml
