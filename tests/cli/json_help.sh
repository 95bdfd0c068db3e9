#!/bin/sh
mailstructure json --help
