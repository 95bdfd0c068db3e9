#!/bin/sh
mailstructure json messages/no-final-newline.eml
