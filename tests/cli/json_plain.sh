#!/bin/sh
mailstructure json messages/plain.eml
