#!/bin/sh
mailstructure json --flat messages/broken.eml
