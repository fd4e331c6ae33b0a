#!/usr/bin/env python3
"""Has clang look at the syntax of sources, which come one a line on standard input, as the build compiles them.

  syntax.py COMPILE_COMMANDS      a file of CMake's; a source that it does not name is left out
"""
import concurrent.futures
import json
import os
import shlex
import subprocess
import sys


def look_at(entry):
    words = shlex.split(entry['command'])
    words = [word for word in words if os.path.basename(word) != 'ccache']
    at = words.index('-o')
    del words[at:at + 2]
    command = ['clang++', *words[1:], '-fsyntax-only', '-Werror', '-Wno-unknown-warning-option', '-Qunused-arguments']
    return subprocess.run(command, cwd=entry['directory'], check=False).returncode == 0


def main(commands):
    wanted = {os.path.realpath(line.strip()) for line in sys.stdin}
    with open(commands, encoding='utf-8') as file:
        entries = {os.path.realpath(entry['file']): entry for entry in json.load(file)}
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        fine = list(pool.map(look_at, [entries[path] for path in sorted(wanted & entries.keys())]))
    sys.exit(0 if all(fine) else 1)


if __name__ == '__main__':
    main(*sys.argv[1:])
