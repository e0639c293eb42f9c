# Runs every test of the dev build twice, the second time under a locale with decimal commas.
source tools/build.sh dev

export QT_QPA_PLATFORM=offscreen
ctest --preset dev "$@"
echo "Once more under de_DE.UTF-8:"
LC_ALL=de_DE.UTF-8 LANG=de_DE.UTF-8 ctest --preset dev "$@"
