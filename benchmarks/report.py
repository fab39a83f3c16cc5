#!/usr/bin/env python3
"""Draws docs/performance.md and its charts from the figures in performance.csv, and from nothing else.

    report.py performance.csv OUTPUT-DIRECTORY
"""

import csv
import math
import pathlib
import subprocess
import sys

PULL, SAX, STRING, DEMAND = 'tessit pull', 'tessit SAX', 'tessit pull, string', 'tessit demand'
CONFORMING = 'tessit conforming'
CONFORMING_PEERS = ['libxml2 SAX2', 'Expat', 'libxml2 reader', 'Xerces-C SAX2', 'Qt QXmlStreamReader']
LARGE = ['records', 'records-crlf', 'attributes', 'prose', 'namespaces', 'cjk', 'references', 'sections', 'deep', 'mixed']
COMPARED = LARGE + ['records-64k']  # what "every corpus" means in the targets
VARIATIONS = ['records', 'records-64k', 'records-200', 'records-fresh', 'records-utf16', 'records-latin1']

CORPORA = {
    'records': 'short fields with indentation',
    'records-crlf': 'the same with CR LF at line ends',
    'attributes': 'empty elements with six attributes each',
    'prose': 'long paragraphs, few tags',
    'namespaces': 'prefixes on every element and most attributes, eight long URIs, some bound anew deeper down',
    'cjk': 'paragraphs of three-byte characters',
    'references': 'a reference every few words, in texts and values',
    'sections': 'CDATA sections and comments of a few kilobytes',
    'deep': 'elements nested 2,000 deep',
    'mixed': 'what desktop and office programs save',
    'records-64k': 'the records, 64 KiB of them',
    'records-200': '1,000 documents of about 200 bytes, each with a reader of its own',
    'records-fresh': 'the records, read with memory that the system has just given, as by a program that reads one document',
    'records-utf16': 'records with accents, in UTF-16',
    'records-latin1': 'records with accents, in ISO-8859-1',
}

# What a peer leaves out of the work by its design.
OMISSIONS = {
    'pugixml': 'resolves no namespaces',
    'RapidXML in situ': 'resolves no namespaces, drops blank texts, keeps CR LF, checks no end tags',
    'RapidXML non-destructive': 'as in situ, and replaces no references',
    'tinyxml2': 'resolves no namespaces, drops blank texts',
}
LESS_WORK = {'RapidXML non-destructive'}  # not counted as a peer that does the same work


class Figures:
    """The rows of the CSV, by work, corpus and library."""

    def __init__(self, path):
        lines = pathlib.Path(path).read_text(encoding='utf-8').splitlines()
        self.facts = dict(line[2:].split(': ', 1) for line in lines if line.startswith('# '))
        self.rows = list(csv.DictReader(line for line in lines if not line.startswith('#')))
        self.index = {(row['work'], row['corpus'], row['library']): row for row in self.rows}

    def number(self, column, corpus, library, work='read'):
        row = self.index.get((work, corpus, library))
        return None if row is None else float(row[column])

    def time(self, corpus, library, work='read', column='min_ns'):
        return self.number(column, corpus, library, work)

    def libraries(self, *roles, work='read'):
        names = [row['library'] for row in self.rows if row['work'] == work and row['role'] in roles]
        return list(dict.fromkeys(names))

    def ratio(self, corpus, library, ours=PULL, work='read'):
        """How many times the time of ours the library takes."""
        times = self.time(corpus, library, work), self.time(corpus, ours, work)
        return None if None in times else times[0] / times[1]

    def fastest(self, corpus, work='read'):
        """The peer that does the same work in the least time."""
        peers = [name for name in self.libraries('peer', work=work) if name not in LESS_WORK]
        return min((peer for peer in peers if self.time(corpus, peer, work)), key=lambda peer: self.time(corpus, peer, work))


def geometric_mean(values):
    return math.exp(sum(math.log(value) for value in values) / len(values))


