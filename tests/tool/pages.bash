#!/usr/bin/env bash
# The manual page and the completions know what the command knows: pages.bash KVSIG PAGES
set -euo pipefail
kvsig=$1
pages=$2
faults=0
fault() {
  echo "$*"
  faults=1
}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
export PATH=${kvsig%/*}:$PATH

commands=$("$kvsig" --help | sed -n 's/^  \([a-z]\+\)  .*/\1/p')
(($(wc -w <<<"$commands") >= 7)) || fault "too few commands: $commands"

# Each option of a command stands in the command's part of the page.
for command in $commands; do
  part=$(sed -n "/^\.SS kvsig $command\$/,/^\.S[SH] /p" "$pages/kvsig.1" | sed 's/\\-/-/g')
  for option in $("$kvsig" "$command" --help | sed -n 's/^ *\(-., \)\?\(--[a-z-]*\).*/\2/p'); do
    grep -q -- "fB$option" <<<"$part" || fault "the manual page lacks $command $option"
  done
done

if command -v mandoc >/dev/null; then
  mandoc -Tlint -Wwarning "$pages/kvsig.1" || fault "mandoc complains"
fi
if command -v groff >/dev/null; then
  words=$(groff -man -Tutf8 -ww -rLL=78n "$pages/kvsig.1" 2>&1 >/dev/null)
  [[ -z $words ]] || fault "groff complains: $words"
fi
if command -v zsh >/dev/null; then
  zsh -n "$pages/_kvsig" || fault "zsh cannot read the completion"
fi

# What bash offers for the last of the words.
# shellcheck source=/dev/null
source "$pages/kvsig.bash"
offered() {
  COMP_WORDS=("$@")
  COMP_CWORD=$(($# - 1))
  COMPREPLY=()
  _kvsig
  printf '%s\n' "${COMPREPLY[@]}" | sort | tr '\n' ' '
}
expect() {
  local wanted=$1 got
  shift
  got=$(offered "$@")
  [[ $got == "$wanted " ]] || fault "for '$*' bash offers '$got' and not '$wanted'"
}
mkdir recordings
"$kvsig" synth -q -o 'my night.edf' --duration 1
expect "info" kvsig in
expect "--help --version" kvsig --
expect "--format --from" kvsig export night.edf --f
expect "csv" kvsig export --format c
expect "npy" kvsig export --format = n
expect "--output" kvsig plot -o x --out
expect "recordings" kvsig info rec
expect "my night.edf" kvsig plot --channels C3 my
expect "EDF90" kvsig info --type ED
expect 'Double\ banana' kvsig plot 'my night.edf' --montage Dou
expect "" kvsig plot --low-filter ""
((faults == 0))
