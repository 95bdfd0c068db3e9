#!/bin/sh
mailstructure --help
mailstructure dump --help
