#!/usr/bin/env python3
"""Usage: tests/diagnostics/list_addresses.py MODULE SOURCE-FOLDER COUNT OUTPUT

Writes what addr2line says of COUNT random addresses in the code of MODULE, of which the symbol map was made, one a
line: the distance from where the module begins, the function, the file, the line. Of functions that are inlined into
one another, the function is the outermost one, and file and line are those of the innermost. The numbers are the same
each time for the same module.

OBJDUMP, ADDR2LINE and CXXFILT name the tools.
"""
import os
import posixpath
import random
import re
import subprocess
import sys


def output_of(tool, *arguments, **options):
    return subprocess.run([os.environ[tool], *arguments], check=True, stdout=subprocess.PIPE, text=True,
                          **options).stdout


def main():
    module, sources, count = sys.argv[1], sys.argv[2] + "/", int(sys.argv[3])
    base = int(re.search(r"^ImageBase\s+(\w+)", output_of("OBJDUMP", "-p", module), re.M)[1], 16)
    size, begin = (int(digits, 16) for digits in re.search(r" \.text +(\w+) +(\w+)", output_of("OBJDUMP", "-h", module))
                   .groups())
    generator = random.Random(count)
    addresses = [begin + generator.randrange(size) for _ in range(2 * count)]
    answers = output_of("ADDR2LINE", "-afi", "-e", module, input="".join(f"{address:#x}\n" for address in addresses))
    records = [answer.splitlines() for answer in re.split(r"^(?=0x)", answers, flags=re.M)[1:]]
    # Names from the symbol table have an underscore more in front than those from the debugging information, and
    # may have a number at the end.
    decorated = [re.sub(r"^_*(?!_*Z)|@\d+$|^_(?=_Z)", "", record[-2]) for record in records]
    functions = output_of("CXXFILT", "-n", input="\n".join(decorated) + "\n").splitlines()
    rows = []
    for record, function in zip(records, functions, strict=True):
        file, _, line = re.sub(r" \(discriminator \d+\)", "", record[2]).rpartition(":")
        line = int(line) if line != "?" else 0
        file = posixpath.normpath(file).removeprefix(sources) if line else ""
        # In some tables of the run time, which is in C, it takes the first file for another one.
        if not file.endswith(".c"):
            rows.append((int(record[0], 16) - base, function.removeprefix("??"), file, line))
    with open(sys.argv[4], "w", encoding="utf-8") as output:
        for row in rows[:count]:
            print(*row, sep="\t", file=output)


if __name__ == "__main__":
    main()
