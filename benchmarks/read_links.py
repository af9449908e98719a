"""Reads target, arguments, working directory and icon of link files in a folder with liblnk's Python binding.

  read_links.py FOLDER    prints the number of files, 0.lnk and on, that FOLDER holds; then, for each line
                          "FIRST COUNT" of its input, the seconds that so many files take from that one on.
                          Exits 3 when the binding is missing.
"""

import os
import sys
import time

try:
    import pylnk
except ImportError:
    sys.exit(3)


def read(path):
    link = pylnk.file()
    link.open(path)
    facts = (link.get_local_path() or link.get_network_path(), link.get_command_line_arguments(),
             link.get_working_directory(), link.get_icon_location())
    link.close()
    return facts


def main():
    folder = sys.argv[1]
    paths = [os.path.join(folder, f"{number}.lnk") for number in range(len(os.listdir(folder)))]
    print(len(paths), flush=True)
    for line in sys.stdin:
        first, count = map(int, line.split())
        part = paths[first:first + count]
        begin = time.perf_counter()
        for path in part:
            read(path)
        print(time.perf_counter() - begin, flush=True)


main()
