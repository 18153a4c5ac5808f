# Turns a document into a script for cram, line for line.
#
# An indented block is a session: a command follows "$ ", its continuation "> ", then the exact answer
# follows. A fenced block marked "sh" is run and prints nothing. A document's blocks share one shell and
# one scratch directory. The line before a block, or a line alone, can be:
#   <!-- not run: REASON -->      the block is not run; every such block has this note
#   <!-- file: NAME -->           the block is the content of that file
#   <!-- run: COMMAND -->         is run at this place, and is not shown
# In a manual page, which has .\" for <!-- and -->, blocks between .EX and .EE are such sessions, or
# marked; one between .nf and .fi that does not begin with "$ " is not run.

function complain(what)
{
    printf "%s:%d: %s\n", FILENAME, FNR, what | "cat >&2"
    bad = 1
}

# Blank lines within an answer belong to it; those around it do not.
function blankLines(text)
{
    for (; blank > 0; --blank) {
        print text
    }
}

# The text of one of the notes above, or nothing.
function note(name)
{
    start = manual ? ".\\\" " name ": " : "<!-- " name ": "
    end = manual ? "" : " -->"
    if (index($0, start) != 1 || substr($0, length($0) - length(end) + 1) != end) {
        return ""
    }
    return substr($0, length(start) + 1, length($0) - length(start) - length(end))
}

function sessionLine(text)
{
    if (block == "") {
        block = mark != "" ? mark : text ~ /^\$ / ? "session" : "text"
        mark = ""
        if (block == "text" && inside != ".nf") {
            complain("this block is neither run nor marked")
        }
    }
    if (block != "session") {
        blankLines("")
        print ""
        return
    }
    blankLines(text ~ /^\$ / ? "" : "    ")
    commands += text ~ /^\$ /
    print "    " text
}

function fenceLine(text)
{
    print fence == "not run" ? "" : "    " (first ? "$ " : "> ") text
    first = 0
}

BEGIN { manual = ARGV[1] ~ /\.1(\.in)?$/ }

fence != "" && /^```$/ {
    print fence == "file" ? "    > END" : ""
    fence = ""
    next
}
fence != "" { fenceLine($0); next }

/^$/ { ++blank; next }

manual && inside && /^\.(EE|fi)$/ { inside = "" }
manual && inside {
    gsub(/\\&|\\f[BIR]/, "")
    gsub(/\\ /, " ")
    gsub(/\\-/, "-")
    gsub(/\\\(aq/, "'")
    gsub(/\\\(dq/, "\"")
    gsub(/\\\(ti/, "~")
    gsub(/\\\(ha/, "^")
    gsub(/\\e/, "\\")
    sessionLine($0)
    next
}
manual && /^\.(EX|nf)$/ { inside = $0; block = "" }

!manual && /^    / && (block != "" || blank > 0) { sessionLine(substr($0, 5)); next }

{ blankLines(""); if (!manual) block = "" }

/^```/ {
    fence = mark != "" ? mark : $0 == "```sh" ? "sh" : "not run"
    if (fence != mark && fence != "sh") {
        complain("this block is neither run nor marked")
    }
    mark = ""
    commands += fence == "sh"
    first = fence == "sh"
    print fence == "file" ? "    $ cat >" file " <<'END'" : ""
    next
}
mark != "" && !manual { complain("a note without a block"); mark = "" }
note("not run") != "" { mark = "not run"; excused = 1 }
note("file") != "" { mark = "file"; file = note("file") }
{ print note("run") != "" ? "    $ " note("run") : "" }

END {
    blankLines("")
    if (!commands && !excused) {
        complain("nothing here is run")
    }
    exit bad
}
