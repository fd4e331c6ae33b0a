#!/usr/bin/env python3
"""Runs a program that saves a picture, and looks whether something is on it.

  example.py PICTURE PROGRAM [ARGUMENT...]
"""
import os
import subprocess
import sys

from PIL import Image

LEAST_COLORS = 500  # an instrument has thousands, an empty window one


def main():
    picture, command = sys.argv[1], sys.argv[2:]
    if os.path.exists(picture):
        os.remove(picture)
    environment = dict(os.environ, QT_QPA_PLATFORM='offscreen')
    subprocess.run(command, check=True, env=environment)
    colors = len(set(Image.open(picture).convert('RGB').getdata()))
    print(f'{picture}: {colors} colors')
    sys.exit(0 if colors >= LEAST_COLORS else 1)


if __name__ == '__main__':
    main()
