#!/usr/bin/env bash
# Counts the lines of code in src/ and tests/ (all .cpp and .h files) and
# prints their ratio. A line counts unless it is blank or a comment line: one
# whose first non-blank characters are "//" (also "///"), "/*" or "*".
# Golden case folders hold no .cpp/.h files, so they are not counted.
set -euo pipefail
cd "$(dirname "$0")/.."

count() {
  find "$1" -type f \( -name '*.cpp' -o -name '*.h' \) -print0 |
    xargs -0 cat |
    grep -Ev '^[[:space:]]*($|//|/\*|\*)' |
    wc -l
}

src=$(count src)
tests=$(count tests)
echo "src:   $src"
echo "tests: $tests"
awk -v s="$src" -v t="$tests" 'BEGIN { printf "ratio: %.2f\n", t / s }'
