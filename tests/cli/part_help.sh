#!/bin/sh
mailstructure part --help
