# Sourced by the scripts in this folder: SCRIPT BUILD_DIRECTORY VERSION
set -eu
# shellcheck disable=SC2034 # used where this is sourced
build=$1 version=$2
source=$(cd "$(dirname "$0")/../.." && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
trap 'exit 1' HUP INT TERM

# The scripts write the same files below the build directory.
exec 9>"$build/packaging.lock"
flock 9

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

# same WHAT EXPECTED ACTUAL
same() {
    [ "$2" = "$3" ] || fail "$1 should be:
$2
but is:
$3"
}

# documents: prints the names of the files of docs/ that are installed.
documents() {
    (cd "$source/docs" && printf '%s\n' *.md bench-*.svg session.svg *.csv)
}

# names_its_files ROOT PREFIX: checks that the files exist to which the documents link and which the manual
# pages name, and that a page names every catalogue.
names_its_files() {
    for document in $(find "$1$2" -name '*.md'); do
        for link in $(grep -o ']([^):#]*' "$document" | cut -c 3-); do
            [ -f "${document%/*}/$link" ] || fail "$document links to $link, which is not installed."
        done
    done
    for page in movra movra-sim; do
        gzip -dcf "$1$2/share/man/man1/$page.1"* | tr -d '\\' | grep -o '/[^ ]*/share/[^ ]*' \
            >"$scratch/$page.names"
        while read -r name; do
            [ -e "$1$name" ] || fail "$page.1 names $name, which is not installed."
        done <"$scratch/$page.names"
    done
    for catalogue in "$1$2"/share/movra-sim/*.json; do
        grep -qxF "${catalogue#"$1"}" "$scratch/movra-sim.names" || fail "movra-sim.1 does not name $catalogue."
    done
}

# answers DIRECTORY: checks the version of movra-sim there, and an answer of movra there.
answers() {
    same "The version of movra-sim" "movra-sim $version" "$("$1/movra-sim" --version)"
    same "The answer of the simulated service" pordo_user "$(
        "$1/movra-sim" -- "$1/movra" com.varn.tul / GET :config:data:ftp:userName:
    )"
}