def table(head, rows, words=1):
    """A table whose first columns hold words and whose others hold figures."""
    lines = [head, ['---'] * words + ['---:'] * (len(head) - words)] + rows
    return '\n'.join('| ' + ' | '.join(str(cell) for cell in line) + ' |' for line in lines) + '\n'


# --- Targets


class Ratios:
    """One ratio a corpus, the smaller the worse."""

    def __init__(self, by_corpus):
        self.by_corpus = {corpus: value for corpus, value in by_corpus.items() if value is not None}

    def worst(self):
        corpus = min(self.by_corpus, key=self.by_corpus.get)
        return self.by_corpus[corpus], f' ({corpus})'

    def mean(self):
        return geometric_mean(list(self.by_corpus.values())), ''


def against(figures, library, ours=PULL):
    return Ratios({corpus: figures.ratio(corpus, library, ours) for corpus in COMPARED})


def conforming_rows(figures):
    """The same as target_rows, for the conforming loop."""
    expat, libxml2, pugixml, lenient = (
        against(figures, name, CONFORMING) for name in ('Expat', 'libxml2 SAX2', 'pugixml', PULL))
    record = against(figures, CONFORMING, 'tessit record')
    offsets, spans = (against(figures, PULL, name) for name in ('tessit pull, offsets', 'tessit pull, spans'))
    return [
        ('conforming loop against Expat with namespaces, worst corpus', *expat.worst(), 2.0, None),
        ('conforming loop against Expat with namespaces, geometric mean', *expat.mean(), 3.0, None),
        ("conforming loop against libxml2's SAX2, worst corpus", *libxml2.worst(), 1.0, None),
        ("conforming loop against libxml2's SAX2, geometric mean", *libxml2.mean(), 2.0, None),
        ('conforming loop against pugixml, geometric mean', *pugixml.mean(), 1.2, None),
        ('conforming loop against the lenient one, worst corpus', *lenient.worst(), 0.6, None),
        ('conforming loop against the lenient one, geometric mean', *lenient.mean(), 0.75, None),
        ('lenient loop with a record against the conforming one, geometric mean', *record.mean(), 0.7, None),
        ('pull loop with the offset of each node against the one without, geometric mean', *offsets.mean(), 0.8, None),
        ('pull loop with all spans against the one without, geometric mean', *spans.mean(), 0.8, None),
    ]


def window_rows(figures):
    """The same for the pull loop over what comes through a window, and what it would be if reading the bytes were all
    that it did besides."""
    rows = []
    for source in ('file', 'pipe'):
        window = Ratios({corpus: figures.ratio(corpus, PULL, ours=f'tessit {source}') for corpus in LARGE})
        reads = {corpus: figures.ratio(corpus, f'read of a {source}') for corpus in LARGE}
        alone = Ratios({corpus: 1 / (1 + share) for corpus, share in reads.items() if share is not None})
        remark = f' (its reads alone: {alone.mean()[0]:.2f})' if alone.by_corpus else ''
        work = f'pull loop from a {source} against the one in place'
        rows += [(f'{work}, worst corpus', *window.worst(), None, None),
                 (f'{work}, geometric mean', window.mean()[0], remark, 0.85, None)]
    return rows


