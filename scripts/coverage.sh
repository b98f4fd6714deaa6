#!/bin/sh
# Builds with the preset `coverage`, runs the tests, and tells which lines of libraries and program they reach; a page
# for each file is in build/coverage/report.
set -eu
cd "$(dirname "$0")/.."
scripts/install-packages.sh coverage
cmake --preset coverage
find build/coverage -name '*.gcda' -delete
cmake --build --preset coverage
# A program whose files may not grow cannot write its counts either, and is not to say so in its output.
GCOV_ERROR_FILE=/dev/null ctest --preset coverage
mkdir -p build/coverage/report
gcovr --root . --object-directory build/coverage --filter 'aux/' --filter 'scard/' --filter 'scardverify/' \
    --filter 'cli/' --print-summary --exclude build/ --exclude-throw-branches \
    --html-details build/coverage/report/index.html --txt build/coverage/report.txt
