# Sourced by the scripts beside it: SCRIPT BUILD_DIRECTORY VERSION
set -eu
# shellcheck disable=SC2034 # used where this is sourced
build=$1 version=$2
source=$(cd "$(dirname "$0")/../.." && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
trap 'exit 1' HUP INT TERM

fail() {
    echo "$*" >&2
    exit 1
}

# need TOOL...: skips the test if one is missing.
need() {
    for tool; do
        command -v "$tool" >/dev/null || {
            echo "Skipped: $tool is missing; scripts/install-packages ci installs it."
            exit 77
        }
    done
}

# same WHAT WANTED GOT
same() {
    [ "$2" = "$3" ] || fail "$1 should have been:
$2
but is:
$3"
}

# documents: the names of docs/ that are installed, a line each.
documents() {
    (cd "$source/docs" && printf '%s\n' *.md bench-*.svg session.svg *.csv)
}

# names_its_files ROOT PREFIX: what documents link to and the page of movra-sim names is installed there.
names_its_files() {
    for document in $(find "$1$2" -name '*.md'); do
        for link in $(grep -o ']([^):#]*' "$document" | cut -c 3-); do
            [ -f "${document%/*}/$link" ] || fail "$document links to $link, which is not installed."
        done
    done
    page=$(find "$1$2/share/man/man1/" -name 'movra-sim.1*')
    gzip -dcf "$page" | tr -d '\\' >"$scratch/page"
    for file in movra-sim/catalog.json movra-sim/catalog.schema.json doc/movra-sim/catalog.md; do
        [ -f "$1$2/share/$file" ] || fail "$2/share/$file is not installed."
        grep -q " $2/share/$file$" "$scratch/page" || fail "$page does not name $2/share/$file."
    done
}

# answers DIRECTORY: the programs in that directory, and no others, talk to each other.
answers() {
    same "The version of movra-sim" "movra-sim $version" "$("$1/movra-sim" --version)"
    same "The answer of the simulated service" pordo_user "$(
        "$1/movra-sim" -- "$1/movra" com.varn.tul / GET :config:data:ftp:userName:
    )"
}
