#!/usr/bin/env python3
"""Writes src/support/uUnicodeCase.cpp: the simple case mappings of the basic plane as range tables.

Only mappings from one unit to one unit count. Mappings between ASCII and what lies outside it (dotless i, long s, the
Kelvin sign) are left out: names of the registry and of files that differ in such a letter are different names there.
Usage: tools/make-case-table.py > src/support/uUnicodeCase.cpp
"""


def simple_upper(char):
    """The simple upper-case mapping: the full one where it is one unit, else the title case (Greek iota subscripts)."""
    for mapped in (char.upper(), char.title()):
        if len(mapped) == 1:
            return mapped
    return char


def simple_lower(char):
    mapped = char.lower()
    return mapped if len(mapped) == 1 else char


def mappings(function):
    for code in range(0x80, 0x10000):
        if 0xD800 <= code <= 0xDFFF:
            continue
        target = ord(function(chr(code)))
        if target != code and 0x80 <= target <= 0xFFFF:
            yield code, target


def ranges(pairs):
    """Runs with one distance between unit and mapping whose units follow each other by 1 or by 2."""
    result = []
    for code, target in pairs:
        delta = target - code
        if result:
            run = result[-1]
            step = code - run[1]
            if run[3] == delta and (step == run[2] or run[0] == run[1] and step <= 2):
                run[1] = code
                run[2] = step
                continue
        result.append([code, code, 1, delta])
    return result


def table(name, pairs):
    rows = ["{0x%04X, 0x%04X, %d, %d}" % tuple(run) for run in ranges(pairs)]
    print("constexpr TCaseRange %s[] = {" % name)
    line = "   "
    for row in rows:
        if len(line) + len(row) + 2 > 120:
            print(line)
            line = "   "
        line += " " + row + ","
    print(line)
    print("};")
    print()


def main():
    print("""// Made by tools/make-case-table.py: change that, not this.
#include "support/uUnicodeCase.h"

#include <algorithm>
#include <cstdint>
#include <span>

namespace varcolin {
namespace {

/// The units First, First + Step, ... Last map to themselves plus Delta.
struct TCaseRange {
  char16_t First;
  char16_t Last;
  std::uint8_t Step;
  std::int32_t Delta;
};

// clang-format off""")
    table("UpperRanges", mappings(simple_upper))
    table("LowerRanges", mappings(simple_lower))
    print("""// clang-format on

char16_t Map(std::span<const TCaseRange> ARanges, char16_t AUnit) noexcept {
  const auto found = std::partition_point(ARanges.begin(), ARanges.end(),
                                          [AUnit](const TCaseRange& ARange) { return ARange.Last < AUnit; });
  if (found == ARanges.end() || AUnit < found->First || (AUnit - found->First) % found->Step != 0) return AUnit;
  return static_cast<char16_t>(AUnit + found->Delta);
}

}  // namespace

char16_t UnicodeUpper(char16_t AUnit) noexcept { return Map(UpperRanges, AUnit); }
char16_t UnicodeLower(char16_t AUnit) noexcept { return Map(LowerRanges, AUnit); }

}  // namespace varcolin""")


main()
