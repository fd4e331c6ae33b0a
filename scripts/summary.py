#!/usr/bin/env python3
"""Sums up a JUnit report of ctest in a few lines: summary.py REPORT. Ends with 1 where a test failed."""
import sys
import xml.etree.ElementTree as ElementTree


def main():
    cases = ElementTree.parse(sys.argv[1]).getroot().findall('testcase')
    state = {'run': 'passed', 'fail': 'FAILED', 'notrun': 'skipped', 'disabled': 'skipped'}
    by_state = {}
    for case in cases:
        by_state.setdefault(state.get(case.get('status'), 'FAILED'), []).append(case)
    slowest = sorted(cases, key=lambda case: -float(case.get('time', 0)))[:3]
    print('slowest: ' + ', '.join(f'{case.get("name")} {float(case.get("time", 0)):.1f} s' for case in slowest))
    for word in ('skipped', 'FAILED'):
        for case in by_state.get(word, []):
            print(f'{word}: {case.get("name")}')
    counts = [f'{len(by_state.get(word, []))} {word.lower()}' for word in ('passed', 'FAILED', 'skipped')]
    print(f'{len(cases)} tests: ' + ', '.join(counts))
    sys.exit(1 if by_state.get('FAILED') or not cases else 0)


if __name__ == '__main__':
    main()
