#!/bin/sh
mailstructure dump /dev/null
