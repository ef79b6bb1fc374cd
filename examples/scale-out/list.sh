#!/usr/bin/env bash
# The drawings below a folder, by their paths below it, one a line, in an order that stays.
# usage: list.sh FOLDER
cd -- "$1" && find . -type f \( -iname '*.dxf' -o -iname '*.dwg' \) -printf '%P\n' | LC_ALL=C sort
