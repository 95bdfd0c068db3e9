#!/bin/sh
mailstructure dump no-such-file
