#!/usr/bin/env python3
"""Reads the include graph of the sources: no cycle, no floor looks up, libraries stay where they belong.

  include_graph.py ROOT
"""
import os
import re
import sys

# Lowest first; hosts, tools and examples stand side by side on top.
FLOORS = ['runtime', 'graphics', 'controls', 'svg', 'instruments', 'package']
TOPS = ['tools', 'hosts', 'examples']
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.M)
# Library: where it may be included.
LIBRARIES = [
    (re.compile(r'^(cairo|pango|harfbuzz|hb|fontconfig|ft2build|freetype|agg)'), r'^graphics/[^/]+(\.cpp|Internal\.h)$'),
    (re.compile(r'^expat'), r'^svg/[^/]+(\.cpp|Internal\.h)$'),
    (re.compile(r'^(Q[A-Z]|Qt)'), r'^(hosts/qt|examples)/'),
]
GENERATED = re.compile(r'^ui_\w+\.h$')  # by Qt's form compiler
MAX_DEPTH = 10


def read_includes(root):
    """Every source of the product with the includes in it: (is quoted, name)."""
    graph = {}
    for top in FLOORS + TOPS:
        for folder, _, files in os.walk(os.path.join(root, top)):
            for file in files:
                if file.endswith(('.h', '.cpp')):
                    path = os.path.join(folder, file)
                    with open(path, encoding='utf-8') as text:
                        graph[os.path.relpath(path, root)] = [
                            (mark == '"', name) for mark, name in INCLUDE.findall(text.read())]
    return graph


def resolve(graph, source, name):
    """The project's file of that name, from the root or beside the source, or None."""
    beside = os.path.normpath(os.path.join(os.path.dirname(source), name))
    return name if name in graph else beside if beside in graph else None


def height(path):
    top = path.split('/')[0]
    return FLOORS.index(top) if top in FLOORS else len(FLOORS)


def check_arrows(graph):
    for source, includes in graph.items():
        for quoted, name in includes:
            target = resolve(graph, source, name)
            if quoted and target is None and not GENERATED.match(name):
                yield f'{source}: "{name}" is no file of the project'
            if target is None:
                for pattern, allowed in LIBRARIES:
                    if pattern.match(name) and not re.match(allowed, source):
                        yield f'{source}: <{name}> may not be included here'
            elif height(target) > height(source):
                yield f'{source}: looks up to {target}'
            elif height(target) == len(FLOORS) and target.split('/')[0] != source.split('/')[0]:
                yield f'{source}: looks sideways to {target}'
            elif target.endswith('Internal.h') and target.split('/')[0] != source.split('/')[0]:
                yield f'{source}: {target} is internal to its floor'


def check_public_headers(graph):
    for source, includes in graph.items():
        if source.endswith('.h') and not source.endswith('Internal.h'):
            for _, name in includes:
                if name.endswith('Internal.h'):
                    yield f'{source}: a public header includes {name}'


def check_cycles(graph):
    """Faults of cycles, and of a graph that is too deep."""
    depth = {}
    trail = []

    def visit(source):
        if source in trail:
            return [' -> '.join(trail[trail.index(source):] + [source])]
        if source in depth:
            return []
        trail.append(source)
        targets = [t for _, name in graph[source] if (t := resolve(graph, source, name))]
        faults = [fault for target in targets for fault in visit(target)]
        trail.pop()
        depth[source] = max((1 + depth.get(t, 0) for t in targets), default=0)
        return faults

    faults = [f'cycle: {cycle}' for source in graph for cycle in visit(source)]
    deepest = max(depth, key=depth.get, default=None)
    if deepest and depth[deepest] > MAX_DEPTH:
        chain = [deepest]
        while targets := [t for _, name in graph[chain[-1]] if (t := resolve(graph, chain[-1], name))]:
            chain.append(max(targets, key=depth.get))
        faults.append(f'{depth[deepest]} levels of project headers below it, more than {MAX_DEPTH}: ' + ' -> '.join(chain))
    return faults, max(depth.values(), default=0)


def main():
    graph = read_includes(sys.argv[1])
    cycles, depth = check_cycles(graph)
    faults = [*check_arrows(graph), *check_public_headers(graph), *cycles]
    for fault in faults:
        print(fault)
    print(f'{len(graph)} files, {depth} levels deep, {len(faults)} faults')
    sys.exit(1 if faults or not graph else 0)


if __name__ == '__main__':
    main()
