#!/usr/bin/env python3
"""What skips.py says of results of ctest: what is skipped is named with its reason, and fails unless it is allowed."""
import os
import subprocess
import sys
import tempfile
import unittest

SKIPS = os.path.join(os.path.dirname(os.path.abspath(__file__)), 'skips.py')
RUN = '<testcase name="{}" status="run"><system-out>{}</system-out></testcase>'
NOT_RUN = ('<testcase name="{}" status="notrun"><skipped message="SKIP_RETURN_CODE=77"/>'
           '<system-out>{}</system-out></testcase>')
GTEST = ('[ RUN      ] {0}\n/a/b_test.cpp:20: Skipped\n{1}\n\n[  SKIPPED ] {0} (0 ms)\n[  SKIPPED ] 1 test, listed below:\n'
         '[  SKIPPED ] {0}\n')


def judge(*cases):
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, 'tests.xml')
        with open(path, 'w', encoding='utf-8') as file:
            file.write('<testsuite>' + ''.join(cases) + '</testsuite>')
        run = subprocess.run([sys.executable, SKIPS, path], capture_output=True, text=True, check=False)
        return run.returncode, run.stdout


class Skips(unittest.TestCase):
    def test_nothing_skipped(self):
        self.assertEqual(judge(RUN.format('golden', 'fine')), (0, ''))

    def test_reference_cases_may_be_absent(self):
        status, text = judge(NOT_RUN.format('svg-suite', 'SKIPPED: there are no reference cases in /x'))
        self.assertEqual((status, text), (0, 'skipped: svg-suite: there are no reference cases in /x\n'))

    def test_the_suite_for_another_reason(self):
        status, text = judge(NOT_RUN.format('svg-suite', 'SKIPPED: the scorer needs numpy'))
        self.assertEqual(status, 1)
        self.assertIn('which is a failure: svg-suite: the scorer needs numpy', text)

    def test_a_tool_that_is_missing(self):
        self.assertEqual(judge(NOT_RUN.format('viewer', 'SKIPPED: there is no rsvg-convert'))[0], 1)
        self.assertEqual(judge(NOT_RUN.format('unit.qt.widget', ''))[0], 1)

    def test_one_case_of_a_program(self):
        self.assertEqual(judge(RUN.format('unit.runtime.file', GTEST.format('File.Full', 'no full device here')))[0], 1)
        status, text = judge(RUN.format('unit.graphics.rowops', GTEST.format('Row.Ops', 'this machine has no AVX2')))
        self.assertEqual((status, text), (0, 'skipped: unit.graphics.rowops: Row.Ops: this machine has no AVX2\n'))

    def test_no_results(self):
        run = subprocess.run([sys.executable, SKIPS, '/no/such.xml'], capture_output=True, text=True, check=False)
        self.assertEqual(run.returncode, 1)


if __name__ == '__main__':
    unittest.main()
