#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Asks whether the tests of the core would notice a mistake: makes small ones, one at a time.

usage: run_mutants.py FOLDER [--count 300] [--seed 1] [--jobs 2]

In FOLDER the sources of the commit that is checked out are laid out anew. `count` places of
src/ are drawn, and all mutants are compiled into one build, each behind a question to the
environment variable BEATATLAS_MUTANT. Then the test programs of the rooms run once for each
mutant that they reach, its own room's first, until one fails. A mutant that no test notices
survives: either it changes nothing that can be seen, or a test is missing. FOLDER/mutants.json
has all of them; printed are the survivors and a line for each room.

Needs Debian's python3-clang-14, and about half an hour.
"""
import argparse
import json
import os
import random
import re
import resource
import subprocess
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from candidates import candidates

ROOMS = ('dsp', 'view', 'peakss', 'envelope', 'key', 'util', 'session', 'api')
HEADER = '''#pragma once
#include <cstdio>
#include <cstdlib>
/** Which mutant lives, and which places have been reached; they are listed at the end in the file
 *  that BEATATLAS_REACHED names. */
struct BeatatlasMutants {
    int alive = 0;
    unsigned char reached[1000] = {};
    BeatatlasMutants() {
        const char* number = std::getenv("BEATATLAS_MUTANT");
        alive = number == nullptr ? 0 : std::atoi(number);
    }
    ~BeatatlasMutants() {
        const char* name = std::getenv("BEATATLAS_REACHED");
        std::FILE* file = name == nullptr ? nullptr : std::fopen(name, "a");
        if (file == nullptr) return;
        for (int number = 0; number < 1000; ++number)
            if (reached[number] != 0) std::fprintf(file, "%d\\n", number);
        std::fclose(file);
    }
};
inline BeatatlasMutants beatatlasMutants;
inline bool beatatlasIsAlive(int number) {
    beatatlasMutants.reached[number] = 1;
    return beatatlasMutants.alive == number;
}
'''


def run(words, **options):
    return subprocess.run(words, check=True, stdout=subprocess.DEVNULL, **options)


def lay_out(folder):
    """A copy of the commit with its own build folder, configured."""
    tree = folder / 'tree'
    tree.mkdir(parents=True, exist_ok=True)
    archive = subprocess.run(['git', 'archive', 'HEAD'], check=True, stdout=subprocess.PIPE).stdout
    run(['tar', '-x', '-C', str(tree)], input=archive)
    (folder / 'mutant.h').write_text(HEADER)
    run(['cmake', '-S', str(tree), '-B', str(folder / 'build'), '-G', 'Ninja',
         '-DCMAKE_BUILD_TYPE=Release', '-DBEATATLAS_BUILD_TESTS=ON',
         f'-DCMAKE_CXX_FLAGS=-include {folder}/mutant.h'])
    return tree


def draw(tree, folder, count, seed):
    """Mutants that do not touch each other; some more than wanted, for those that do not compile."""
    every = candidates(tree / 'src', folder / 'build/compile_commands.json')
    random.Random(seed).shuffle(every)
    drawn, taken = [], {}
    for mutant in every:
        spans = taken.setdefault(mutant.file, [])
        if all(mutant.end <= start or end <= mutant.start for start, end in spans):
            spans.append((mutant.start, mutant.end))
            drawn.append(mutant)
        if len(drawn) == count + count // 4:
            break
    print(f'{len(every)} places, {len(drawn)} drawn', flush=True)
    return dict(enumerate(drawn, 1))


def write_mutants(mutants, originals):
    for file, text in originals.items():
        own = [(number, mutant) for number, mutant in mutants.items() if mutant.file == file]
        for number, mutant in sorted(own, key=lambda entry: -entry[1].start):
            changed = mutant.replacement.format(alive=f'beatatlasIsAlive({number})')
            text = text[:mutant.start] + changed.encode() + text[mutant.end:]
        Path(file).write_bytes(text)


def build(mutants, folder):
    """Builds the test programs; drops the mutants that the compiler refuses."""
    originals = {mutant.file: Path(mutant.file).read_bytes() for mutant in mutants.values()}
    targets = [f'tests/{room}/all' for room in ROOMS] + ['record_results']
    while True:
        write_mutants(mutants, originals)
        made = subprocess.run(['ninja', '-C', str(folder / 'build'), '-k', '0', *targets],
                              stdout=subprocess.PIPE, text=True)
        if made.returncode == 0:
            return
        refused = refused_mutants(made.stdout, mutants, folder / 'build')
        if not refused:
            raise SystemExit(made.stdout[-3000:])
        print(f'{len(refused)} do not compile', flush=True)
        for number in refused:
            del mutants[number]


def refused_mutants(output, mutants, build_folder):
    message = r'^([^:\s]+):(\d+):\d+: (?:fatal error|internal compiler error|error)'
    places = {(os.path.realpath(build_folder / file), int(line))
              for file, line in re.findall(message, output, re.M)}
    # A replacement keeps the line breaks of what it replaces, but may write an operand twice.
    return [number for number, mutant in mutants.items()
            if any(file == os.path.realpath(mutant.file) and abs(line - mutant.line) <= 2
                   for file, line in places)]


def programs(folder):
    """What can notice a mutant, as (room, words of the command, processor seconds, places that it
    reaches): the test programs of the rooms, and the comparison with the record of results."""
    found = []
    for room in ROOMS:
        for file in sorted((folder / 'build/tests' / room).rglob('*')):
            if file.is_file() and os.access(file, os.X_OK) and file.suffix == '':
                found.append(tried_out(room, [str(file)], folder))
    golden = folder / 'tree/tests/golden'
    return found + [tried_out('golden', [str(golden / 'compare_results.sh'),
                                         str(folder / 'build/tests/golden/record_results'),
                                         str(golden / 'results.txt'), str(folder / 'record.txt')],
                              folder)]


def tried_out(room, words, folder):
    list_of_reached = folder / 'reached.txt'
    list_of_reached.unlink(missing_ok=True)
    before = children_seconds()
    if notices(words, 0, 600, BEATATLAS_REACHED=str(list_of_reached)):
        raise SystemExit(f'{words[0]} fails without a mutant')
    reached = list_of_reached.read_text().split() if list_of_reached.exists() else []
    return room, words, children_seconds() - before, {int(number) for number in reached}


def children_seconds():
    return resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime


def notices(words, number, seconds, **more_environment):
    """Whether the program fails, or takes more processor time than so many seconds."""
    def limit():
        resource.setrlimit(resource.RLIMIT_CPU, (int(seconds), int(seconds)))
        resource.setrlimit(resource.RLIMIT_AS, (4 << 30, 4 << 30))

    environment = dict(os.environ, BEATATLAS_MUTANT=str(number), GTEST_FAIL_FAST='1',
                       **more_environment)
    try:
        return subprocess.run(words, env=environment, timeout=3600, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, preexec_fn=limit).returncode != 0
    except subprocess.TimeoutExpired:
        return True


def try_mutant(number, mutant, every_program, folder):
    """@return the name of the program that noticed it, or None"""
    own_room = Path(mutant.file).relative_to(folder / 'tree/src').parts[0]
    reaching = [program for program in every_program if number in program[3]]
    for room, words, seconds, _ in sorted(
            reaching, key=lambda program: (program[0] != own_room, program[2])):
        # The record is written to a file; two mutants may be tried at once.
        own_words = [word.replace('record.txt', f'record-{number}.txt') for word in words]
        if notices(own_words, number, 5 + 3 * seconds):
            return Path(words[0]).name if room != 'golden' else 'golden'
    return None


def print_survivor(result):
    print(f"{result['number']} {result['file']}:{result['line']}: {result['what']}: {result['text']}",
          flush=True)


def report(results):
    print('\n| room | mutants | noticed |\n|---|---|---|')
    every = Counter(result['file'].split('/')[1] for result in results)
    noticed = Counter(result['file'].split('/')[1] for result in results if result['noticed'])
    for room in sorted(every):
        print(f'| {room} | {every[room]} | {noticed[room]} |')
    print(f'| all | {len(results)} | {sum(noticed.values())} |')


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('folder', type=Path)
    parser.add_argument('--count', type=int, default=300)
    parser.add_argument('--seed', type=int, default=1)
    parser.add_argument('--jobs', type=int, default=2)
    arguments = parser.parse_args()
    folder = arguments.folder.resolve()
    tree = lay_out(folder)
    mutants = draw(tree, folder, arguments.count, arguments.seed)
    texts = {mutant.file: Path(mutant.file).read_bytes() for mutant in mutants.values()}
    build(mutants, folder)
    tried = dict(list(mutants.items())[:arguments.count])
    every_program = programs(folder)
    seconds = sum(program[2] for program in every_program)
    print(f'{len(tried)} mutants, {len(every_program)} programs, {seconds:.0f} s', flush=True)

    def result_of(entry):
        number, mutant = entry
        text = texts[mutant.file][mutant.start:mutant.end].decode()
        result = {'number': number, 'file': str(Path(mutant.file).relative_to(tree)),
                  'line': mutant.line, 'what': mutant.what, 'text': text,
                  'noticed': try_mutant(number, mutant, every_program, folder)}
        if result['noticed'] is None:
            print_survivor(result)
        return result

    with ThreadPoolExecutor(arguments.jobs) as pool:
        results = list(pool.map(result_of, tried.items()))
    (folder / 'mutants.json').write_text(json.dumps(results, indent=1))
    report(results)


if __name__ == '__main__':
    main()
