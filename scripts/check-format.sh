#!/usr/bin/env bash
# Checks that every C++ file in the repository is formatted as .clang-format says; lists the files
# that differ and fails when there are any. Fix them with: clang-format -i FILE...
set -euo pipefail
cd "$(dirname "$0")/.."
differ=()
while IFS= read -r -d '' file; do
  if ! clang-format --dry-run --Werror "$file" >/dev/null 2>&1; then differ+=("$file"); fi
done < <(git ls-files -z -- '*.h' '*.cpp')
if [ ${#differ[@]} -gt 0 ]; then
  echo "check-format: ${#differ[@]} file(s) differ from clang-format:"
  printf '  %s\n' "${differ[@]}"
  exit 1
fi
echo "check-format: all files formatted"
