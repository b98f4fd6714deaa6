#!/bin/sh
# Every folder of the project is named in its description: check-folders.sh PROJECT DESCRIPTION
# `folder/*/` names all folders in a folder.
set -eu
cd "$1"
folders=$(find . -name .git -prune -o -name 'build*' -prune -o -name __pycache__ -prune -o -type f -printf '%h\n' |
    sort -u | sed -n 's|^\./||p')
[ -n "$folders" ]
status=0
for folder in $folders; do
    grep -qF -e "\`$folder/\`" -e "\`${folder%/*}/*/\`" "$2" || {
        echo "not described: $folder/"
        status=1
    }
done
exit $status
