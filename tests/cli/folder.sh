#!/bin/sh
mkdir folder
mailstructure dump folder
