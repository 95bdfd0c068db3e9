#!/bin/sh
mailstructure dump messages/mixed-with-attachment.eml
