"""Reads target, arguments, working directory and icon of every link file in a folder with liblnk's Python binding.

  read_links.py FOLDER ROUNDS    prints the seconds of each round, a line each; exits 3 when the binding is missing
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
    folder, rounds = sys.argv[1], int(sys.argv[2])
    paths = [os.path.join(folder, name) for name in sorted(os.listdir(folder))]
    for _ in range(rounds):
        begin = time.perf_counter()
        for path in paths:
            read(path)
        print(time.perf_counter() - begin)


main()
