# Called with the list of floors, what is planted, and the sources.

function matches(text, patterns,    list, count, i) {
    gsub(/[.+]/, "\\\\&", patterns)
    gsub(/\*/, ".*", patterns)
    count = split(patterns, list, " ")
    for (i = 1; i <= count; i++) if (text ~ "^" list[i] "$") return 1
    return 0
}

# The last floor that names the file, or 0.
function floorOf(file,    floor) {
    for (floor = floors; floor > 0 && !matches(file, files[floor]); floor--);
    return floor
}

# What is wrong with a line of the file; empty when nothing is.
function complaintAbout(file, line,    floor, header, target) {
    if (!sub(/^[ \t]*#[ \t]*include[ \t]*/, "", line)) return ""
    if (!(floor = floorOf(file))) return "is on no floor"
    if (line !~ /^<[^>]+>|^"[^"]+"/) return "includes what cannot be read"
    header = substr(line, 2, match(substr(line, 2), /[>"]/) - 1)
    if (line ~ /^"/) {  # a file beside, which only the tool's sources include
        target = file
        sub(/[^\/]*$/, header, target)
        return file ~ /^apps\// && header !~ /\// && target in isSource ? "" : "may not include in quotes"
    }
    if (header ~ /^([a-z_]+|tessit\/(export|version)\.h)$/) return ""  # the standard library's, or generated
    target = ("include/" header in isSource ? "include/" : "src/") header
    if (!(target in isSource))
        return file !~ /^include\// && matches(header, outside[floor]) ? "" : "may not include a foreign header"
    if (file !~ /^src\// && target ~ /^src\//) return "may not include a private header"
    return matches(names[floorOf(target)], names[floor] " " standsOn[floor]) ? "" : "stands below it"
}

function expect(found, expected, what) {
    if (found == expected) return
    print what ": " (found == "" ? "nothing is wrong" : found)
    failed = 1
}

BEGIN { FS = " *[|] *"; for (i = 3; i < ARGC; i++) isSource[ARGV[i]] }
FILENAME ~ /\.txt$/ && /^#/ { next }
FILENAME == ARGV[1] {
    names[++floors] = $1; files[floors] = $2; standsOn[floors] = $3; outside[floors] = $4
    count = split($3, lower, " ")
    for (i = 1; i <= count; i++) expect(lower[i] in known ? "" : "is not below", "", $1 " on " lower[i])
    known[$1]
    next
}
FILENAME == ARGV[2] { expect(complaintAbout($1, $2), $3, $0); next }
{ expect(complaintAbout(FILENAME, $0), "", FILENAME ": " $0) }
END { exit failed }
