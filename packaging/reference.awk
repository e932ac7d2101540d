# Makes of the table that a program prints with --print-reference
#   awk -v date=2026-11-22 -v version=0.1.0 -f reference.awk format=man|bash|zsh|fish TABLE
# its manual page or its completion.
BEGIN { FS = "\t" }
$1 == "program" { program = $2; purpose = $3 }
$1 == "example" { example[++examples] = $2 }
$1 == "command" {
    command[++commands] = $2
    about[$2] = $3
    word = $2
    sub(/^.* /, "", word)
    parent = $2
    if (!sub(/ [^ ]*$/, "", parent)) parent = ""
    step[commands] = parent "/" word
    below[parent] = below[parent] (below[parent] == "" ? "" : " ") word
}
$1 == "option" {
    owner[++options] = $2
    names[options] = $3
    takes[options] = $4
    sub(/^[A-Z]+:/, "", takes[options])
    text[options] = $5
    if ($3 != "") {
        known = $3
        gsub(/,/, " ", known)
        words[$2] = words[$2] (words[$2] == "" ? "" : " ") known
    }
}

function roff(line) {
    gsub(/\\/, "\\e", line)
    gsub(/-/, "\\-", line)
    gsub(/'/, "\\(aq", line)
    if (line ~ /^\./) line = "\\\\&" line
    return line
}
function man_options(of,   i, name, found) {
    for (i = 1; i <= options; ++i) {
        if (owner[i] != of || (of != "" && names[i] ~ /--(help|json|language)/)) continue
        name = names[i]
        gsub(/,/, ", ", name)
        print ".TP"
        print ".B " roff(name == "" ? takes[i] : name) (name != "" && takes[i] != "" ? " " roff(takes[i]) : "")
        print roff(text[i])
    }
}
function man(   i) {
    print ".TH " toupper(program) " 1 " date " \"Fieldcore " version "\" \"User Commands\""
    print ".SH NAME"
    short = purpose
    sub(/[.:].*$/, "", short)
    print roff(program) " \\- " roff(tolower(substr(short, 1, 1)) substr(short, 2))
    print ".SH SYNOPSIS"
    print ".B " roff(program)
    print (commands ? "COMMAND [OPTIONS]" : "[OPTIONS]")
    print ".SH DESCRIPTION"
    print roff(purpose)
    if (commands) print "Every command has its own help, which begins with examples."
    print ".SH OPTIONS"
    man_options("")
    if (commands) print ".SH COMMANDS"
    for (i = 1; i <= commands; ++i) {
        print ".SS " roff(program " " command[i])
        print roff(about[command[i]])
        man_options(command[i])
    }
    print ".SH EXAMPLES"
    print ".nf"
    for (i = 1; i <= examples; ++i) print roff(example[i])
    print ".fi"
}

# Goes from a command to the one that is typed behind it.
function steps(indent, variable,   i) {
    for (i = 1; i <= commands; ++i)
        print indent "\"" step[i] "\") " variable "=\"" command[i] "\" ;;"
}

# The words of a command and of everything above it are offered.
function bash(   i, name) {
    name = program
    gsub(/-/, "_", name)
    print "# Completion of " program " for bash."
    print "_" name "() {"
    print "    local path='' word current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}"
    print "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do"
    print "        case \"$path/$word\" in"
    steps("        ", "path")
    print "        *) ;;"
    print "        esac"
    print "    done"
    values_bash()
    print "    case \"$path\" in"
    for (i = 0; i <= commands; ++i) {
        path = i ? command[i] : ""
        print "    \"" path "\") word=\"" below[path] " " words[path] "\" ;;"
    }
    print "    *) word= ;;"
    print "    esac"
    print "    mapfile -t COMPREPLY < <(compgen -W \"$word\" -- \"$current\")"
    print "    if [[ ${#COMPREPLY[@]} -eq 0 && $current != -* ]]; then"
    print "        mapfile -t COMPREPLY < <(compgen -f -- \"$current\")"
    print "    fi"
    print "}"
    print "complete -o filenames -F _" name " " program
}
function values_bash(   i, list, part, name, n, k, seen) {
    print "    case \"$before\" in"
    for (i = 1; i <= options; ++i) {
        if (names[i] == "" || takes[i] == "") continue
        n = split(names[i], part, ",")
        for (k = 1; k <= n; ++k) {
            if (part[k] in seen) continue
            seen[part[k]] = 1
            list = list (list == "" ? "" : " | ") part[k]
        }
    }
    print "    " (list == "" ? "none" : list) ")"
    print "        mapfile -t COMPREPLY < <(compgen -f -- \"$current\")"
    print "        return ;;"
    print "    *) ;;"
    print "    esac"
}

function quoted(line) {
    gsub(/'/, "'\\''", line)
    return line
}
function zsh(   i, k, n, part, path) {
    print "#compdef " program
    print "# Completion of " program " for zsh."
    print "local -a offered"
    print "local at= word"
    print "for word in ${words[2,CURRENT-1]}; do"
    print "    case \"$at/$word\" in"
    steps("    ", "at")
    print "    esac"
    print "done"
    print "case \"$at\" in"
    for (i = 0; i <= commands; ++i) {
        path = i ? command[i] : ""
        print "\"" path "\") offered=("
        n = split(below[path], part, " ")
        for (k = 1; k <= n; ++k)
            print "    '" part[k] ":" colons(about[path == "" ? part[k] : path " " part[k]]) "'"
        for (k = 1; k <= options; ++k) {
            if (owner[k] != path || names[k] == "") continue
            n = split(names[k], part, ",")
            print "    '" part[n] ":" colons(text[k]) "'"
        }
        print ") ;;"
    }
    print "esac"
    print "_describe 'command or option' offered || _files"
}
function colons(line) {
    gsub(/:/, "\\:", line)
    return quoted(line)
}

function fish(   i, k, n, part, path, condition, line, child) {
    print "# Completion of " program " for fish."
    if (commands) {
        print "function __" under() "_at"
        print "    set -l words (commandline -opc | string match -v -- '-*')"
        print "    test \"$words[2..]\" = \"$argv\""
        print "end"
        print "function __" under() "_in"
        print "    set -l words (commandline -opc | string match -v -- '-*')"
        print "    string match -q -- \"$argv *\" \"$words[2..] \""
        print "end"
    }
    for (i = 0; i <= commands; ++i) {
        path = i ? command[i] : ""
        condition = commands ? " -n '__" under() (path == "" || below[path] != "" ? "_at " : "_in ") path "'" : ""
        n = split(below[path], part, " ")
        for (k = 1; k <= n; ++k) {
            child = path == "" ? part[k] : path " " part[k]
            print "complete -c " program " -f" condition " -a " part[k] " -d '" fished(about[child]) "'"
        }
        for (k = 1; k <= options; ++k) {
            if (owner[k] != path || names[k] == "") continue
            n = split(names[k], part, ",")
            line = "complete -c " program condition
            for (m = 1; m <= n; ++m)
                line = line (part[m] ~ /^--/ ? " -l " substr(part[m], 3) : " -s " substr(part[m], 2))
            print line (takes[k] != "" ? " -r" : "") " -d '" fished(text[k]) "'"
        }
    }
}
function under(   name) {
    name = program
    gsub(/-/, "_", name)
    return name
}
function fished(line) {
    gsub(/\\/, "\\\\", line)
    gsub(/'/, "\\'", line)
    return line
}

END {
    if (program == "") {
        print "reference.awk: there is no table" > "/dev/stderr"
        exit 1
    }
    if (format == "man") man()
    else if (format == "bash") bash()
    else if (format == "zsh") zsh()
    else if (format == "fish") fish()
    else exit 2
}
