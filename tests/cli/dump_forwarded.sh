#!/bin/sh
mailstructure dump --keep-text messages/forwarded.eml
