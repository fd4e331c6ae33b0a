#!/usr/bin/env python3
"""The snippets of the pages, as sources: what a page shows must compile.

  snippets.py ROOT FOLDER          each C++ snippet as FOLDER/PAGE_N.cpp, or qt_PAGE_N.cpp where it needs Qt
  snippets.py ROOT FOLDER --cmake  each CMake snippet as FOLDER/PAGE_N/CMakeLists.txt, with a program beside it

A C++ snippet with a `main` stands as it is. Another one is the body of a function, after the bodies of those before
it on its page since the last `main`, whose includes it has, too. One that stands word for word in a source of the
tree is built with that.
"""
import glob
import os
import re
import sys

PAGES = ['README.md', 'examples/README.md', 'docs/*.md']
SNIPPET = re.compile(r'^```(cpp|cmake)\n(.*?)^```$', re.M | re.S)
INCLUDE = re.compile(r'^#include .*\n', re.M)
SOURCES = ('tavro', 'hosts', 'examples', 'tests/unit', 'tests/install')


def snippets(root, language):
    """Each page's name and its snippets of the language."""
    for pattern in PAGES:
        for page in sorted(glob.glob(os.path.join(root, pattern))):
            name = re.sub(r'\W', '_', os.path.splitext(os.path.relpath(page, root))[0])
            with open(page, encoding='utf-8') as text:
                yield name, [code for tongue, code in SNIPPET.findall(text.read()) if tongue == language]


def plain(code):
    return '\n'.join(line.strip() for line in code.splitlines() if line.strip())


def tree_text(root):
    texts = []
    for top in SOURCES:
        for folder, _, files in os.walk(os.path.join(root, top)):
            for file in files:
                if file.endswith(('.h', '.cpp')):
                    with open(os.path.join(folder, file), encoding='utf-8') as text:
                        texts.append(plain(text.read()))
    return '\n'.join(texts)


def sources(page):
    """Each C++ snippet of a page as a whole program."""
    includes, bodies = [], []
    for code in page:
        if 'int main(' in code:
            includes, bodies = [], []
            yield code, code
            continue
        includes += INCLUDE.findall(code)
        bodies.append(INCLUDE.sub('', code))
        # Each in a block of its own within the one before, so that a name may come again.
        body = ''.join('{\n' + part for part in bodies) + '}' * len(bodies)
        yield code, ''.join(dict.fromkeys(includes)) + '\nint main() {\n' + body + '\n}\n'


def write(path, text):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    if os.path.exists(path):
        with open(path, encoding='utf-8') as file:
            if file.read() == text:
                return
    with open(path, 'w', encoding='utf-8') as file:
        file.write(text)


def write_cpp(root, folder):
    known = tree_text(root)
    written = set()
    for name, page in snippets(root, 'cpp'):
        for number, (shown, source) in enumerate(sources(page), 1):
            if 'int main(' not in shown and plain(shown) in known:
                continue
            qt = 'qt_' if re.search(r'#include <(Q|Vz[A-Z]\w+\.h)', source) else ''
            path = os.path.join(folder, f'{qt}{name}_{number}.cpp')
            written.add(path)
            write(path, source)
    for path in set(glob.glob(os.path.join(folder, '*.cpp'))) - written:
        os.remove(path)


def write_cmake(root, folder):
    for name, page in snippets(root, 'cmake'):
        for number, code in enumerate(page, 1):
            project = os.path.join(folder, f'{name}_{number}')
            write(os.path.join(project, 'CMakeLists.txt'), code)
            write(os.path.join(project, 'main.cpp'), 'int main() {}\n')


if __name__ == '__main__':
    if len(sys.argv) not in (3, 4):
        sys.exit(__doc__)
    (write_cmake if sys.argv[3:] == ['--cmake'] else write_cpp)(*sys.argv[1:3])
