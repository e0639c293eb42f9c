# Configures (once) and builds for Windows. Says nothing when all is up to date.
source windows/deps.sh
source tools/build.sh windows
