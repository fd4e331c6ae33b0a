#!/usr/bin/env python3
"""Draws the SVG reference cases, has them scored, and holds the failures against the list of known ones.

  suite.py --suite DIR --runner PROGRAM --output DIR --known FILE [--case TEXT] [--update-known]

The list may only shrink: a case that fails and is not on it, and a case on it that passes, fail the test. Also
required: at least 97 % of the core group, no crash, and none that hangs. Ends with status 77 (skipped) where the
folder of cases, or what scores them, is not there.
"""
import argparse
import json
import os
import shutil
import subprocess
import sys

CORE_PERCENT = 97.0
SKIPPED = 77


def skip(why):
    print(f'SKIPPED: {why}')
    sys.exit(SKIPPED)


def read_known(path):
    """The listed cases and their reasons; `case: reason` a line, # begins a comment line."""
    known = {}
    if not os.path.exists(path):
        return known
    with open(path, encoding='utf-8') as lines:
        for line in lines:
            if line.strip() and not line.startswith('#'):
                case, _, reason = line.partition(':')
                known[case.strip()] = reason.strip()
    return known


def draw(options, cases, fonts):
    """Runs the runner over the cases; processor seconds by case."""
    suite = os.path.abspath(options.suite)
    by_file = {os.path.join(suite, 'tests', name + '.svg'): name for name in cases}
    lines = ''.join(f'{svg}\t{os.path.join(options.pictures, name + ".png")}\t'
                    f'{cases[name]["size"][0]}\t{cases[name]["size"][1]}\n' for svg, name in by_file.items())
    environment = dict(os.environ, FONTCONFIG_FILE=fonts, LANG='C.UTF-8', LC_ALL='C.UTF-8', LANGUAGE='en')
    command = [options.runner, '--jobs', str(os.cpu_count() or 1)]
    if options.sanitized:
        command += ['--megabytes', '0']
    run = subprocess.run(command, input=lines, stdout=subprocess.PIPE, text=True, env=environment, check=False)
    if run.returncode != 0:
        sys.exit(f'the runner ended with status {run.returncode}')
    seconds = {}
    for line in run.stdout.splitlines():
        time, _, svg = line.partition('\t')
        if svg in by_file:
            seconds[by_file[svg]] = float(time)
    return seconds


def score(options, verdicts):
    command = [sys.executable, os.path.join(options.suite, 'score.py'), '--results', options.pictures, '--quiet',
               '--jobs', str(os.cpu_count() or 1), '--json', verdicts, '--diff', os.path.join(options.output, 'diff')]
    if options.case:
        command += ['--case', options.case]
    run = subprocess.run(command, check=False)
    if run.returncode != 0:
        sys.exit('the scorer failed')
    with open(verdicts, encoding='utf-8') as file:
        return json.load(file)


def judge(options, cases, verdicts, known):
    """All that is wrong, a line each."""
    faults = []
    results = verdicts['cases']
    for name, result in sorted(results.items()):
        why = result.get('why', '')
        if why.startswith(('crash', 'time-out')):
            faults.append(f'{name}: {why}')
        if cases[name].get('ref', 'ok') != 'ok':
            continue
        if not result['pass'] and name not in known:
            faults.append(f'{name} ({cases[name]["group"]}) fails and is not among the known failures: {why}')
        if result['pass'] and name in known:
            faults.append(f'{name} passes now: take it out of the known failures')
    if not options.case:
        faults += [f'{name}: listed as a known failure, but no counted case' for name in known
                   if name not in cases or cases[name].get('ref', 'ok') != 'ok']
        count, passed = verdicts['groups']['core'][:2]
        if 100 * passed < CORE_PERCENT * count:
            faults.append(f'core: {passed} of {count} pass, fewer than {CORE_PERCENT} %')
    faults += [f'{name}: a known failure without a reason' for name, reason in known.items() if not reason]
    return faults


def update_known(path, cases, results, known):
    """Writes the list anew: reasons are kept, new cases get a place for one."""
    head = []
    if os.path.exists(path):
        with open(path, encoding='utf-8') as lines:
            for line in lines:
                if not line.startswith('#'):
                    break
                head.append(line)
    failed = [name for name in results if not results[name]['pass'] and cases[name].get('ref', 'ok') == 'ok']
    with open(path, 'w', encoding='utf-8') as file:
        file.writelines(head)
        for name in sorted(failed, key=lambda name: (cases[name]['group'], name)):
            file.write(f'{name}: {known.get(name, "FIXME " + cases[name]["group"])}\n')


def main():
    parser = argparse.ArgumentParser(description='Draw and score the SVG reference cases.')
    parser.add_argument('--suite', required=True)
    parser.add_argument('--runner', required=True)
    parser.add_argument('--output', required=True)
    parser.add_argument('--known', required=True)
    parser.add_argument('--case', help='only cases whose name contains this')
    parser.add_argument('--sanitized', action='store_true', default=bool(os.environ.get('TAVRO_SANITIZED')),
                        help='do not limit memory')
    parser.add_argument('--update-known', action='store_true')
    options = parser.parse_args()
    manifest = os.path.join(options.suite, 'manifest.json')
    if not os.path.exists(manifest):
        skip(f'there are no reference cases in {options.suite}')
    try:
        import numpy  # noqa: F401, the scorer's
        import PIL  # noqa: F401
    except ImportError:
        skip('the scorer needs numpy and Pillow (python3-numpy, python3-pil)')
    with open(manifest, encoding='utf-8') as file:
        cases = json.load(file)['cases']
    cases = {name: case for name, case in cases.items() if not options.case or options.case in name}
    options.pictures = os.path.join(options.output, 'pictures')
    shutil.rmtree(options.output, ignore_errors=True)
    os.makedirs(options.pictures)
    seconds = draw(options, cases, os.path.join(options.suite, 'fonts.conf'))
    verdicts = score(options, os.path.join(options.output, 'verdicts.json'))
    known = read_known(options.known)
    if options.update_known:
        update_known(options.known, cases, verdicts['cases'], known)
        return
    faults = judge(options, cases, verdicts, known)
    times = sorted(seconds.values())
    if times:
        print(f'processor time a case: median {times[len(times) // 2]:.3f} s, longest {times[-1]:.2f} s')
    for fault in faults:
        print('FAULT', fault)
    sys.exit(1 if faults else 0)


if __name__ == '__main__':
    main()
