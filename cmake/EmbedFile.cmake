# Writes a C++ source that holds a file's bytes:  cmake -DINPUT=... -DOUTPUT=... -DNAME=symbol -P EmbedFile.cmake
file(READ "${INPUT}" hex HEX)
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
string(REGEX REPLACE "((0x..,){24})" "\\1\n" bytes "${bytes}")
file(WRITE "${OUTPUT}" "extern const unsigned char ${NAME}[];\nextern const unsigned long long ${NAME}Size;\n"
    "const unsigned char ${NAME}[] = {\n${bytes}0};\nconst unsigned long long ${NAME}Size = sizeof(${NAME}) - 1;\n")
