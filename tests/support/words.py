#!/usr/bin/env python3
"""Looks for words that must not stand in the tree: names of papers that the project does not contain, paths of one
machine, notes to oneself, statics that depend on one object.

  words.py ROOT [FILE...]         all text files of ROOT, or the files named
"""
import os
import re
import sys

# Each pattern is written so that it does not match itself.
FORBIDDEN = re.compile('|'.join([
    r'specificatio[n] part', r'[^a-z]the[ ]spec[^a-z]', r'\bpar[t] [1-6]\.[1-5]\b', r'see[d] document',
    r'shared[/](spec|design|house-style|command-line|artwork)', r'/w[o]rk/', r'/f[a]rm/', r'/hom[e]/[a-z]', r'/roo[t]/',
    # A table of a class that the first object makes.
    r'static [^=;]*= *\[thi[s]\]',
    r'sub-?ag[e]nt', r'hel[p]er session', r'\bTOD[O]\b', r'DO NO[T] COMMIT',
]), re.IGNORECASE)
SKIPPED_FOLDERS = {'.git', 'build', '.cache', '__pycache__'}
TEXT = ('.h', '.cpp', '.py', '.md', '.txt', '.cmake', '.json', '.form', '.svg', '.conf', '.sh', '.yml', '.in')


def is_text(name):
    return name.endswith(TEXT) or '.' not in name.lstrip('.') or name.startswith('.')


def all_files(root):
    for folder, folders, files in os.walk(root):
        folders[:] = sorted(set(folders) - SKIPPED_FOLDERS)
        for file in sorted(set(files) - SKIPPED_FOLDERS):  # .git is a file in a further working tree
            if is_text(file) and 'corpus' not in folder:
                yield os.path.join(folder, file)


def faults_in(path):
    with open(path, encoding='utf-8', errors='replace') as lines:
        for number, line in enumerate(lines, 1):
            found = FORBIDDEN.search(' ' + line)
            if found:
                yield f'{path}:{number}: {found.group(0).strip()!r} must not stand here'


def main():
    files = sys.argv[2:] or list(all_files(sys.argv[1]))
    faults = [fault for file in files for fault in faults_in(file)]
    for fault in faults:
        print(fault)
    print(f'{len(files)} files, {len(faults)} faults')
    sys.exit(1 if faults or not files else 0)


if __name__ == '__main__':
    main()