def target_rows(figures):
    """Work, measured value, remark, at least, aim; a limit is negative where less is better."""
    pugixml, expat, reader = (against(figures, name) for name in ('pugixml', 'Expat', 'libxml2 reader'))
    fastest = Ratios({corpus: figures.ratio(corpus, figures.fastest(corpus)) for corpus in COMPARED})
    sax = Ratios({corpus: figures.ratio(corpus, PULL, ours=SAX) for corpus in COMPARED})
    writer_peer = figures.fastest('orders', 'write')
    most = max(LARGE, key=lambda corpus: figures.number('allocations', corpus, PULL))
    memory = figures.number('peak_bytes', 'records', PULL) + int(figures.facts['reader object'])
    return [
        ('pull loop against pugixml, worst corpus', *pugixml.worst(), 1.0, 1.3),
        ('pull loop against pugixml, geometric mean', *pugixml.mean(), 1.6, 2.2),
        ('pull loop against the fastest peer, worst corpus', *fastest.worst(), None, 1.0),
        ('pull loop against the fastest peer, geometric mean', *fastest.mean(), 1.0, 1.5),
        ('pull loop against Expat with namespaces, worst corpus', *expat.worst(), 2.0, None),
        ('pull loop against Expat with namespaces, geometric mean', *expat.mean(), 3.5, 5.0),
        ("pull loop against libxml2's reader, worst corpus", *reader.worst(), 3.5, None),
        ("pull loop against libxml2's reader, geometric mean", *reader.mean(), None, 7.0),
        ('SAX parser against our pull loop, worst corpus', *sax.worst(), None, None),
        ('SAX parser against our pull loop, geometric mean', *sax.mean(), 0.9, 1.0),
        ('documents of 200 bytes against pugixml', figures.ratio('records-200', 'pugixml'), '', 1.5, 3.0),
        ('writer against the fastest peer', figures.ratio('orders', writer_peer, 'tessit writer', 'write'),
         f' ({writer_peer})', 1.5, 2.5),
        ('allocations for a large document, most', figures.number('allocations', most, PULL), f' ({most})', -200, -50),
        ('bytes beyond the input, records', memory, '', -65536, -16384),
    ]


def reaches(value, limit):
    return value >= limit if limit > 0 else value < -limit


def verdict(value, least, aim):
    if aim is not None and reaches(value, aim): return 'aim reached'
    if least is not None: return 'met' if reaches(value, least) else '**not met**'
    return '' if aim is None else 'aim not reached'


def show(value):
    return f'{value:.2f}' if value < 100 and value != int(value) else f'{value:,.0f}'


def limit(value):
    if value is None: return ''
    return f'{value}' if value > 0 else f'below {-value:,}'


def targets(figures):
    rows = [[work, verdict(value, least, aim), show(value) + remark, limit(least), limit(aim)]
            for work, value, remark, least, aim in target_rows(figures) + window_rows(figures) + conforming_rows(figures)]
    return table(['Work', 'Result', 'Measured', 'At least', 'Aim'], rows, words=2)


# --- Tables


def megabytes_a_second(figures, corpus, library):
    times = [figures.time(corpus, library, column=column) for column in ('min_ns', 'median_ns')]
    if None in times: return '–'
    bytes_read = figures.number('bytes', corpus, library)
    best, median = (f'{bytes_read * 1e3 / time:,.0f}' for time in times)
    return f'{best} / {median}'


def throughput(figures, corpora):
    rows = [[library] + [megabytes_a_second(figures, corpus, library) for corpus in corpora]
            for library in figures.libraries('ours', 'peer', 'floor')]
    return table(['MB/s'] + corpora, rows)


def ratios(figures, corpora, ours=PULL, peers=None):
    rows = []
    for peer in peers or figures.libraries('peer'):
        values = [figures.ratio(corpus, peer, ours) for corpus in corpora]
        mean = geometric_mean([value for value in values if value is not None])
        rows.append([peer] + ['–' if value is None else f'{value:.2f}' for value in values] + [f'{mean:.2f}'])
    return table(['times as fast as'] + corpora + ['geometric mean'], rows)


def not_first(figures):
    lines = []
    for corpus in COMPARED + ['records-200', 'records-fresh', 'records-utf16', 'records-latin1']:
        faster = [(figures.ratio(corpus, peer), peer) for peer in figures.libraries('peer')]
        faster = [f'{peer} takes {ratio:.2f} of our time' for ratio, peer in sorted(
            pair for pair in faster if pair[0] is not None and pair[0] < 1)]
        if faster: lines.append(f'- `{corpus}`: ' + '; '.join(faster))
    faster = [f'{peer} takes {figures.ratio("orders", peer, "tessit writer", "write"):.2f} of our time'
              for peer in figures.libraries('peer', work='write')
              if figures.ratio('orders', peer, 'tessit writer', 'write') < 1]
    if faster: lines.append('- writing: ' + '; '.join(faster))
    return '\n'.join(lines) + '\n' if lines else 'Nowhere in this run.\n'


