#!/usr/bin/env python3
"""Holds two builds of the benchmark program against each other.

    against.py [--instructions] [--rounds N] [--filter REGEX] BASE-PROGRAM PROGRAM [ARGUMENT...]

Prints for each benchmark how many times as fast as the base the other program is: below 1 it is slower.

Times are taken in turns, of the base by two processes: each benchmark is run by the three processes one after the other
before the next benchmark comes, so that what slows the machine down for a while slows all three down alike. Each round
has new processes: where one happens to have its memory makes it up to a tenth slower or faster for as long as it lives.
What differs between the two processes of the base is noise.

Instructions are counted by callgrind, once: they do not tell everything, but nothing else on the machine changes them.
"""

import argparse
import collections
import math
import pathlib
import re
import statistics
import subprocess
import sys
import tempfile

LARGE = {'records', 'records-crlf', 'attributes', 'prose', 'namespaces', 'cjk', 'references', 'sections', 'deep', 'mixed',
         'records-64k'}
READERS = {'tessit pull': 'pull loop', 'tessit SAX': 'SAX'}


def group_of(name):
    """What the benchmark's figure goes into besides its own line."""
    work, corpus, library = name.split('/')
    if work == 'write':
        return 'writer'
    if corpus == 'records-200':
        return f'{READERS.get(library, library)}, documents of 200 bytes'
    return READERS.get(library) if corpus in LARGE else None


class Program:
    """A benchmark program that waits for its turns."""

    def __init__(self, arguments):
        self.process = subprocess.Popen(arguments, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.names = list(iter(self.line, ''))

    def line(self):
        line = self.process.stdout.readline()
        if not line:
            sys.exit(f'{self.process.args[0]} ended with {self.process.wait()}')
        return line.rstrip('\n')

    def milliseconds(self, name):
        print(name, file=self.process.stdin, flush=True)
        return float(self.line()) / 1e6

    def end(self):
        self.process.stdin.close()
        self.process.wait()


def times_of_round(commands, pattern, number):
    """The time of each benchmark by name and program, in the order in which the programs have them."""
    programs = [Program(command) for command in commands]
    times = {}
    for name in filter(re.compile(pattern).search, programs[0].names):
        for turn in range(len(programs)):
            program = (turn + number) % len(programs)
            times[name, program] = programs[program].milliseconds(name)
    for program in programs:
        program.end()
    return times


def compare_times(paths, arguments, options):
    """The least times, and ratios: neighbours in time are compared, and the median is taken, since a machine that
    others use has rounds that are far off."""
    commands = [[path, '--turns', *arguments] for path in (*paths, paths[0])]
    times = collections.defaultdict(list)
    for number in range(options.rounds):
        print(f'round {number + 1} of {options.rounds}', file=sys.stderr)
        for key, time in times_of_round(commands, options.filter, number).items():
            times[key].append(time)
    for name in dict.fromkeys(name for name, _ in times):
        base = times[name, 0]
        ratios = [statistics.median(b / t for b, t in zip(base, times[name, program])) for program in (1, 2)]
        yield name, min(base), min(times[name, 1]), ratios


def instructions_of(path, arguments, options):
    """Millions of instructions by the benchmark's name."""
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(['valgrind', '--quiet', '--tool=callgrind', '--instr-atstart=no', f'--callgrind-out-file={folder}/counts',
                        path, *arguments, '--benchmark_min_time=0', f'--benchmark_filter={options.filter}'],
                       check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        dumps = [dump.read_text() for dump in sorted(pathlib.Path(folder).iterdir(), key=lambda path: (len(path.name), path.name))]
    named = (re.search('^desc: Trigger: Client Request: (.*)', dump, re.M) for dump in dumps)
    totals = (re.search('^totals: ([0-9]+)', dump, re.M) for dump in dumps)
    return {name[1]: int(total[1]) / 1e6 for name, total in zip(named, totals) if name}


def compare_instructions(paths, arguments, options):
    base, other = (instructions_of(path, arguments, options) for path in paths)
    for name, count in base.items():
        yield name, count, other[name], [count / other[name]]


def report(unit, lines):
    groups = collections.defaultdict(list)

    def show(name, figures, ratios):
        print(f'{name:44}' + ''.join(f'{figure:>11}' for figure in figures) + ''.join(f'{ratio:>9}' for ratio in ratios))

    show(unit, ['base', 'this'], ['ratio', 'noise'] if unit == 'milliseconds' else ['ratio'])
    for name, base, other, ratios in lines:
        show(name, [f'{base:.3f}', f'{other:.3f}'], [f'{value:.3f}' for value in ratios])
        groups[group_of(name)].append(ratios)
    groups.pop(None, None)
    print('\ngeometric means')
    for group, ratios in groups.items():
        show(group, ['', ''], [f'{math.exp(statistics.mean(map(math.log, column))):.3f}' for column in zip(*ratios)])


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument('--instructions', action='store_true')
    parser.add_argument('--rounds', type=int, default=11)
    parser.add_argument('--filter', default='.')
    parser.add_argument('base')
    parser.add_argument('program')
    options, arguments = parser.parse_known_args()
    unit, compare = ('millions', compare_instructions) if options.instructions else ('milliseconds', compare_times)
    lines = list(compare((options.base, options.program), arguments, options))
    if not lines:
        sys.exit(f'no benchmark matches {options.filter}')
    report(unit, lines)


main()
