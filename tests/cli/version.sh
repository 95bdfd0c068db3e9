#!/bin/sh
mailstructure --version