def omissions():
    return '\n'.join(f'- {library}: {what}' for library, what in OMISSIONS.items()) + '\n'


def allocations(figures):
    corpora = LARGE + ['records-200']
    def cell(corpus, library):
        count = figures.number('allocations', corpus, library)
        return '–' if count is None else f'{count / figures.number("documents", corpus, library):,.0f}'
    rows = [[library] + [cell(corpus, library) for corpus in corpora] for library in figures.libraries('ours', 'peer')]
    return table(['allocations a document'] + corpora, rows)


def peak_memory(figures):
    def cell(corpus, library):
        peak = figures.number('peak_bytes', corpus, library)
        return '–' if peak is None else f'{peak / 1024:,.1f}'
    corpora = ['records', 'attributes', 'namespaces', 'prose', 'mixed']
    rows = [[library] + [cell(corpus, library) for corpus in corpora] for library in figures.libraries('ours', 'peer')]
    return table(['KiB beyond the input'] + corpora, rows)


def writing(figures):
    rows = []
    for library in figures.libraries('ours', 'peer', 'floor', work='write'):
        best, median = (figures.time('orders', library, 'write', column) / 1e6 for column in ('min_ns', 'median_ns'))
        count = figures.number('allocations', 'orders', library, 'write')
        peak = figures.number('peak_bytes', 'orders', library, 'write') / 1e6
        ratio = figures.ratio('orders', library, 'tessit writer', 'write')
        rows.append([library, f'{best:.1f} / {median:.1f}', f'{ratio:.2f}', f'{count:,.0f}', f'{peak:,.1f}'])
    return table(['writing', 'ms', 'times our time', 'allocations', 'MB of memory'], rows)


def versions(figures):
    found = {row['library'].split()[0]: row['version'] for row in figures.rows if row['role'] == 'peer'}
    return ', '.join(f'{library} {version}' for library, version in found.items())


def corpora_list(figures):
    rows = [[f'`{corpus}`', what, f'{figures.number("bytes", corpus, PULL):,.0f}',
             f'{figures.number("nodes", corpus, PULL):,.0f}'] for corpus, what in CORPORA.items()
            if figures.number('bytes', corpus, PULL) is not None]
    return table(['Corpus', 'What it is', 'bytes', 'elements and texts'], rows, words=2)


# --- Charts


CHART = '''set terminal svg size 1000,{height} font "sans-serif,13" background "white"
set output "{file}"
set style data histograms
set style fill solid 0.9 noborder
set boxwidth 0.9
set grid ytics linecolor "#dddddd"
set border 3 linecolor "#888888"
set tics nomirror
set key outside top center horizontal
{settings}
$figures << END
{data}
END
plot {plots}
'''
COLOURS = ['#1b6ca8', '#e07b39', '#8c8c8c', '#3f9b5f', '#b5485d', '#7a5aa6', '#c9a227', '#4cb3b3']


def draw(file, settings, columns, rows, height=420):
    """Draws one cluster of bars a row and one colour a column."""
    data = '\n'.join(f'"{name}" ' + ' '.join('?' if value is None else f'{value:.4f}' for value in values)
                     for name, values in rows)
    plots = ', '.join(f'$figures using {i + 2}:xtic(1) title "{column}" linecolor rgb "{COLOURS[i]}"'
                      for i, column in enumerate(columns))
    script = CHART.format(file=file, settings=settings, data=data, plots=plots, height=height)
    subprocess.run(['gnuplot'], input='set datafile missing "?"\n' + script, text=True, check=True)


