# The example in the README is the one that is built and run:  cmake -DSOURCE_DIR=... -P CheckReadme.cmake
file(READ "${SOURCE_DIR}/examples/qt-host/main.cpp" example)
file(READ "${SOURCE_DIR}/README.md" readme)
string(FIND "${example}" "int main(" start)
string(SUBSTRING "${example}" ${start} -1 body)
string(FIND "${readme}" "```cpp\n${body}```" found)
if(found EQUAL -1)
    message(FATAL_ERROR "README.md does not hold main() of examples/qt-host/main.cpp as it is")
endif()
