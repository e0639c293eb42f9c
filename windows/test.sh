# Every test of the Windows build, under Wine.
source windows/build.sh
source windows/prefix.sh
ctest --preset windows "$@"
