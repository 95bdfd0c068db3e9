#!/bin/sh
mailstructure --help
mailstructure -h | head -n 1
mailstructure tree --help
mailstructure dump --help
