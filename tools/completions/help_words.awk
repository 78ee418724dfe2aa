# Reads what `cvregexp COMMAND --help` or `cvregexp --help` prints, and prints a line for each spelling of an option or
# for each command: the word, what its value is, and a description, with tabs between them. The value is "none", "text",
# "file", or the words to choose from with bars between them. For any awk; without single quotes.

function finish(   count, i, n, spellings, value, choices) {
    if (head == "") return
    sub(/ \(=[^)]*\)$/, "", head)
    n = split(head, spellings, /[] []+/)
    value = "none"
    count = 0
    for (i = 1; i <= n; i++)
        if (spellings[i] ~ /^-/) words[++count] = spellings[i]
        else if (spellings[i] != "") value = spellings[i]
    if (value != "none") value = kind(value)
    for (i = 1; i <= count; i++) print words[i] "\t" value "\t" text
    head = ""
}

# "mark the matches: auto, always or never" names the values of an option; remarks in parentheses do not count.
function kind(name,   list, n, parts, i, all) {
    if (name ~ /\|/) return name
    if (name ~ /FILE|PATH|DIR|FOLDER/) return "file"
    list = text
    gsub(/ *\([^)]*\)/, "", list)
    if (list !~ /: /) return "text"
    sub(/^.*: /, "", list)
    gsub(/,? or /, ", ", list)
    n = split(list, parts, /, */)
    all = ""
    for (i = 1; i <= n; i++) {
        if (parts[i] == "") continue
        if (parts[i] !~ /^[a-z0-9-]+$/) return "text"
        all = all (all == "" ? "" : "|") parts[i]
    }
    return n < 2 ? "text" : all
}

{ sub(/ +$/, "") }

/^Commands:/ { inCommands = 1; next }
inCommands && /^  [a-z]/ {
    word = $1
    sub(/^ *[^ ]+ +/, "")
    print word "\tnone\t" $0
    next
}
inCommands { inCommands = 0 }

/^  -[^ ]/ {
    finish()
    head = substr($0, 3)
    text = ""
    at = match(head, /  +/)
    if (at) {
        text = substr(head, at + RLENGTH)
        head = substr(head, 1, at - 1)
    }
    next
}
/^   +[^ ]/ && head != "" {
    sub(/^ +/, "")
    text = text (text == "" ? "" : " ") $0
    next
}
{ finish() }
END { finish() }