def draw_speeds(figures, directory):
    peers = [peer for peer in ('pugixml', 'RapidXML in situ', 'libxml2 SAX2', 'Expat', 'libxml2 reader')
             if peer in figures.libraries('peer')]
    def speed(corpus, peer):
        ratio = figures.ratio(corpus, peer)
        return None if ratio is None else 1 / ratio
    rows = [(corpus, [1.0] + [speed(corpus, peer) for peer in peers]) for corpus in COMPARED + ['records-200']]
    draw(directory / 'performance-reading.svg',
         'set ylabel "speed, our pull loop = 1"\nset yrange [0:*]\nset xtics rotate by -25', [PULL] + peers, rows, 460)


def draw_conforming(figures, directory):
    parsers = [CONFORMING] + [peer for peer in CONFORMING_PEERS if peer in figures.libraries('peer')]
    def rate(corpus, library):
        time = figures.time(corpus, library)
        return None if time is None else figures.number('bytes', corpus, library) * 1e3 / time
    rows = [(corpus, [rate(corpus, parser) for parser in parsers]) for corpus in COMPARED]
    draw(directory / 'performance-conforming.svg',
         'set ylabel "MB/s"\nset logscale y\nset yrange [10:*]\nset xtics rotate by -25', parsers, rows, 460)


def draw_floors(figures, directory):
    libraries = [PULL, SAX, 'tokenizer', "memchr '<'", 'memcpy']
    def rate(corpus, library):
        time = figures.time(corpus, library)
        return None if time is None else figures.number('bytes', corpus, library) * 1e3 / time
    rows = [(corpus, [rate(corpus, library) for library in libraries]) for corpus in LARGE]
    draw(directory / 'performance-floors.svg',
         'set ylabel "MB/s"\nset logscale y\nset yrange [100:*]\nset xtics rotate by -25', libraries, rows, 460)


def draw_writing(figures, directory):
    rows = [(library, [figures.time('orders', library, 'write') / 1e6])
            for library in figures.libraries('ours', 'peer', 'floor', work='write')]
    draw(directory / 'performance-writing.svg', 'set ylabel "ms"\nset yrange [0:*]\nunset key\nset xtics rotate by -15', ['ms'], rows, 400)


# --- The page


