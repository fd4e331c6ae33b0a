#!/usr/bin/env python3
"""Lists the tests that a run of ctest skipped, with the reason of each, and fails for one that must not be.

  skips.py RESULTS      a file of `ctest --output-junit`
"""
import re
import sys
import xml.etree.ElementTree as xml

# Which tests may be skipped, for which reason: what is not of this project, or what the machine cannot do.
ALLOWED = [
    (r'^(svg-suite|suite\..*)$', r'there are no reference cases in '),
    (r'^unit\.graphics\..*$', r'^this machine has no'),
    (r'^unit\.graphics\..*$', r"^a sanitizer's memory cannot be limited$"),
]


def skips_of(case):
    """Each skip in a test's results: (name, reason)."""
    name = case.get('name')
    output = case.findtext('system-out') or ''
    # GoogleTest: the place with "Skipped", the reason, and the line that closes the test.
    for reason, inner in re.findall(r': Skipped\n(.*?)\n+\[  SKIPPED \] (\S+)', output, re.S):
        yield f'{name}: {inner}', reason.strip()
    if case.get('status') not in ('run', 'fail') or case.find('skipped') is not None:
        said = re.search(r'SKIPPED: (.*)', output)
        yield name, said[1] if said else 'it did not run'


def is_allowed(name, reason):
    test = name.split(':')[0]
    return any(re.search(which, test) and re.search(why, reason) for which, why in ALLOWED)


def main(path):
    try:
        cases = xml.parse(path).getroot().iter('testcase')
    except (OSError, xml.ParseError) as error:
        sys.exit(f'skips.py: {path}: {error}')
    faults = 0
    for case in cases:
        for name, reason in skips_of(case):
            fault = not is_allowed(name, reason)
            faults += fault
            print(f'{"SKIPPED, which is a failure" if fault else "skipped"}: {name}: {reason}')
    sys.exit(1 if faults else 0)


if __name__ == '__main__':
    main(*sys.argv[1:])
