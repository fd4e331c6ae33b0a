#!/usr/bin/env python3
"""Reads the include graph of the sources: no cycle, no room looks up, libraries stay where they belong, and what
is installed is what a door needs.

  include_graph.py ROOT
"""
import os
import re
import sys

# The rooms of the library, lowest first; a floor's own folder is a room, too. A room includes from itself and from
# those before it. The doors stand at the top of tavro/; hosts, tools and examples side by side above them.
ROOMS = ['runtime',
         'graphics', 'graphics/raster', 'graphics/vector', 'graphics/text',
         'controls',
         'svg/values', 'svg/css', 'svg/model', 'svg/text', 'svg/filter', 'svg/paint', 'svg',
         'instruments', 'instruments/round', 'instruments/meters', 'instruments/clocks', 'instruments/compass',
         'instruments/switches', 'instruments/lights',
         'package', '']
# Rooms that stand side by side: neither includes from the other.
BESIDE = [{'graphics/raster', 'graphics/text'}, {'graphics/vector', 'graphics/text'}, {'svg/text', 'svg/filter'}]
TOPS = ['tools', 'hosts', 'examples']
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.M)
# Library: where it may be included.
LIBRARIES = [
    (re.compile(r'^(cairo|pango|harfbuzz|hb|fontconfig|ft2build|freetype|agg)'), r'^tavro/graphics/.*(\.cpp|Internal\.h)$'),
    (re.compile(r'^expat'), r'^tavro/svg/.*(\.cpp|Internal\.h)$'),
    (re.compile(r'^(Q[A-Z]|Qt)'), r'^(hosts/qt|examples)/'),
]
GENERATED = re.compile(r'^ui_\w+\.h$')  # by Qt's form compiler
MAX_DEPTH = 10  # below a unit's door; tavro/Tavro.h only gathers the doors


def read_includes(root):
    """Every source of the product with the includes in it: (is quoted, name)."""
    graph = {}
    for top in ['tavro'] + TOPS:
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


def room_of(path):
    """The room of a file of the library; None for others."""
    folder = os.path.dirname(path)
    return os.path.relpath(folder, 'tavro').replace('.', '') if folder.startswith('tavro') else None


def floor_of(path):
    return (room_of(path) or path).split('/')[0]


def looks_up(source, target):
    here, there = room_of(source), room_of(target)
    if here is None or there is None:
        return there is None and here is not None
    return ROOMS.index(there) > ROOMS.index(here) or {here, there} in BESIDE


def check_arrows(graph):
    for source, includes in graph.items():
        if room_of(source) not in ROOMS + [None]:
            yield f'{source}: stands in a room that the list of rooms does not name'
            continue
        for quoted, name in includes:
            target = resolve(graph, source, name)
            if quoted and target is None and not GENERATED.match(name):
                yield f'{source}: "{name}" is no file of the project'
            if target is None:
                for pattern, allowed in LIBRARIES:
                    if pattern.match(name) and not re.match(allowed, source):
                        yield f'{source}: <{name}> may not be included here'
            elif looks_up(source, target):
                yield f'{source}: looks up or sideways to {target}'
            elif room_of(target) is None and target.split('/')[0] != source.split('/')[0]:
                yield f'{source}: looks sideways to {target}'
            elif target.endswith('Internal.h') and floor_of(target) != floor_of(source):
                yield f'{source}: {target} is internal to its floor'


def reach(graph, source):
    """All files of the project that come along with a source."""
    reached, pending = set(), [source]
    while pending:
        for _, name in graph[pending.pop()]:
            target = resolve(graph, source, name)
            if target and target not in reached:
                reached.add(target)
                pending.append(target)
    return reached


def check_doors(graph):
    """What is installed is what tavro/Tavro.h brings along."""
    reached = reach(graph, 'tavro/Tavro.h')
    for source in graph:
        if room_of(source) == '' and source not in reached | {'tavro/Tavro.h'}:
            yield f'{source}: tavro/Tavro.h does not open it'
        if source.endswith('Internal.h') and source in reached:
            yield f'{source}: is internal, and a door brings it along'


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
    depth.pop('tavro/Tavro.h', None)
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
    faults = [*check_arrows(graph), *check_doors(graph), *cycles]
    for fault in faults:
        print(fault)
    doors = {path: len(reach(graph, path)) for path in graph if room_of(path) == '' and path.endswith('.h')}
    print(', '.join(f'{os.path.basename(path)} brings {count}' for path, count in sorted(doors.items())))
    print(f'{len(graph)} files, {depth} levels deep, {len(faults)} faults')
    sys.exit(1 if faults or not graph else 0)


if __name__ == '__main__':
    main()
