#!/bin/sh
mailstructure json < /dev/null
mailstructure json --flat -
