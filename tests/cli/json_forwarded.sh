#!/bin/sh
mailstructure json messages/forwarded.eml
