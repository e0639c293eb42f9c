# build/packages/orvexcommon-VERSION-windows-x64.zip: the component, what it loads, the reference host and the headers.
# It runs from any folder; to show it, the zip is unpacked in one with a blank and an umlaut in its name, and run there.
source windows/build.sh
source windows/prefix.sh

version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' build/windows/CMakeCache.txt)
name=orvexcommon-$version-windows-x64
work=$(mktemp -d)
at_exit rm -rf "$work"

# Libraries that a program asks for and that neither lie beside it nor belong to Windows (api-ms-win-*: names of its own).
missing_libraries() {
    local folder=$1 file library
    for file in "$folder"/*.exe "$folder"/*.dll "$folder"/plugins/*/*.dll; do
        while read -r library; do
            [[ $library = api-ms-win-* ]] || [ -e "$folder/$library" ] || [ -e "$system_libraries/${library,,}" ] || echo "${file##*/} needs $library"
        done < <(x86_64-w64-mingw32-objdump -p "$file" | sed -n 's/^\s*DLL Name: //p')
    done
}

# The terms of what is redistributed, as Debian's packages of the same sources state them.
copy_licences() {
    local folder=$1 source library
    mkdir -p "$folder"
    cp LICENSE "$folder/OrvexCommon.txt"
    cp THIRD-PARTY.md "$folder/"
    while read -r library source; do
        cp -L "/usr/share/doc/$source/copyright" "$folder/$library.txt"
    done <windows/licences.txt
}

system_libraries=$(dirname "$(find /usr/lib -path '*x86_64-windows/kernel32.dll' -print -quit)")
quietly cmake --install build/windows --prefix "$work/$name"
# The compiler's runtime comes with ten times its size in debugging information.
x86_64-w64-mingw32-strip --strip-unneeded "$work/$name"/bin/lib{stdc++,gcc_s,winpthread}*.dll
copy_licences "$work/$name/licences"
cp windows/README.txt "$work/$name/README.txt"
missing=$(missing_libraries "$work/$name/bin")
if [ -n "$missing" ]; then
    echo "orvex: the package is not complete:" >&2
    echo "$missing" >&2
    exit 1
fi

mkdir -p build/packages
(cd "$work" && cmake -E tar cf "$name.zip" --format=zip "$name")
mv "$work/$name.zip" "build/packages/.$name.zip.tmp"
mv "build/packages/.$name.zip.tmp" "build/packages/$name.zip"

elsewhere="$work/Größe und Blank"
mkdir "$elsewhere"
(cd "$elsewhere" && cmake -E tar xf "$OLDPWD/build/packages/$name.zip")
quietly windows/wine "$elsewhere/$name/bin/orvex-host.exe" --drive --pictures "$work/pictures"
echo "build/packages/$name.zip: $(du -h "build/packages/$name.zip" | cut -f1), unpacked in '${elsewhere##*/}' and run"