PAGE = '''# Performance

How fast the library reads and writes, beside other libraries that C++ programs use. All figures stand in
[performance.csv](performance.csv), and [scripts/bench](../scripts/bench) draws this page from them.
{provisional}
| | |
|---|---|
| Processor | {processor} |
| Memory | {memory} |
| System | {system} |
| Compiler | {compiler} |
| Revision | {revision} |
| Peers | {versions} |
| Rounds | {rounds} |
| Processor's share | {share}: how much of a processor the run had; less means that other programs ran, too |

## Targets

Ratios are of times within this run: 2 means that the other takes twice our time. "Every corpus" is the ten large ones
and `records-64k`; the fastest peer is the fastest of those that replace references, on each corpus anew.

{targets}
## Reading

![Speeds of reading](performance-reading.svg)

How many times as fast the pull loop is as each peer:

{ratios}
And on small documents, in other encodings, and in fresh memory:

{other_ratios}
Throughput, in the best round and in the median one:

{large}
{variations}
![Reading and its floors](performance-floors.svg)

### Conforming parsers alone

`tessit conforming` is the pull loop by the conforming rules. The others here refuse what is not well-formed, too (Qt and
Xerces-C as far as they go; `scripts/conformance` measures ours). How many times as fast it is:

![Speeds of conforming parsers](performance-conforming.svg)

{conforming}
### Where we are not first

{not_first}
What these leave out of the work that the pull loop does:

{omissions}
## Writing

A document of orders in four namespaces, with references in texts and values, about 7 MB, written into memory. The peers get
names with their prefixes put on and declarations as attributes, ready-made; ours finds out what has to be declared.
`tessit writer` is a program that keeps a set of attributes for each kind of tag and sets the values in it, `tessit writer,
new sets` one that fills a set anew for each tag. Plain appends are the floor: strings that were escaped before.

![Times of writing](performance-writing.svg)

{writing}
## Allocations and memory

Blocks asked of the heap for one document, in the second reading and later ones:

{allocations}
The most that was held at once beyond the input; our reader itself is an object of {reader_object} bytes besides:

{memory_table}
## How it is measured

{corpora}
- Every reader counts the elements, attributes and texts, adds up their lengths, and looks at the first and last byte of
  each name, value, text and URI. The counts are compared at each reading; where a library differs by design, so does
  what is expected of it.
- Documents are read from memory. Each reading gets a fresh copy, whether it writes to it or not; making the copy is not
  timed. Building, walking and freeing what a library builds is.
- The heap keeps what is freed, so that a tree is built in memory that is there already; only in `records-fresh` does each
  reading get its memory from the system.
- `tessit pull` reads a buffer in place, `tessit pull, string` copies a string first, `tessit demand` asks for each
  element by its name. `tessit file` reads a file in the page cache, to which the fresh copy was written; `tessit pipe` a
  pipe, to which another thread writes meanwhile: from its processor's cache each byte has to come to the reader's.
- Each round runs each benchmark once, one library after another on the same corpus. Times are processor time of the
  thread.
- Before each reading and writing, the upper halves of the vector registers are marked as unused: one library leaves
  them in use, which slows down others on some processors.
- A dash stands where a library cannot read a corpus: an encoding, or nesting deeper than it accepts.

## To repeat it

    scripts/bench                 all of it, into docs/
    scripts/bench --rounds N      the same in N rounds instead of 11
    scripts/bench --quick         five rounds, into build/bench/
    scripts/bench --filter REGEX  some of it: print the figures only, for names like `read/records/pugixml`
    scripts/bench --draw          this page anew, from docs/performance.csv
    scripts/bench --against COMMIT  this library beside the one of that commit, in the same rounds

Debian's packages are installed where they are missing. Figures of different machines, or of different runs, are not to be
compared; ratios within a run are.
'''


def gibibytes(kilobytes):
    return f'{int(kilobytes.split()[0]) / 1048576:.1f} GiB'


PROVISIONAL = '''
**The machine was busy with other programs during this run, which shows in all times: the figures are provisional.**
'''


def page(figures):
    share = float(figures.facts['processor share'])
    return PAGE.format(
        share=f'{share:.0%}', provisional=PROVISIONAL if share < 0.9 else '',
        processor=figures.facts['processor'], memory=gibibytes(figures.facts['memory']), system=figures.facts['system'],
        compiler=figures.facts['compiler'], revision=figures.facts.get('revision', 'unknown'),
        reader_object=figures.facts['reader object'], versions=versions(figures),
        rounds=figures.rows[0]['rounds'], targets=targets(figures), ratios=ratios(figures, COMPARED),
        conforming=ratios(figures, COMPARED, CONFORMING, CONFORMING_PEERS),
        other_ratios=ratios(figures, ['records-200', 'records-fresh', 'records-utf16', 'records-latin1']),
        large=throughput(figures, LARGE), variations=throughput(figures, VARIATIONS), not_first=not_first(figures),
        omissions=omissions(), writing=writing(figures), allocations=allocations(figures),
        memory_table=peak_memory(figures), corpora=corpora_list(figures))


def main():
    if len(sys.argv) != 3: sys.exit(__doc__)
    figures, directory = Figures(sys.argv[1]), pathlib.Path(sys.argv[2])
    for draw_chart in (draw_speeds, draw_conforming, draw_floors, draw_writing):
        draw_chart(figures, directory)
    (directory / 'performance.md').write_text(page(figures), encoding='utf-8')


if __name__ == '__main__':
    main()
