# Makes of a page of docs/ what lowdown turns into a manual page: without title, tables as lists of terms, links as their
# texts. The last columns of a table stand in parentheses.
/^$/ {
    n
    /^|/ {
        N
        d
    }
}
/^# /d
s/^## /# /
s/\[\([^]]*\)\]([^)]*)/\1/g
/^| \(.*\) |$/ {
    s//\1/
    s/ | /\n: /
    s/ | *$//
    s/ | \(.*\)/ (\1)/
    s/$/\n/
}
