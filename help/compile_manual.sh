#!/usr/bin/env bash
# Makes the compiled manual (HTML help) of the HTML manual:
#     compile_manual.sh CHMCMD CHMLS INDEX.HTML HELPVIEWER.H WORK_FOLDER ORVEX.CHM
# Each <h2 id="..."> becomes a page of its own. The header names the help contexts; context N is the page "topic-N", or
# the first page's text where the manual says nothing of that topic.
set -euo pipefail
chmcmd=$1 chmls=$2 manual=$3 header=$4 work=$5 target=$6

rm -rf "$work"
mkdir -p "$work"
split_into_pages() {
    awk -v folder="$work" '
        function begin(name, title,    line, i) {
            if (page != "") { print "</body>\n</html>" > page; close(page) }
            page = folder "/" name ".html"
            for (i = 1; i <= headLines; ++i) {
                line = head[i]
                if (title != "") sub(/<title>.*<\/title>/, "<title>" title "</title>", line)
                print line > page
            }
            if (title != "") print name "\t" title > (folder "/sections")
        }
        !inBody { head[++headLines] = $0; if (/<body>/) { inBody = 1; begin("index", "") } next }
        /<\/body>/ { exit }
        match($0, /<h2 id="[^"]*">/) {
            name = substr($0, RSTART + 8, RLENGTH - 10)
            title = substr($0, RSTART + RLENGTH)
            sub(/<\/h2>.*/, "", title)
            begin(name, title)
        }
        { gsub(/href="#[^"]*/, "&.html"); gsub(/href="#/, "href=\""); print > page }
        END { print "</body>\n</html>" > page }
    ' "$manual"
}

write_contents() {
    echo '<!DOCTYPE HTML PUBLIC "-//IETF//DTD HTML//EN"><html><body><ul>'
    local name heading
    while IFS=$'\t' read -r name heading; do
        printf '<li><object type="text/sitemap"><param name="Name" value="%s"><param name="Local" value="%s.html"></object>\n' \
            "$heading" "$name"
    done < <(printf 'index\t%s\n' "$title"; cat "$work/sections")
    echo '</ul></body></html>'
}

# The names of windows are the only texts of a project that come into the table of texts unchanged; the table of contexts
# points to them. (What the compiler itself writes for contexts are names of this machine's files.)
write_project() {
    local pages=("$work"/*.html) i=0 context
    echo '<?xml version="1.0" encoding="utf-8"?><CONFIG>'
    echo "<Files><Count Value=\"${#pages[@]}\"/>"
    for page in "${pages[@]}"; do
        echo "<FileName$((i++)) Value=\"${page##*/}\"/>"
    done
    echo '</Files><OtherFiles><Count Value="1"/><FileName0 Value="#IVB"/></OtherFiles>'
    echo "<Windows><Count Value=\"$((${#contexts[@]} + 1))\"/>"
    echo "<item0 window_type=\"main\" title_bar_text=\"$title\" toc_file=\"contents.hhc\" default_file=\"index.html\"
        home_button_file=\"index.html\" left=\"100\" top=\"80\" right=\"1060\" bottom=\"760\" navpanewidth=\"260\"
        buttons=\"6222\" nav_style=\"406816\"/>"
    i=1
    for context in "${contexts[@]}"; do
        echo "<item$((i++)) window_type=\"c$context\" default_file=\"topic-$context.html\"/>"
    done
    echo '</Windows><Settings><TOCFile Value="contents.hhc"/><MakeBinaryTOC Value="False"/><MakeBinaryIndex Value="True"/>
        <MakeSearchable Value="True"/><DefaultPage Value="index.html"/><DefaultWindow Value="main"/>
        <ScanHtmlContents Value="False"/><LocaleID Value="1033"/><OutputFileName Value="orvex.chm"/>'
    echo "<Title Value=\"$title\"/></Settings></CONFIG>"
}

compile() {
    if ! (cd "$work" && rm -f orvex.chm && "$chmcmd" --no-html-scan project.xml >compiler.log 2>&1 && [ -s orvex.chm ]); then
        cat "$work/compiler.log" >&2
        return 1
    fi
    (cd "$work" && "$chmls" extract orvex.chm '#STRINGS' texts) >/dev/null 2>&1
}

# Numbers as the format has them: four bytes, the lowest first.
dword() { printf "\\x$(printf %02x $(($1 & 255)))\\x$(printf %02x $(($1 >> 8 & 255)))\\x$(printf %02x $(($1 >> 16 & 255)))\\x00"; }

write_context_table() {
    local context place
    dword $((8 * ${#contexts[@]}))
    for context in "${contexts[@]}"; do
        place=$(LC_ALL=C grep -obUaF "topic-$context.html" "$work/texts" | head -n 1 | cut -d: -f1)
        [ -n "$place" ] || { echo "compile_manual: no text for context $context" >&2; return 1; }
        dword "$context"
        dword "$place"
    done
}

mapfile -t contexts < <(sed -n 's/^ *[A-Za-z]* = \([0-9]*\),\{0,1\}$/\1/p' "$header")
[ ${#contexts[@]} -gt 0 ] || { echo "compile_manual: no help contexts in $header" >&2; exit 1; }
title=$(sed -n 's/.*<title>\(.*\)<\/title>.*/\1/p' "$manual")
split_into_pages
for context in "${contexts[@]}"; do
    [ -e "$work/topic-$context.html" ] || cp "$work/index.html" "$work/topic-$context.html"
done
write_contents >"$work/contents.hhc"
write_project >"$work/project.xml"
# Twice, because the table of contexts points into the table of texts that the compiler makes.
: >"$work/#IVB"
compile
write_context_table >"$work/#IVB"
cp "$work/texts" "$work/texts.first"
compile
cmp "$work/texts.first" "$work/texts"
mv "$work/orvex.chm" "$target"
