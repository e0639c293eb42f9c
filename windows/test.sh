# Every test of the Windows build, under Wine. What the tests open is not shown on the display of whoever runs them.
export DISPLAY=''
source windows/build.sh
source windows/prefix.sh
ctest --preset windows "$@"
